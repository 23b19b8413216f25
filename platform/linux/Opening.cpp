#include "platform/Opening.h"

#include "platform/linux/XdgOpen.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>

#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

extern char **environ; // NOLINT: POSIX names it so

namespace platform {
namespace {

/// Long enough to see every failure of the opener, short enough for a person not to notice.
constexpr auto kVerdictWait = 1s;
/// A file manager that does not answer in this time is passed over.
constexpr int kFileManagerWaitMs = 3000;

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

} // namespace

bool runXdgOpen(const QString &argument) {
  QByteArray program = QFile::encodeName(QStandardPaths::findExecutable(u"xdg-open"_s));
  if (program.isEmpty()) return false;
  QByteArray bytes = argument.toUtf8();
  char *const arguments[] = {program.data(), bytes.data(), nullptr};
  pid_t child = 0;
  if (::posix_spawn(&child, program.constData(), nullptr, nullptr, arguments, environ) != 0) return false;
  const int status = waitForExit(child, kVerdictWait);
  // Somebody must take the exit status of one that goes on, or it stays behind as a zombie.
  if (status < 0) std::thread([child] { ::waitpid(child, nullptr, 0); }).detach();
  return status <= 0;
}

bool openUrl(const QString &url) {
  return !url.isEmpty() && !url.startsWith(u'-') && runXdgOpen(url);
}

bool openFolder(const QString &path) {
  if (!QFileInfo(path).isDir()) return false;
  const auto bus = QDBusConnection::sessionBus();
  if (bus.isConnected()) {
    auto call = QDBusMessage::createMethodCall(u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
                                               u"org.freedesktop.FileManager1"_s, u"ShowFolders"_s);
    call << QStringList{QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded())} << QString();
    if (bus.call(call, QDBus::Block, kFileManagerWaitMs).type() == QDBusMessage::ReplyMessage) return true;
  }
  return runXdgOpen(path);
}

} // namespace platform
