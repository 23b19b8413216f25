#include "identity/KaLinkageUtility.h"
#include "sandbox/Service.h"
#include "tests/support/AgentProcess.h"
#include "tests/support/FakeBrowser.h"
#include "tests/support/Image.h"
#include "tests/support/NotificationServer.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TestProfile.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusVirtualObject>
#include <QDir>
#include <QElapsedTimer>
#include <QScopeGuard>

#include <fcntl.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using sandbox::Endpoint;
using sandbox::Fault;
using testing::HasSubstr;

namespace {

int noArguments = 0;
const QString kLock = u"/profile.lock"_s;

/// Starts of the whole program on one home, linked when a test says so, and how they come together.
class Start : public testing::Test {
protected:
  Start() {
    profile.writeUserDefaults(defaults());
    service.library().setSettingsObject(R"({"applicationAliasIds":[]})"); // no 10G storage
  }

  [[nodiscard]] QHash<QString, QString> defaults() const {
    auto values = service.userDefaults();
    values.insert(u"firstLaunch"_s, u"false"_s);
    values.insert(u"ImageRetryWaitTime"_s, u"1"_s);
    return values;
  }
  void link() {
    const sandbox::LinkedToken linked = service.issueLinkedToken();
    ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(linked.idToken)
                && KaLinkageUtility::saveTokenCode(linked.tokenCode));
  }
  void expectAWordAndAFailure(AgentProcess &agent, const char *word) {
    QString said;
    EXPECT_TRUE(waitFor([&] { return (said += agent.errorOutput()).contains(QLatin1StringView(word)); }))
        << said.toStdString();
    agent.terminate(); // in place of the window's button
    EXPECT_EQ(agent.waitForEnd(10s), 1);
  }
  [[nodiscard]] bool holdsTheProfile(AgentProcess &agent) const {
    const int file = ::open(QFile::encodeName(profile.appFolder() + kLock).constData(), O_RDWR | O_CLOEXEC);
    const bool isFree = file >= 0 && ::flock(file, LOCK_EX | LOCK_NB) == 0;
    if (file >= 0) ::close(file);
    return file >= 0 && !isFree && agent.isRunning();
  }
  [[nodiscard]] QStringList files() const { return filesBelow(profile.picturesFolder() + u"/Transferred"_s); }

  TestProfile profile;
  PrivateBus bus;
  QCoreApplication application{noArguments, nullptr};
  sandbox::Service service;
  FakeBrowser browser{profile};
};

/// In the place of the desktop's portal, which the bus would start for whoever asks it.
class Portal : public QDBusVirtualObject {
public:
  Portal() {
    auto bus = QDBusConnection::sessionBus();
    bus.registerVirtualObject(u"/org/freedesktop/portal/desktop"_s, this);
    bus.registerService(u"org.freedesktop.portal.Desktop"_s);
  }
  QString introspect(const QString & /*path*/) const override { return {}; }
  bool handleMessage(const QDBusMessage & /*question*/, const QDBusConnection & /*bus*/) override {
    ++questions;
    return false;
  }
  int questions = 0;
};

TEST_F(Start, onAnotherBusOrWithoutOneReachesTheProfilesAgent) {
  service.library().add(image(u"10"_s, u"A.JPG"_s));
  AgentProcess agent;
  ASSERT_TRUE(agent.waitUntilServing());
  const PrivateBus another;
  for (const bool hasBus : {true, false}) {
    if (!hasBus) qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    AgentProcess second;
    EXPECT_EQ(second.waitForEnd(10s), 0);
    if (!hasBus) { // linked, and greyed during a run
      ASSERT_TRUE(waitFor([&] { return AgentProcess::requestAction(u"logout"_s) && browser.hasUrl(); }));
      ASSERT_TRUE(browser.takeUrl());
    }
    ASSERT_TRUE(AgentProcess::requestAction(u"link"_s)); // by the bus of the test
    service.resetRequestCounts();
    AgentProcess callback({service.signIn(browser.takeUrl().value_or(QString()))});
    EXPECT_EQ(callback.waitForEnd(10s), 0);
    ASSERT_TRUE(waitFor([&] {
      return AgentProcess::requestAction(u"confirm"_s) && service.requestCount(Endpoint::TokenCode) > 0;
    })) << "the login is not completed";
  }
  EXPECT_TRUE(waitFor([this] { return !files().isEmpty(); }));
  EXPECT_EQ(files().size(), 1);
}

