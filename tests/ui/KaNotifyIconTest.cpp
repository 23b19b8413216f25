#include "ui/KaNotifyIcon.h"

#include "app/KaModelFacade.h"
#include "identity/KaLinkageUtility.h"
#include "log/ExceptionGuard.h"
#include "platform/UserDefaults.h"
#include "sandbox/Service.h"
#include "settings/SettingsFiles.h"
#include "tests/support/FakeBrowser.h"
#include "tests/ui/UiProfile.h"
#include "ui/KaDownloadFolderSettingView.h"
#include "ui/KaStatusView.h"
#include "ui/KaVersionInformationView.h"
#include "ui/LoginItemQuestion.h"
#include "ui/Mnemonics.h"
#include "ui/Texts.h"

#include <gmock/gmock.h>

#include <QClipboard>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QUrl>
#include <QUrlQuery>

#include <sched.h>

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
class FakeStatusItem final : public KaStatusItemView {
public:
  void show(const StatusItemState &state) override {
    states.push_back(state);
    if (const auto fault = std::exchange(nextFault, {})) fault();
  }
  void alert(const QString &text) override { alerts << text; }
  void notify(NotificationKind kind, const platform::Notification &told) override {
    notifications << told.title + told.text + told.processingResult;
    standing[kind] = told.processingResult;
    lastTold = told;
  }
  void withdraw(NotificationKind kind) override { standing.remove(kind); }
  void withdrawAll() override { standing.clear(); }

  std::vector<StatusItemState> states;
  QStringList alerts;
  QStringList notifications;
  QMap<NotificationKind, QString> standing; ///< results
  platform::Notification lastTold;
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
    EXPECT_TRUE(KaNotifyIcon(facade, earlier).appFinalize(1h)) << "comes with the thread's end";
  }
  ~NotifyIcon() override {
    if (!icon) return; // skipped
    icon->onFinishDownloadProcess();
    EXPECT_TRUE(icon->appFinalize(1h)) << "a thread that has ended costs no wait";
  }

  void start(const KaNotifyIconTimes &times = {.tick = 5ms, .startDelay = 50ms}) {
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
  [[nodiscard]] static QList<QDialog *> dialogs() { return UiProfile::windows<QDialog>(); }
  template <class Window> [[nodiscard]] static bool onlyWindow() {
    return dialogs().size() == 1 && qobject_cast<Window *>(dialogs().first());
  }

  const UiProfile profile;
  const FakeBrowser browser{profile};
  FakeStatusItem view;
  KaModelFacade &facade = KaModelFacade::sharedInstance();
  std::unique_ptr<KaNotifyIcon> icon;
};

TEST_F(NotifyIcon, startsLinkedWithoutShowingABrokenLinkFirstAndGivesUpOnAThreadThatDoesNotEnd) {
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(u"token"_s));
  start({.tick = 1h});
  ASSERT_TRUE(waitFor([&] { return !view.states.empty(); }));
  const StatusItemState expected{.frame = Standby, .tooltipKey = kNormal, .isLinked = true, .isDownloadEnabled = true};
  EXPECT_EQ(view.states.front(), expected);
  ASSERT_TRUE(QFile::remove(profile.appFolder() + u"/DownloadSettingData.plist"_s));
  QElapsedTimer sinceQuit;
  sinceQuit.start();
  EXPECT_FALSE(icon->appFinalize(50ms));
  EXPECT_GE(sinceQuit.elapsed(), 50);
  EXPECT_EQ(loadDownloadOption(), facade.downloadOption()) << "saved at the end";
}

/// What a result leaves shown that comes in during a download.
[[nodiscard]] std::optional<StatusFrame> frameAfter(qint64 code) {
  if (code >= 1 && code <= 4) return Standby;
  if (code == 5 || code == 10 || code == 17) return Unlink;
  if (code >= 6 && code <= 16 && code != 15) return Error;
  return std::nullopt;
}

[[nodiscard]] QLatin1StringView tooltipAfter(qint64 code) {
  if (code == 8) return "TOOL_TIP_STATUS_DISK_FULL"_L1;
  if (code == 9) return "TOOL_TIP_STATUS_OFFLINE"_L1;
  if (code == 13) return "TOOL_TIP_STATUS_ERR_DOWNLOAD"_L1;
  const auto frame = frameAfter(code);
  if (!frame) return "TOOL_TIP_STATUS_DOWNLOADING"_L1;
  return *frame == Standby ? kNormal : *frame == Unlink ? kUnlinked : kMaintenance;
}

