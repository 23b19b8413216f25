#include "ui/KaNotifyIcon.h"

#include "app/KaModelFacade.h"
#include "app/log/ExceptionGuard.h"
#include "platform/UserDefaults.h"
#include "tests/support/FakeBrowser.h"
#include "tests/ui/FakeStatusItem.h"
#include "tests/ui/UiProfile.h"
#include "ui/Texts.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

#include <semaphore>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using testing::HasSubstr;

namespace {

constexpr KaNotifyIconTimes kQuick{.tick = 5ms, .startDelay = 50ms, .finishWait = 10s};

/// Hears of nothing but the download thread's end.
class ThreadEnd final : public KaDownloadDelegate {
public:
  void onChangeStatus(KaModelFacade &, KaAppStatus) override {}
  void onProcessingResult(KaModelFacade &, KaResultCode, bool) override {}
  void onCompleteLinkageSetting() override {}
  void onSetEnableLogginMenu(bool) override {}
  void onFinishDownloadProcess() override { reached.release(); }
  void onChangeLinkage(bool) override {}

  std::binary_semaphore reached{0};
};

/// The controller over the real facade, with a status item that only remembers. The download thread has ended, so that
/// nothing is reported but what the test reports in its place.
class NotifyIcon : public testing::Test {
protected:
  NotifyIcon() {
    installTexts();
    facade.setDlDelegate(&threadEnd);
    facade.endDownloadProcess();
    threadEnd.reached.acquire();
    facade.setDlDelegate(nullptr);
  }
  ~NotifyIcon() override {
    if (!icon) return;
    icon->onFinishDownloadProcess();
    EXPECT_TRUE(icon->appFinalize());
  }

  void start(const KaNotifyIconTimes &times = kQuick) {
    icon = std::make_unique<KaNotifyIcon>(KaModelFacade::sharedInstance(), view, times);
  }
  [[nodiscard]] bool waitForState(const std::function<bool(const StatusItemState &)> &matches) {
    return waitFor([&] { return !view.states.empty() && matches(view.last()); });
  }
  [[nodiscard]] bool waitForFrame(StatusFrame frame) {
    return waitForState([frame](const auto &state) { return state.frame == frame; });
  }
  /// From another thread, as the download thread reports.
  static void elsewhere(const std::function<void()> &report) { std::thread(report).join(); }

