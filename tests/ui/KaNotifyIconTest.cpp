#include "ui/KaNotifyIcon.h"

#include "app/KaModelFacade.h"
#include "log/ExceptionGuard.h"
#include "platform/UserDefaults.h"
#include "tests/support/FakeBrowser.h"
#include "tests/ui/UiProfile.h"
#include "ui/KaDownloadFolderSettingView.h"
#include "ui/KaVersionInformationView.h"
#include "ui/Texts.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>

#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using testing::HasSubstr;

namespace {

using enum StatusFrame;
constexpr auto kNormal = "TOOL_TIP_STATUS_NORMAL"_L1;
constexpr auto kUnlinked = "TOOL_TIP_STATUS_UNLINK"_L1;
constexpr auto kMaintenance = "TOOL_TIP_STATUS_MAINTENANCE"_L1;

/// Remembers what it was told to show.
class FakeStatusItem final : public StatusItemView {
public:
  void show(const StatusItemState &state) override {
    states.push_back(state);
    if (const auto fault = std::exchange(nextFault, {})) fault();
  }
  void alert(const QString &text) override { alerts << text; }
  void notify(const QString &title, const QString &text, const QString &processingResult) override {
    notifications << title + text + processingResult;
  }

  std::vector<StatusItemState> states;
  QStringList alerts;
  QStringList notifications;
  std::function<void()> nextFault; ///< happens once, at the next show
};

/// The controller over the real facade, with a status item that only remembers. The download thread has ended, so that
/// nothing is reported but what the test reports in its place.
class NotifyIcon : public testing::Test {
protected:
  NotifyIcon() {
    QLocale::setDefault(QLocale(u"eo"_s)); // English has to do
    installTexts();
    FakeStatusItem earlier;
    EXPECT_TRUE(KaNotifyIcon(facade, earlier, {.finishWait = 1h}).appFinalize()) << "comes with the thread's end";
  }
  ~NotifyIcon() override {
    icon->onFinishDownloadProcess();
    EXPECT_TRUE(icon->appFinalize()) << "a thread that has ended costs no wait";
  }

  void start(const KaNotifyIconTimes &times = {.tick = 5ms, .startDelay = 50ms, .finishWait = 1h}) {
    icon = std::make_unique<KaNotifyIcon>(facade, view, times);
  }
  /// Reports as the download thread does, and waits until it has shown in full.
  void report(const std::function<void()> &reported) {
    std::thread(reported).join();
    const auto before = view.states.size();
    ASSERT_TRUE(waitFor([&] { return view.states.size() > before + 5; }));
  }
  [[nodiscard]] StatusItemState last() const { return view.states.empty() ? StatusItemState{} : view.states.back(); }
  [[nodiscard]] std::string opened() const { return browser.takeUrl().value_or(QString()).toStdString(); }

