#include "platform/NotificationCenter.h"

#include "platform/ActivationToken.h"
#include "platform/AppInfo.h"
#include "platform/ThreadBound.h"

#include "NotificationsProxy.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QUrl>

#include <algorithm>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <thread>
#include <utility>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

using Deadline = std::chrono::steady_clock::time_point;

constexpr auto kService = "org.freedesktop.Notifications"_L1;
/// A service that hangs shows what it was sent once it works again: given up before, its id would be lost, and with it
/// the way to take the notification back.
constexpr int kNoLimit = std::numeric_limits<int>::max();
constexpr std::chrono::milliseconds kLookInterval(2);

/// Without a bus, one that ended too, calls would never end, not even in an error.
bool hasBus() {
  return QDBusConnection::sessionBus().isConnected();
}

/// For answers, which arrive on a thread of the library's own.
void awaitUntil(Deadline deadline, const std::function<bool()> &condition) {
  while (!condition() && std::chrono::steady_clock::now() < deadline)
    std::this_thread::sleep_for(kLookInterval);
}

QString categoryOf(Notification::Topic topic) {
  switch (topic) {
  case Notification::Topic::Connected:
    return u"network.connected"_s;
  case Notification::Topic::ConnectionError:
    return u"network.error"_s;
  case Notification::Topic::Transfer:
    return u"transfer"_s;
  case Notification::Topic::TransferComplete:
    return u"transfer.complete"_s;
  case Notification::Topic::TransferError:
    return u"transfer.error"_s;
  }
  return {};
}

QVariantMap hintsOf(const Notification &notification) {
  const uchar urgency = notification.urgency == Notification::Urgency::Low ? 0 : 1;
  QVariantMap hints{{u"x-ProcessingResult"_s, notification.processingResult},
                    {u"desktop-entry"_s, QString::fromUtf16(kApplicationId)},
                    {u"category"_s, categoryOf(notification.topic)},
                    {u"urgency"_s, QVariant::fromValue(urgency)}};
  if (!notification.imagePath.isEmpty())
    hints.insert(u"image-path"_s, QUrl::fromLocalFile(notification.imagePath).toString(QUrl::FullyEncoded));
  return hints;
}

} // namespace

class NotificationCenter::Private : public QObject {
public:
  explicit Private(NotificationCenter &center)
      : owner(center), proxy(kService, u"/org/freedesktop/Notifications"_s, QDBusConnection::sessionBus()),
        watcher(kService, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForOwnerChange) {
    proxy.setTimeout(kNoLimit);
    connect(&proxy, &NotificationsProxy::ActivationToken, this, &Private::onToken);
    connect(&proxy, &NotificationsProxy::ActionInvoked, this, &Private::onAction);
    connect(&proxy, &NotificationsProxy::NotificationClosed, this, &Private::onClosed);
    connect(&watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString & /*name*/, const QString & /*before*/, const QString &now) { meet(now); });
  }

  void post(int kind, const Notification &notification) {
    Entry &entry = entries[kind];
    entry.wanted = notification;
    entry.isSent = false;
    entry.hasExpired = false;
    settle();
  }

  void withdraw(int kind) {
    const auto entry = entries.find(kind);
    if (entry == entries.end()) return;
    entry->second.wanted.reset();
    settle();
  }

  void withdrawAll(Deadline deadline) {
    // The ids of what was posted just now are still on their way.
    awaitUntil(deadline, [this] {
      return std::ranges::all_of(entries,
                                 [](const auto &one) { return !one.second.call || one.second.call->isFinished(); });
    });
    bool isAnyClosed = false;
    for (const auto &[kind, entry] : std::exchange(entries, {})) {
      const uint id = entry.call && entry.call->isFinished() ? idIn(*entry.call) : entry.id;
      if (id == 0) continue;
      proxy.CloseNotification(id);
      isAnyClosed = true;
    }
    if (!isAnyClosed) return;
    // The bus takes what it is sent in turn: its answer to a last call says that the rest has left this process.
    const QDBusPendingCall last = QDBusConnection::sessionBus().asyncCall(QDBusMessage::createMethodCall(
        u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"GetId"_s));
    awaitUntil(deadline, [&last] { return last.isFinished(); });
  }

