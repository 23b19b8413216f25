#pragma once

#include "platform/SingleInstance.h"

#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <utility>

namespace platform {

/// The desktop's interface to a running program, on a SingleInstance. What a call asks for happens once it has been
/// answered: a dialog that it opens would keep the caller waiting otherwise.
class ApplicationAdaptor : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
  explicit ApplicationAdaptor(SingleInstance &receiver) : QDBusAbstractAdaptor(&receiver), instance(receiver) {}

public Q_SLOTS:
  void Activate(const QVariantMap &) {
    later([this] { Q_EMIT instance.activated(); });
  }
  void Open(const QStringList &uris, const QVariantMap &) {
    for (const QString &uri : uris)
      later([this, uri] { Q_EMIT instance.urlReceived(uri); });
  }
  void ActivateAction(const QString &action, const QVariantList &, const QVariantMap &) {
    later([this, action] { Q_EMIT instance.actionRequested(action); });
  }

private:
  template <class Job> void later(Job job) { QMetaObject::invokeMethod(this, std::move(job), Qt::QueuedConnection); }

  SingleInstance &instance;
};

} // namespace platform
