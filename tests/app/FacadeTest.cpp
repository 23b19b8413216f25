#include "app/KaDownloadDelegate.h"
#include "app/KaModelFacade.h"
#include "identity/KaLinkageUtility.h"
#include "platform/Proxies.h"
#include "platform/UserDefaults.h"
#include "sandbox/Library.h"
#include "sandbox/Service.h"
#include "service/KaServerRequest.h"
#include "settings/SettingsFiles.h"
#include "tests/log/LogFile.h"
#include "tests/support/FakeBrowser.h"
#include "tests/support/Image.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TestProfile.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QThread>
#include <QUrl>
#include <QUrlQuery>

#include <gtest/gtest.h>

#include <sched.h>

#include <atomic>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using sandbox::Endpoint;
using sandbox::Fault;

namespace {

const QString kNotAccepted = u"cause 3 of result 16"_s;

/// Notes what the thread that made it is told; of the download thread's reports, which are others' to test, those alone
/// that show what the facade asked it for.
class RecordingDelegate final : public KaDownloadDelegate {
public:
  void onChangeStatus(KaModelFacade &, KaAppStatus status) override { note(u"status"_s, static_cast<int>(status)); }
  void onSavingTrouble(KaResultCode) override {}
  void onProcessingResult(KaModelFacade &facade, KaResultCode code, bool) override {
    const auto cause = facade.faultCause();
    const bool hasCause = cause != KaFaultCause::Unknown;
    note(hasCause ? u"cause %1 of result"_s.arg(static_cast<int>(cause)) : u"result"_s, static_cast<int>(code));
    if (code == KaResultCode::InitialAccessComplete) ++initialAccesses;
  }
  void onCompleteLinkageSetting() override { note(u"login"_s, true); }
  void onSetEnableLogginMenu(bool enable) override { runs += enable; }
  void onFinishDownloadProcess() override { finished = true; }
  void onPageNotOpened(const QString &url) override { reports << url.section(u'?', 0, 0).section(u'/', 3); }
  void onChangeLinkage(bool linked) override { note(u"linkage"_s, linked); }

  QStringList reports;
  std::atomic<bool> finished = false;
  std::atomic<int> runs = 0; ///< that have ended
  std::atomic<int> initialAccesses = 0;

private:
  void note(const QString &report, int value) {
    if (QThread::currentThreadId() == ownThread) reports << u"%1 %2"_s.arg(report).arg(value);
  }

  const Qt::HANDLE ownThread = QThread::currentThreadId();
};

class FacadeLinkage : public testing::Test {
protected:
  /// @param blocked  below the data folder: here stands a plain file before anything else.
  explicit FacadeLinkage(const QString &blocked = {}) {
    if (!blocked.isEmpty()) writeFile(profile.dataFolder() + blocked, "no folder");
    facade().setDlDelegate(&delegate);
  }
  ~FacadeLinkage() override {
    facade().endDownloadProcess();
    EXPECT_TRUE(waitFor([this] { return delegate.finished.load(); }));
    facade().joinDownloadProcess();
    facade().setDlDelegate(nullptr);
  }

  static KaModelFacade &facade() { return KaModelFacade::sharedInstance(); }

  /// The user's part of a login: what the callback URL of the page brings.
  [[nodiscard]] QString signIn() {
    const QString callback = service.signIn(browser.takeUrl().value_or(QString()));
    return QUrlQuery(QUrl(callback)).queryItemValue(u"idToken"_s);
  }
  /// Starts a login whose verification is under way on return.
  QString startLogin() {
    facade().setupLinkage();
    const QString token = signIn();
    facade().setIdCode(token);
    EXPECT_TRUE(service.waitForRequests(Endpoint::Keys, 1, 20s));
    return token;
  }
  /// With a link of an earlier process, whose first run is under way on return.
  void startLinked() {
    const sandbox::LinkedToken linked = service.issueLinkedToken();
    ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(linked.idToken)
                && KaLinkageUtility::saveTokenCode(linked.tokenCode));
    facade().initializeLinkageSetting();
    ASSERT_TRUE(service.waitForRequests(Endpoint::ListDevices, 1, 20s));
  }
  [[nodiscard]] bool waitForReports(const QStringList &expected) const {
    return waitFor([&] { return delegate.reports.size() >= expected.size(); }) && delegate.reports == expected;
  }