TEST_F(NotifyIcon, showsAndTellsEachResultInItsOwnWordsAndDoubtsTheLinkAfterEveryError) {
  start();
  report([] {});
  EXPECT_EQ(last(), (StatusItemState{.frame = Unlink, .tooltipKey = kUnlinked}));
  EXPECT_EQ(view.notifications.size(), 1) << "of the missing link";
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(u"token"_s));
  facade.initializeLinkageSetting();
  QMap<qint64, QString> words;
  for (qint64 code = -1; code <= 25; ++code) {
    SCOPED_TRACE(code);
    view.notifications.clear();
    view.alerts.clear();
    icon->onChangeLinkage(true);
    report([&] {
      icon->onChangeStatus(facade, KaAppStatus::Downloading);
      for (const bool userTrigger : {false, true})
        icon->onProcessingResult(facade, static_cast<KaResultCode>(code), userTrigger);
    });
    const auto frame = frameAfter(code);
    EXPECT_EQ(last().tooltipKey, tooltipAfter(code));
    EXPECT_EQ(frame.value_or(*last().frame), last().frame);
    EXPECT_EQ(last().isLinked, !frame || frame == Standby);
    EXPECT_EQ(last().isDownloadEnabled, last().isLinked) << "also of a link that is there";
    ASSERT_EQ(view.alerts.size(), 1) << "what the user asked for is answered, be it with nothing";
    const QString text = view.alerts.first();
    EXPECT_EQ(!text.isEmpty(), (frame || code == 24) && code != 5);
    const QString told = localised("APP_SHORT_NAME"_L1) + text + QString::number(code);
    EXPECT_EQ(view.notifications.join(u'|'), text.isEmpty() ? QString() : told);
    EXPECT_FALSE(!text.isEmpty() && words.values().contains(text));
    using platform::Notification;
    EXPECT_TRUE(text.isEmpty()
                || ((view.lastTold.urgency == Notification::Urgency::Low) == (code < 5 || code == 24)
                    && (view.lastTold.topic == Notification::Topic::TransferComplete) == (code < 4)));
    words[code] = text;
  }
  icon->onChangeLinkage(true);
  view.notifications.clear();
  report([&] {
    icon->onChangeStatus(facade, KaAppStatus::Normal);
    icon->onSavingTrouble(KaResultCode::DiskFull);
  });
  EXPECT_TRUE(last().isLinked && view.notifications.first().contains(words[8])) << "a message alone";
  EXPECT_EQ(words[2], localised("MSG_10G_DOWNLOAD_COMPLETE"_L1));
  EXPECT_EQ(words[9], localised("MSG_ERR_OFFLINE"_L1));
  EXPECT_EQ(words[17], localised("MSG_ERR_VALIDATION"_L1));
}

TEST_F(NotifyIcon, saysOfALoginThatFailedWhyAndStartsNoneOverOneThatWasMerelyNotChecked) {
  using enum KaFaultCause;
  start();
  report([] {});
  const std::tuple<int, KaFaultCause, QLatin1StringView, bool> cases[] = {
      {17, Refused, "MSG_ERR_VALIDATION"_L1, true},
      {17, NoAnswer, "MSG_ERR_VALIDATION_NO_ANSWER"_L1, false},
      {17, WrongClock, "MSG_ERR_CLOCK"_L1, false},
      {16, Refused, "MSG_ERR_LINK_INVALID"_L1, false},
      {16, NoAnswer, "MSG_ERR_LINK_INVALID_NO_ANSWER"_L1, false},
      {16, NotAccepted, "MSG_ERR_VALIDATION_NOT_ACCEPTED"_L1, false},
      {16, WrongClock, "MSG_ERR_CLOCK"_L1, false}};
  for (const auto &[code, cause, key, logsIn] : cases) {
    view.notifications.clear();
    report([&, code = static_cast<KaResultCode>(code), cause = cause] {
      facade.noteFaultCause(cause);
      facade.setProcessingResult(code, /*userTrigger=*/false);
    });
    EXPECT_EQ(view.notifications, QStringList{localised("APP_SHORT_NAME"_L1) + localised(key) + QString::number(code)});
    Q_EMIT view.notificationActivated(QString::number(code));
    EXPECT_EQ(facade.bLoggedIn(), logsIn) << key.data();
    facade.closeLinkage();
  }
}

