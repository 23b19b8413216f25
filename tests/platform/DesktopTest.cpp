#include "platform/ActivationToken.h"
#include "platform/ModifierKeys.h"
#include "platform/Opening.h"
#include "platform/UrlScheme.h"
#include "platform/UserDefaults.h"
#include "platform/UserId.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/FileDescriptor.h"
#include "tests/support/FakeBrowser.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/RefusedCalls.h"
#include "tests/support/TestProfile.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QKeyEvent>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <functional>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto kOwnerOnly =
    QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser; // Qt names the owner twice

class Desktop : public testing::Test {
protected:
  const TestProfile profile;
  int noArguments = 0;
  const QCoreApplication application{noArguments, nullptr};
};

TEST_F(Desktop, readsUserDefaultsAsPreferencesAreRead) {
  auto &defaults = platform::standardUserDefaults();
  const std::tuple<const char *, bool, qint64, std::optional<double>> rows[] = {
      {"YES", true, 0, {}},   {"no", false, 0, {}},     {"12 s", true, 12, {}},
      {"-3", true, -3, -3.0}, {"0.25", false, 0, 0.25}, {"", false, 0, {}},
  };
  for (const auto &[stored, asBool, asInteger, asDouble] : rows) {
    defaults.setString(u"key"_s, QString::fromLatin1(stored));
    EXPECT_EQ(defaults.boolValue(u"key"_s), asBool) << stored;
    EXPECT_EQ(defaults.integerValue(u"key"_s), asInteger) << stored;
    EXPECT_EQ(defaults.doubleValue(u"key"_s), asDouble) << stored;
  }
  defaults.registerDefaults({{u"key"_s, u"7"_s}, {u"other"_s, u"8"_s}});
  EXPECT_TRUE(defaults.string(u"key"_s) == u""_s && defaults.integerValue(u"other"_s) == 8);
  EXPECT_FALSE(defaults.string(u"none"_s) || defaults.boolValue(u"none"_s) || defaults.doubleValue(u"none"_s));
  defaults.setString(u"host"_s, u"a, b; c=d"_s);
  const QString path = profile.configFolder() + u"/NORVALE INC/Downloaderpictora.conf"_s;
  EXPECT_EQ(platform::UserDefaults(path).string(u"host"_s), u"a, b; c=d"_s) << "read again";
  EXPECT_EQ(QFileInfo(path).permissions(), kOwnerOnly);
}

TEST_F(Desktop, neitherReadsNorWaitsForUserDefaultsThatAreNoneAndSweepsWhatAKillLeft) {
  const QString path = profile.configFolder() + u"/NORVALE INC/Downloaderpictora.conf"_s;
  const QByteArray text = "[General]\nkey=old\n;";
  const auto key = [&] { return platform::UserDefaults(path).string(u"key"_s).value_or(u"-"_s); };
  writeFile(path, text.leftJustified(1 << 20, 'x'));
  EXPECT_EQ(key(), u"old");
  // As of a process on another machine that shares the home.
  writeFile(path + u".lock"_s, "1\ninit\n" + QSysInfo::machineHostName().toUtf8() + "-elsewhere\n");
  for (const QString &suffix : {u".AbCdEf"_s, u".backup"_s})
    writeFile(path + suffix, "x");
  platform::UserDefaults kept(path);
  EXPECT_FALSE(QFile::exists(path + u".lock"_s)) << "storing would wait for it";
  kept.setString(u"key"_s, u"new"_s);
  EXPECT_EQ(QDir(QFileInfo(path).path()).entryList(QDir::Files).size(), 2) << "the file and somebody's copy";
  const auto block = {
      std::function<void()>([&] { writeFile(path, text.leftJustified((1 << 20) + 1, 'x')); }),
      std::function<void()>([&] { EXPECT_EQ(::mkfifo(QFile::encodeName(path).constData(), 0600), 0); })};
  for (const auto &takePlace : block) {
    takePlace();
    EXPECT_EQ(key(), u"-");
    kept.setString(u"key"_s, u"newer"_s);
    EXPECT_EQ(key(), u"newer") << "it took that one's place";
    ASSERT_TRUE(QFile::remove(path));
    takePlace();
    platform::UserDefaults(path).setString(u"key"_s, u"newest"_s);
    EXPECT_EQ(key(), u"newest");
    ASSERT_TRUE(QFile::remove(path));
  }
  ASSERT_TRUE(QDir().mkdir(path));
  kept.setString(u"key"_s, u"in memory"_s);
  platform::UserDefaults fresh(path);
  fresh.setString(u"key"_s, u"in memory"_s);
  EXPECT_EQ(fresh.string(u"key"_s), u"in memory");
}

TEST(ModifierKeys, areToldApartByTheirSide) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  int none = 0;
  const QGuiApplication application(none, nullptr); // whose keyboard the events are of
  using enum platform::ModifierKey;
  for (const auto &[name, key] :
       {std::pair(0xffe1U, LeftShift), {0xffe2U, RightShift}, {0xffe3U, LeftCommand}, {0xffe4U, Other}})
    EXPECT_EQ(platform::modifierKeyOf(QKeyEvent(QEvent::KeyPress, Qt::Key_Any, {}, 0, name, 0)), key) << name;
}