  int noArguments = 0;
  const QCoreApplication application{noArguments, nullptr};
  sandbox::Service service;
  const TestProfile profile{service.userDefaults()};
  const FakeBrowser browser{profile};
  RecordingDelegate delegate;
};

TEST_F(FacadeLinkage, storesALoginForWhichTheBrowserCallsAgainAndAgainAndClosesIt) {
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(u"old"_s) && KaLinkageUtility::saveTokenCode(u"old"_s));
  facade().initializeLinkageSetting();
  EXPECT_EQ(delegate.reports, (QStringList{u"status 0"_s, u"linkage 1"_s}));
  facade().switchLogMode();
  service.order(Endpoint::Keys, {.kind = Fault::Kind::SlowBody});
  const QString token = startLogin();
  EXPECT_FALSE(KaLinkageUtility::loadLinkageSetting() || KaLinkageUtility::loadTokenCode()) << "of an older link";
  EXPECT_EQ(facade().linkState(), KaLinkState::Linked) << "until the login has completed";
  for (int times = 0; times < 5; ++times)
    facade().setIdCode(token);
  service.clearFaults();
  QStringList expected{u"status 0"_s, u"linkage 1"_s, u"login 1"_s, u"linkage 1"_s};
  EXPECT_TRUE(waitForReports(expected));
  EXPECT_EQ(facade().linkState(), KaLinkState::AwaitsFolders);
  facade().confirmFolders();
  EXPECT_EQ(facade().linkState(), KaLinkState::Linked);
  facade().setIdCode(token);
  facade().notifySavingTrouble(KaResultCode::DiskFull, KaTargetStorage::Days30);
  facade().setIdCode(u"not that token"_s);
  EXPECT_TRUE(waitForReports(expected << kNotAccepted)) << "the nonce counts once";
  EXPECT_EQ(facade().snapshot().fault, KaFault{KaResultCode::DiskFull}) << "as before";
  EXPECT_EQ(facade().loadLinkageSetting(), token);
  EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), token);
  EXPECT_TRUE(KaLinkageUtility::existCodeVerifier());
  facade().closeLinkage();
  EXPECT_EQ(delegate.reports, expected << u"status 3"_s << u"result 5"_s << u"linkage 0"_s);
  EXPECT_EQ(loggedLines(profile).count(u"    deleteCredential"_s), 2) << "those of the older link, and these";
  EXPECT_TRUE(browser.takeUrl().value_or(QString()).contains(u"/logout?"_s));
  EXPECT_FALSE(facade().bLoggedIn() || facade().linkState() != KaLinkState::Unlinked);
  EXPECT_FALSE(KaLinkageUtility::loadLinkageSetting() || KaLinkageUtility::existCodeVerifier());
  EXPECT_EQ(facade().loadLinkageSetting(), token) << "the token in memory stays";
}

TEST_F(FacadeLinkage, completesALoginAlthoughAnEarlierOneCallsBackAgain) {
  const QString first = startLogin();
  EXPECT_TRUE(waitForReports({u"login 1"_s, u"linkage 1"_s}));
  facade().noteFile(u"/of the account"_s);
  facade().notifySavingTrouble(KaResultCode::DiskFull, KaTargetStorage::Days30);
  facade().setupLinkage();
  facade().setIdCode(first);
  const QString second = signIn();
  facade().setIdCode(second);
  EXPECT_TRUE(waitForReports({u"login 1"_s, u"linkage 1"_s, u"login 1"_s, u"linkage 1"_s}));
  EXPECT_EQ(facade().loadLinkageSetting(), second);
  EXPECT_TRUE(facade().snapshot().cameToday == 1 && !facade().snapshot().fault) << "the account is the same";
  service.library().setUserId(u"another"_s);
  startLogin();
  EXPECT_TRUE(waitFor([] { return facade().snapshot().cameToday == 0; }));
}