  const UiProfile profile;
  const FakeBrowser browser{profile};
  FakeStatusItem view;
  KaModelFacade &facade = KaModelFacade::sharedInstance();
  std::unique_ptr<KaNotifyIcon> icon;
};

TEST_F(NotifyIcon, startsLinkedWithoutShowingABrokenLinkFirstAndGivesUpOnAThreadThatDoesNotEnd) {
  ASSERT_TRUE(facade.saveLinkageSetting(u"token"_s));
  start({.tick = 1h, .finishWait = 50ms});
  ASSERT_TRUE(waitFor([&] { return !view.states.empty(); }));
  const StatusItemState expected{.frame = Standby, .tooltipKey = kNormal, .isLinked = true, .isDownloadEnabled = true};
  EXPECT_EQ(view.states.front(), expected);
  QElapsedTimer sinceQuit;
  sinceQuit.start();
  EXPECT_FALSE(icon->appFinalize());
  EXPECT_GE(sinceQuit.elapsed(), 50);
}

/// What a result says that comes in during a download, and what it leaves shown.
struct Meaning {
  QLatin1StringView message{};
  QLatin1StringView tooltip = "TOOL_TIP_STATUS_DOWNLOADING"_L1;
  std::optional<StatusFrame> frame{}; ///< absent: as before
};

const QMap<qint64, Meaning> kMeanings{
    {1, {"MSG_DOWNLOAD_COMPLETE"_L1, kNormal, Standby}},
    {2, {"MSG_10G_DOWNLOAD_COMPLETE"_L1, kNormal, Standby}},
    {3, {"MSG_DOWNLOAD_ZERO"_L1, kNormal, Standby}},
    {4, {"MSG_INITIAL_ACCESS_COMPLETE"_L1, kNormal, Standby}},
    {5, {{}, kUnlinked, Unlink}},
    {6, {"MSG_ERR_CERTIFICATE"_L1, kMaintenance, Error}},
    {7, {"MSG_ERR_COMMUNICATION"_L1, kMaintenance, Error}},
    {8, {"MSG_ERR_DISK_FULL"_L1, "TOOL_TIP_STATUS_DISK_FULL"_L1, Error}},
    {9, {"MSG_ERR_OFFLINE"_L1, "TOOL_TIP_STATUS_OFFLINE"_L1, Error}},
    {10, {"MSG_ERR_UNLINK"_L1, kUnlinked, Unlink}},
    {11, {"MSG_ERR_RETRY"_L1, kMaintenance, Error}},
    {12, {"MSG_ERR_SERVER"_L1, kMaintenance, Error}},
    {13, {"MSG_ERR_DOWNLOAD"_L1, "TOOL_TIP_STATUS_ERR_DOWNLOAD"_L1, Error}},
    {14, {"MSG_ERR_UNEXPECTED"_L1, kMaintenance, Error}},
    {16, {"MSG_ERR_LINK_INVALID"_L1, kMaintenance, Error}},
    {17, {"MSG_ERR_VALIDATION"_L1, kUnlinked, Unlink}},
    {24, {"MSG_NEW_VERSION_RELEASED"_L1}},
};

TEST_F(NotifyIcon, showsAndTellsWhatAResultMeans) {
  start();
  report([] {});
  EXPECT_EQ(last(), (StatusItemState{.frame = Unlink, .tooltipKey = kUnlinked}));
  EXPECT_EQ(view.notifications.size(), 1) << "of the missing link";
  for (qint64 code = -1; code <= 25; ++code) {
    SCOPED_TRACE(code);
    const Meaning meaning = kMeanings.value(code);
    view.notifications.clear();
    view.alerts.clear();
    icon->onChangeLinkage(true);
    report([&] {
      icon->onChangeStatus(facade, KaAppStatus::Downloading);
      for (const bool userTrigger : {false, true})
        icon->onProcessingResult(facade, static_cast<KaResultCode>(code), userTrigger);
    });
    EXPECT_EQ(last().tooltipKey, meaning.tooltip);
    EXPECT_EQ(meaning.frame.value_or(*last().frame), last().frame);
    EXPECT_EQ(last().isLinked, !meaning.frame || meaning.frame == Standby);
    EXPECT_EQ(last().isDownloadEnabled, last().isLinked);
    const QString text = meaning.message.isEmpty() ? QString() : localised(meaning.message);
    EXPECT_EQ(view.alerts, QStringList{text}) << "what the user asked for is answered, be it with nothing";
    const QString told = localised("APP_SHORT_NAME"_L1) + text + QString::number(code);
    EXPECT_EQ(view.notifications.join(u'|'), text.isEmpty() ? QString() : told);
  }
}

TEST_F(NotifyIcon, linksWaitsBeforeTheFirstRunAnimatesItAndLogsOutAtOnce) {
  start();
  report([] {});
  Q_EMIT view.entryTriggered(StatusEntry::Link);
  EXPECT_THAT(opened(), HasSubstr("/getLogin?"));
  icon->onCompleteLinkageSetting();
  icon->onChangeLinkage(true);
  report([] {});
  EXPECT_TRUE(last().frame == Unlink && !last().isDownloadEnabled) << "the folders are not confirmed yet";
  QElapsedTimer sinceLogin;
  sinceLogin.start();
  ASSERT_EQ(profile.windows<QDialog>().size(), 1);
  profile.windows<QDialog>().first()->reject();
  ASSERT_TRUE(waitFor([&] { return last().frame == Standby; }));
  EXPECT_GE(sinceLogin.elapsed(), 50);
  EXPECT_TRUE(facade.bLoggedIn() && last().isDownloadEnabled);
  icon->onChangeStatus(facade, KaAppStatus::Downloading);
  ASSERT_TRUE(waitFor([&] { return last().frame == Receive1; }));
  for (const StatusFrame frame : {Receive2, Receive3, Receive4, Receive1, Receive2}) {
    const auto before = view.states.size();
    ASSERT_TRUE(waitFor([&] { return view.states.size() > before; }));
    EXPECT_EQ(view.states[before].frame, frame);
  }
  for (const bool enabled : {false, true}) {
    report([&] { icon->onSetEnableLogginMenu(enabled); });
    EXPECT_EQ(last().isLogginEnabled, enabled);
  }
  report([this] { icon->onChangeStatus(facade, static_cast<KaAppStatus>(4)); });
  EXPECT_TRUE(!last().frame && last().tooltipKey.isEmpty());
  Q_EMIT view.entryTriggered(StatusEntry::Logout);
  EXPECT_TRUE(last().frame == Unlink && !last().isLinked);
  EXPECT_THAT(opened(), HasSubstr("/logout?"));
  report([] {});
  EXPECT_FALSE(facade.bLoggedIn() || last().isDownloadEnabled);
  EXPECT_EQ(view.notifications.size(), 1) << "of the missing link at start, none of the wish to log out";
}

TEST_F(NotifyIcon, opensOneWindowAtATimeAndTheFoldersOfANewLinkInTurn) {
  ASSERT_TRUE(facade.saveLinkageSetting(u"token"_s));
  start();
  icon->onChangeStatus(facade, KaAppStatus::NotLinked);
  Q_EMIT view.entryTriggered(StatusEntry::About);
  const QPointer<QDialog> about = profile.windows<QDialog>().value(0);
  ASSERT_TRUE(qobject_cast<KaVersionInformationView *>(about));
  Q_EMIT view.entryTriggered(StatusEntry::DispSetting);
  Q_EMIT view.entryTriggered(StatusEntry::About);
  icon->onCompleteLinkageSetting();
  EXPECT_EQ(profile.windows<QDialog>(), QList<QDialog *>{about});
  about->close();
  ASSERT_TRUE(
      waitFor([&] { return profile.windows<QDialog>().size() == 1 && profile.windows<QDialog>().first() != about; }));
  EXPECT_TRUE(qobject_cast<KaDownloadFolderSettingView *>(profile.windows<QDialog>().first()));
  profile.windows<QDialog>().first()->reject();
  ASSERT_TRUE(waitFor([&] { return last().frame == Standby; })) << "the first run";
  EXPECT_TRUE(profile.windows<QDialog>().isEmpty());
  Q_EMIT view.entryTriggered(StatusEntry::Help);
  EXPECT_THAT(opened(), HasSubstr("/help/en/index.html"));
  QLocale::setDefault(QLocale(u"de_AT"_s));
  Q_EMIT view.entryTriggered(StatusEntry::Help);
  EXPECT_THAT(opened(), HasSubstr("/help/de/index.html"));
  icon->onCompleteLinkageSetting();
  Q_EMIT view.entryTriggered(StatusEntry::Logout);
  EXPECT_THAT(opened(), HasSubstr("/logout?"));
  profile.windows<QDialog>().first()->reject();
  report([] {});
  EXPECT_EQ(last().frame, Unlink) << "no first run of a link that is closed again";
}

TEST_F(NotifyIcon, switchesTheStartAtLoginAndAlertsOfAnActionThatFails) {
  start({.tick = 1h});
  for (const bool on : {true, false}) {
    Q_EMIT view.entryTriggered(StatusEntry::LaunchSetting);
    EXPECT_EQ(last().isLaunchedAtLogin, on);
    EXPECT_EQ(QProcess::execute(u"desktop-file-validate"_s, {profile.autostartEntry()}) == 0, on);
    EXPECT_EQ(platform::standardUserDefaults().string(u"LaunchAtLogin"_s), on ? u"true"_s : u"false"_s);
  }
  QDir(profile.configFolder()).rmdir(u"autostart"_s);
  ASSERT_NE(profile.blockAutostart(), QString());
  view.states.clear();
  Q_EMIT view.entryTriggered(StatusEntry::LaunchSetting);
  ASSERT_EQ(view.states.size(), 1) << "the check mark is taken back";
  EXPECT_FALSE(last().isLaunchedAtLogin || platform::standardUserDefaults().boolValue(u"LaunchAtLogin"_s));

  view.nextFault = [] { throw KaException(u"ShowFault"_s, u"on purpose"_s); };
  icon->menuAction_LaunchSetting();
  ASSERT_TRUE(waitFor([&] { return view.alerts == QStringList{localised("MSG_ERR_UNEXPECTED"_L1)}; }));
}

TEST_F(NotifyIcon, opensWhatBelongsToTheResultOfAClickedNotification) {
  start();
  Q_EMIT view.notificationActivated(u"2"_s);
  EXPECT_EQ(browser.takeUrl(), facade.downloadOption().parent10GFolder);
  for (const QString &result : {u"9"_s, u"24"_s, u"one"_s})
    Q_EMIT view.notificationActivated(result);
  EXPECT_FALSE(QFile::exists(profile.path(u"opened-url"_s))) << "the browser noted something";
  Q_EMIT view.notificationActivated(u"17"_s);
  EXPECT_THAT(opened(), HasSubstr("/getLogin?"));
}

} // namespace