private:
  using Call = QDBusPendingCallWatcher;

  /// What is to stand of a kind, and what does.
  struct Entry {
    std::optional<Notification> wanted; ///< absent: nothing
    bool isSent = false;                ///< the service that is there was sent what is wanted
    Call *call = nullptr;               ///< under way to it; owned by the center
    uint id = 0;                        ///< of what it shows; 0: nothing
    bool hasExpired = false;            ///< it stands in that service's list of past ones, if it has one
  };

  static uint idIn(const Call &call) {
    const QDBusPendingReply<uint> reply = call;
    return reply.isError() ? 0 : reply.value();
  }

  template <class Then> Call *whenAnswered(const QDBusPendingCall &call, Then then) {
    auto *const watched = new Call(call, this);
    connect(watched, &Call::finished, this, [then](Call *done) {
      done->deleteLater();
      then(done);
    });
    return watched;
  }

  /// Has the service show what is wanted. What is under way settles with its answer, which brings the id to go by.
  void settle() {
    for (auto &[kind, entry] : entries) {
      if (entry.call) continue;
      if (!entry.wanted && entry.id != 0) proxy.CloseNotification(std::exchange(entry.id, 0));
      if (entry.wanted && !entry.isSent) send(kind, entry);
    }
    std::erase_if(entries, [](const auto &one) { return !one.second.wanted && !one.second.call; });
  }

  void send(int kind, Entry &entry) {
    if (!bodyIsMarkup) return askCapabilities();
    const Notification &what = *entry.wanted;
    const QString body = *bodyIsMarkup ? what.text.toHtmlEscaped() : what.text;
    entry.isSent = true;
    // The default action is the click on the notification itself. Xfce has a button in its place, and only for one with
    // a label.
    entry.call = whenAnswered(proxy.Notify(appInfo().name, entry.id, QString::fromUtf16(kApplicationId), what.title,
                                           body, {u"default"_s, what.clickLabel}, hintsOf(what), -1),
                              [this, kind](Call *done) { onSent(kind, done); });
  }

  void onSent(int kind, Call *done) {
    const auto found = entries.find(kind);
    if (found == entries.end() || found->second.call != done) return;
    Entry &entry = found->second;
    entry.call = nullptr;
    if (!done->isError()) entry.id = idIn(*done);
    // What was refused is not sent again before there is something new to say, or to somebody new.
    settle();
  }

  void askCapabilities() {
    if (capabilities) return;
    capabilities = whenAnswered(proxy.GetCapabilities(), [this](Call *done) {
      if (done != capabilities) return;
      capabilities = nullptr;
      const QDBusPendingReply<QStringList> reply = *done;
      if (reply.isError()) return;
      bodyIsMarkup = reply.value().contains(u"body-markup");
      settle();
    });
  }

  /// Another service, or none. It counts its ids from the start: an old one would catch a stranger's click. What is
  /// under way settles with its answer, which may be this one's already. What the user has had the time to see is not
  /// shown again.
  void meet(const QString &service) {
    bodyIsMarkup.reset();
    capabilities = nullptr;
    for (auto &[kind, entry] : entries) {
      if (entry.hasExpired) entry.wanted.reset();
      entry.isSent = false;
      entry.id = 0;
    }
    if (!service.isEmpty()) settle();
  }

  [[nodiscard]] Entry *shownAs(uint id) {
    const auto entry = std::ranges::find_if(entries, [id](const auto &one) { return id != 0 && one.second.id == id; });
    return entry == entries.end() ? nullptr : &entry->second;
  }

  void onClosed(uint id, uint reason) {
    // One that went away by itself may still be clicked in the server's list of past ones.
    constexpr uint kExpired = 1;
    Entry *const entry = shownAs(id);
    if (!entry) return;
    if (reason == kExpired) {
      entry->hasExpired = !entry->call; // else it was the one before that did
      return;
    }
    entry->id = 0;
    // The user has done with it, but not with what is on its way in its place.
    if (!entry->call) entry->wanted.reset();
    settle();
  }

  /// Comes before what the user did, if it comes.
  void onToken(uint id, const QString &token) {
    if (shownAs(id)) keepActivationToken(token);
  }

  void onAction(uint id, const QString &action) {
    Entry *const entry = shownAs(id);
    if (!entry || !entry->wanted || action != u"default") return;
    const QString processingResult = entry->wanted->processingResult;
    if (!entry->call) {
      entry->wanted.reset();
      settle();
    }
    Q_EMIT owner.activated(processingResult);
  }

  NotificationCenter &owner;
  NotificationsProxy proxy;
  QDBusServiceWatcher watcher;
  std::map<int, Entry> entries;
  Call *capabilities = nullptr;     ///< under way, owned by the center
  std::optional<bool> bodyIsMarkup; ///< unknown until the service was asked
};

NotificationCenter::NotificationCenter(QObject *parent) : QObject(parent) {
  if (hasBus()) d = std::make_unique<Private>(*this);
}

NotificationCenter::~NotificationCenter() = default;

void NotificationCenter::post(int kind, const Notification &notification) {
  assertMainThread();
  if (d && hasBus()) d->post(kind, notification);
}

void NotificationCenter::withdraw(int kind) {
  assertMainThread();
  if (d && hasBus()) d->withdraw(kind);
}

void NotificationCenter::withdrawAll(std::chrono::milliseconds patience) {
  assertMainThread();
  if (d && hasBus()) d->withdrawAll(std::chrono::steady_clock::now() + patience);
}

} // namespace platform
