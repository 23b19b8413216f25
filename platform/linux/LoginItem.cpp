#include "platform/LoginItem.h"

#include "platform/AppInfo.h"
#include "platform/linux/DesktopEntry.h"

#include <QCoreApplication>
#include <QDebug>
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

QByteArray entryText() {
  const QString text = u"[Desktop Entry]\nType=Application\nName=%1\nExec=%2\nTerminal=false\n"_s.arg(
      appInfo().name, execArgument(QCoreApplication::applicationFilePath()));
  return text.toUtf8();
}

bool writeEntry() {
  if (!QDir().mkpath(autostartFolder())) return false;
  QSaveFile file(entryPath());
  if (!file.open(QFile::WriteOnly)) return false;
  file.write(entryText());
  return file.commit();
}

} // namespace

bool setLoginItemEnabled(bool enabled) {
  if (enabled) return writeEntry();
  return QFile::remove(entryPath()) || !QFile::exists(entryPath());
}

void refreshLoginItem() {
  const QByteArray entry = writtenEntry(entryPath());
  const bool leadsElsewhere = entry != entryText() && withoutProgram(entry) == withoutProgram(entryText());
  if (leadsElsewhere && !writeEntry()) qWarning("the entry that starts the program at login leads to its old place");
}

} // namespace platform