  const UiProfile profile;
  FakeBrowser browser{profile};
  FakeStatusItem view;
  ThreadEnd threadEnd;
  KaModelFacade &facade = KaModelFacade::sharedInstance();
  std::unique_ptr<KaNotifyIcon> icon;
};

TEST_F(NotifyIcon, startsUnlinkedAndSaysSo) {
  start();
  ASSERT_TRUE(waitFor([&] { return !view.notifications.empty(); }));
  EXPECT_EQ(view.notifications.front().title, localised("APP_SHORT_NAME"_L1));
  EXPECT_EQ(view.notifications.front().text, localised("MSG_ERR_UNLINK"_L1));
  EXPECT_EQ(view.notifications.front().processingResult, u"10"_s);
  ASSERT_TRUE(waitForFrame(StatusFrame::Unlink));
  EXPECT_EQ(view.last(), (StatusItemState{.frame = StatusFrame::Unlink, .tooltipKey = "TOOL_TIP_STATUS_UNLINK"_L1}));
}

TEST_F(NotifyIcon, startsLinkedWithoutShowingABrokenLinkFirst) {
  ASSERT_TRUE(facade.saveLinkageSetting(u"token"_s));
  start({.tick = 1h});
  ASSERT_TRUE(waitFor([&] { return !view.states.empty(); }));
  EXPECT_EQ(view.states.front(), (StatusItemState{.frame = StatusFrame::Standby,
                                                  .tooltipKey = "TOOL_TIP_STATUS_NORMAL"_L1,
                                                  .isLinked = true,
                                                  .isDownloadEnabled = true}));
}

TEST_F(NotifyIcon, animatesWhileDownloading) {
  start();
  elsewhere([this] { icon->onChangeStatus(facade, KaAppStatus::Downloading); });
  ASSERT_TRUE(waitForFrame(StatusFrame::Receive1));
  view.states.clear();
  ASSERT_TRUE(waitFor([&] { return view.states.size() >= 5; }));
  std::vector<std::optional<StatusFrame>> frames;
  for (std::size_t i = 0; i < 5; ++i)
    frames.push_back(view.states[i].frame);
  EXPECT_THAT(frames, testing::ElementsAre(StatusFrame::Receive2, StatusFrame::Receive3, StatusFrame::Receive4,
                                           StatusFrame::Receive1, StatusFrame::Receive2));
  EXPECT_TRUE(view.last().isLinked);
}

TEST_F(NotifyIcon, anErrorOffersToLinkAgainAndADownloadNoMore) {
  ASSERT_TRUE(facade.saveLinkageSetting(u"token"_s));
  start();
  ASSERT_TRUE(waitForState([](const auto &state) { return state.isDownloadEnabled; }));
  elsewhere([this] { icon->onProcessingResult(facade, KaResultCode::DiskFull, /*userTrigger=*/false); });
  ASSERT_TRUE(waitForFrame(StatusFrame::Error));
  EXPECT_EQ(view.last(), (StatusItemState{.frame = StatusFrame::Error, .tooltipKey = "TOOL_TIP_STATUS_DISK_FULL"_L1}));
}

TEST_F(NotifyIcon, aNewVersionIsToldWithoutTouchingTheIcon) {
  start();
  elsewhere([this] {
    icon->onChangeStatus(facade, KaAppStatus::Normal);
    icon->onProcessingResult(facade, KaResultCode::NewVersionReleased, /*userTrigger=*/false);
  });
  ASSERT_TRUE(waitFor([&] { return view.notifications.size() == 2; }));
  EXPECT_EQ(view.notifications.back().processingResult, u"24"_s);
  EXPECT_TRUE(waitForFrame(StatusFrame::Standby));
}

TEST_F(NotifyIcon, whatTheUserAskedForIsAlertedEvenWithoutAMessage) {
  start();
  elsewhere([this] {
    icon->onProcessingResult(facade, KaResultCode::NothingToDownload, /*userTrigger=*/true);
    icon->onProcessingResult(facade, KaResultCode::NoHttpStatus, /*userTrigger=*/true);
    icon->onProcessingResult(facade, KaResultCode::NoHttpStatus, /*userTrigger=*/false);
  });
  ASSERT_TRUE(waitForFrame(StatusFrame::Standby));
  EXPECT_EQ(view.alerts, (QStringList{localised("MSG_DOWNLOAD_ZERO"_L1), QString()}));
  EXPECT_EQ(view.notifications.size(), 1) << "only the missing link at start";
}

TEST_F(NotifyIcon, theLinkEntryFollowsTheRun) {
  start();
  elsewhere([this] { icon->onSetEnableLogginMenu(false); });
  EXPECT_TRUE(waitForState([](const auto &state) { return !state.isLogginEnabled; }));
  elsewhere([this] { icon->onSetEnableLogginMenu(true); });
  EXPECT_TRUE(waitForState([](const auto &state) { return state.isLogginEnabled; }));
}

TEST_F(NotifyIcon, aCompletedLoginWaitsBeforeItsFirstRun) {
  start();
  QElapsedTimer sinceLogin;
  sinceLogin.start();
  icon->onCompleteLinkageSetting();
  ASSERT_TRUE(waitForFrame(StatusFrame::Standby));
  EXPECT_GE(sinceLogin.elapsed(), kQuick.startDelay.count());
}

TEST_F(NotifyIcon, linkingOpensTheLoginPage) {
  start();
  Q_EMIT view.entryTriggered(StatusEntry::Link);
  EXPECT_THAT(browser.takeUrl().value_or(QString()).toStdString(), HasSubstr("/getLogin?"));
  EXPECT_TRUE(facade.bLoggedIn());
}

TEST_F(NotifyIcon, loggingOutShowsAtOnceAndForgetsTheLink) {
  ASSERT_TRUE(facade.saveLinkageSetting(u"token"_s));
  start();
  ASSERT_TRUE(waitForFrame(StatusFrame::Standby));
  Q_EMIT view.entryTriggered(StatusEntry::Logout);
  EXPECT_EQ(view.last().frame, StatusFrame::Unlink);
  EXPECT_FALSE(view.last().isLinked);
  EXPECT_THAT(browser.takeUrl().value_or(QString()).toStdString(), HasSubstr("/logout?"));
  EXPECT_FALSE(facade.bLoggedIn());
  EXPECT_TRUE(waitForState([](const auto &state) { return !state.isDownloadEnabled; }));
  EXPECT_TRUE(view.notifications.empty());
}

TEST_F(NotifyIcon, launchAtLoginIsSwitchedOnAndOff) {
  start({.tick = 1h});
  for (const bool on : {true, false}) {
    Q_EMIT view.entryTriggered(StatusEntry::LaunchSetting);
    EXPECT_EQ(view.last().isLaunchedAtLogin, on);
    EXPECT_EQ(QFileInfo::exists(profile.autostartEntry()), on);
    EXPECT_EQ(platform::standardUserDefaults().boolValue(u"LaunchAtLogin"_s), on);
  }
}

TEST_F(NotifyIcon, launchAtLoginThatFailsChangesNothingAndTakesTheCheckMarkBack) {
  profile.blockAutostart();
  start({.tick = 1h});
  Q_EMIT view.entryTriggered(StatusEntry::LaunchSetting);
  ASSERT_FALSE(view.states.empty());
  EXPECT_FALSE(view.last().isLaunchedAtLogin);
  EXPECT_FALSE(platform::standardUserDefaults().contains(u"LaunchAtLogin"_s));
}

TEST_F(NotifyIcon, anActionThatFailsIsAlerted) {
  start();
  view.nextFault = [] { throw KaException(u"ShowFault"_s, u"on purpose"_s); };
  icon->menuAction_LaunchSetting();
  ASSERT_TRUE(waitFor([&] { return !view.alerts.isEmpty(); }));
  EXPECT_EQ(view.alerts, QStringList{localised("MSG_ERR_UNEXPECTED"_L1)});
  EXPECT_TRUE(waitForFrame(StatusFrame::Error));
}

struct ClickRow {
  const char *name;
  const char *processingResult;
  const char *opens; ///< part of what is opened; empty: nothing
};

class NotificationClick : public NotifyIcon, public testing::WithParamInterface<ClickRow> {};

TEST_P(NotificationClick, opensWhatBelongsToTheResult) {
  KaDownloadOption option;
  option.parentFolder = profile.path(u"ordinary"_s);
  option.parent10GFolder = profile.path(u"long-term"_s);
  QDir().mkpath(option.parentFolder);
  QDir().mkpath(option.parent10GFolder);
  facade.setDownloadOption(option);
  start();
  const std::string expected = GetParam().opens;
  Q_EMIT view.notificationActivated(QString::fromLatin1(GetParam().processingResult));
  // The browser notes one thing; opening this afterwards shows that there was nothing before.
  if (expected.empty()) Q_EMIT view.notificationActivated(u"2"_s);
  const auto opened = browser.takeUrl().value_or(QString()).toStdString();
  EXPECT_THAT(opened, HasSubstr(expected.empty() ? "long-term" : expected));
  EXPECT_EQ(facade.bLoggedIn(), expected == "/getLogin");
}

INSTANTIATE_TEST_SUITE_P(Results, NotificationClick,
                         testing::Values(ClickRow{"complete", "1", "/ordinary"},
                                         ClickRow{"complete10G", "2", "/long-term"},
                                         ClickRow{"unlinked", "10", "/getLogin"},
                                         ClickRow{"validation", "17", "/getLogin"}, ClickRow{"offline", "9", ""},
                                         ClickRow{"newVersion", "24", ""}, ClickRow{"noNumber", "one", ""}),
                         [](const auto &row) { return row.param.name; });

TEST(NotifyIconEnd, comesWithTheEndOfTheDownloadThread) {
  const UiProfile profile;
  FakeStatusItem view;
  KaNotifyIcon icon(KaModelFacade::sharedInstance(), view, {.finishWait = 1h});
  EXPECT_TRUE(icon.appFinalize());
}

TEST_F(NotifyIcon, aThreadThatEndedBeforeCostsNoWait) {
  start({.finishWait = 1h});
  elsewhere([this] { icon->onFinishDownloadProcess(); });
  EXPECT_TRUE(icon->appFinalize());
}

TEST_F(NotifyIcon, givesUpOnAThreadThatDoesNotEnd) {
  start({.finishWait = 50ms});
  QElapsedTimer sinceQuit;
  sinceQuit.start();
  EXPECT_FALSE(icon->appFinalize());
  EXPECT_GE(sinceQuit.elapsed(), 50);
  icon.reset();
}

} // namespace
