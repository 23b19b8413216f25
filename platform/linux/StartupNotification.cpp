#include "platform/linux/StartupNotification.h"

#include "platform/ReleasedBy.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QWindow>

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace platform {
namespace {

constexpr QLatin1StringView kTimeMark("_TIME");

xcb_connection_t *connection() {
  if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance())) return nullptr;
  const auto *const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 ? x11->connection() : nullptr;
}

xcb_window_t rootOf(xcb_connection_t *display) {
  return xcb_setup_roots_iterator(xcb_get_setup(display)).data->root;
}

xcb_atom_t atomOf(xcb_connection_t *display, const QByteArray &name) {
  const auto request =
      xcb_intern_atom(display, /*only_if_exists=*/0, static_cast<uint16_t>(name.size()), name.constData());
  const std::unique_ptr<xcb_intern_atom_reply_t, ReleasedBy<&std::free>> reply(
      xcb_intern_atom_reply(display, request, nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

QByteArray removalOf(const QString &id) {
  QByteArray quoted = id.toUtf8();
  quoted.replace('\\', "\\\\").replace('"', "\\\"");
  return "remove: ID=\"" + quoted + '"';
}

/// To all who listen at the root window, in pieces, the last of which ends with a zero byte.
void broadcast(xcb_connection_t *display, xcb_window_t root, xcb_window_t sender, const QByteArray &message) {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 8;
  event.window = sender;
  event.type = atomOf(display, "_NET_STARTUP_INFO_BEGIN");
  const xcb_atom_t following = atomOf(display, "_NET_STARTUP_INFO");
  constexpr qsizetype kPiece = sizeof event.data.data8;
  const QByteArray text = message + '\0';
  for (qsizetype at = 0; at < text.size(); at += kPiece) {
    const QByteArray piece = text.mid(at, kPiece).leftJustified(kPiece, '\0');
    std::copy(piece.begin(), piece.end(), event.data.data8);
    xcb_send_event(display, /*propagate=*/0, root, XCB_EVENT_MASK_PROPERTY_CHANGE,
                   reinterpret_cast<const char *>(&event));
    event.type = following;
  }
}

} // namespace

void completeStartup(const QString &id) {
  xcb_connection_t *const display = connection();
  if (!display || id.isEmpty()) return;
  const xcb_window_t root = rootOf(display);
  // Tells the pieces of this message from those of others.
  const xcb_window_t sender = xcb_generate_id(display);
  xcb_create_window(display, XCB_COPY_FROM_PARENT, sender, root, -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                    XCB_COPY_FROM_PARENT, 0, nullptr);
  broadcast(display, root, sender, removalOf(id));
  xcb_destroy_window(display, sender);
  xcb_flush(display);
}

void activateByStartup(const QWindow &window, const QString &id) {
  xcb_connection_t *const display = connection();
  const qsizetype mark = id.lastIndexOf(kTimeMark);
  if (!display || mark < 0) return;
  bool isTime = false;
  const uint time = QStringView(id).sliced(mark + kTimeMark.size()).toUInt(&isTime);
  if (!isTime || time == 0) return;
  constexpr uint32_t kApplication = 1; // who asks
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = static_cast<xcb_window_t>(window.winId());
  event.type = atomOf(display, "_NET_ACTIVE_WINDOW");
  event.data.data32[0] = kApplication;
  event.data.data32[1] = time;
  xcb_send_event(display, /*propagate=*/0, rootOf(display),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char *>(&event));
  xcb_flush(display);
}

} // namespace platform
