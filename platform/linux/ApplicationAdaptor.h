#pragma once

#include "platform/SingleInstance.h"

#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

namespace platform {

/// The desktop's interface to a running program, on a SingleInstance.
class ApplicationAdaptor : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
  explicit ApplicationAdaptor(SingleInstance &receiver) : QDBusAbstractAdaptor(&receiver), instance(receiver) {}

public Q_SLOTS:
  void Activate(const QVariantMap &) { Q_EMIT instance.activated(); }
  void Open(const QStringList &uris, const QVariantMap &) {
    for (const QString &uri : uris)
      Q_EMIT instance.urlReceived(uri);
  }
  void ActivateAction(const QString &action, const QVariantList &, const QVariantMap &) {
    Q_EMIT instance.actionRequested(action);
  }

private:
  SingleInstance &instance;
};

} // namespace platform