TEST_F(FacadeLinkage, storesNothingOfALoginThatNobodyAskedForOrThatDoesNotHoldAndSaysWhy) {
  facade().initializeLinkageSetting();
  facade().setIdCode(service.issueLinkedToken().idToken);
  QStringList expected{u"result 10"_s, kNotAccepted};
  EXPECT_TRUE(waitForReports(expected));
  const auto logIn = [&](const QString &outcome) {
    facade().setupLinkage();
    facade().setIdCode(signIn());
    EXPECT_TRUE(waitForReports(expected << outcome)) << qPrintable(outcome);
  };
  service.setTokenFault(sandbox::TokenFault::BadSignature);
  logIn(kNotAccepted);
  service.setTokenFault(sandbox::TokenFault::Expired);
  logIn(kNotAccepted);
  service.order(Endpoint::Keys, {.status = 403});
  logIn(u"cause 1 of result 16"_s);
  service.setClockAhead(-3h);
  static_cast<void>(KaServerRequest().getKaAppId());
  logIn(u"cause 4 of result 16"_s);
  EXPECT_EQ(facade().snapshot().fault, (KaFault{KaResultCode::LinkInvalid, KaFaultCause::WrongClock}));
  EXPECT_NEAR(double(facade().snapshot().clockAhead.count()), 3 * 3600, 3 * kSlowness);
  EXPECT_TRUE(facade().linkState() == KaLinkState::Unlinked && !facade().loadLinkageSetting());
}

TEST_F(FacadeLinkage, showsWhatItIsAtAndForgetsItWithTheAccount) {
  platform::standardUserDefaults().setString(u"ImageRetryWaitTime"_s, u"1"_s);
  service.library().add(image(u"10"_s, u"A.JPG"_s));
  startLinked();
  ASSERT_TRUE(waitFor([this] { return delegate.reports.contains(u"linkage 1"_s); }));
  ASSERT_TRUE(waitFor([] { return facade().snapshot().cameToday == 1; }));
  ASSERT_TRUE(waitFor([] { return facade().snapshot().nextLook.has_value(); }));
  const KaSnapshot seen = facade().snapshot();
  const auto from = QDateTime::currentDateTime();
  EXPECT_TRUE(seen.linkState == KaLinkState::Linked && seen.doing == KaSnapshot::Doing::Waiting && !seen.fault);
  EXPECT_LE(seen.lastLook.value_or(from.addDays(1)), from);
  EXPECT_NEAR(double(from.secsTo(*seen.nextLook)), 30 * 60, 5 * kSlowness) << "not before the run is over";
  EXPECT_EQ(seen.lastFiles.size(), 1);
  EXPECT_TRUE(QFile::exists(seen.lastFiles.value(0)));
  facade().notifySavingTrouble(KaResultCode::DiskFull, KaTargetStorage::LongTerm10G);
  EXPECT_EQ(facade().snapshot().fault, (KaFault{KaResultCode::DiskFull, KaFaultCause::Unknown, true}));
  // Once it waits for a link, nothing of the old one comes behind.
  facade().closeLinkage();
  EXPECT_EQ(facade().snapshot(), KaSnapshot{.clockAhead = facade().snapshot().clockAhead});
}

TEST_F(FacadeLinkage, runsWhenAskedAndMarksAnInitialAccessWhenToldSo) {
  startLinked();
  const auto runUntil = [this](const auto &ask, const std::function<bool()> &condition) {
    return waitFor([&] {
      ask();
      return condition();
    });
  };
  const auto download = [] { facade().downloadNow(/*initialAccess=*/false); };
  EXPECT_TRUE(runUntil([] { facade().cancelPollingWait(); }, [this] { return delegate.runs >= 2; }));
  EXPECT_TRUE(runUntil(download, [this, before = delegate.runs.load()] { return delegate.runs >= before + 2; }));
  EXPECT_EQ(delegate.initialAccesses, 0);
  facade().downloadNow(/*initialAccess=*/true);
  EXPECT_TRUE(runUntil(download, [this] { return delegate.initialAccesses == 1; }));
}