struct Opening : Desktop {
  Opening() { qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent"); }

  /// What becomes of the URL or of the folder, which begins with a slash.
  [[nodiscard]] std::optional<bool> verdictOn(const QString &what, const platform::OpeningWaits &waits = {}) {
    std::optional<bool> verdict;
    const auto note = [&](bool opened) { verdict = opened; };
    what.startsWith(u'/') ? platform::openFolder(what, &application, note, waits)
                          : platform::openUrl(what, &application, note, waits);
    EXPECT_FALSE(verdict) << "from the event loop alone";
    EXPECT_TRUE(waitFor([&] { return verdict.has_value(); }));
    return verdict;
  }

  const FakeBrowser browser{profile};
};

TEST_F(Opening, ofUrlsAndFoldersSaysWhetherItWentWell) {
  const QString url = u"https://a.example/?b"_s;
  for (const QString &what : {url, profile.picturesFolder()}) {
    platform::keepActivationToken(u"token"_s);
    EXPECT_EQ(verdictOn(what), true);
    EXPECT_EQ(browser.takeUrl(), what);
    EXPECT_EQ(browser.lastToken(), u"token|token") << "what is opened may come in front";
    EXPECT_EQ(platform::activationToken(), QString()) << "once";
  }
  for (const QString &what : {u""_s, u"--help"_s, profile.path(u"missing"_s)})
    EXPECT_EQ(verdictOn(what), false) << what.toStdString();
  for (const auto &stop : {&FakeBrowser::fail, &FakeBrowser::uninstall}) {
    (browser.*stop)();
    for (const QString &what : {url, profile.picturesFolder()})
      EXPECT_EQ(verdictOn(what), false);
  }
  auto gone = std::make_unique<QObject>();
  platform::openUrl(url, gone.get(), [](bool) { ADD_FAILURE() << "told to what is gone"; });
  gone.reset();
  EXPECT_EQ(verdictOn(url), false);
}

TEST_F(Opening, thatTakesLongCountsAndGoesOnByItselfUntilItEnds) {
  std::signal(SIGPIPE, SIG_IGN);
  for (const bool hasHandles : {true, false}) {
    if (!hasHandles && !refuseCalls({{SYS_pidfd_open, ENOSYS}})) GTEST_SKIP() << "this kernel refuses nothing on order";
    browser.hang();
    EXPECT_EQ(verdictOn(u"https://a.example/"_s, {.opener = 100ms}), true);
    ASSERT_TRUE(browser.takeUrl());
    const pid_t process = browser.hangingProcess();
    EXPECT_EQ(::getsid(process), process);
    const QString status = QString::fromUtf8(contentOf(u"/proc/%1/status"_s.arg(process)));
    const quint64 ignored = status.section(u"SigIgn:"_s, 1).section(u'\n', 0, 0).trimmed().toULongLong(nullptr, 16);
    EXPECT_FALSE(ignored & 1ULL << (SIGPIPE - 1)) << status.toStdString();
    EXPECT_EQ(::kill(process, SIGKILL), 0);
    EXPECT_TRUE(waitFor([&] { return ::kill(process, 0) != 0; })) << "a zombie stays";
    browser.fail();
    EXPECT_EQ(verdictOn(u"https://a.example/"_s), false);
    ASSERT_TRUE(browser.takeUrl());
  }
}

TEST_F(Opening, isNotHeldUpByADiskThatHangs) {
  // Its file system is one whose server says nothing.
  const QString dead = profile.path(u"dead"_s);
  ASSERT_TRUE(QDir().mkdir(dead));
  const QByteArray path = QFile::encodeName(dead);
  platform::FileDescriptor server(::open("/dev/fuse", O_RDWR | O_CLOEXEC));
  const QByteArray options = "fd=" + QByteArray::number(server.get()) + ",rootmode=40000,user_id=0,group_id=0";
  if (!server || ::unshare(CLONE_NEWNS) != 0 || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0
      || ::mount("dead", path.constData(), "fuse", 0, options.constData()) != 0)
    GTEST_SKIP() << "this system lets nobody mount";
  EXPECT_EQ(verdictOn(dead, {.disk = 50ms}), false);
  EXPECT_EQ(verdictOn(profile.picturesFolder()), true) << "another disk";
  EXPECT_EQ(::umount2(path.constData(), MNT_DETACH), 0);
  server = {}; // whoever waits for it is told
}

/// Takes every call and answers none.
struct SilentObject : QDBusVirtualObject {
  [[nodiscard]] QString introspect(const QString & /*path*/) const override { return {}; }
  bool handleMessage(const QDBusMessage &message, const QDBusConnection & /*bus*/) override {
    asked << message.member() << message.arguments().last().toString();
    return true;
  }
  QStringList asked;
};

TEST_F(Opening, passesAFileManagerOverThatHangs) {
  const PrivateBus bus;
  auto others = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"others"_s);
  SilentObject manager;
  ASSERT_TRUE(others.registerVirtualObject(u"/org/freedesktop/FileManager1"_s, &manager)
              && others.registerService(u"org.freedesktop.FileManager1"_s));
  platform::keepActivationToken(u"token"_s);
  EXPECT_EQ(verdictOn(profile.picturesFolder(), {.fileManager = 100ms, .disk = 20s}), true);
  EXPECT_EQ(browser.takeUrl(), profile.picturesFolder());
  EXPECT_EQ(manager.asked, (QStringList{u"ShowFolders"_s, u"token"_s}));
  EXPECT_EQ(browser.lastToken(), u"token|token");
  QDBusConnection::disconnectFromBus(u"others"_s);
}