TEST_F(NotifyIcon, linksWaitsBeforeTheFirstRunAnimatesItAndLogsOutAtOnce) {
  sandbox::Service service;
  const auto defaults = service.userDefaults();
  for (auto value = defaults.begin(); value != defaults.end(); ++value)
    platform::standardUserDefaults().setString(value.key(), value.value());
  start();
  report([] {});
  Q_EMIT view.entryTriggered(StatusEntry::Link);
  const QUrl callback(service.signIn(browser.takeUrl().value_or(QString())));
  icon->setIdCode(QUrlQuery(callback).queryItemValue(u"idToken"_s));
  ASSERT_TRUE(waitFor([this] { return dialogs().size() == 1; }));
  report([] {});
  EXPECT_TRUE(last().frame == Unlink && !last().isDownloadEnabled) << "the folders are not confirmed yet";
  report([this] { icon->onProcessingResult(facade, KaResultCode::LinkInvalid, /*userTrigger=*/false); });
  QElapsedTimer sinceLogin;
  sinceLogin.start();
  dialogs().first()->reject();
  EXPECT_TRUE(view.standing.isEmpty()) << "an error before the link counted says nothing about it";
  EXPECT_EQ(facade.linkState(), KaLinkState::AwaitsFolders) << "until its first run is asked for";
  ASSERT_TRUE(waitFor([&] { return last().frame == Standby; }));
  EXPECT_EQ(facade.linkState(), KaLinkState::Linked);
  EXPECT_GE(sinceLogin.elapsed(), 50);
  EXPECT_TRUE(last().isDownloadEnabled) << "nor does it here";
  icon->onChangeStatus(facade, KaAppStatus::Downloading);
  ASSERT_TRUE(waitFor([&] { return last().frame == Receive1; }));
  auto next = view.states.size();
  for (const StatusFrame frame : {Receive2, Receive3, Receive4, Receive1, Receive2}) {
    ASSERT_TRUE(waitFor([&] { return view.states.size() > next; }));
    EXPECT_EQ(view.states[next++].frame, frame);
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
  EXPECT_EQ(view.notifications.size(), 2) << "of the missing link at start and the error, none of the wish to log out";
}

TEST_F(NotifyIcon, opensOneWindowAtATimeAndTheFoldersInPlaceOfAnother) {
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(u"token"_s));
  start();
  icon->onChangeStatus(facade, KaAppStatus::NotLinked);
  for (const bool isOfNewLink : {false, true}) {
    for (int time = 0; time < 2; ++time)
      Q_EMIT view.entryTriggered(StatusEntry::About);
    ASSERT_TRUE(onlyWindow<KaVersionInformationView>());
    isOfNewLink ? icon->onCompleteLinkageSetting() : icon->perform(StatusEntry::DispSetting);
    ASSERT_TRUE(onlyWindow<KaDownloadFolderSettingView>()) << isOfNewLink;
    Q_EMIT view.entryTriggered(StatusEntry::About);
    ASSERT_TRUE(onlyWindow<KaDownloadFolderSettingView>()) << "an answer is awaited";
    dialogs().first()->reject();
  }
  ASSERT_TRUE(waitFor([&] { return last().frame == Standby; })) << "the first run";
  EXPECT_TRUE(dialogs().isEmpty());
  Q_EMIT view.entryTriggered(StatusEntry::Help);
  EXPECT_THAT(opened(), HasSubstr("/help/en/index.html"));
  QLocale::setDefault(QLocale(u"de_AT"_s));
  Q_EMIT view.entryTriggered(StatusEntry::Help);
  EXPECT_THAT(opened(), HasSubstr("/help/de/index.html"));
  icon->onCompleteLinkageSetting();
  Q_EMIT view.entryTriggered(StatusEntry::Logout);
  EXPECT_THAT(opened(), HasSubstr("/logout?"));
  dialogs().first()->reject();
  // More ticks than the delay of a first run would take.
  const auto before = view.states.size();
  ASSERT_TRUE(waitFor([&] { return view.states.size() > before + 20; }));
  EXPECT_EQ(last().frame, Unlink) << "no first run of a link that is closed again";
}

