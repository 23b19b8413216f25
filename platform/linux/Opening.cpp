#include "platform/Opening.h"

#include "platform/ActivationToken.h"
#include "platform/Mailbox.h"
#include "platform/NoDestructor.h"
#include "platform/ThreadBound.h"
#include "platform/ThreadName.h"
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

#include <array>
#include <csignal>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

extern char **environ; // NOLINT: POSIX names it so

namespace platform {
namespace {

/// How often an opener is looked at of which the kernel tells no end.
constexpr std::chrono::milliseconds kLookInterval(250);

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

/// Whoever is to hear what became of an opening, once. Main thread.
class Listener {
public:
  Listener(const QObject *receiver, OpeningVerdict verdict) : alive(receiver), tell(std::move(verdict)) {}

  void conclude(bool opened) {
    const auto verdict = std::exchange(tell, {});
    if (verdict && alive) verdict(opened);
  }

private:
  QPointer<const QObject> alive;
  OpeningVerdict tell;
};
using Told = std::shared_ptr<Listener>;

/// From the event loop, as every other verdict. @return what goes away then, and prevents it when it is deleted before.
QTimer *failAfter(std::chrono::milliseconds wait, const Told &listener) {
  auto *const timer = new QTimer(QCoreApplication::instance());
  timer->setSingleShot(true);
  QObject::connect(timer, &QTimer::timeout, timer, [timer, listener] {
    listener->conclude(/*opened=*/false);
    timer->deleteLater();
  });
  timer->start(wait);
  return timer;
}

void failLater(const Told &listener) {
  failAfter({}, listener);
}

/// By the kernel's number: the C library of Debian 12 declares its own name for C alone.
int handleOf(pid_t process) {
  return static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
}

/// An opener at work: tells how it did and takes its exit status, so that no zombie stays behind. Deletes itself then.
/// Not a QProcess, which ends its program when it is destroyed: if this goes first, the opener goes on alone.
class StartedOpener : public QObject {
public:
  StartedOpener(pid_t process, Told toTell, std::chrono::milliseconds wait)
      : QObject(QCoreApplication::instance()), child(process), handle(handleOf(process)), listener(std::move(toTell)) {
    if (handle)
      watch();
    else
      lookNowAndThen();
    QTimer::singleShot(wait, this, [this] { listener->conclude(/*opened=*/true); });
  }

private:
  void watch() {
    end.emplace(handle.get(), QSocketNotifier::Read);
    connect(&*end, &QSocketNotifier::activated, this, &StartedOpener::look);
  }
  /// Where the kernel has no handle for it, or gives none.
  void lookNowAndThen() {
    auto *const timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &StartedOpener::look);
    timer->start(kLookInterval);
  }
  void look() {
    int status = 0;
    const pid_t ended = ::waitpid(child, &status, WNOHANG);
    if (ended == 0) return;
    if (end) end->setEnabled(false);
    listener->conclude(ended != child || (WIFEXITED(status) && WEXITSTATUS(status) == 0));
    deleteLater();
  }

  const pid_t child;
  const FileDescriptor handle;
  std::optional<QSocketNotifier> end;
  const Told listener;
};

/// Our own environment and the leave to come in front, by both of its names, for whatever the opener shows.
class OpenerEnvironment {
public:
  explicit OpenerEnvironment(const QString &token)
      : leave{"XDG_ACTIVATION_TOKEN=" + token.toUtf8(), "DESKTOP_STARTUP_ID=" + token.toUtf8()} {
    for (char **entry = environ; *entry; ++entry)
      entries.push_back(*entry);
    if (!token.isEmpty())
      for (QByteArray &entry : leave)
        entries.push_back(entry.data());
    entries.push_back(nullptr);
  }

  [[nodiscard]] char *const *get() const { return entries.data(); }

private:
  std::array<QByteArray, 2> leave;
  std::vector<char *> entries;
};

/// Starts the desktop's own opener.
void runXdgOpen(const QString &argument, const QString &token, const Told &listener, std::chrono::milliseconds wait) {
  QByteArray program = QFile::encodeName(QStandardPaths::findExecutable(u"xdg-open"_s));
  QByteArray bytes = argument.toUtf8();
  char *const arguments[] = {program.data(), bytes.data(), nullptr};
  const SpawnAttributes attributes;
  const OpenerEnvironment environment(token);
  pid_t child = 0;
  const bool isStarted =
      !program.isEmpty()
      && ::posix_spawn(&child, program.constData(), nullptr, attributes.get(), arguments, environment.get()) == 0;
  if (!isStarted) return failLater(listener);
  new StartedOpener(child, listener, wait); // NOLINT: the application owns it
}

/// Where threads leave their answers. It outlives them all: one may hang in a disk for as long as the process lives.
Mailbox &answers() {
  static NoDestructor<Mailbox> mailbox;
  return *mailbox;
}

/// Finds out whether it is a folder on a thread of its own, and goes on with the answer on this one.
void askDisk(const QString &path, std::function<void(bool isFolder)> goOn) {
  Mailbox &mailbox = answers(); // made on the main thread, whose it is
  std::thread([path, &mailbox, next = std::move(goOn)]() mutable {
    nameThisThread("folder");
    const bool isFolder = QFileInfo(path).isDir();
    mailbox.post([isFolder, next = std::move(next)] { next(isFolder); });
  }).detach();
}

QDBusPendingCall askFileManager(const QString &path, const QString &token, std::chrono::milliseconds wait) {
  auto call = QDBusMessage::createMethodCall(u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
                                             u"org.freedesktop.FileManager1"_s, u"ShowFolders"_s);
  call << QStringList{QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded())} << token;
  return QDBusConnection::sessionBus().asyncCall(call, static_cast<int>(wait.count()));
}

void showFolder(const QString &path, const Told &listener, const OpeningWaits &waits) {
  const QString token = takeActivationToken();
  if (!QDBusConnection::sessionBus().isConnected()) return runXdgOpen(path, token, listener, waits.opener);
  auto *const call =
      new QDBusPendingCallWatcher(askFileManager(path, token, waits.fileManager), QCoreApplication::instance());
  QObject::connect(call, &QDBusPendingCallWatcher::finished, call, [call, path, token, listener, waits] {
    if (call->isError())
      runXdgOpen(path, token, listener, waits.opener);
    else
      listener->conclude(/*opened=*/true);
    call->deleteLater();
  });
}

} // namespace

void openUrl(const QString &url, const QObject *receiver, const OpeningVerdict &verdict, const OpeningWaits &waits) {
  assertMainThread();
  const auto listener = std::make_shared<Listener>(receiver, verdict);
  if (url.isEmpty() || url.startsWith(u'-')) return failLater(listener);
  runXdgOpen(url, takeActivationToken(), listener, waits.opener);
}

void openFolder(const QString &path, const QObject *receiver, const OpeningVerdict &verdict,
                const OpeningWaits &waits) {
  assertMainThread();
  const auto listener = std::make_shared<Listener>(receiver, verdict);
  const QPointer<QTimer> patience = failAfter(waits.disk, listener);
  askDisk(path, [path, listener, waits, patience](bool isFolder) {
    if (!patience || !patience->isActive()) return; // it has been given up
    delete patience;
    if (isFolder) return showFolder(path, listener, waits);
    listener->conclude(/*opened=*/false);
  });
}

} // namespace platform
