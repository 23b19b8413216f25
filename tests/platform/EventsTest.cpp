#include "platform/ActivationToken.h"
#include "platform/ColorScheme.h"
#include "platform/Mailbox.h"
#include "platform/NotificationCenter.h"
#include "platform/SingleInstance.h"
#include "tests/support/NotificationServer.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/RefusedCalls.h"
#include "tests/support/TestProfile.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QEventLoop>

#include <sys/syscall.h>

#include <functional>
#include <optional>
#include <thread>
#include <tuple>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using platform::SingleInstance;

namespace {

int noArguments = 0;

class Notifications : public testing::Test {
protected:
  void post(int kind, const QString &text) {
    center.post(kind, {.title = u"T"_s, .text = text, .processingResult = text});
  }
  /// Clicks until it means something: the id must have arrived before.
  [[nodiscard]] bool click(NotificationServer &server, uint id) const {
    const auto before = clicked.size();
    return waitFor([&] {
      Q_EMIT server.NotificationClosed(id, 1);       // by itself: it can still be clicked in the list of past ones
      Q_EMIT server.ActionInvoked(99, u"default"_s); // somebody else's
      Q_EMIT server.ActivationToken(id, u"of %1"_s.arg(id));
      Q_EMIT server.ActivationToken(99, u"of 99"_s);
      Q_EMIT server.ActionInvoked(id, u"default"_s);
      QCoreApplication::processEvents();
      return clicked.size() > before;
    });
  }