TEST_F(NotifyIcon, switchesTheStartAtLoginAndAlertsOfWhatFails) {
  start({.tick = 1h});
  const QString settings = profile.appFolder() + u"/DownloadSettingData.plist"_s;
  ASSERT_TRUE(QFile::remove(settings) && QDir().mkpath(settings + u"/in the way"_s));
  Q_EMIT view.entryTriggered(StatusEntry::DispSetting);
  icon->confirmDialog();
  EXPECT_TRUE(dialogs().isEmpty());
  EXPECT_EQ(view.alerts, QStringList{localised("MSG_ERR_SETTINGS_NOT_SAVED"_L1)});
  view.alerts.clear();
  for (const bool on : {true, false}) {
    Q_EMIT view.entryTriggered(StatusEntry::LaunchSetting);
    EXPECT_EQ(last().isLaunchedAtLogin, on);
    EXPECT_EQ(QProcess::execute(u"desktop-file-validate"_s, {profile.autostartEntry()}) == 0, on);
    EXPECT_EQ(platform::standardUserDefaults().string(u"LaunchAtLogin"_s), on ? u"true"_s : u"false"_s);
  }
  EXPECT_TRUE(setLaunchedAtLogin(false));
  QDir(profile.configFolder()).rmdir(u"autostart"_s);
  const QString obstacle = profile.blockAutostart();
  EXPECT_FALSE(setLaunchedAtLogin(true));
  view.states.clear();
  Q_EMIT view.entryTriggered(StatusEntry::LaunchSetting);
  ASSERT_EQ(view.states.size(), 1) << "the check mark is taken back";
  EXPECT_FALSE(last().isLaunchedAtLogin || platform::standardUserDefaults().boolValue(u"LaunchAtLogin"_s));
  EXPECT_EQ(view.alerts, QStringList{localised("MSG_ERR_LAUNCH_SETTING"_L1)});

  view.alerts.clear();
  ASSERT_TRUE(QFile::remove(obstacle));
  view.nextFault = [] { throw KaException(u"ShowFault"_s, u"on purpose"_s); };
  icon->menuAction_LaunchSetting();
  ASSERT_TRUE(waitFor([&] { return view.alerts == QStringList{localised("MSG_ERR_UNEXPECTED"_L1)}; }));
}

TEST_F(NotifyIcon, withdrawsWhatIsNotTrueAnyMoreAndBeginsNoLoginForALinkThatHolds) {
  platform::standardUserDefaults().setString(u"strataHostName"_s,
                                             u"localhost"_s); // for which every computer has a network
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(u"token"_s));
  start();
  report([] {});
  const auto normal = [this] { icon->onChangeStatus(facade, KaAppStatus::Normal); };
  const auto holds = [this] { icon->onChangeLinkage(true); };
  const auto result = [this](qint64 code) {
    return [this, code] { icon->onProcessingResult(facade, static_cast<KaResultCode>(code), /*userTrigger=*/false); };
  };
  const std::tuple<QStringList, std::function<void()>, QStringList> rows[] = {
      {{u"1"_s, u"2"_s, u"10"_s, u"16"_s}, [] {}, {u"1"_s, u"2"_s, u"16"_s}},
      {{u"4"_s, u"9"_s, u"13"_s, u"14"_s, u"24"_s}, result(17), {u"17"_s, u"13"_s, u"14"_s, u"24"_s}},
      {{u"16"_s, u"11"_s, u"13"_s, u"14"_s}, normal, {}},
      {{u"10"_s, u"12"_s}, holds, {u"12"_s}},
      {{u"4"_s, u"17"_s, u"7"_s, u"8"_s, u"14"_s}, result(2), {u"2"_s}},
      {{u"1"_s, u"17"_s, u"6"_s, u"8"_s, u"14"_s}, result(4), {u"4"_s, u"1"_s, u"8"_s}},
      {{u"1"_s, u"2"_s, u"4"_s, u"9"_s, u"8"_s, u"14"_s, u"24"_s}, result(5), {u"24"_s}},
  };
  for (const auto &[told, event, expected] : rows) {
    view.standing.clear();
    report([&] {
      for (const QString &code : told)
        result(code.toLongLong())();
    });
    event();
    report([] {});
    EXPECT_EQ(view.standing.values(), expected) << told.join(u',').toStdString();
  }
  facade.setStillToCome(1);
  report([&] {
    result(8)();
    normal();
  });
  EXPECT_EQ(view.standing.take(NotificationKind::SavingTrouble), u"8"_s) << "a picture waits for room";

  const auto told = [&](KaResultCode code) { facade.setProcessingResult(code, /*userTrigger=*/false); };
  facade.setEnableLoggin(false);
  report([&] {
    told(KaResultCode::RetryLater);
    told(KaResultCode::Download10GComplete);
  });
  EXPECT_TRUE(view.standing.contains(NotificationKind::Failure)) << "of the other storage";
  facade.setEnableLoggin(false);
  report([&] { told(KaResultCode::Download10GComplete); });
  EXPECT_FALSE(view.standing.contains(NotificationKind::Failure));

  const auto clickLogIn = [&] {
    Q_EMIT view.notificationActivated(u"17"_s);
    return KaLinkageUtility::loadLinkageSetting().has_value();
  };
  holds();
  report(result(9));
  facade.noteFaultCause(KaFaultCause::NotAccepted);
  report([&] { told(KaResultCode::ValidationFailed); });
  EXPECT_TRUE(clickLogIn()) << "a login would have dropped the link";
  report(result(17));
  EXPECT_FALSE(clickLogIn());
  EXPECT_THAT(opened(), HasSubstr("/getLogin?"));
  icon->menuAction_Logout();
  EXPECT_THAT(opened(), HasSubstr("/logout?"));
  report([] {});
  EXPECT_FALSE(clickLogIn());
  EXPECT_THAT(opened(), HasSubstr("/getLogin?")) << "there is no link to lose";
  report(result(17));
  EXPECT_FALSE(icon->appFinalize(0ms));
  EXPECT_TRUE(view.standing.isEmpty()) << "all end with the program";
}

