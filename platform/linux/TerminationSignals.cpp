#include "platform/TerminationSignals.h"

#include <QDebug>
#include <QSocketNotifier>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>

namespace platform {
namespace {

constexpr std::array kSignals = {SIGTERM, SIGINT, SIGHUP};

/// A signal handler can reach nothing but what is global.
int writeEnd = -1;
std::atomic<bool> signalHasCome = false;

extern "C" void tellMainThread(int) {
  const int interrupted = errno;
  signalHasCome = true;
  const char byte = 1;
  [[maybe_unused]] const auto written = ::write(writeEnd, &byte, 1); // full: the message is there already
  errno = interrupted;
}

/// A program started with nohup shall survive its terminal.
bool isIgnored(int signal) {
  struct sigaction current = {};
  return ::sigaction(signal, nullptr, &current) == 0 && current.sa_handler == SIG_IGN;
}

} // namespace

class TerminationSignals::Private {
public:
  explicit Private(TerminationSignals &owner) {
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends.data()) != 0) return;
    writeEnd = ends[0];
    notifier = std::make_unique<QSocketNotifier>(ends[1], QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, &owner, [this, &owner] {
      std::array<char, 16> bytes{};
      while (::read(ends[1], bytes.data(), bytes.size()) > 0) {
      }
      Q_EMIT owner.terminationRequested();
    });
    struct sigaction action = {};
    action.sa_handler = tellMainThread;
    action.sa_flags = SA_RESTART;
    for (const int signal : kSignals) {
      if (isIgnored(signal)) continue;
      if (::sigaction(signal, &action, nullptr) != 0) qWarning("signal %d cannot be caught", signal);
    }
  }

  ~Private() {
    for (const int signal : kSignals) {
      if (!isIgnored(signal)) std::signal(signal, SIG_DFL);
    }
    notifier.reset();
    for (const int end : ends) {
      if (end >= 0) ::close(end);
    }
  }

  Private(const Private &) = delete;
  Private &operator=(const Private &) = delete;

private:
  std::array<int, 2> ends = {-1, -1};
  std::unique_ptr<QSocketNotifier> notifier;
};

TerminationSignals::TerminationSignals(QObject *parent) : QObject(parent), d(std::make_unique<Private>(*this)) {
}

TerminationSignals::~TerminationSignals() = default;

bool TerminationSignals::hasCome() {
  return signalHasCome;
}

} // namespace platform
