#include "app/KaDownloadDelegate.h"
#include "app/KaModelFacade.h"
#include "identity/KaLinkageUtility.h"
#include "platform/Mutex.h"
#include "sandbox/Service.h"
#include "tests/support/FakeBrowser.h"
#include "tests/support/TestProfile.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QThread>
#include <QUrl>
#include <QUrlQuery>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using sandbox::Endpoint;
using sandbox::Fault;

namespace {

/// Notes every report, those of other threads than the one that made it with "(thread) " in front.
class RecordingDelegate final : public KaDownloadDelegate {
public:
  void onChangeStatus(KaModelFacade &, KaAppStatus status) override { note(u"status"_s, static_cast<int>(status)); }
  void onProcessingResult(KaModelFacade &, KaResultCode result, bool userTrigger) override {
    note(userTrigger ? u"answer"_s : u"result"_s, static_cast<int>(result));
  }
  void onCompleteLinkageSetting() override { note(u"login"_s, true); }
  void onSetEnableLogginMenu(bool enable) override { note(u"login menu"_s, enable); }
  void onFinishDownloadProcess() override { note(u"finished"_s, true); }
  void onChangeLinkage(bool linked) override { note(u"linkage"_s, linked); }

  [[nodiscard]] QStringList reports() const {
    const platform::MutexLock scope(lock);
    // Copied for good: a list that is shared and let go of outside the lock may still be appended to in place inside.
    return {noted.begin(), noted.end()};
  }
  [[nodiscard]] QStringList ownReports() const { return reports().filter(QRegularExpression(u"^[^(]"_s)); }

private:
  void note(const QString &report, int value) {
    const QString thread = QThread::currentThreadId() == ownThread ? QString() : u"(thread) "_s;
    const platform::MutexLock scope(lock);
    noted.append(u"%1%2 %3"_s.arg(thread, report).arg(value));
  }

  const Qt::HANDLE ownThread = QThread::currentThreadId();
  mutable platform::Mutex lock;
  QStringList noted KA_GUARDED_BY(lock);
};

class FacadeLinkage : public testing::Test {
protected:
  FacadeLinkage() {
    profile.writeUserDefaults(service.userDefaults());
    facade().setDlDelegate(&delegate);
  }
  ~FacadeLinkage() override {
    facade().endDownloadProcess();
    EXPECT_TRUE(waitFor([this] { return delegate.reports().contains(u"(thread) finished 1"_s); }));
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
  [[nodiscard]] bool waitForOwnReports(const QStringList &expected) const {
    return waitFor([&] { return delegate.ownReports().size() >= expected.size(); })
           && delegate.ownReports() == expected;
  }

  int noArguments = 0;
  const QCoreApplication application{noArguments, nullptr};
  const TestProfile profile;
  const FakeBrowser browser{profile};
  sandbox::Service service;
  RecordingDelegate delegate;
};

TEST_F(FacadeLinkage, asksForALinkOrWhenOneIsStored) {
  facade().setDlDelegate(nullptr);
  facade().initializeLinkageSetting(); // with nobody to tell
  facade().setDlDelegate(&delegate);
  facade().initializeLinkageSetting();
  EXPECT_FALSE(facade().bLoggedIn());
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(service.issueLinkedToken().idToken));
  facade().initializeLinkageSetting();
  EXPECT_EQ(delegate.ownReports(), (QStringList{u"result 10"_s, u"status 0"_s, u"linkage 1"_s}));
  EXPECT_TRUE(facade().bLoggedIn());
  EXPECT_TRUE(service.waitForRequests(Endpoint::RefreshToken, 1, 20s));
}

TEST_F(FacadeLinkage, storesALoginTellsSoInOrderAndClosesIt) {
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(u"old"_s) && KaLinkageUtility::saveTokenCode(u"old"_s));
  facade().setupLinkage();
  EXPECT_TRUE(facade().bLoggedIn());
  EXPECT_FALSE(KaLinkageUtility::loadLinkageSetting() || KaLinkageUtility::loadTokenCode()) << "of an older link";
  const QString token = signIn();
  facade().setIdCode(token);
  EXPECT_TRUE(waitForOwnReports({u"login 1"_s, u"linkage 1"_s}));
  EXPECT_EQ(facade().loadLinkageSetting(), token);
  EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), token);
  EXPECT_TRUE(KaLinkageUtility::existCodeVerifier());
  facade().setIdCode(token);
  EXPECT_TRUE(waitForOwnReports({u"login 1"_s, u"linkage 1"_s, u"result 16"_s})) << "a nonce counts once";

  facade().closeLinkage();
  EXPECT_EQ(delegate.ownReports().mid(3), (QStringList{u"status 3"_s, u"result 5"_s}));
  EXPECT_TRUE(browser.takeUrl().value_or(QString()).contains(u"/logout?"_s));
  EXPECT_FALSE(facade().bLoggedIn());
  EXPECT_FALSE(KaLinkageUtility::loadLinkageSetting() || KaLinkageUtility::existCodeVerifier());
  EXPECT_EQ(facade().loadLinkageSetting(), token) << "the token in memory stays";
}

