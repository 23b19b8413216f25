#include "platform/Opening.h"

#include "platform/ThreadBound.h"
#include "platform/linux/FileDescriptor.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <QTimer>
#include <QUrl>

#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

extern char **environ; // NOLINT: POSIX names it so

namespace platform {
namespace {

/// A file manager that does not answer in this time is passed over. The bus may have to start it first.
constexpr int kFileManagerWaitMs = 25'000;

/// What a child starts with: a session of its own, which ends with no terminal, and no signal ignored on our account.
class SpawnAttributes {
public:
  SpawnAttributes() : made(::posix_spawnattr_init(&attributes) == 0), complete(made && fill()) {}
  ~SpawnAttributes() {
    if (made) ::posix_spawnattr_destroy(&attributes);
  }
  SpawnAttributes(const SpawnAttributes &) = delete;
  SpawnAttributes &operator=(const SpawnAttributes &) = delete;

  [[nodiscard]] const posix_spawnattr_t *get() const { return complete ? &attributes : nullptr; }

private:
  bool fill() {
    sigset_t defaults;
    return ::sigemptyset(&defaults) == 0 && ::sigaddset(&defaults, SIGPIPE) == 0
           && ::posix_spawnattr_setsigdefault(&attributes, &defaults) == 0
           && ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF) == 0;
  }

  posix_spawnattr_t attributes{};
  const bool made;
  const bool complete;
};

/// Whoever is to hear what became of an opening, once.
class Listener {
public:
  Listener(const QObject *receiver, OpeningVerdict verdict) : alive(receiver), tell(std::move(verdict)) {}

  void conclude(bool opened) {
    const auto verdict = std::exchange(tell, {});
    if (verdict && alive) verdict(opened);
  }
  /// From the event loop, as every other verdict.
  void failLater() const {
    QTimer::singleShot(0, QCoreApplication::instance(),
                       [listener = *this]() mutable { listener.conclude(/*opened=*/false); });
  }

private:
  QPointer<const QObject> alive;
  OpeningVerdict tell;
};

/// By the kernel's number: the C library of Debian 12 declares its own name for C alone.
int handleOf(pid_t process) {
  return static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
}

/// An opener at work: tells how it did and takes its exit status, so that no zombie stays behind. Deletes itself then.
/// Not a QProcess, which ends its program when it is destroyed: if this goes first, the opener goes on alone.
class StartedOpener : public QObject {
public:
  StartedOpener(pid_t process, Listener toTell, std::chrono::milliseconds wait)
      : QObject(QCoreApplication::instance()), child(process), handle(handleOf(process)), listener(std::move(toTell)) {
    // A kernel that has no handle for it leaves its verdict unknown.
    if (!handle) wait = std::chrono::milliseconds::zero();
    if (handle) watch();
    QTimer::singleShot(wait, this, [this] { listener.conclude(/*opened=*/true); });
  }

private:
  void watch() {
    end.emplace(handle.get(), QSocketNotifier::Read);
    connect(&*end, &QSocketNotifier::activated, this, &StartedOpener::hasEnded);
  }
  void hasEnded() {
    end->setEnabled(false);
    int status = 0;
    const bool isKnown = ::waitpid(child, &status, WNOHANG) == child;
    listener.conclude(!isKnown || (WIFEXITED(status) && WEXITSTATUS(status) == 0));
    deleteLater();
  }

  const pid_t child;
  const FileDescriptor handle;
  std::optional<QSocketNotifier> end;
  Listener listener;
};

/// Starts the desktop's own opener.
void runXdgOpen(const QString &argument, Listener listener, std::chrono::milliseconds wait) {
  QByteArray program = QFile::encodeName(QStandardPaths::findExecutable(u"xdg-open"_s));
  QByteArray bytes = argument.toUtf8();
  char *const arguments[] = {program.data(), bytes.data(), nullptr};
  const SpawnAttributes attributes;
  pid_t child = 0;
  const bool isStarted =
      !program.isEmpty()
      && ::posix_spawn(&child, program.constData(), nullptr, attributes.get(), arguments, environ) == 0;
  if (!isStarted) return listener.failLater();
  new StartedOpener(child, std::move(listener), wait); // NOLINT: the application owns it
}

QDBusPendingCall askFileManager(const QString &path) {
  auto call = QDBusMessage::createMethodCall(u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
                                             u"org.freedesktop.FileManager1"_s, u"ShowFolders"_s);
  call << QStringList{QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded())} << QString();
  return QDBusConnection::sessionBus().asyncCall(call, kFileManagerWaitMs);
}

} // namespace

void openUrl(const QString &url, const QObject *receiver, const OpeningVerdict &verdict,
             std::chrono::milliseconds wait) {
  assertMainThread();
  Listener listener(receiver, verdict);
  if (url.isEmpty() || url.startsWith(u'-')) return listener.failLater();
  runXdgOpen(url, std::move(listener), wait);
}

void openFolder(const QString &path, const QObject *receiver, const OpeningVerdict &verdict) {
  assertMainThread();
  Listener listener(receiver, verdict);
  if (!QFileInfo(path).isDir()) return listener.failLater();
  if (!QDBusConnection::sessionBus().isConnected()) return runXdgOpen(path, std::move(listener), kOpeningWait);
  auto *const call = new QDBusPendingCallWatcher(askFileManager(path), QCoreApplication::instance());
  QObject::connect(call, &QDBusPendingCallWatcher::finished, call, [call, path, listener]() mutable {
    if (call->isError())
      runXdgOpen(path, std::move(listener), kOpeningWait);
    else
      listener.conclude(/*opened=*/true);
    call->deleteLater();
  });
}

} // namespace platform
