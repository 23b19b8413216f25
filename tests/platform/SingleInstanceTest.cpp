#include "platform/SingleInstance.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TestProfile.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QEventLoop>
#include <QThread>

#include <future>
#include <utility>

using namespace Qt::StringLiterals;
using platform::SingleInstance;

namespace {

int noArguments = 0;

/// Hands over from another thread, as another process would, while this one serves.
SingleInstance::HandOver handOverFromElsewhere(const std::optional<QString> &url) {
  auto outcome = std::async(std::launch::async, [url] { return SingleInstance::handOver(url); });
  EXPECT_TRUE(waitFor([&] { return outcome.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
  return outcome.get();
}

class SingleInstanceTest : public testing::Test {
protected:
  TestProfile profile;
  PrivateBus bus;
  QCoreApplication application{noArguments, nullptr};
};

TEST_F(SingleInstanceTest, findsNobodyOnAnEmptyBus) {
  EXPECT_EQ(SingleInstance::handOver(u"downloaderpictora://a"_s), SingleInstance::HandOver::NoAgent);
}

TEST_F(SingleInstanceTest, deliversUrlsActivationsAndActions) {
  SingleInstance instance;
  QStringList seen;
  QObject::connect(&instance, &SingleInstance::urlReceived, [&](const QString &url) { seen << url; });
  QObject::connect(&instance, &SingleInstance::activated, [&] { seen << u"activated"_s; });
  QObject::connect(&instance, &SingleInstance::actionRequested, [&](const QString &action) { seen << action; });
  ASSERT_TRUE(instance.becomePrimary());

  const QString url = u"downloaderpictora://authenticate?idToken="_s + QString(20'000, u'x') + u"&b=%20c#d"_s;
  EXPECT_EQ(handOverFromElsewhere(url), SingleInstance::HandOver::Delivered);
  EXPECT_EQ(handOverFromElsewhere(std::nullopt), SingleInstance::HandOver::Delivered);
  auto call = QDBusMessage::createMethodCall(u"com.norvale.Downloaderpictora"_s, u"/com/norvale/Downloaderpictora"_s,
                                             u"org.freedesktop.Application"_s, u"ActivateAction"_s);
  call << u"quit"_s << QVariantList() << QVariantMap();
  QDBusConnection::sessionBus().send(call);
  ASSERT_TRUE(waitFor([&] { return seen.size() == 3; }));
  EXPECT_EQ(seen, (QStringList{url, u"activated"_s, u"quit"_s}));
}

TEST_F(SingleInstanceTest, answersBeforeTheDialogThatACallOpensIsClosed) {
  SingleInstance instance;
  QEventLoop dialog;
  QObject::connect(&instance, &SingleInstance::activated, &dialog, [&] {
    // As a dialog's painting does: in a nested loop Qt's GLib dispatcher leaves older events until one more is posted.
    QMetaObject::invokeMethod(
        &dialog, [] {}, Qt::QueuedConnection);
    dialog.exec();
  });
  QObject::connect(&instance, &SingleInstance::urlReceived, &dialog, &QEventLoop::quit);
  ASSERT_TRUE(instance.becomePrimary());
  // The URL closes the dialog, which is open when it comes.
  auto outcomes = std::async(std::launch::async, [] {
    const auto ofActivation = SingleInstance::handOver(std::nullopt);
    return std::pair(ofActivation, SingleInstance::handOver(u"downloaderpictora://a"_s));
  });
  ASSERT_TRUE(waitFor([&] { return outcomes.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
  EXPECT_EQ(outcomes.get(), std::pair(SingleInstance::HandOver::Delivered, SingleInstance::HandOver::Delivered));
}

TEST_F(SingleInstanceTest, givesUpOnAnAgentThatIsFrozen) {
  QThread neverStarted;
  QObject frozen;
  auto elsewhere = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"other"_s);
  elsewhere.registerObject(u"/com/norvale/Downloaderpictora"_s, &frozen, QDBusConnection::ExportAllContents);
  frozen.moveToThread(&neverStarted);
  ASSERT_TRUE(elsewhere.registerService(u"com.norvale.Downloaderpictora"_s));
  EXPECT_EQ(SingleInstance::handOver(u"downloaderpictora://a"_s), SingleInstance::HandOver::Failed);
  QDBusConnection::disconnectFromBus(u"other"_s);
}

TEST_F(SingleInstanceTest, letsOnlyOneBePrimary) {
  SingleInstance first;
  ASSERT_TRUE(first.becomePrimary());
  auto elsewhere = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"other"_s);
  EXPECT_FALSE(elsewhere.registerService(u"com.norvale.Downloaderpictora"_s));
  QDBusConnection::disconnectFromBus(u"other"_s);
}

TEST(SingleInstanceWithoutABus, isDecidedByALock) {
  const TestProfile profile;
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  const QCoreApplication application(noArguments, nullptr);
  EXPECT_EQ(SingleInstance::handOver(std::nullopt), SingleInstance::HandOver::NoBus);
  SingleInstance first;
  SingleInstance second;
  EXPECT_TRUE(first.becomePrimary());
  EXPECT_FALSE(second.becomePrimary());
}

} // namespace
