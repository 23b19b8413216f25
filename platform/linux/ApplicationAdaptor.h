#pragma once

#include "platform/ActivationToken.h"
#include "platform/Sight.h"
#include "platform/SingleInstance.h"
#include "platform/TerminationSignals.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <utility>

namespace platform {

/// The desktop's interface to a running program, on a SingleInstance. What a call asks for happens once it has been
/// answered: a dialog that it opens would keep the caller waiting otherwise. A program that has been told to end
/// answers as if it were gone: who takes its yes for one would not start another. So does one that nobody can see and
/// that is asked to show itself or something else: it ends, and leaves its place to a start that has a display.
class ApplicationAdaptor : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
  explicit ApplicationAdaptor(SingleInstance &receiver) : QDBusAbstractAdaptor(&receiver), instance(receiver) {}

public Q_SLOTS:
  void Activate(const QVariantMap &platformData, const QDBusMessage &call) {
    if (isUnseen()) return makeRoom(call);
    later(call, [this, platformData] {
      keepTokenIn(platformData);
      Q_EMIT instance.activated();
    });
  }
  void Open(const QStringList &uris, const QVariantMap &platformData, const QDBusMessage &call) {
    later(call, [this, uris, platformData] {
      keepTokenIn(platformData);
      for (const QString &uri : uris)
        Q_EMIT instance.urlReceived(uri);
    });
  }
  void ActivateAction(const QString &action, const QVariantList &, const QVariantMap &platformData,
                      const QDBusMessage &call) {
    if (instance.cannotShow(action)) return makeRoom(call);
    later(call, [this, action, platformData] {
      keepTokenIn(platformData);
      Q_EMIT instance.actionRequested(action);
    });
  }

private:
  /// Older desktops know the second alone.
  static void keepTokenIn(const QVariantMap &platformData) {
    const QString token = platformData.value(QStringLiteral("activation-token")).toString();
    keepActivationToken(token.isEmpty() ? platformData.value(QStringLiteral("desktop-startup-id")).toString() : token);
  }
  void makeRoom(const QDBusMessage &call) {
    call.setDelayedReply(true);
    later(call, [this, call] {
      // First the end, by which it cannot be reached any more: whoever has the answer looks for it in every place.
      Q_EMIT instance.activated();
      answerAsGone(call, QStringLiteral("there is no display to show the agent on"));
    });
  }
  template <class Job> void later(const QDBusMessage &call, Job job) {
    if (!TerminationSignals::hasCome()) {
      QMetaObject::invokeMethod(this, std::move(job), Qt::QueuedConnection);
      return;
    }
    call.setDelayedReply(true);
    answerAsGone(call);
  }
  static void answerAsGone(const QDBusMessage &call, const QString &reason = {}) {
    QDBusConnection::sessionBus().send(call.createErrorReply(QDBusError::UnknownObject, reason));
  }

  SingleInstance &instance;
};

} // namespace platform
