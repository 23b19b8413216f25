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

QByteArray program() {
  return execArgument(QCoreApplication::applicationFilePath()).toUtf8();
}

QByteArray entryText() {
  return "[Desktop Entry]\nType=Application\nName=" + appInfo().name.toUtf8() + "\nExec=" + program()
         + "\nTerminal=false\n";
}

bool writeEntry(const QByteArray &text) {
  if (!QDir().mkpath(autostartFolder())) return false;
  QSaveFile file(entryPath());
  if (!file.open(QFile::WriteOnly)) return false;
  file.write(text);
  return file.commit();
}

} // namespace

bool setLoginItemEnabled(bool enabled) {
  if (enabled) return writeEntry(entryText());
  return QFile::remove(entryPath()) || !QFile::exists(entryPath());
}

void refreshLoginItem() {
  const QByteArray entry = writtenEntry(entryPath());
  // What a desktop's tool has added stays, and so does a command line that somebody has thought of.
  const auto moved = entry.contains("\nHidden=true") ? std::nullopt : withProgram(entry, program());
  if (moved && *moved != entry && !writeEntry(*moved))
    qWarning("the entry that starts the program at login leads to its old place");
}

} // namespace platform
