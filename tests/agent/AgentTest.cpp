#include "sandbox/SampleLibrary.h"
#include "sandbox/Service.h"
#include "tests/support/AgentProcess.h"
#include "tests/support/FakeBrowser.h"
#include "tests/support/Image.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TestProfile.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDateTime>
#include <QElapsedTimer>
#include <QFileInfo>

#include <csignal>
#include <list>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using sandbox::Endpoint;
using sandbox::Fault;

namespace {

int noArguments = 0;
const QByteArray kBody(300'000, 'p');

/// The whole program against the whole service, on a home and a session bus of its own.
class Agent : public testing::Test {
protected:
  Agent() {
    auto defaults = service.userDefaults();
    defaults.insert(u"firstLaunch"_s, u"false"_s);
    defaults.insert(u"ImageRetryWaitTime"_s, u"1"_s);
    defaults.insert(u"ExifRetryWaitTime"_s, u"1"_s);
    profile.writeUserDefaults(defaults);
    service.library().setSettingsObject("{\"applicationAliasIds\":[],\"isEnableDownload10GStorage\":true}");
  }

  /// Links @p agent as a person would: menu entry, browser, callback through a second start of the program.
  void link(AgentProcess &agent) {
    ASSERT_TRUE(agent.waitUntilServing());
    ASSERT_TRUE(AgentProcess::requestAction(u"link"_s));
    const auto loginUrl = browser.takeUrl();
    ASSERT_TRUE(loginUrl);
    const QString callback = service.signIn(*loginUrl);
    ASSERT_THAT(callback.toStdString(), testing::StartsWith("downloaderpictora://authenticate?"));
    AgentProcess messenger({callback});
    ASSERT_EQ(messenger.waitForEnd(10s), 0);
    // The folders of the new link are asked for, and nothing runs before.
    ASSERT_TRUE(waitFor(
        [&] { return AgentProcess::requestAction(u"confirm"_s) && service.requestCount(Endpoint::RefreshToken) > 0; }));
  }

  void quitWithinASecond(AgentProcess &agent) {
    QElapsedTimer sinceQuit;
    sinceQuit.start();
    ASSERT_TRUE(AgentProcess::requestAction(u"quit"_s));
    EXPECT_EQ(agent.waitForEnd(10s), 0);
    EXPECT_LT(sinceQuit.elapsed(), 1000 * kSlowness);
  }

  [[nodiscard]] QString downloads() const { return profile.picturesFolder() + u"/Transferred"_s; }
  [[nodiscard]] bool waitForFiles(qsizetype count) const {
    return waitFor([&] { return filesBelow(downloads()).size() >= count; });
  }

  TestProfile profile;
  PrivateBus bus;
  QCoreApplication application{noArguments, nullptr};
  sandbox::Service service;
  FakeBrowser browser{profile};
};

TEST_F(Agent, linksAndFillsTheFolderFetchesNothingTwiceAndLogsOut) {
  sandbox::fillSampleLibrary(service.library());
  const auto expected = sandbox::expectedSampleFiles();
  {
    AgentProcess agent;
    link(agent);
    ASSERT_TRUE(waitForFiles(expected.size()));
    quitWithinASecond(agent);
  }
  EXPECT_EQ(filesBelow(downloads()).size(), expected.size());
  for (const auto &file : expected) {
    const QFileInfo info(downloads() + u'/' + file.relativePath);
    EXPECT_EQ(QCryptographicHash::hash(contentOf(info.filePath()), QCryptographicHash::Sha256).toHex(), file.sha256)
        << file.relativePath.toStdString();
    EXPECT_EQ(info.lastModified().toSecsSinceEpoch(), file.modificationTime) << file.relativePath.toStdString();
  }

  // Without the 10G storage, of which the first run has taken a part.
  service.library().setSettingsObject("{\"applicationAliasIds\":[\"" + sandbox::sampleAliasDevice().toUtf8() + "\"]}");
  service.resetRequestCounts();
  AgentProcess again;
  ASSERT_TRUE(again.waitUntilServing());
  // Another run begins when the first one is through.
  ASSERT_TRUE(waitFor(
      [&] { return AgentProcess::requestAction(u"download"_s) && service.requestCount(Endpoint::RefreshToken) >= 2; }));
  // It is greyed during a run.
  ASSERT_TRUE(waitFor([&] { return AgentProcess::requestAction(u"logout"_s) && browser.hasUrl(); }));
  EXPECT_THAT(browser.takeUrl().value_or(QString()).toStdString(), testing::HasSubstr("/logout"));
  quitWithinASecond(again);
  EXPECT_EQ(service.requestCount(Endpoint::ObjectGet), 0);
}

TEST_F(Agent, heedsTheUrlItIsStartedWithKeepsItOffItsCommandLineAndEndsInOrderBySignals) {
  const QString token = service.issueLinkedToken().idToken;
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    service.resetRequestCounts();
    AgentProcess agent({u"downloaderpictora://authenticate?idToken="_s + token});
    ASSERT_TRUE(agent.waitUntilServing());
    EXPECT_TRUE(service.waitForRequests(Endpoint::Configuration, 1, 20s)) << "for its verification";
    EXPECT_TRUE(agent.commandLine().contains("downloaderpictora") && !agent.commandLine().contains("idToken"));
    agent.signal(signal);
    EXPECT_EQ(agent.waitForEnd(10s), 0) << signal;
  }
  AgentProcess lasting({}, u"offscreen"_s, [] { std::signal(SIGHUP, SIG_IGN); });
  ASSERT_TRUE(lasting.waitUntilServing());
  lasting.signal(SIGHUP);
  AgentProcess second;
  EXPECT_EQ(second.waitForEnd(10s), 0) << "the first was started so that it outlives its terminal";
}

TEST_F(Agent, killedInMidDownloadLeavesNothingBrokenAndTheNextRunCompletes) {
  service.library().add(image(u"10"_s, u"A.JPG"_s, kBody));
  service.library().add(image(u"11"_s, u"B.JPG"_s, kBody));
  service.order(Endpoint::ObjectGet, {.kind = Fault::Kind::SlowBody, .times = -1, .pathContains = u"B.JPG"_s});
  {
    AgentProcess agent;
    link(agent);
    ASSERT_TRUE(waitForFiles(1) && service.waitForRequests(Endpoint::ObjectGet, 2, 20s));
    agent.kill9();
  }
  EXPECT_EQ(filesBelow(downloads()), QStringList{u"2024_04_30/A.JPG"_s});
  service.clearFaults();

  AgentProcess agent;
  ASSERT_TRUE(waitForFiles(2));
  quitWithinASecond(agent);
  EXPECT_EQ(filesBelow(downloads()), (QStringList{u"2024_04_30/A.JPG"_s, u"2024_04_30/B.JPG"_s}));
  for (const QString &file : filesBelow(downloads()))
    EXPECT_EQ(contentOf(downloads() + u'/' + file), kBody);
}

TEST_F(Agent, runsOnceAndTakesNothingButAUrl) {
  // At the same time: all of them find the name free at first, and it is taken between two questions of some.
  std::list<AgentProcess> starts(6);
  ASSERT_TRUE(waitFor([&] {
    starts.remove_if([](AgentProcess &start) { return start.waitForEnd(0ms) == 0; });
    return starts.size() == 1;
  }));
  AgentProcess &agent = starts.front();
  ASSERT_TRUE(agent.waitUntilServing());
  for (const auto &arguments : {QStringList{u"--help"_s}, QStringList{u"https://example.test/"_s},
                                QStringList{u"downloaderpictora://a"_s, u"downloaderpictora://b"_s}}) {
    AgentProcess refused(arguments);
    EXPECT_EQ(refused.waitForEnd(10s), 2);
    EXPECT_EQ(refused.errorOutput().count(u'\n'), 1);
  }
  quitWithinASecond(agent);
}

} // namespace
