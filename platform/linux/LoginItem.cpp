#include "platform/LoginItem.h"

#include "platform/AppInfo.h"
#include "platform/linux/DesktopEntry.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

QString autostartFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/autostart"_s;
}

QString entryPath() {
  return autostartFolder() + u'/' + QString::fromUtf16(kApplicationId) + u".desktop"_s;
}

bool writeEntry() {
  if (!QDir().mkpath(autostartFolder())) return false;
  QSaveFile file(entryPath());
  if (!file.open(QFile::WriteOnly)) return false;
  const QString text = u"[Desktop Entry]\nType=Application\nName=%1\nExec=%2\nTerminal=false\n"_s.arg(
      appInfo().name, execArgument(QCoreApplication::applicationFilePath()));
  file.write(text.toUtf8());
  return file.commit();
}

} // namespace

bool setLoginItemEnabled(bool enabled) {
  if (enabled) return writeEntry();
  return QFile::remove(entryPath()) || !QFile::exists(entryPath());
}

} // namespace platform
