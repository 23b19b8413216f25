#include "identity/KaLinkageUtility.h"
#include "sandbox/Library.h"
#include "sandbox/Service.h"
#include "tests/desktop/SessionManager.h"
#include "tests/support/AgentProcess.h"
#include "tests/support/Image.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/Program.h"
#include "tests/support/TestProfile.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using sandbox::Endpoint;
using sandbox::Fault;

namespace {

int noArguments = 0;
constexpr int kRounds = 20 / kSlowness;

/// A window that stands on the screen.
QString visibleWindow() {
  QProcess tool;
  tool.start(u"xdotool"_s, {u"search"_s, u"--onlyvisible"_s, u"--class"_s, u"downloaderpictora"_s});
  tool.waitForFinished();
  return QString::fromUtf8(tool.readAllStandardOutput()).trimmed();
}

/// A linked home whose agent loses its display, again and again; at last it must be as if nothing had happened.
class End : public testing::Test {
protected:
  explicit End() {
    auto defaults = service.userDefaults();
    defaults.insert(u"firstLaunch"_s, u"false"_s);
    defaults.insert(u"ImageRetryWaitTime"_s, u"1"_s);
    profile.writeUserDefaults(defaults);
    service.library().setSettingsObject(R"({"applicationAliasIds":[]})"); // no 10G storage
    const sandbox::LinkedToken link = service.issueLinkedToken();
    if (!KaLinkageUtility::saveLinkageSetting(link.idToken) || !KaLinkageUtility::saveTokenCode(link.tokenCode))
      throw std::runtime_error("cannot link");
  }

  void add(const QString &name) {
    service.library().add(image(u"10"_s, name));
    all << u"2024_04_30/"_s + name;
    all.sort();
  }
  /// One more picture, whose second half does not come before the agent is gone.
  void holdUpAPicture(int number) {
    const QString name = u"P%1.JPG"_s.arg(number, 2, 10, QChar(u'0'));
    add(name);
    service.clearFaults();
    service.order(Endpoint::ObjectGet, {.kind = Fault::Kind::SlowBody, .times = -1, .pathContains = name});
    isUnderWay = [this, name] {
      const auto requests = service.requests();
      return std::any_of(requests.begin(), requests.end(), [&](const auto &request) {
        return request.endpoint == Endpoint::ObjectGet && request.target.contains(name.toUtf8());
      });
    };
  }
  /// From now on a run is over, and its record saved, when this holds.
  void awaitRecord() {
    QFileInfo record(profile.appFolder() + u"/RecentDownloadData"_s);
    isUnderWay = [record, before = record.lastModified()]() mutable {
      record.refresh();
      return record.exists() && record.lastModified() != before;
    };
  }
  /// The agent of now on is linked as before, knows what it has and takes the rest.
  void expectNothingLost() {
    service.clearFaults();
    service.resetRequestCounts();
    const int before = static_cast<int>(files().size());
    AgentProcess agent;
    awaitRecord();
    EXPECT_TRUE(waitFor([this] { return isUnderWay() && files().size() >= all.size(); }));
    EXPECT_EQ(files(), all);
    EXPECT_EQ(service.requestCount(Endpoint::ObjectGet), all.size() - before);
  }
  [[nodiscard]] QStringList files() const { return filesBelow(profile.picturesFolder() + u"/Transferred"_s); }
  static std::optional<int> endOf(AgentProcess &agent) { return agent.waitForEnd(1s * kSlowness); }

  TestProfile profile;
  PrivateBus bus;
  QCoreApplication application{noArguments, nullptr};
  sandbox::Service service;
  QStringList all;
  std::function<bool()> isUnderWay;
};

enum class Moment { Idle, InMidRun, WithSigterm };

class DisplayEnd : public End, public testing::WithParamInterface<Moment> {};

TEST_P(DisplayEnd, isAnOrderlyOne) {
  if (GetParam() == Moment::Idle) add(u"A.JPG"_s);
  for (int round = 0; round < kRounds; ++round) {
    if (GetParam() == Moment::Idle)
      awaitRecord();
    else
      holdUpAPicture(round);
    Screen screen;
    AgentProcess agent({}, u"xcb"_s);
    ASSERT_TRUE(waitFor(isUnderWay));
    if (GetParam() == Moment::WithSigterm) agent.terminate();
    screen.kill9();
    const auto status = endOf(agent);
    ASSERT_TRUE(status) << "not within a second, or by a signal";
    EXPECT_EQ(*status, GetParam() == Moment::WithSigterm && *status == 0 ? 0 : 1);
  }
  expectNothingLost();
}

INSTANTIATE_TEST_SUITE_P(Moments, DisplayEnd, testing::Values(Moment::Idle, Moment::InMidRun, Moment::WithSigterm));

TEST_F(End, ofTheSessionIsAnOrderlyOne) {
  SessionManager manager;
  const Screen screen;
  add(u"A.JPG"_s);
  holdUpAPicture(1);
  AgentProcess agent({}, u"xcb"_s);
  ASSERT_TRUE(manager.waitForClient() && waitFor(isUnderWay));
  EXPECT_TRUE(manager.leavesClientAlone());
  manager.endSession();
  ASSERT_TRUE(waitFor([&] { return !agent.isRunning(); }, 1s * kSlowness));
  EXPECT_EQ(endOf(agent), 0);
  expectNothingLost();
}

TEST_F(End, ofTheSessionAnswersNoQuestion) {
  profile.writeUserDefaults(service.userDefaults()); // the very first launch
  SessionManager manager;
  const Screen screen;
  AgentProcess agent({}, u"xcb"_s);
  ASSERT_TRUE(manager.waitForClient() && waitFor([] { return !visibleWindow().isEmpty(); }));
  manager.endSession();
  ASSERT_TRUE(waitFor([&] { return !agent.isRunning(); }, 1s * kSlowness));
  EXPECT_EQ(endOf(agent), 0);
  const QByteArray stored = contentOf(profile.configFolder() + u"/NORVALE INC/Downloaderpictora.conf"_s);
  EXPECT_FALSE(stored.contains("firstLaunch") || stored.contains("LaunchAtLogin")) << stored.toStdString();
}

/// The library leaves at once, and no code of ours runs any more: as if it was killed.
TEST_F(End, ofACompositorLosesNoLinkAndNoRecord) {
  add(u"A.JPG"_s);
  awaitRecord();
  Compositor compositor(profile);
  AgentProcess agent({}, u"wayland"_s);
  ASSERT_TRUE(waitFor(isUnderWay)) << agent.errorOutput().toStdString();
  compositor.kill9();
  EXPECT_EQ(endOf(agent), 1);
  expectNothingLost();
}

} // namespace