TEST_F(Start, withoutABusIsTheOnlyAgentAndTakesCallbacks) {
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  AgentProcess agent;
  ASSERT_TRUE(waitFor([&] { return holdsTheProfile(agent); }));
  AgentProcess callback({u"downloaderpictora://authenticate?idToken="_s + service.issueIdToken(u"nonce"_s)});
  EXPECT_EQ(callback.waitForEnd(10s), 0);
  EXPECT_TRUE(service.waitForRequests(Endpoint::Configuration, 1, 20s)) << "nobody verifies what has come";
  agent.terminate();
  EXPECT_EQ(agent.waitForEnd(1s * kSlowness), 0);
}

TEST_F(Start, byTheBusWithoutADisplayLinksAndMakesRoomForAStartThatIsSeen) {
  for (const char *const variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
    qunsetenv(variable);
  profile.writeUserDefaults(service.userDefaults()); // a first launch, whose question nobody would see
  service.library().add(image(u"10"_s, u"A.JPG"_s));
  const PrivateBus starting("DBUS_SESSION_BUS_ADDRESS", AgentProcess::program());
  const auto process = [] {
    return QDBusConnection::sessionBus().interface()->servicePid(u"com.norvale.Downloaderpictora"_s).value();
  };
  const auto end = qScopeGuard([&] {
    if (const auto last = static_cast<pid_t>(process()); last > 0) ::kill(last, SIGKILL);
  });
  NotificationServer notifications;
  Portal portal;
  ASSERT_TRUE(AgentProcess::requestAction(u"download"_s));
  ASSERT_TRUE(waitFor([&] { // that the agent is not linked
    Q_EMIT notifications.ActionInvoked(notifications.lastId, u"default"_s);
    return browser.hasUrl();
  }));
  ASSERT_TRUE(AgentProcess::open(service.signIn(browser.takeUrl().value_or(QString()))));
  EXPECT_TRUE(waitFor([this] { return !files().isEmpty(); }));
  EXPECT_EQ(portal.questions, 0) << "it would start without a display, too, and stay";
  const auto callback = u"downloaderpictora://authenticate?idToken="_s + service.issueIdToken(u"nonce"_s);
  for (const auto &way : {u"action"_s, u"bus"_s, u"socket"_s}) {
    KaLinkageUtility::deletePairingInfo(); // a linked one verifies tokens by itself
    service.resetRequestCounts();
    ASSERT_TRUE(AgentProcess::open(callback));
    const bool isNew = way != u"action"; // an earlier one has asked already
    EXPECT_TRUE(!isNew || service.waitForRequests(Endpoint::Configuration, 1, 20s)) << "the token is lost";
    const auto unseen = static_cast<pid_t>(process());
    ASSERT_GT(unseen, 0);
    EXPECT_FALSE(!isNew && (AgentProcess::requestAction(u"help"_s) || browser.hasUrl()));
    if (way == u"socket") qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    AgentProcess seen;
    EXPECT_TRUE(waitFor([&] { return ::kill(unseen, 0) != 0; })) << qPrintable(way);
    EXPECT_TRUE(waitFor([&] { return holdsTheProfile(seen) && portal.questions > 0; })) << qPrintable(way);
  }
}

TEST_F(Start, waitsForTheEndOfTheAgentBefore) {
  link();
  for (int round = 0; round < 20 / kSlowness; ++round) {
    AgentProcess former;
    ASSERT_TRUE(former.waitUntilServing());
    if (round % 2 == 0)
      former.terminate();
    else
      static_cast<void>(AgentProcess::requestAction(u"quit"_s)); // it may be gone before it answers
    AgentProcess next;
    ASSERT_EQ(former.waitForEnd(10s), 0);
    ASSERT_TRUE(next.waitUntilServing());
    ASSERT_TRUE(next.isRunning() && waitFor([&] { return holdsTheProfile(next); }));
  }
  // One that has given its name up and takes long to end.
  QDir().mkpath(profile.appFolder());
  const int slow =
      ::open(QFile::encodeName(profile.appFolder() + kLock).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  ASSERT_TRUE(waitFor([&] { return ::flock(slow, LOCK_EX | LOCK_NB) == 0; }));
  service.resetRequestCounts();
  AgentProcess next;
  EXPECT_FALSE(service.waitForRequests(Endpoint::RefreshToken, 1, 500ms * kSlowness));
  ::close(slow);
  EXPECT_TRUE(next.waitUntilServing() && service.waitForRequests(Endpoint::RefreshToken, 1, 20s));
}

TEST_F(Start, thatFailsSaysWhyAndEndsWithAFailure) {
  const QString kept = profile.path(u"state/NORVALE INC/Downloaderpictora/user-id"_s);
  QDir().mkpath(kept); // an id that is there and cannot be read, for root neither
  {
    AgentProcess agent;
    expectAWordAndAFailure(agent, "identity of this computer");
  }
  ASSERT_TRUE(QDir().rmdir(kept));
  qunsetenv("WAYLAND_DISPLAY");
  for (const char *const display : {"", ":64321"}) {
    qputenv("DISPLAY", display);
    AgentProcess agent({}, {});
    EXPECT_EQ(agent.waitForEnd(10s), 1) << "or it was aborted";
    EXPECT_EQ(agent.errorOutput(), u"downloaderpictora: there is no display that can be used\n"_s);
  }
  AgentProcess agent;
  EXPECT_TRUE(agent.waitUntilServing());
}

TEST_F(Start, takesNoFolderForItsOwnThatIsNamedWithoutASlash) {
  const QString here = QDir::currentPath();
  const QString elsewhere = profile.path(u"elsewhere"_s);
  ASSERT_TRUE(QDir().mkpath(elsewhere) && QDir::setCurrent(elsewhere));
  for (const char *const variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME"})
    qputenv(variable, "relative");
  AgentProcess agent;
  EXPECT_TRUE(agent.waitUntilServing());
  EXPECT_TRUE(waitFor([this] { return QDir(profile.path(u".local/share/NORVALE INC"_s)).exists(); }));
  EXPECT_EQ(QDir(elsewhere).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList());
  QDir::setCurrent(here);
}

TEST_F(Start, leadsAnEntryOfItsOwnToWhereTheProgramIsNow) {
  const QString entry = profile.configFolder() + u"/autostart/com.norvale.Downloaderpictora.desktop"_s;
  const auto entryWith = [](const QByteArray &exec, const QByteArray &rest = {}) {
    return "[Desktop Entry]\nType=Application\nName=Downloaderpictora\nExec=" + exec + "\nTerminal=false\n" + rest;
  };
  for (const auto &[before, isRewritten, rest] :
       {std::tuple(entryWith("/gone/downloaderpictora"), true, ""),
        {entryWith("\"/gone to/downloaderpictora\"", "X-Added=by a tool\n"), true, "X-Added=by a tool\n"},
        {entryWith("/gone/downloaderpictora", "Hidden=true\n"), false, ""},
        {entryWith("/gone/downloaderpictora --slowly"), false, ""}}) {
    writeFile(entry, before);
    AgentProcess agent;
    ASSERT_TRUE(agent.waitUntilServing());
    const QByteArray expected = isRewritten ? entryWith(agent.program(), rest) : before;
    EXPECT_TRUE(waitFor([&] { return contentOf(entry) == expected; })) << contentOf(entry).toStdString();
    agent.terminate();
    EXPECT_EQ(agent.waitForEnd(10s), 0);
  }
  QFile::remove(entry);
  AgentProcess agent;
  ASSERT_TRUE(agent.waitUntilServing());
  EXPECT_FALSE(QFile::exists(entry)) << "it is off";
}

/// A name server that takes questions and answers none, for processes that see the file system as it does.
class DeadNameServer {
public:
  explicit DeadNameServer(const TestProfile &profile) : configuration(profile.path(u"resolv.conf"_s).toUtf8()) {
    writeFile(QString::fromUtf8(configuration), "nameserver 127.0.0.77\n");
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(53);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK + 76);
    isThere = ::bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
  }
  ~DeadNameServer() { ::close(socket); }

  /// In a child that is to use it.
  [[nodiscard]] std::function<void()> use() const {
    return [path = configuration] {
      const bool used = ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
                        && ::mount(path.constData(), "/etc/resolv.conf", nullptr, MS_BIND, nullptr) == 0;
      if (!used) ::_exit(kMayNotMount);
    };
  }
  [[nodiscard]] bool wasAsked() const {
    char byte = 0;
    return ::recv(socket, &byte, 1, MSG_DONTWAIT) > 0;
  }

  static constexpr int kMayNotMount = 77;
  bool isThere = false;

private:
  const QByteArray configuration;
  const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
};

TEST_F(Start, canBeQuitWithinASecondInEveryState) {
  const auto quitWithinASecond = [](AgentProcess &agent, const char *state) {
    QElapsedTimer sinceQuit;
    sinceQuit.start();
    agent.terminate();
    EXPECT_EQ(agent.waitForEnd(10s), 0) << state;
    EXPECT_LT(sinceQuit.elapsed(), 1000 * kSlowness) << state;
  };
  link();
  {
    service.order(Endpoint::RefreshToken, {.kind = Fault::Kind::NoAnswer, .times = -1});
    AgentProcess agent;
    ASSERT_TRUE(service.waitForRequests(Endpoint::RefreshToken, 1, 20s));
    quitWithinASecond(agent, "a silent server");
    service.clearFaults();
  }
  {
    browser.hang();
    AgentProcess agent;
    ASSERT_TRUE(agent.waitUntilServing() && AgentProcess::requestAction(u"help"_s) && browser.takeUrl());
    quitWithinASecond(agent, "a stuck browser");
    EXPECT_EQ(::kill(browser.hangingProcess(), SIGKILL), 0) << "it was to go on by itself";
  }
  service.resetRequestCounts();
  AgentProcess agent;
  ASSERT_TRUE(service.waitForRequests(Endpoint::ListDevices, 1, 20s));
  bus.hang();
  quitWithinASecond(agent, "a session bus that hangs");
}

TEST_F(Start, quitTakesItsNotificationsAlongUnlessTheirServiceHangs) {
  NotificationServer notifications;
  const auto takesThemAlong = [&](AgentProcess &agent) {
    EXPECT_TRUE(waitFor([&] { return !agent.isRunning(); }, 1s * kSlowness));
    return notifications.lastId > 0 && notifications.waitForStanding({});
  };
  {
    AgentProcess agent;
    ASSERT_TRUE(waitFor([&] { return !notifications.standing.isEmpty(); })) << "that the agent is not linked";
    agent.terminate();
    EXPECT_TRUE(takesThemAlong(agent));
  }
  {
    const QString settings = profile.appFolder() + u"/DownloadSettingData.plist"_s;
    ASSERT_TRUE(QFile::remove(settings));
    AgentProcess agent;
    notifications.beforeAnswer = [&] {
      agent.terminate();
      EXPECT_TRUE(waitFor([&] { return QFile::exists(settings); })) << "saved at the end";
    };
    ASSERT_TRUE(waitFor([&] { return notifications.lastId > 1; }));
    EXPECT_TRUE(takesThemAlong(agent)) << "the id came late";
  }
  AgentProcess agent;
  notifications.beforeAnswer = [&] {
    agent.terminate();
    EXPECT_EQ(agent.waitForEnd(1s * kSlowness), 0);
  };
  EXPECT_TRUE(waitFor([&] { return !agent.isRunning(); }));
}

TEST_F(Start, canBeQuitWithinASecondWhileANameServerIsSilent) {
  auto nowhere = defaults();
  nowhere.insert(u"strataHostName"_s, u"service.example"_s);
  profile.writeUserDefaults(nowhere);
  link();
  const DeadNameServer nameServer(profile);
  if (!nameServer.isThere) GTEST_SKIP() << "this user may not be a name server";
  AgentProcess agent({}, u"offscreen"_s, nameServer.use());
  ASSERT_TRUE(waitFor([&] { return nameServer.wasAsked() || !agent.isRunning(); }));
  if (!agent.isRunning() && agent.waitForEnd(1s) == DeadNameServer::kMayNotMount)
    GTEST_SKIP() << "this system lets nobody mount";
  agent.terminate();
  EXPECT_EQ(agent.waitForEnd(1s * kSlowness), 0);
}

} // namespace
