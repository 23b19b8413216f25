#include "platform/NotificationCenter.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TestProfile.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QElapsedTimer>
#include <QMap>
#include <QVariantMap>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

int noArguments = 0;

struct Bubble {
  QString title;
  QString body;
  QStringList actions;
  QVariantMap hints;
};

/// A notification service that shows nothing and remembers everything.
class Server : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
  explicit Server(const QStringList &what) : capabilities(what), bus(connect()) {
    bus.registerObject(u"/org/freedesktop/Notifications"_s, this,
                       QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
    EXPECT_TRUE(bus.registerService(u"org.freedesktop.Notifications"_s));
  }
  ~Server() override {
    bus.unregisterService(u"org.freedesktop.Notifications"_s);
    QDBusConnection::disconnectFromBus(u"server"_s);
  }

  QMap<uint, Bubble> bubbles;
  QList<uint> closed;

public Q_SLOTS:
  QStringList GetCapabilities() { return capabilities; }
  uint Notify(const QString &, uint, const QString &, const QString &summary, const QString &body,
              const QStringList &actions, const QVariantMap &hints, int) {
    bubbles.insert(++lastId, {summary, body, actions, hints});
    return lastId;
  }
  void CloseNotification(uint id) { closed << id; }

Q_SIGNALS:
  void ActionInvoked(uint id, const QString &action);
  void NotificationClosed(uint id, uint reason);

private:
  static QDBusConnection connect() { return QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"server"_s); }

  QStringList capabilities;
  QDBusConnection bus;
  uint lastId = 0;
};

class Notifications : public testing::Test {
protected:
  Notifications() {
    QObject::connect(&center, &platform::NotificationCenter::activated,
                     [this](const QString &result) { clicked << result; });
  }

  TestProfile profile;
  PrivateBus bus;
  QCoreApplication application{noArguments, nullptr};
  platform::NotificationCenter center;
  QStringList clicked;
};

TEST_F(Notifications, carryTheResultAndHandItBackWithAClick) {
  Server server({u"body-markup"_s});
  center.post(u"Title"_s, u"a < b & c"_s, u"17"_s);
  ASSERT_TRUE(waitFor([&] { return server.bubbles.size() == 1; }));
  const Bubble &bubble = server.bubbles[1];
  EXPECT_EQ(bubble.body, u"a &lt; b &amp; c"_s);
  EXPECT_EQ(bubble.hints.value(u"x-ProcessingResult"_s).toString(), u"17"_s);
  EXPECT_EQ(bubble.actions.value(0), u"default"_s);
  // The id must have arrived before a click on it can mean anything.
  ASSERT_TRUE(waitFor([&] {
    Q_EMIT server.ActionInvoked(99, u"default"_s); // somebody else's
    Q_EMIT server.ActionInvoked(1, u"default"_s);
    QCoreApplication::processEvents();
    return !clicked.isEmpty();
  }));
  EXPECT_EQ(clicked, QStringList{u"17"_s});
  EXPECT_TRUE(waitFor([&] { return server.closed == QList<uint>{1}; }));
}

TEST_F(Notifications, showPlainTextWhereTheServerKnowsNoMarkup) {
  Server server({u"body"_s});
  center.post(u"Title"_s, u"a < b"_s, u"1"_s);
  ASSERT_TRUE(waitFor([&] { return server.bubbles.size() == 1; }));
  EXPECT_EQ(server.bubbles[1].body, u"a < b"_s);
}

TEST_F(Notifications, forgetTheirIdsWhenTheServerIsReplaced) {
  auto server = std::make_unique<Server>(QStringList{u"body"_s});
  center.post(u"Title"_s, u"old"_s, u"1"_s);
  ASSERT_TRUE(waitFor([&] { return server->bubbles.size() == 1; }));
  server.reset();
  server = std::make_unique<Server>(QStringList{u"body"_s});
  center.post(u"Title"_s, u"new"_s, u"2"_s);
  ASSERT_TRUE(waitFor([&] { return server->bubbles.size() == 1; }));
  ASSERT_TRUE(waitFor([&] {
    Q_EMIT server->ActionInvoked(1, u"default"_s);
    QCoreApplication::processEvents();
    return !clicked.isEmpty();
  }));
  EXPECT_EQ(clicked, QStringList{u"2"_s});
}

TEST_F(Notifications, neverBlockOnAServerThatIsAbsentOrFrozen) {
  QElapsedTimer timer;
  timer.start();
  center.post(u"Title"_s, u"nobody listens"_s, u"1"_s);
  ASSERT_EQ(::kill(static_cast<pid_t>(bus.processId()), SIGSTOP), 0);
  center.post(u"Title"_s, u"the whole bus hangs"_s, u"1"_s);
  EXPECT_LT(timer.elapsed(), 1000);
  ASSERT_EQ(::kill(static_cast<pid_t>(bus.processId()), SIGCONT), 0);
}

} // namespace

#include "NotificationTest.moc"
