#include "platform/LoginItem.h"

#include "platform/AppInfo.h"
#include "platform/linux/DesktopEntry.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

QString entryPath() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/autostart/"_s
         + QString::fromUtf16(kApplicationId) + u".desktop"_s;
}

QByteArray program() {
  return execArgument(QCoreApplication::applicationFilePath()).toUtf8();
}

QByteArray entryText() {
  return "[Desktop Entry]\nType=Application\nName=" + appInfo().name.toUtf8() + "\nExec=" + program()
         + "\nTerminal=false\n";
}

} // namespace

bool setLoginItemEnabled(bool enabled) {
  if (enabled) return writeEntry(entryPath(), entryText());
  return QFile::remove(entryPath()) || !QFile::exists(entryPath());
}

void refreshLoginItem() {
  const QByteArray entry = writtenEntry(entryPath());
  // What a desktop's tool has added stays, and so does a command line that somebody has thought of.
  const auto moved = entry.contains("\nHidden=true") ? std::nullopt : withProgram(entry, program());
  if (moved && *moved != entry && !writeEntry(entryPath(), *moved))
    qWarning("the entry that starts the program at login leads to its old place");
}

} // namespace platform
