#include "platform/UrlScheme.h"

#include "platform/AppInfo.h"
#include "platform/linux/DesktopEntry.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

constexpr auto kScheme = "x-scheme-handler/downloaderpictora"_L1;

QString entryName() {
  return QString::fromUtf16(kApplicationId) + u".desktop"_s;
}

QString userFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/applications"_s;
}

/// An entry that came with an installation, in a folder of the system's.
bool isInstalled() {
  const auto folders = QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
  for (const QString &folder : folders.mid(1)) {
    if (QFileInfo::exists(folder + u"/applications/"_s + entryName())) return true;
  }
  return false;
}

QByteArray entryText(const QString &executable) {
  const QString text = u"[Desktop Entry]\nType=Application\nName="_s + appInfo().name + u"\nExec="_s
                       + execArgument(executable) + u" %u\nTerminal=false\nNoDisplay=true\nMimeType="_s + kScheme
                       + u";\n"_s;
  return text.toUtf8();
}

/// An entry of ours from before the installation would hide the installed one, and lead to a program of then.
void removeOwnEntry() {
  const QString path = userFolder() + u'/' + entryName();
  if (withoutProgram(writtenEntry(path)) == withoutProgram(entryText(u"any"_s))) QFile::remove(path);
}

/// The desktop's own tools, where it has them: the entry works without.
void announce() {
  for (const QStringList &command : {QStringList{u"update-desktop-database"_s, userFolder()},
                                     QStringList{u"xdg-mime"_s, u"default"_s, entryName(), kScheme}}) {
    if (QStandardPaths::findExecutable(command.first()).isEmpty()) continue;
    QProcess::startDetached(command.first(), command.mid(1));
  }
}

} // namespace

bool registerUrlScheme(const QString &executable) {
  if (isInstalled()) {
    removeOwnEntry();
    return true;
  }
  const QString path = userFolder() + u'/' + entryName();
  const QByteArray text = entryText(executable);
  if (writtenEntry(path) == text) return true;
  if (!writeEntry(path, text)) return false;
  announce();
  return true;
}

} // namespace platform