TEST_F(FacadeLinkage, goesOnWithItsLinkWhenALoginDoesNotHold) {
  startLinked();
  facade().setupLinkage();
  facade().setIdCode(service.issueLinkedToken().idToken); // of another nonce
  EXPECT_TRUE(waitFor([&] {
    facade().downloadNow(/*initialAccess=*/false);
    return service.requestCount(Endpoint::RefreshToken) >= 2;
  })) << "the patience with a login is over before its time";
}

TEST_F(FacadeLinkage, saysWhichPageDidNotOpenAndGoesOnWithItsLink) {
  browser.fail();
  startLinked();
  ASSERT_TRUE(waitFor([&] { return delegate.runs == 1; }));
  facade().switchLogMode();
  facade().setupLinkage();
  facade().downloadNow(/*initialAccess=*/false);
  const auto waits = [&] { return !loggedLines(profile).filter(u"Login Wait"_s).isEmpty(); };
  for (int time = 0; time < 1000 * kSlowness && !waits(); ++time)
    QThread::msleep(5); // the event loop would bring the news of the page
  ASSERT_TRUE(waits());
  EXPECT_TRUE(waitFor([&] { return service.requestCount(Endpoint::RefreshToken) == 2; })) << "runs go on";
  QStringList expected{u"status 0"_s, u"linkage 1"_s, u"getLogin"_s};
  EXPECT_TRUE(waitForReports(expected));
  facade().closeLinkage();
  EXPECT_TRUE(waitForReports(expected << u"status 3"_s << u"result 5"_s << u"linkage 0"_s << u"logout"_s));
  EXPECT_EQ(loggedLines(profile).filter(u"nonce="_s), QStringList()) << "it is for the user alone";
}

TEST_F(FacadeLinkage, tellsOnceALoginThatCouldNotBeVerifiedHoldsAgainUnlessItIsOver) {
  const sandbox::LinkedToken linked = service.issueLinkedToken();
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(linked.idToken)
              && KaLinkageUtility::saveTokenCode(linked.tokenCode));
  platform::standardUserDefaults().setString(u"PollingErrorWaitTime"_s, u"1"_s);
  service.order(Endpoint::RefreshToken, {.status = 503});
  facade().initializeLinkageSetting();
  QStringList expected{u"status 0"_s, u"linkage 1"_s, u"linkage 1"_s};
  EXPECT_TRUE(waitForReports(expected));
  facade().notifyLinkHolds(1);
  facade().notifyLinkHolds(2); // no link of this process
  EXPECT_TRUE(waitForReports(expected << u"linkage 1"_s));
  facade().notifyLinkHolds(1);
  facade().closeLinkage();
  QCoreApplication::processEvents();
  EXPECT_EQ(delegate.reports, expected << u"status 3"_s << u"result 5"_s << u"linkage 0"_s);
}

TEST_F(FacadeLinkage, runsWhenTheComputerWakes) {
  const PrivateBus bus("DBUS_SYSTEM_BUS_ADDRESS");
  auto system = QDBusConnection::connectToBus(bus.address(), u"system"_s);
  ASSERT_TRUE(system.registerService(u"org.freedesktop.login1"_s));
  const sandbox::LinkedToken linked = service.issueLinkedToken();
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(linked.idToken)
              && KaLinkageUtility::saveTokenCode(linked.tokenCode));
  facade().listenForNews();
  facade().initializeLinkageSetting();
  EXPECT_TRUE(waitFor([&] {
    system.send(QDBusMessage::createSignal(u"/org/freedesktop/login1"_s, u"org.freedesktop.login1.Manager"_s,
                                           u"PrepareForSleep"_s)
                << false);
    return service.requestCount(Endpoint::RefreshToken) >= 2;
  }));
  QDBusConnection::disconnectFromBus(u"system"_s);
}

