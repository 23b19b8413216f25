#include "platform/Mailbox.h"
#include "platform/NotificationCenter.h"
#include "platform/SingleInstance.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/RefusedCalls.h"
#include "tests/support/TestProfile.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QEventLoop>

#include <sys/syscall.h>

#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using platform::SingleInstance;

namespace {

int noArguments = 0;

/// A notification service that shows nothing and remembers everything.
class Server : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
  Server() {
    auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"server"_s);
    bus.registerObject(u"/org/freedesktop/Notifications"_s, this, QDBusConnection::ExportAllContents);
    EXPECT_TRUE(bus.registerService(u"org.freedesktop.Notifications"_s));
  }
  ~Server() override { QDBusConnection::disconnectFromBus(u"server"_s); }

  void restart() {
    auto bus = QDBusConnection(u"server"_s);
    bus.unregisterService(u"org.freedesktop.Notifications"_s);
    bus.registerService(u"org.freedesktop.Notifications"_s);
    lastId = 0;
  }

  QStringList capabilities{u"body-markup"_s};
  uint lastId = 0;
  QVariantList shown;
  QList<uint> closed;

public Q_SLOTS:
  QStringList GetCapabilities() { return capabilities; }
  uint Notify(const QString &, uint replaced, const QString &, const QString &title, const QString &body,
              const QStringList &actions, const QVariantMap &hints, int milliseconds) {
    EXPECT_TRUE(replaced == 0 && milliseconds == -1) << "a new one, for as long as the desktop thinks right";
    shown = {title, body, actions.value(0), hints.value(u"x-ProcessingResult"_s)};
    return ++lastId;
  }
  void CloseNotification(uint id) { closed << id; }

Q_SIGNALS:
  void ActionInvoked(uint id, const QString &action);
  void NotificationClosed(uint id, uint reason);
};

TEST(Notifications, areCarriedAndHandTheirResultBackWithAClick) {
  const TestProfile profile;
  const PrivateBus bus;
  const QCoreApplication application(noArguments, nullptr);
  platform::NotificationCenter center;
  QStringList clicked;
  QObject::connect(&center, &platform::NotificationCenter::activated,
                   [&](const QString &result) { clicked << result; });
  Server server;
  center.post(u"Title"_s, u"a < b & c"_s, u"17"_s);
  ASSERT_TRUE(waitFor([&] {
    return server.shown == QVariantList{u"Title"_s, u"a &lt; b &amp; c"_s, u"default"_s, u"17"_s};
  }));
  // The id must have arrived before a click on it can mean anything.
  const auto clickUntilHeard = [&](uint id, qsizetype count) {
    return waitFor([&] {
      Q_EMIT server.NotificationClosed(id, 1);       // by itself: it can still be clicked in the list of past ones
      Q_EMIT server.ActionInvoked(99, u"default"_s); // somebody else's
      Q_EMIT server.ActionInvoked(id, u"snooze"_s);
      Q_EMIT server.ActionInvoked(id, u"default"_s);
      QCoreApplication::processEvents();
      return clicked.size() >= count;
    });
  };
  ASSERT_TRUE(clickUntilHeard(1, 1));
  EXPECT_EQ(clicked, QStringList{u"17"_s});
  EXPECT_TRUE(waitFor([&] { return server.closed == QList<uint>{1}; }));

  server.capabilities.clear();
  const auto post = [&](const QString &text) {
    center.post(u"T"_s, text, text);
    return waitFor([&] { return server.shown.value(1) == text; });
  };
  EXPECT_TRUE(post(u"2"_s));
  EXPECT_TRUE(clickUntilHeard(2, 2));
  EXPECT_TRUE(post(u"3"_s));
  Q_EMIT server.NotificationClosed(3, 2); // by the user
  EXPECT_TRUE(post(u"4"_s));
  Q_EMIT server.ActionInvoked(3, u"default"_s);
  EXPECT_TRUE(clickUntilHeard(4, 3));
  EXPECT_EQ(clicked, (QStringList{u"17"_s, u"2"_s, u"4"_s}));
  // A server that starts anew counts anew, and may know less.
  EXPECT_TRUE(post(u"5"_s));
  server.restart();
  EXPECT_TRUE(waitFor([&] {
    center.post(u"T"_s, u"<6>"_s, u"6"_s);
    return waitFor([&] { return server.shown.value(1) == u"<6>"_s; }, 200ms);
  })) << "told plainly to who reads no markup";
  Q_EMIT server.ActionInvoked(5, u"default"_s);
  EXPECT_TRUE(clickUntilHeard(server.lastId, 4));
  EXPECT_EQ(clicked.back(), u"6"_s);
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
    QObject::connect(&first, &SingleInstance::urlReceived, [&](const QString &url) { received = url; });
    EXPECT_TRUE(first.serve());
    const QString url = u"downloaderpictora:"_s + QString(30'000, u'x');
    std::thread later([&] { EXPECT_EQ(SingleInstance::handOver(url), SingleInstance::HandOver::Delivered); });
    EXPECT_TRUE(waitFor([&] { return received == url; }));
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

#include "EventsTest.moc"
