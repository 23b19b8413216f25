#include "platform/TrayHost.h"

#include "platform/ReleasedBy.h"
#include "platform/ThreadBound.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QTimer>

#include <xcb/xcb.h>

#include <chrono>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

constexpr auto kPollInterval = std::chrono::seconds(1);

template <class Reply> using XcbReply = std::unique_ptr<Reply, ReleasedBy<&std::free>>;

/// Asks without starting a watcher service that is not there: it would be there without a host.
QDBusPendingCall askForNotifierHost() {
  auto question = QDBusMessage::createMethodCall(u"org.kde.StatusNotifierWatcher"_s, u"/StatusNotifierWatcher"_s,
                                                 u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
  question << u"org.kde.StatusNotifierWatcher"_s << u"IsStatusNotifierHostRegistered"_s;
  question.setAutoStartService(false);
  return QDBusConnection::sessionBus().asyncCall(question);
}

/// The tray of the X screen, which older panels and small desktops have.
bool ownsTraySelection() {
  const auto *const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  xcb_connection_t *const connection = x11 ? x11->connection() : nullptr;
  if (!connection) return false;
  const QByteArray name = "_NET_SYSTEM_TRAY_S0";
  const auto atomRequest =
      xcb_intern_atom(connection, /*only_if_exists=*/1, static_cast<uint16_t>(name.size()), name.constData());
  const XcbReply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(connection, atomRequest, nullptr));
  if (!atom || atom->atom == XCB_ATOM_NONE) return false;
  const auto ownerRequest = xcb_get_selection_owner(connection, atom->atom);
  const XcbReply<xcb_get_selection_owner_reply_t> owner(
      xcb_get_selection_owner_reply(connection, ownerRequest, nullptr));
  return owner && owner->owner != XCB_WINDOW_NONE;
}

} // namespace

class TrayHost::Private : public QObject {
public:
  explicit Private(TrayHost &host) : owner(host) {
    assertMainThread();
    poll.setInterval(kPollInterval);
    connect(&poll, &QTimer::timeout, this, &Private::look);
    poll.start();
    QTimer::singleShot(0, this, &Private::look);
  }

private:
  void look() {
    if (!QDBusConnection::sessionBus().isConnected()) return conclude(ownsTraySelection());
    if (isAsking) return;
    isAsking = true;
    auto *const answer = new QDBusPendingCallWatcher(askForNotifierHost(), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
      answer->deleteLater();
      isAsking = false;
      const QDBusPendingReply<QDBusVariant> reply = *answer;
      conclude((reply.isValid() && reply.value().variant().toBool()) || ownsTraySelection());
    });
  }

  void conclude(bool hasHost) {
    if (!hasHost || !poll.isActive()) return;
    poll.stop();
    Q_EMIT owner.appeared();
  }

  TrayHost &owner;
  QTimer poll;
  bool isAsking = false;
};

TrayHost::TrayHost(QObject *parent) : QObject(parent), d(std::make_unique<Private>(*this)) {
}

TrayHost::~TrayHost() = default;

} // namespace platform