TEST_F(FacadeLinkage, hearsNoMoreOfALoginThatTheUserClosedOrReplaced) {
  service.order(Endpoint::Keys, {.kind = Fault::Kind::SlowBody, .times = -1});
  startLogin();
  EXPECT_EQ(delegate.reports, QStringList()) << "nothing waits for the verification";
  facade().closeLinkage();
  EXPECT_FALSE(facade().bLoggedIn());
  EXPECT_TRUE(browser.takeUrl());
  service.resetRequestCounts();
  startLogin();
  facade().setupLinkage();
  service.clearFaults();
  const QString token = signIn();
  facade().setIdCode(token);
  EXPECT_TRUE(waitForReports({u"status 3"_s, u"result 5"_s, u"linkage 0"_s, u"login 1"_s, u"linkage 1"_s}));
  EXPECT_EQ(facade().loadLinkageSetting(), token);
}

TEST_F(FacadeLinkage, saysOnceThatALoginCannotBeStoredAndGoesOn) {
  writeFile(profile.dataFolder() + u"/NORVALE INC/Downloaderpictora Shared"_s, "no folder");
  startLogin();
  QStringList expected{u"login 1"_s, u"linkage 1"_s, u"result 14"_s};
  EXPECT_TRUE(waitForReports(expected));
  EXPECT_EQ(facade().linkState(), KaLinkState::AwaitsFolders);
  const QString second = startLogin();
  EXPECT_TRUE(waitForReports(expected << u"login 1"_s << u"linkage 1"_s));
  EXPECT_EQ(facade().loadLinkageSetting(), second);
}

struct FacadeWithoutAppFolder : FacadeLinkage {
  FacadeWithoutAppFolder() : FacadeLinkage(u"/NORVALE INC/Downloaderpictora"_s) {}
};

TEST_F(FacadeWithoutAppFolder, saysSoAtStartBehindTheRestAndGoesOn) {
  const sandbox::LinkedToken linked = service.issueLinkedToken();
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(linked.idToken)
              && KaLinkageUtility::saveTokenCode(linked.tokenCode));
  facade().initializeLinkageSetting();
  EXPECT_TRUE(service.waitForRequests(Endpoint::ListDevices, 1, 20s));
  EXPECT_EQ(delegate.reports, (QStringList{u"status 0"_s, u"linkage 1"_s, u"result 14"_s}));
}

TEST(FacadeStart, sweepsWhatAKillLeftInTheAppFolder) {
  const TestProfile profile;
  const QStringList left =
      u"DownloadSettingData.plist RecentDownloadData Recent10GDownloadData RecentPreviewDownloadData"_s.split(u' ');
  for (const QString &name : left + QStringList{u"Notes"_s})
    writeFile(profile.appFolder() + u'/' + name + u".AbCdEf"_s, "x");
  static_cast<void>(KaModelFacade::sharedInstance());
  EXPECT_EQ(filesBelow(profile.appFolder()), QStringList{u"Notes.AbCdEf"_s});
}

TEST_F(FacadeLinkage, quitsAtOnceDuringAVerification) {
  service.order(Endpoint::Keys, {.kind = Fault::Kind::NoAnswer});
  startLogin();
  QElapsedTimer sinceQuit;
  sinceQuit.start();
  facade().endDownloadProcess();
  EXPECT_LT(sinceQuit.elapsed(), 1000 * kSlowness);
}

struct FacadeData : testing::Test {
  const TestProfile profile;
  KaModelFacade &facade = KaModelFacade::sharedInstance();
};

TEST_F(FacadeData, changesARecordOnlyWhereThereIsOneAndBringsItBack) {
  const QString key = u"user30days"_s;
  const KaDownloadData added{u"20240101/01"_s, {u"a"_s, u"a"_s}};
  for (const auto &before : {std::optional<KaDownloadData>(), {{u"19700101/00"_s, {}}}}) {
    if (before) facade.setDownloadDataUUID(key);
    EXPECT_EQ(facade.downloadData(key), before);
    facade.setDownloadDataAddContent(key, u"x"_s);
    facade.setDownloadDataNewDate(key, added.LastDateTime, u"a"_s);
    facade.setDownloadDataAddContent(key, u"a"_s);
  }
  facade.setDownloadDataUUID(key);
  facade.setDownloadData(u"another key"_s, u"20240101/01"_s, {u"b"_s});
  EXPECT_EQ(facade.downloadData(key), added) << "what is there stays";
  ASSERT_TRUE(facade.saveGetImageInfo(u"RecentDownloadData"_s, key));
  facade.setDownloadData(key, u"20250101/01"_s, {});
  EXPECT_TRUE(facade.loadGetImageInfo(u"RecentDownloadData"_s));
  EXPECT_EQ(facade.downloadData(key), added);
}