TEST_F(Desktop, keepsTheUsersIdWhichDiffersByMachine) {
  const QString kept = profile.path(u"state/kept"_s);
  const QString one = profile.path(u"one"_s);
  writeFile(one, "0123456789abcdef0123456789abcdef\n");
  writeFile(profile.path(u"two"_s), "fedcba9876543210fedcba9876543210\n");
  writeFile(profile.path(u"empty"_s), "uninitialized\n");
  const QString missing = profile.path(u"missing"_s);
  const QString unreadable = profile.path(u"state"_s);
  const QStringList ofOne = platform::stableUserIds({one}, kept);
  EXPECT_EQ(ofOne.size(), 1);
  const QString pipe = profile.path(u"pipe"_s);
  ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
  EXPECT_EQ(platform::stableUserIds({missing, profile.path(u"empty"_s), pipe, one}, pipe), ofOne);
  EXPECT_EQ(platform::stableUserIds({one, unreadable}, kept), ofOne);
  EXPECT_NE(platform::stableUserIds({profile.path(u"two"_s)}, kept), ofOne);
  EXPECT_EQ(platform::stableUserIds({unreadable, one}, kept), QStringList()) << "it may be another one";
  EXPECT_FALSE(QFile::exists(kept));

  const QStringList made = platform::stableUserIds({missing, profile.path(u"empty"_s)}, kept);
  EXPECT_EQ(made.size(), 1);
  EXPECT_EQ(platform::stableUserIds({unreadable}, kept), made);
  EXPECT_EQ(platform::stableUserIds({one}, kept), made + ofOne) << "what either enciphered must stay readable";
  EXPECT_EQ(platform::stableUserIds({one}, unreadable), QStringList());
  EXPECT_EQ(QFileInfo(kept).permissions(), kOwnerOnly);
}

TEST_F(Desktop, givesUrlsToTheProgramUnlessAnInstalledEntryDoes) {
  for (const char *variable : {"XDG_CURRENT_DESKTOP", "KDE_FULL_SESSION", "DESKTOP_SESSION", "XDG_DATA_DIRS"})
    qunsetenv(variable);
  const QString agent = profile.path(u"agent"_s);
  const QString entry = u"/applications/com.norvale.Downloaderpictora.desktop"_s;
  writeFile(profile.dataFolder() + entry + u".aB3dEf"_s, "what a kill has left");
  ASSERT_TRUE(platform::registerUrlScheme(agent));
  EXPECT_EQ(filesBelow(profile.dataFolder()).filter(u"aB3dEf"_s), QStringList());
  // The desktop's tools work on by themselves after the call.
  ASSERT_TRUE(waitFor([&] { return QFile::exists(profile.configFolder() + u"/mimeapps.list"_s); }));
  const QByteArray made = contentOf(profile.dataFolder() + entry);
  EXPECT_TRUE(made.contains("/agent %u\n") && made.contains("\nMimeType=x-scheme-handler/downloaderpictora;"));
  const QString system = profile.path(u"system"_s);
  writeFile(system + entry, "[Desktop Entry]\n");
  qputenv("XDG_DATA_DIRS", system.toUtf8());
  for (const bool isUsersOwn : {false, true}) {
    if (isUsersOwn) writeFile(profile.dataFolder() + entry, "[Desktop Entry]\nName=The user's own\n");
    ASSERT_TRUE(platform::registerUrlScheme(agent));
    EXPECT_EQ(QFile::exists(profile.dataFolder() + entry), isUsersOwn) << "ours would hide the installed one";
  }

  EXPECT_EQ(platform::execArgument(u"/opt/a-b_c/100%"_s), u"/opt/a-b_c/100%%"_s);
  for (const char *const useless : {"[Desktop Entry]\nExec=/a/agent", "Path=/a/agent\n"})
    EXPECT_EQ(platform::withProgram(useless, "/b/agent"), std::nullopt) << useless;
  EXPECT_EQ(platform::execArgument(uR"(a"$`\)"_s), uR"("a\\"\\$\\`\\\\")"_s);
}

} // namespace