TEST_F(NotifyIcon, withdrawsNothingWhenARunOnlyWaitsForANetwork) {
  if (::unshare(CLONE_NEWNET) != 0) GTEST_SKIP() << "this user may not be without a network";
  start();
  report([&] {
    icon->onProcessingResult(facade, KaResultCode::ValidationFailed, /*userTrigger=*/false);
    icon->onChangeStatus(facade, KaAppStatus::Normal);
  });
  EXPECT_EQ(view.standing.values(), QStringList{u"17"_s}) << "which is told once";
}

TEST_F(NotifyIcon, saysWhatDidNotOpenInOneWindowOfAKindWithItsAddressToCopy) {
  browser.fail();
  start();
  report([] {}); // the menu offers a login from now on
  const auto address = [] { return dialogs().size() == 1 ? dialogs().first()->findChild<QLineEdit *>() : nullptr; };
  const auto shows = [&](const QString &part) { return address() && address()->text().contains(part); };
  Q_EMIT view.entryTriggered(StatusEntry::Link);
  ASSERT_TRUE(waitFor([&] { return shows(u"/getLogin?"_s); }));
  EXPECT_EQ(dialogs().first()->findChild<QLabel *>()->text(), localised("MSG_PAGE_NOT_OPENED"_L1));
  Q_EMIT view.entryTriggered(StatusEntry::Help);
  ASSERT_TRUE(waitFor([&] { return shows(u"/help/en/index.html"_s); }));
  QPushButton *const copy = dialogs().first()->findChild<QPushButton *>();
  EXPECT_EQ(spoken(copy->text()), localised("DLG_NOT_OPENED_BUTTON_COPY_ADDRESS"_L1));
  copy->click();
  EXPECT_EQ(QApplication::clipboard()->text(), address()->text());
  EXPECT_EQ(address()->selectedText(), address()->text());
  for (const QString &url : {QString(), u"https://a.example/"_s}) {
    icon->onPageNotOpened(url);
    EXPECT_EQ(address()->isVisible(), !url.isEmpty());
    EXPECT_EQ(copy->isVisible(), !url.isEmpty());
    EXPECT_EQ(dialogs().first()->findChild<QLabel *>()->text() == localised("MSG_PAGE_NOT_OPENED"_L1), !url.isEmpty());
  }
  dialogs().first()->reject();
  Q_EMIT view.notificationActivated(u"1"_s); // there is no such folder yet
  ASSERT_TRUE(waitFor([&] { return shows(facade.downloadOption().parentFolder); }));
  EXPECT_EQ(dialogs().first()->findChild<QLabel *>()->text(), localised("MSG_FOLDER_NOT_OPENED"_L1));
  dialogs().first()->reject();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(NotifyIcon, opensWhatBelongsToTheResultOfAClickedNotification) {
  start();
  Q_EMIT view.notificationActivated(u"2"_s);
  EXPECT_EQ(browser.takeUrl(), facade.downloadOption().parent10GFolder);
  for (const QString &result : {u"9"_s, u"24"_s, u"one"_s})
    Q_EMIT view.notificationActivated(result);
  EXPECT_FALSE(browser.hasUrl()) << "the browser noted something";

  Q_EMIT view.entryTriggered(StatusEntry::DispSetting);
  Q_EMIT view.entryTriggered(StatusEntry::DispSetting);
  auto &status = qobject_cast<KaDownloadFolderSettingView *>(dialogs().value(0))->statusView();
  Q_EMIT status.openFolderRequested(profile.picturesFolder());
  EXPECT_EQ(browser.takeUrl(), profile.picturesFolder());
  Q_EMIT status.remedyRequested(StatusRemedy::OpenHelp);
  EXPECT_THAT(opened(), HasSubstr("/help/en/index.html"));
  Q_EMIT status.remedyRequested(StatusRemedy::LogIn);
  EXPECT_THAT(opened(), HasSubstr("/getLogin?"));
}

TEST(NotifyIconAtWork, doesNothingThatItsMenuHasGreyedAndShowsWhyInstead) {
  const UiProfile profile;
  const FakeBrowser browser(profile);
  sandbox::Service service;
  profile.writeUserDefaults(service.userDefaults());
  const sandbox::LinkedToken linked = service.issueLinkedToken();
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(linked.idToken)
              && KaLinkageUtility::saveTokenCode(linked.tokenCode));
  service.order(sandbox::Endpoint::RefreshToken, {.status = 503, .times = -1});
  FakeStatusItem view;
  KaNotifyIcon icon(KaModelFacade::sharedInstance(), view, {.tick = 5ms});
  const auto waitUntilShown = [&](const std::function<bool(const StatusItemState &)> &isShown) {
    ASSERT_TRUE(waitFor([&] { return !view.states.empty() && isShown(view.states.back()); }));
  };
  waitUntilShown(
      [](const auto &state) { return !state.isLinked && !state.isDownloadEnabled && state.isLogginEnabled; });
  icon.onSetEnableLogginMenu(false);
  waitUntilShown([](const auto &state) { return !state.isLogginEnabled; });
  const int before = service.requestCount(sandbox::Endpoint::RefreshToken);
  for (const StatusEntry entry : {StatusEntry::Link, StatusEntry::Logout, StatusEntry::Download})
    icon.perform(entry);
  ASSERT_EQ(UiProfile::windows<QDialog>().size(), 1);
  auto *const window = qobject_cast<KaDownloadFolderSettingView *>(UiProfile::windows<QDialog>().first());
  ASSERT_TRUE(window);
  icon.onSetEnableLogginMenu(true);
  waitUntilShown([](const auto &state) { return state.isLogginEnabled; });
  icon.perform(StatusEntry::Logout);
  Q_EMIT window->accepted(); // the folders were not at fault
  QCoreApplication::processEvents();
  EXPECT_FALSE(service.waitForRequests(sandbox::Endpoint::RefreshToken, before + 1, 300ms));
  EXPECT_FALSE(browser.hasUrl()) << "a page was opened";
  auto &facade = KaModelFacade::sharedInstance();
  auto runsAgain = [&, runs = before](const std::function<void()> &ask) mutable {
    ask();
    QCoreApplication::processEvents();
    return service.waitForRequests(sandbox::Endpoint::RefreshToken, ++runs, 20s)
           && waitFor([&] { return facade.snapshot().nextLook.has_value(); });
  };
  EXPECT_TRUE(runsAgain([&] {
    facade.notifySavingTrouble(KaResultCode::DiskFull, KaTargetStorage::Days30);
    Q_EMIT window->accepted();
  })) << "there may be room now";
  icon.onChangeLinkage(true);
  waitUntilShown([](const auto &state) { return state.isDownloadEnabled; });
  EXPECT_TRUE(runsAgain([&] { icon.perform(StatusEntry::Download); }));
  waitUntilShown([](const auto &state) { return !state.isDownloadEnabled; }); // as it has failed
  EXPECT_TRUE(runsAgain([&] { Q_EMIT window->statusView().remedyRequested(StatusRemedy::LookNow); }));
  EXPECT_TRUE(icon.appFinalize());
}

} // namespace