TEST_F(FacadeData, showsTheLastFailureUntilTheLinkHoldsOrARunEndsWellInSilenceToo) {
  for (const std::function<void()> &ending : std::initializer_list<std::function<void()>>{
           [&] { facade.notifyLinkHolds(1); }, [&] { facade.noteNothingNew(); },
           [&] { facade.setProcessingResult(KaResultCode::DownloadComplete, /*userTrigger=*/false); }}) {
    facade.noteUnsaved();
    facade.notifyLinkHolds(1);
    EXPECT_EQ(facade.snapshot().fault, KaFault{KaResultCode::Unexpected}) << "the new token is not on disk, either";
    facade.noteFaultCause(KaFaultCause::Refused, KaTargetStorage::LongTerm10G);
    facade.setProcessingResult(KaResultCode::LinkInvalid, /*userTrigger=*/false);
    EXPECT_EQ(facade.snapshot().fault, (KaFault{KaResultCode::LinkInvalid, KaFaultCause::Refused, true}));
    facade.setProcessingResult(KaResultCode::RetryLater, /*userTrigger=*/false);
    EXPECT_EQ(facade.snapshot().fault, KaFault{KaResultCode::RetryLater}) << "the cause was the other's";
    facade.noteUnanswered();
    EXPECT_EQ(facade.snapshot().fault, (KaFault{KaResultCode::Offline, KaFaultCause::NoAnswer}));
    facade.setEnableLoggin(false); // a run begins
    ending();
    EXPECT_EQ(facade.snapshot().fault, std::nullopt);
  }
}

TEST_F(FacadeData, startsWithTheDefaultSettingsAndKeepsChosenOnesAtOnce) {
  EXPECT_FALSE(facade.loadDownloadFolderSetting());
  EXPECT_EQ(facade.downloadOption(), defaultDownloadOption());
  const KaDownloadOption chosen{u"/a"_s, u"/b"_s, u"false"_s, u"true"_s, u"maybe"_s, 3};
  facade.setDownloadOption(chosen);
  EXPECT_EQ(loadDownloadOption(), chosen) << "the app folder is there from the start";
  const KaDownloadOption saved{u"/c"_s, u"/d"_s, u"false"_s, u"false"_s, u"false"_s, 2};
  ASSERT_TRUE(saveDownloadOption(saved));
  EXPECT_FALSE(facade.loadDownloadFolderSetting());
  EXPECT_EQ(facade.downloadOption(), saved);
}

TEST(Facade, needsNoNetworkWhereTheProxyForTheServiceIsOnThisComputer) {
  if (::unshare(CLONE_NEWNET) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0)
    GTEST_SKIP() << "this user may not be without a network";
  int noArguments = 0;
  const QCoreApplication application{noArguments, nullptr};
  const TestProfile profile;
  forgetDesktopProxies();
  KaModelFacade &facade = KaModelFacade::sharedInstance();
  for (const auto &[proxy, isEnough] :
       {std::pair("", false), std::pair("http://proxy.test:1", false), std::pair("http://127.0.0.1:1", true)}) {
    qputenv("https_proxy", proxy);
    platform::forgetProxies();
    EXPECT_TRUE(waitFor([&] { return facade.hasNetwork() == isEnough; })) << proxy;
    EXPECT_EQ(facade.snapshot().hasNetwork, isEnough) << proxy;
  }
  facade.endDownloadProcess();
  facade.joinDownloadProcess();
}

} // namespace
