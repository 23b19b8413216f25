#include "platform/Folders.h"
#include "platform/Opening.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TestProfile.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

int noArguments = 0;

/// Puts an opener first in PATH that does as told with "$1".
void installOpener(const TestProfile &profile, const QByteArray &script) {
  QDir().mkpath(profile.path(u"bin"_s));
  QFile file(profile.path(u"bin/xdg-open"_s));
  ASSERT_TRUE(file.open(QFile::WriteOnly));
  file.write("#!/bin/sh\n" + script + "\n");
  file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  qputenv("PATH", QFile::encodeName(profile.path(u"bin"_s)) + ":/usr/bin:/bin");
}

QByteArray openedIn(const TestProfile &profile) {
  QFile file(profile.path(u"opened"_s));
  return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

const QByteArray kNote = "printf '%s' \"$1\" >\"$HOME/opened\"";

TEST(OpenUrl, handsTheUrlOverUnchangedAndTellsOfFailure) {
  const TestProfile profile;
  installOpener(profile, kNote);
  const QString url = u"https://host/a?b=%20c&d=$(e)`f`\"g'#h"_s;
  EXPECT_TRUE(platform::openUrl(url));
  EXPECT_EQ(openedIn(profile), url.toUtf8());

  installOpener(profile, "exit 3");
  EXPECT_FALSE(platform::openUrl(url));
  qputenv("PATH", "");
  EXPECT_FALSE(platform::openUrl(url));
}

TEST(OpenUrl, leavesAnOpenerThatTakesLongToItself) {
  const TestProfile profile;
  installOpener(profile, "read line <\"$HOME/wait\"; " + kNote);
  ASSERT_EQ(::mkfifo(QFile::encodeName(profile.path(u"wait"_s)).constData(), 0600), 0);
  QElapsedTimer timer;
  timer.start();
  EXPECT_TRUE(platform::openUrl(u"https://host/"_s));
  EXPECT_LT(timer.elapsed(), 10'000);
  QFile go(profile.path(u"wait"_s));
  ASSERT_TRUE(go.open(QFile::WriteOnly) && go.write("go\n") > 0);
  go.close();
  EXPECT_TRUE(waitFor([&] { return openedIn(profile) == "https://host/"; }));
}

/// A file manager on the bus, answered from a thread of its own as another process would.
class FileManager : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
  QStringList shown;

public Q_SLOTS:
  void ShowFolders(const QStringList &uris, const QString &) { shown = uris; }
};

TEST(OpenFolder, asksTheFileManagerFirstAndThenTheOpener) {
  const TestProfile profile;
  const PrivateBus bus;
  const QCoreApplication application(noArguments, nullptr);
  installOpener(profile, kNote);
  const QString folder = profile.path(u"Grün & 100%"_s);
  QDir().mkpath(folder);
  EXPECT_FALSE(platform::openFolder(profile.path(u"missing"_s)));

  ASSERT_TRUE(platform::openFolder(folder));
  EXPECT_EQ(openedIn(profile), folder.toUtf8()) << "without a file manager";

  QThread thread;
  FileManager manager;
  manager.moveToThread(&thread);
  thread.start();
  auto connection = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"manager"_s);
  connection.registerObject(u"/org/freedesktop/FileManager1"_s, &manager, QDBusConnection::ExportAllSlots);
  ASSERT_TRUE(connection.registerService(u"org.freedesktop.FileManager1"_s));
  QFile::remove(profile.path(u"opened"_s));
  EXPECT_TRUE(platform::openFolder(folder));
  thread.quit();
  thread.wait();
  QDBusConnection::disconnectFromBus(u"manager"_s);
  EXPECT_THAT(manager.shown.value(0).toStdString(), testing::EndsWith("/Gr%C3%BCn%20&%20100%25"));
  EXPECT_EQ(openedIn(profile), "");
}

TEST(Folders, privateOnesAreTheUsersAloneAndExistingOnesKeepTheirMode) {
  const TestProfile profile;
  ASSERT_TRUE(platform::makePrivateFolder(profile.path(u"a/b/c"_s)));
  EXPECT_EQ(QFileInfo(profile.path(u"a/b"_s)).permissions() & (QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther),
            QFile::Permissions());
  const auto before = QFileInfo(profile.picturesFolder()).permissions();
  EXPECT_TRUE(platform::makePrivateFolder(profile.picturesFolder()));
  EXPECT_EQ(QFileInfo(profile.picturesFolder()).permissions(), before);

  QFile plain(profile.path(u"plain"_s));
  ASSERT_TRUE(plain.open(QFile::WriteOnly));
  EXPECT_FALSE(platform::makePrivateFolder(profile.path(u"plain"_s)));
  EXPECT_FALSE(platform::makePrivateFolder(profile.path(u"plain/x"_s)));
}

} // namespace

#include "DesktopTest.moc"
