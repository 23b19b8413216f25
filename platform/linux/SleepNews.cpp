#include "platform/SleepNews.h"

#include "platform/ReleasedBy.h"
#include "platform/ThreadBound.h"
#include "platform/linux/FileDescriptor.h"

#include <QSocketNotifier>
#include <QTimer>

#include <systemd/sd-bus.h>

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdint>

namespace platform {
namespace {

// Its own library: Qt connects to every bus on one thread of its own, which a system bus that hangs would take from
// the session's.
using Bus = std::unique_ptr<sd_bus, ReleasedBy<&sd_bus_close_unref>>;

Bus systemBus() {
  sd_bus *opened = nullptr;
  return Bus(sd_bus_open_system(&opened) >= 0 ? opened : nullptr); // does not wait for the bus to answer
}

} // namespace

class SleepNews::Private {
public:
  explicit Private(SleepNews &news) : owner(news) {
    assertMainThread();
    deadline.setSingleShot(true);
    QObject::connect(&deadline, &QTimer::timeout, &owner, [this] { process(); });
    QTimer::singleShot(0, &owner, [this] { begin(); });
  }

private:
  void begin() {
    bus = systemBus();
    if (!bus) return;
    const int asked =
        sd_bus_match_signal_async(bus.get(), nullptr, "org.freedesktop.login1", "/org/freedesktop/login1",
                                  "org.freedesktop.login1.Manager", "PrepareForSleep", &Private::heard, nullptr, this);
    if (asked < 0) return giveUp();
    watch();
  }

  static int heard(sd_bus_message *message, void *self, sd_bus_error * /*unused*/) {
    int isFallingAsleep = 1;
    if (sd_bus_message_read(message, "b", &isFallingAsleep) > 0 && isFallingAsleep == 0)
      Q_EMIT static_cast<Private *>(self)->owner.wokeUp();
    return 0;
  }

  void process() {
    int processed = bus ? 1 : 0;
    while (processed > 0)
      processed = sd_bus_process(bus.get(), nullptr);
    if (processed < 0) return giveUp();
    if (bus) watch();
  }

  /// Waits for what the connection waits for: its descriptor may change until it stands.
  void watch() {
    const int descriptor = sd_bus_get_fd(bus.get());
    const int events = sd_bus_get_events(bus.get());
    if (descriptor < 0 || events < 0) return giveUp();
    if (!reading || reading->socket() != descriptor) {
      reading = notifier(descriptor, QSocketNotifier::Read);
      writing = notifier(descriptor, QSocketNotifier::Write);
    }
    reading->setEnabled((events & POLLIN) != 0);
    writing->setEnabled((events & POLLOUT) != 0);
    watchDeadline();
  }

  void watchDeadline() {
    std::uint64_t until = UINT64_MAX;
    deadline.stop();
    if (sd_bus_get_timeout(bus.get(), &until) < 0 || until == UINT64_MAX) return;
    const std::chrono::microseconds now =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now().time_since_epoch());
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(std::chrono::microseconds(until) - now);
    deadline.start(std::clamp<std::chrono::milliseconds>(rest, std::chrono::milliseconds(0), std::chrono::hours(1)));
  }

  [[nodiscard]] std::unique_ptr<QSocketNotifier> notifier(int descriptor, QSocketNotifier::Type type) {
    auto made = std::make_unique<QSocketNotifier>(descriptor, type);
    QObject::connect(
        made.get(), &QSocketNotifier::activated, &owner, [this] { process(); }, Qt::QueuedConnection);
    return made;
  }

  void giveUp() {
    deadline.stop();
    reading.reset();
    writing.reset();
    bus.reset();
  }

  SleepNews &owner;
  QTimer deadline;
  Bus bus;
  std::unique_ptr<QSocketNotifier> reading; ///< both go before the bus, whose descriptor they watch
  std::unique_ptr<QSocketNotifier> writing;
};

SleepNews::SleepNews(QObject *parent) : QObject(parent), d(std::make_unique<Private>(*this)) {
}

SleepNews::~SleepNews() = default;

} // namespace platform