TEST_F(FacadeLinkage, storesNothingOfALoginThatNobodyAskedForOrThatDoesNotHold) {
  facade().setIdCode(service.issueLinkedToken().idToken);
  EXPECT_TRUE(waitForOwnReports({u"result 16"_s}));
  facade().setupLinkage();
  service.setTokenFault(sandbox::TokenFault::BadSignature);
  facade().setIdCode(signIn());
  EXPECT_TRUE(waitForOwnReports({u"result 16"_s, u"result 16"_s}));
  EXPECT_EQ(facade().loadLinkageSetting(), std::nullopt);
}

TEST_F(FacadeLinkage, keepsALoginForWhichTheBrowserCallsTwice) {
  service.order(Endpoint::Keys, {.kind = Fault::Kind::Delay, .delay = 500ms});
  const QString token = startLogin();
  facade().setIdCode(token);
  EXPECT_TRUE(waitForOwnReports({u"login 1"_s, u"linkage 1"_s, u"result 16"_s}))
      << "the second has its verdict first: the nonce is gone";
  EXPECT_EQ(facade().loadLinkageSetting(), token);
}

TEST_F(FacadeLinkage, hearsNoMoreOfALoginThatANewOneReplaced) {
  service.order(Endpoint::Keys, {.kind = Fault::Kind::SlowBody});
  startLogin();
  facade().setupLinkage();
  service.clearFaults();
  const QString token = signIn();
  facade().setIdCode(token);
  EXPECT_TRUE(waitForOwnReports({u"login 1"_s, u"linkage 1"_s}));
  EXPECT_EQ(facade().loadLinkageSetting(), token);
}

TEST_F(FacadeLinkage, doesNotWaitForAVerificationAndDropsItWhenTheUserLogsOut) {
  service.order(Endpoint::Keys, {.kind = Fault::Kind::NoAnswer, .times = -1});
  startLogin();
  EXPECT_EQ(delegate.reports(), QStringList());
  facade().closeLinkage();
  service.clearFaults();
  facade().setIdCode(u"no token"_s);
  EXPECT_TRUE(waitForOwnReports({u"status 3"_s, u"result 5"_s, u"result 16"_s}));
  EXPECT_EQ(facade().loadLinkageSetting(), std::nullopt);
}

TEST_F(FacadeLinkage, runsAtOnceAfterALoginWhenAsked) {
  facade().initializeLinkageSetting();
  startLogin();
  ASSERT_TRUE(waitForOwnReports({u"result 10"_s, u"login 1"_s, u"linkage 1"_s}));
  facade().downloadNow(/*initialAccess=*/true);
  EXPECT_TRUE(waitFor([this] { return delegate.reports().contains(u"(thread) result 4"_s); }));
}

} // namespace
