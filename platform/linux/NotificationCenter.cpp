#include "platform/NotificationCenter.h"

#include "platform/AppInfo.h"
#include "platform/ThreadBound.h"

#include "NotificationsProxy.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QHash>

#include <optional>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

constexpr auto kService = "org.freedesktop.Notifications"_L1;
constexpr int kCallWaitMs = 5000;

/// Without a bus, one that ended too, calls would never end, not even in an error.
bool hasBus() {
  return QDBusConnection::sessionBus().isConnected();
}

} // namespace

class NotificationCenter::Private : public QObject {
public:
  explicit Private(NotificationCenter &center)
      : owner(center), proxy(kService, u"/org/freedesktop/Notifications"_s, QDBusConnection::sessionBus()),
        watcher(kService, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForOwnerChange) {
    proxy.setTimeout(kCallWaitMs);
    connect(&proxy, &NotificationsProxy::ActionInvoked, this, &Private::onAction);
    connect(&proxy, &NotificationsProxy::NotificationClosed, this, [this](uint id, uint reason) {
      // One that went away by itself may still be clicked in the server's list of past ones.
      constexpr uint kExpired = 1;
      if (reason != kExpired) shown.remove(id);
    });
    // A new server counts its ids from the start: an old one would catch a stranger's click.
    connect(&watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] {
      shown.clear();
      bodyIsMarkup.reset();
    });
  }

  void post(const QString &title, const QString &text, const QString &processingResult) {
    if (bodyIsMarkup) return notify(title, text, processingResult);
    auto *const call = new QDBusPendingCallWatcher(proxy.GetCapabilities(), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [=, this](QDBusPendingCallWatcher *done) {
      const QDBusPendingReply<QStringList> reply = *done;
      done->deleteLater();
      if (reply.isError()) return;
      bodyIsMarkup = reply.value().contains(u"body-markup");
      notify(title, text, processingResult);
    });
  }

private:
  void notify(const QString &title, const QString &text, const QString &processingResult) {
    const QVariantMap hints{{u"x-ProcessingResult"_s, processingResult},
                            {u"desktop-entry"_s, QString::fromUtf16(kApplicationId)}};
    const QString body = *bodyIsMarkup ? text.toHtmlEscaped() : text;
    // An empty label: the default action is the click on the notification itself.
    auto *const call = new QDBusPendingCallWatcher(
        proxy.Notify(appInfo().name, 0, QString(), title, body, {u"default"_s, QString()}, hints, -1), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [=, this](QDBusPendingCallWatcher *done) {
      const QDBusPendingReply<uint> reply = *done;
      done->deleteLater();
      if (!reply.isError()) shown.insert(reply.value(), processingResult);
    });
  }

  void onAction(uint id, const QString &action) {
    if (!shown.contains(id) || action != u"default") return;
    const QString processingResult = shown.take(id);
    proxy.CloseNotification(id);
    Q_EMIT owner.activated(processingResult);
  }

  NotificationCenter &owner;
  NotificationsProxy proxy;
  QDBusServiceWatcher watcher;
  QHash<uint, QString> shown;
  std::optional<bool> bodyIsMarkup; ///< unknown until the server was asked
};

NotificationCenter::NotificationCenter(QObject *parent) : QObject(parent) {
  if (hasBus()) d = std::make_unique<Private>(*this);
}

NotificationCenter::~NotificationCenter() = default;

void NotificationCenter::post(const QString &title, const QString &text, const QString &processingResult) {
  assertMainThread();
  if (d && hasBus()) d->post(title, text, processingResult);
}

} // namespace platform
