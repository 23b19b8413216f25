#include "platform/Mailbox.h"
#include "platform/NotificationCenter.h"
#include "platform/SingleInstance.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TestProfile.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QEventLoop>

#include <array>
#include <future>
#include <thread>

using namespace Qt::StringLiterals;
using platform::SingleInstance;
using enum SingleInstance::HandOver;

namespace {

int noArguments = 0;

class Bus : public testing::Test {
protected:
  const TestProfile profile;
  const PrivateBus bus;
  const QCoreApplication application{noArguments, nullptr};
};

/// A notification service that shows nothing and remembers everything.
class Server : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
  explicit Server(const QString &what) : capability(what) {
    bus.registerObject(u"/org/freedesktop/Notifications"_s, this, QDBusConnection::ExportAllContents);
    EXPECT_TRUE(bus.registerService(u"org.freedesktop.Notifications"_s));
  }
  ~Server() override {
    bus.unregisterService(u"org.freedesktop.Notifications"_s);
    QDBusConnection::disconnectFromBus(u"server"_s);
  }

  QStringList bodies;
  QString action;
  QVariant result;
  QList<uint> closed;

public Q_SLOTS:
  QStringList GetCapabilities() { return {capability}; }
  uint Notify(const QString &, uint, const QString &, const QString &, const QString &body, const QStringList &actions,
              const QVariantMap &hints, int) {
    action = actions.value(0);
    result = hints.value(u"x-ProcessingResult"_s);
    bodies << body;
    return static_cast<uint>(bodies.size());
  }
  void CloseNotification(uint id) { closed << id; }

Q_SIGNALS:
  void ActionInvoked(uint id, const QString &action);
  void NotificationClosed(uint id, uint reason);

private:
  const QString capability;
  QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"server"_s);
};

TEST_F(Bus, carriesNotificationsAndHandsTheirResultBackWithAClick) {
  platform::NotificationCenter center;
  QStringList clicked;
  QObject::connect(&center, &platform::NotificationCenter::activated,
                   [&](const QString &result) { clicked << result; });
  auto server = std::make_unique<Server>(u"body-markup"_s);
  center.post(u"Title"_s, u"a < b & c"_s, u"17"_s);
  ASSERT_TRUE(waitFor([&] { return server->bodies == QStringList{u"a &lt; b &amp; c"_s}; }));
  EXPECT_EQ(server->action, u"default"_s);
  EXPECT_EQ(server->result, u"17"_s);

  // Another server counts from the start again and knows no markup.
  server.reset();
  server = std::make_unique<Server>(u"body"_s);
  // The centre goes by the first one's ways until it has heard of the second.
  ASSERT_TRUE(waitFor([&] {
    center.post(u"Title"_s, u"a < b"_s, u"2"_s);
    QCoreApplication::processEvents();
    return server->bodies.contains(u"a < b"_s);
  }));
  // The id must have arrived before a click on it can mean anything.
  ASSERT_TRUE(waitFor([&] {
    Q_EMIT server->ActionInvoked(99, u"default"_s); // somebody else's
    Q_EMIT server->ActionInvoked(1, u"default"_s);
    QCoreApplication::processEvents();
    return !clicked.isEmpty();
  }));
  EXPECT_EQ(clicked, QStringList{u"2"_s});
  EXPECT_TRUE(waitFor([&] { return server->closed == QList<uint>{1}; }));
}

TEST_F(Bus, answersAHandOverBeforeTheDialogThatItOpensIsClosed) {
  EXPECT_EQ(SingleInstance::handOver(std::nullopt), NoAgent);
  SingleInstance instance;
  QEventLoop dialog;
  QString seen;
  QObject::connect(&instance, &SingleInstance::activated, &dialog, [&] {
    // As a dialog's painting does: in a nested loop Qt's GLib dispatcher leaves older events until one more is posted.
    QMetaObject::invokeMethod(
        &dialog, [] {}, Qt::QueuedConnection);
    dialog.exec();
  });
  QObject::connect(&instance, &SingleInstance::urlReceived, [&](const QString &url) {
    seen = url;
    dialog.quit();
  });
  ASSERT_TRUE(instance.becomePrimary());
  const QString url = u"downloaderpictora://authenticate?idToken="_s + QString(20'000, u'x') + u"&b=%20c#d"_s;
  // From another thread, as another process would, while this one serves.
  auto outcomes = std::async(std::launch::async, [url] {
    return std::array{SingleInstance::handOver(std::nullopt), SingleInstance::handOver(url)};
  });
  ASSERT_TRUE(waitFor([&] { return outcomes.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
  EXPECT_EQ(outcomes.get(), (std::array{Delivered, Delivered}));
  EXPECT_EQ(seen, url);
}

TEST(WithoutABus, aLockDecidesWhoIsTheOneAgent) {
  const TestProfile profile;
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  const QCoreApplication application(noArguments, nullptr);
  EXPECT_EQ(SingleInstance::handOver(std::nullopt), NoBus);
  SingleInstance first, second;
  EXPECT_TRUE(first.becomePrimary());
  EXPECT_FALSE(second.becomePrimary());
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