  const TestProfile profile;
  const PrivateBus bus;
  const QCoreApplication application{noArguments, nullptr};
  platform::NotificationCenter center;
  QStringList clicked;
  const QMetaObject::Connection clicks =
      QObject::connect(&center, &platform::NotificationCenter::activated,
                       [this](const QString &result) { clicked << result << platform::takeActivationToken(); });
};

TEST_F(Notifications, areCarriedAndHandTheirResultBackWithAClick) {
  NotificationServer server;
  center.post(1, {.title = u"Title"_s,
                  .text = u"a < b & c"_s,
                  .processingResult = u"17"_s,
                  .clickLabel = u"Open"_s,
                  .topic = platform::Notification::Topic::ConnectionError,
                  .imagePath = u"/a b/ü#.jpg"_s});
  ASSERT_TRUE(server.waitForStanding({u"a &lt; b &amp; c"_s}));
  const QString name = u"com.norvale.Downloaderpictora"_s;
  EXPECT_EQ(server.last, (QVariantList{u"Downloaderpictora"_s, name, u"Title"_s, u"default"_s, u"Open"_s}));
  EXPECT_EQ(server.lastHints, (QVariantMap{{u"x-ProcessingResult"_s, u"17"_s},
                                           {u"desktop-entry"_s, name},
                                           {u"category"_s, u"network.error"_s},
                                           {u"urgency"_s, QVariant::fromValue(uchar(1))},
                                           {u"image-path"_s, u"file:///a%20b/%C3%BC%23.jpg"_s}}));
  ASSERT_TRUE(click(server, 1));
  EXPECT_TRUE(server.waitForStanding({}));
  // A server that starts anew counts anew, and may know less.
  post(1, u"one"_s);
  ASSERT_TRUE(server.waitForStanding({u"one"_s}));
  server.capabilities.clear();
  server.restart();
  post(2, u"<two>"_s);
  EXPECT_TRUE(server.waitForStanding({u"<two>"_s, u"one"_s})) << "told plainly to who reads no markup";
  const uint id = server.standing.key(u"<two>"_s);
  EXPECT_TRUE(click(server, id));
  EXPECT_EQ(clicked, (QStringList{u"17"_s, u"of 1"_s, u"<two>"_s, u"of %1"_s.arg(id)}));
}

TEST_F(Notifications, standOnceOfAKindForAsLongAsTheyAreTrueWhateverBecomesOfTheService) {
  post(1, u"one"_s);
  post(2, u"two"_s);
  post(3, u"untrue"_s);
  ASSERT_FALSE(
      QDBusConnection::sessionBus().interface()->isServiceRegistered(u"org.freedesktop.Notifications"_s).value());
  QCoreApplication::processEvents(); // nobody has taken it
  post(1, u"one, later"_s);
  center.withdraw(3);
  NotificationServer server;
  EXPECT_TRUE(server.waitForStanding({u"one, later"_s, u"two"_s}));
  // What is under way is replaced and withdrawn as well.
  for (const auto &text : {u"a"_s, u"b"_s}) {
    post(1, text);
    post(3, text);
  }
  center.withdraw(3);
  EXPECT_TRUE(waitFor([&] { return server.lastId == 3; }) && server.waitForStanding({u"b"_s, u"two"_s}));
  Q_EMIT server.ActionInvoked(1, u"snooze"_s); // no click
  server.close(2, 2);                          // by the user
  server.restart();
  EXPECT_TRUE(server.waitForStanding({u"b"_s})) << "what the user has not done with";
  Q_EMIT server.NotificationClosed(1, 1);
  post(4, u"c"_s);
  center.withdraw(1);
  EXPECT_TRUE(server.waitForStanding({u"c"_s})) << "of those in the list of past ones";
  EXPECT_EQ(server.lastId, 2) << "each was posted once";
  post(5, u"expired"_s);
  post(6, u"expired"_s);
  ASSERT_TRUE(server.waitForStanding({u"c"_s, u"expired"_s, u"expired"_s}));
  for (const uint id : {3, 4})
    server.close(id, 1);
  for (const auto &text : {u"d"_s, u"e"_s}) { // the latter goes once the former was answered, and so behind those ends
    post(7, text);
    ASSERT_TRUE(server.waitForStanding({u"c"_s, text}));
  }
  post(6, u"new"_s);
  ASSERT_TRUE(server.waitForStanding({u"c"_s, u"e"_s, u"new"_s}));
  server.restart();
  EXPECT_TRUE(server.waitForStanding({u"c"_s, u"e"_s, u"new"_s}));
  EXPECT_EQ(server.lastId, 3) << "what the user has had the time to see";
}

TEST(SingleInstance, hasTheProfileAloneAndCanBeReachedUntilItResigns) {
  using enum SingleInstance::Claim;
  const TestProfile profile;
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  const QCoreApplication application(noArguments, nullptr);
  EXPECT_EQ(SingleInstance::handOver(std::nullopt), SingleInstance::HandOver::NoAgent);
  SingleInstance second;
  {
    SingleInstance first;
    EXPECT_EQ(first.claimProfile(std::nullopt), Won);
    EXPECT_EQ(second.claimProfile(std::nullopt, std::chrono::milliseconds(50)), Refused) << "it cannot be reached yet";
    QString received;
    QObject::connect(&first, &SingleInstance::urlReceived,
                     [&](const QString &url) { received = platform::takeActivationToken() + url; });
    EXPECT_TRUE(first.serve());
    const QString url = u"downloaderpictora:"_s + QString(30'000, u'x');
    std::thread later(
        [&] { EXPECT_EQ(SingleInstance::handOver(url, u"token"_s), SingleInstance::HandOver::Delivered); });
    EXPECT_TRUE(waitFor([&] { return !received.isEmpty(); }));
    EXPECT_EQ(received, u"token"_s + url);
    later.join();
    first.resign();
    EXPECT_EQ(SingleInstance::handOver(std::nullopt), SingleInstance::HandOver::NoAgent);
    EXPECT_EQ(second.claimProfile(std::nullopt, std::chrono::milliseconds(50)), Refused) << "it still works";
  }
  EXPECT_EQ(second.claimProfile(std::nullopt), Won);
  writeFile(profile.path(u"file"_s), {});
  qputenv("XDG_DATA_HOME", profile.path(u"file/data"_s).toUtf8());
  EXPECT_EQ(SingleInstance().claimProfile(std::nullopt), Won) << "a profile that takes no file has nothing to spoil";
}

TEST(SingleInstance, thatIsThereCannotBeReachedByWhoMayNotCallIt) {
  using enum SingleInstance::HandOver;
  const TestProfile profile;
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  const QCoreApplication application(noArguments, nullptr);
  SingleInstance agent;
  ASSERT_TRUE(agent.serve());
  const std::tuple<long, int, SingleInstance::HandOver> cases[] = {
      {SYS_socket, EMFILE, Failed}, {SYS_sendto, ENOBUFS, Failed}, {SYS_sendto, EPIPE, NoAgent}};
  for (const auto &[call, error, outcome] : cases) {
    const auto tryIt = [&] { EXPECT_EQ(SingleInstance::handOver(std::nullopt), outcome) << call << ' ' << error; };
    if (!withRefusedCalls({{call, error}}, tryIt)) GTEST_SKIP() << "this kernel refuses nothing on order";
  }
}

TEST(SingleInstance, isTheSessionsOnlyOneWhateverTheProfiles) {
  const TestProfile profile;
  const PrivateBus bus;
  const QCoreApplication application(noArguments, nullptr);
  SingleInstance agent;
  auto other = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"other"_s);
  ASSERT_TRUE(other.registerService(u"com.norvale.Downloaderpictora"_s));
  EXPECT_FALSE(agent.serve());
  ASSERT_TRUE(other.unregisterService(u"com.norvale.Downloaderpictora"_s));
  EXPECT_TRUE(agent.serve());
  agent.resign();
  EXPECT_TRUE(waitFor([&] { return other.registerService(u"com.norvale.Downloaderpictora"_s); }));
}

struct ActivationTokens : testing::Test {
  const TestProfile profile;
  const PrivateBus bus;
  const QCoreApplication application{noArguments, nullptr};
};

TEST_F(ActivationTokens, ofTheLauncherAndTheTrayAreForOneWindowAndForNoChild) {
  qputenv("XDG_ACTIVATION_TOKEN", "launcher's");
  qputenv("DESKTOP_STARTUP_ID", "older");
  platform::adoptLaunchToken();
  EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN") || qEnvironmentVariableIsSet("DESKTOP_STARTUP_ID"));
  for (const QByteArray expected : {"launcher's", ""}) {
    const platform::ActivationScope scope;
    EXPECT_EQ(qgetenv("XDG_ACTIVATION_TOKEN"), expected);
  }
  EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
  qputenv("DESKTOP_STARTUP_ID", "alone");
  platform::adoptLaunchToken();
  EXPECT_EQ(platform::takeActivationToken(), u"alone");
  platform::keepActivationToken(u"of a click on Download Now"_s);
  qputenv("XDG_ACTIVATION_TOKEN", "tray's");
  platform::keepTrayToken();
  EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
  platform::keepTrayToken(); // of a panel that gives none
  EXPECT_EQ(platform::takeActivationToken(), u"tray's");
  platform::keepActivationToken(u"notification's"_s);
  qputenv("XDG_ACTIVATION_TOKEN", "of a menu that was closed again");
  EXPECT_EQ(platform::takeActivationToken(), u"notification's");
  EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
  platform::keepActivationToken(u"stale"_s, 0ms);
  EXPECT_EQ(platform::takeActivationToken(), QString());
  platform::keepActivationToken(QString(100'000, u'x'));
  EXPECT_EQ(platform::takeActivationToken(), QString()) << "no token is so long";
}

TEST_F(ActivationTokens, comeWithWhatOthersAskFor) {
  SingleInstance agent;
  ASSERT_TRUE(agent.serve());
  std::optional<QString> got;
  const auto take = [&got] { got = platform::takeActivationToken(); };
  QObject::connect(&agent, &SingleInstance::activated, take);
  QObject::connect(&agent, &SingleInstance::urlReceived, take);
  QObject::connect(&agent, &SingleInstance::actionRequested, take);
  const auto call = [](const QString &method, QVariantList arguments, const QVariantMap &platformData) {
    auto message =
        QDBusMessage::createMethodCall(u"com.norvale.Downloaderpictora"_s, u"/com/norvale/Downloaderpictora"_s,
                                       u"org.freedesktop.Application"_s, method);
    message.setArguments(arguments << QVariant(platformData));
    QDBusConnection::sessionBus().asyncCall(message);
  };
  const auto startAgain = [&](const std::optional<QString> &url) {
    std::thread second(
        [&] { EXPECT_EQ(SingleInstance::handOver(url, u"new"_s), SingleInstance::HandOver::Delivered); });
    EXPECT_TRUE(waitFor([&] { return got.has_value(); }));
    second.join();
  };
  const QVariantMap both{{u"activation-token"_s, u"new"_s}, {u"desktop-startup-id"_s, u"old"_s}};
  const QVariantMap elder{{u"desktop-startup-id"_s, u"old"_s}};
  const QString url = u"downloaderpictora:"_s;
  const std::tuple<const char *, std::function<void()>, QString> rows[] = {
      {"Activate", [&] { call(u"Activate"_s, {}, both); }, u"new"_s},
      {"Open", [&] { call(u"Open"_s, {QStringList{url}}, both); }, u"new"_s},
      {"ActivateAction",
       [&] {
         call(u"ActivateAction"_s, {u"about"_s, QVariantList()}, both);
       },
       u"new"_s},
      {"an elder desktop", [&] { call(u"Activate"_s, {}, elder); }, u"old"_s},
      {"no desktop", [&] { call(u"Activate"_s, {}, {}); }, QString()},
      {"second start", [&] { startAgain(std::nullopt); }, u"new"_s},
      {"second start with a URL", [&] { startAgain(url); }, u"new"_s},
  };
  for (const auto &[name, ask, expected] : rows) {
    platform::keepActivationToken(u"of a request before"_s);
    got.reset();
    ask();
    EXPECT_TRUE(waitFor([&] { return got.has_value(); })) << name;
    EXPECT_EQ(got, expected) << name;
  }
}

/// What tells programs of the user's wishes, on a connection of its own.
class Portal : public QDBusVirtualObject {
public:
  explicit Portal(uint wish) : scheme(wish) {
    bus.registerVirtualObject(kPath, this);
    bus.registerService(u"org.freedesktop.portal.Desktop"_s);
  }
  ~Portal() override { QDBusConnection::disconnectFromBus(u"portal"_s); }

  QString introspect(const QString & /*path*/) const override { return {}; }
  bool handleMessage(const QDBusMessage &question, const QDBusConnection & /*bus*/) override {
    const bool isKnown = question.arguments() == QVariantList{u"org.freedesktop.appearance"_s, u"color-scheme"_s};
    const auto inner = QVariant::fromValue(QDBusVariant(scheme));
    return bus.send(isKnown ? question.createReply(QVariant::fromValue(QDBusVariant(inner)))
                            : question.createErrorReply(QDBusError::InvalidArgs, u"unknown"_s));
  }
  void tell(const QString &key, uint value) {
    auto news = QDBusMessage::createSignal(kPath, u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
    news << u"org.freedesktop.appearance"_s << key << QVariant::fromValue(QDBusVariant(value));
    bus.send(news);
  }

private:
  const QString kPath = u"/org/freedesktop/portal/desktop"_s;
  const uint scheme;
  QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"portal"_s);
};

TEST(ColorScheme, isToldAtStartAndWithEachChange) {
  const TestProfile profile;
  const PrivateBus bus;
  const QCoreApplication application(noArguments, nullptr);
  Portal portal(1);
  const platform::ColorScheme scheme;
  QList<bool> told;
  QObject::connect(&scheme, &platform::ColorScheme::told, qApp, [&told](bool isDark) { told << isDark; });
  const auto isTold = [&told](const QList<bool> &expected) { return waitFor([&] { return told == expected; }); };
  ASSERT_TRUE(isTold({true}));
  portal.tell(u"accent-color"_s, 0);
  portal.tell(u"color-scheme"_s, 2);
  EXPECT_TRUE(isTold({true, false}));
  portal.tell(u"color-scheme"_s, 1);
  portal.tell(u"color-scheme"_s, 0);
  EXPECT_TRUE(isTold({true, false, true, false}));
}

TEST(Mailbox, runsJobsInOrderWhileOneShowsADialogAndDropsWhatIsLeft) {
  const QCoreApplication application(noArguments, nullptr);
  std::vector<int> seen;
  {
    platform::Mailbox mailbox;
    QEventLoop dialog;
    std::thread([&] {
      mailbox.post([&] {
        seen.push_back(1);
        mailbox.post([&] { seen.push_back(3); });
        mailbox.post([&] { dialog.quit(); });
        dialog.exec();
        seen.push_back(4);
      });
      mailbox.post([&] { seen.push_back(2); });
    }).join();
    ASSERT_TRUE(waitFor([&] { return seen.size() == 4; }));
    mailbox.post([&] { seen.push_back(5); });
  }
  QCoreApplication::processEvents();
  EXPECT_EQ(seen, (std::vector{1, 2, 3, 4}));
}

} // namespace
