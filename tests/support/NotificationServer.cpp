#include "tests/support/NotificationServer.h"

#include "tests/support/TestProfile.h"

#include <gtest/gtest.h>

#include <utility>

using namespace Qt::StringLiterals;

static const QString kName = u"org.freedesktop.Notifications"_s;
static const QString kConnection = u"notifications"_s;

NotificationServer::NotificationServer()
    : bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, kConnection)) {
  bus.registerObject(u"/org/freedesktop/Notifications"_s, this, QDBusConnection::ExportAllContents);
  EXPECT_TRUE(bus.registerService(kName));
}

NotificationServer::~NotificationServer() {
  QDBusConnection::disconnectFromBus(kConnection);
}

void NotificationServer::restart() {
  bus.unregisterService(kName);
  standing.clear();
  past.clear();
  lastId = 0;
  bus.registerService(kName);
}

void NotificationServer::close(uint id, uint reason) {
  EXPECT_TRUE(standing.remove(id) || past.remove(id)) << id << " does not stand";
  if (reason == 1) past << id;
  Q_EMIT NotificationClosed(id, reason);
}

bool NotificationServer::waitForStanding(const QStringList &texts) const {
  return waitFor([&] {
    QStringList now = standing.values();
    now.sort();
    return now == texts;
  });
}

uint NotificationServer::Notify(const QString &program, uint replaced, const QString &icon, const QString &title,
                                const QString &body, const QStringList &actions, const QVariantMap &hints,
                                int milliseconds) {
  EXPECT_TRUE(replaced == 0 || standing.contains(replaced) || past.remove(replaced)) << replaced << " does not stand";
  EXPECT_EQ(milliseconds, -1) << "for as long as the desktop thinks right";
  if (const auto job = std::exchange(beforeAnswer, {})) job();
  last = {program, icon, title, actions.value(0), actions.value(1)};
  lastHints = hints;
  const uint id = replaced == 0 ? ++lastId : replaced;
  standing.insert(id, body);
  return id;
}
