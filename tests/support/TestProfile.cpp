#include "tests/support/TestProfile.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <stdexcept>
#include <thread>

using namespace Qt::StringLiterals;

TestProfile::TestProfile(const QHash<QString, QString> &userDefaults) {
  if (!home.isValid()) throw std::runtime_error("no temporary folder");
  const auto point = [this](const char *variable, const QString &folder) {
    QDir().mkpath(path(folder));
    qputenv(variable, QFile::encodeName(path(folder)));
  };
  point("HOME", {});
  point("XDG_CONFIG_HOME", u"config"_s);
  point("XDG_DATA_HOME", u"data"_s);
  point("XDG_STATE_HOME", u"state"_s);
  point("XDG_CACHE_HOME", u"cache"_s);
  point("XDG_RUNTIME_DIR", u"run"_s);
  QFile::setPermissions(path(u"run"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  QDir().mkpath(picturesFolder());
  if (!userDefaults.isEmpty()) writeUserDefaults(userDefaults);
}

QString TestProfile::path(const QString &relative) const {
  return relative.isEmpty() ? home.path() : home.filePath(relative);
}

QString TestProfile::appFolder() const {
  return dataFolder() + u"/NORVALE INC/Downloaderpictora"_s;
}

void TestProfile::writeUserDefaults(const QHash<QString, QString> &values) const {
  QString text = u"[General]\n"_s;
  for (auto it = values.begin(); it != values.end(); ++it)
    text += it.key() + u'=' + it.value() + u'\n';
  writeFile(configFolder() + u"/NORVALE INC/Downloaderpictora.conf"_s, text.toUtf8());
}

void forgetDesktopProxies() {
  for (const char *variable :
       {"http_proxy", "HTTP_PROXY", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY", "no_proxy", "NO_PROXY",
        "DESKTOP_SESSION", "XDG_CURRENT_DESKTOP", "GNOME_DESKTOP_SESSION_ID", "KDE_FULL_SESSION"})
    qunsetenv(variable);
}

void writeFile(const QString &path, const QByteArray &content) {
  QFile file(path);
  if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QFile::WriteOnly) || file.write(content) != content.size())
    throw std::runtime_error("cannot write " + path.toStdString());
}

QByteArray contentOf(const QString &path) {
  QFile file(path);
  return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList filesBelow(const QString &folder) {
  QStringList files;
  for (QDirIterator it(folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories); it.hasNext();)
    files << QDir(folder).relativeFilePath(it.next());
  files.sort();
  return files;
}

bool waitFor(const std::function<bool()> &condition, std::chrono::milliseconds deadline) {
  const auto end = std::chrono::steady_clock::now() + deadline;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    if (QCoreApplication::instance()) QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}
