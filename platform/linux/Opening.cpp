#include "platform/Opening.h"

#include "platform/ThreadBound.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

extern char **environ; // NOLINT: POSIX names it so

namespace platform {
namespace {

/// Long enough to see every failure of the opener, short enough for a person not to notice.
constexpr auto kVerdictWait = 500ms;
/// A file manager that does not answer in this time is passed over. The bus may have to start it first.
constexpr int kFileManagerWaitMs = 25'000;

/// @return the exit status, -1 when it is still at work after @p wait.
int waitForExit(pid_t child, std::chrono::steady_clock::duration wait) {
  const auto end = std::chrono::steady_clock::now() + wait;
  for (;;) {
    int status = 0;
    if (::waitpid(child, &status, WNOHANG) == child) return WIFEXITED(status) ? WEXITSTATUS(status) : 255;
    if (std::chrono::steady_clock::now() >= end) return -1;
    std::this_thread::sleep_for(5ms);
  }
}

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

/// Starts the desktop's own opener and waits shortly for its verdict; one that takes longer is at work and goes on
/// alone.
bool runXdgOpen(const QString &argument) {
  QByteArray program = QFile::encodeName(QStandardPaths::findExecutable(u"xdg-open"_s));
  if (program.isEmpty()) return false;
  QByteArray bytes = argument.toUtf8();
  char *const arguments[] = {program.data(), bytes.data(), nullptr};
  const SpawnAttributes attributes;
  pid_t child = 0;
  if (::posix_spawn(&child, program.constData(), nullptr, attributes.get(), arguments, environ) != 0) return false;
  const int status = waitForExit(child, kVerdictWait);
  // Somebody must take the exit status of one that goes on, or it stays behind as a zombie.
  if (status < 0) std::thread([child] { ::waitpid(child, nullptr, 0); }).detach();
  return status <= 0;
}

QDBusPendingCall askFileManager(const QString &path) {
  auto call = QDBusMessage::createMethodCall(u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
                                             u"org.freedesktop.FileManager1"_s, u"ShowFolders"_s);
  call << QStringList{QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded())} << QString();
  return QDBusConnection::sessionBus().asyncCall(call, kFileManagerWaitMs);
}

} // namespace

bool openUrl(const QString &url) {
  return !url.isEmpty() && !url.startsWith(u'-') && runXdgOpen(url);
}

void openFolder(const QString &path, const std::function<void()> &onFailure) {
  assertMainThread();
  if (!QFileInfo(path).isDir()) return onFailure();
  const auto askOpener = [path, onFailure] {
    if (!runXdgOpen(path)) onFailure();
  };
  if (!QDBusConnection::sessionBus().isConnected()) return askOpener();
  auto *const call = new QDBusPendingCallWatcher(askFileManager(path));
  QObject::connect(call, &QDBusPendingCallWatcher::finished, call, [call, askOpener] {
    if (call->isError()) askOpener();
    call->deleteLater();
  });
}

} // namespace platform
