#include "app/KaModelFacade.h"
#include "identity/KaLinkageUtility.h"
#include "sandbox/Service.h"
#include "tests/app/RecordingDelegate.h"
#include "tests/support/FakeBrowser.h"
#include "tests/support/TestProfile.h"

#include <QUrl>
#include <QUrlQuery>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using sandbox::Endpoint;
using sandbox::Fault;
using sandbox::TokenFault;

namespace {

class FacadeLinkage : public testing::Test {
protected:
  FacadeLinkage() {
    profile.writeUserDefaults(service.userDefaults());
    facade().setDlDelegate(&delegate);
  }
  ~FacadeLinkage() override {
    facade().endDownloadProcess();
    EXPECT_TRUE(waitFor([this] { return delegate.reports().contains(u"(thread) finished"_s); }));
    facade().setDlDelegate(nullptr);
  }

  static KaModelFacade &facade() { return KaModelFacade::sharedInstance(); }

  /// The user's part of a login: what the callback URL of the page brings.
  [[nodiscard]] QString signIn() {
    const QString callback = service.signIn(browser.takeUrl().value_or(QString()));
    return QUrlQuery(QUrl(callback)).queryItemValue(u"idToken"_s);
  }
  [[nodiscard]] bool waitForOwnReports(const QStringList &expected) const {
    return waitFor([&] { return delegate.ownReports().size() >= expected.size(); })
           && delegate.ownReports() == expected;
  }

  const TestProfile profile;
  const FakeBrowser browser{profile};
  sandbox::Service service;
  RecordingDelegate delegate;
};

TEST_F(FacadeLinkage, asksForALinkWhenNoneIsStored) {
  facade().initializeLinkageSetting();
  EXPECT_EQ(delegate.reports(), QStringList{u"result 10 false"_s});
  EXPECT_FALSE(facade().bLoggedIn());
}

TEST_F(FacadeLinkage, wakesTheThreadWhenOneIsStored) {
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(service.issueLinkedToken().idToken));
  facade().initializeLinkageSetting();
  EXPECT_EQ(delegate.ownReports(), QStringList({u"status 0"_s, u"linkage true"_s}));
  EXPECT_TRUE(facade().bLoggedIn());
  EXPECT_TRUE(service.waitForRequests(Endpoint::RefreshToken, 1, std::chrono::seconds(20)));
}

TEST_F(FacadeLinkage, storesALoginAndTellsSoInOrder) {
  facade().setupLinkage();
  EXPECT_TRUE(facade().bLoggedIn());
  const QString token = signIn();
  ASSERT_FALSE(token.isEmpty());
  facade().setIdCode(token);
  EXPECT_TRUE(waitForOwnReports({u"login complete"_s, u"linkage true"_s}));
  EXPECT_EQ(facade().loadLinkageSetting(), token);
  EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), token);
  EXPECT_TRUE(KaLinkageUtility::existCodeVerifier());
}

TEST_F(FacadeLinkage, replacesAnOldPairingWhenALoginStarts) {
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(u"old"_s));
  ASSERT_TRUE(KaLinkageUtility::saveTokenCode(u"old"_s));
  facade().setupLinkage();
  EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), std::nullopt);
  EXPECT_EQ(KaLinkageUtility::loadTokenCode(), std::nullopt);
}

TEST_F(FacadeLinkage, takesANonceOnce) {
  facade().setupLinkage();
  const QString token = signIn();
  facade().setIdCode(token);
  ASSERT_TRUE(waitForOwnReports({u"login complete"_s, u"linkage true"_s}));
  facade().setIdCode(token);
  EXPECT_TRUE(waitForOwnReports({u"login complete"_s, u"linkage true"_s, u"result 16 false"_s}));
}

TEST_F(FacadeLinkage, refusesACallbackThatNoLoginOfThisProcessAskedFor) {
  facade().setIdCode(service.issueLinkedToken().idToken);
  EXPECT_TRUE(waitForOwnReports({u"result 16 false"_s}));
  EXPECT_EQ(facade().loadLinkageSetting(), std::nullopt);
}

TEST_F(FacadeLinkage, storesNothingOfALoginThatDoesNotHold) {
  facade().setupLinkage();
  service.setTokenFault(TokenFault::BadSignature);
  facade().setIdCode(signIn());
  EXPECT_TRUE(waitForOwnReports({u"result 16 false"_s}));
  EXPECT_EQ(facade().loadLinkageSetting(), std::nullopt);
}

TEST_F(FacadeLinkage, doesNotWaitForTheVerification) {
  service.order(Endpoint::Keys, {.kind = Fault::Kind::NoAnswer, .times = -1});
  facade().setupLinkage();
  facade().setIdCode(signIn());
  ASSERT_TRUE(service.waitForRequests(Endpoint::Keys, 1, std::chrono::seconds(20)));
  EXPECT_TRUE(delegate.reports().isEmpty());
}

TEST_F(FacadeLinkage, keepsALoginForWhichTheBrowserCallsTwice) {
  service.order(Endpoint::Keys, {.kind = Fault::Kind::Delay, .delay = std::chrono::milliseconds(500)});
  facade().setupLinkage();
  const QString token = signIn();
  facade().setIdCode(token);
  ASSERT_TRUE(service.waitForRequests(Endpoint::Keys, 1, std::chrono::seconds(20)));
  facade().setIdCode(token);
  EXPECT_TRUE(waitForOwnReports({u"login complete"_s, u"linkage true"_s, u"result 16 false"_s}))
      << "the second has its verdict first: the nonce is gone";
  EXPECT_EQ(facade().loadLinkageSetting(), token);
}

TEST_F(FacadeLinkage, hearsNoMoreOfALoginThatANewOneReplaced) {
  service.order(Endpoint::Keys, {.kind = Fault::Kind::SlowBody});
  facade().setupLinkage();
  facade().setIdCode(signIn());
  ASSERT_TRUE(service.waitForRequests(Endpoint::Keys, 1, std::chrono::seconds(20)));

  facade().setupLinkage();
  service.clearFaults();
  const QString token = signIn();
  facade().setIdCode(token);
  EXPECT_TRUE(waitForOwnReports({u"login complete"_s, u"linkage true"_s}));
  EXPECT_EQ(facade().loadLinkageSetting(), token);
}

TEST_F(FacadeLinkage, dropsALoginWhenTheUserLogsOutMeanwhile) {
  service.order(Endpoint::Keys, {.kind = Fault::Kind::NoAnswer, .times = -1});
  facade().setupLinkage();
  facade().setIdCode(signIn());
  ASSERT_TRUE(service.waitForRequests(Endpoint::Keys, 1, std::chrono::seconds(20)));
  facade().closeLinkage();
  service.clearFaults();
  facade().setIdCode(u"no token"_s);
  EXPECT_TRUE(waitForOwnReports({u"status 3"_s, u"result 5 false"_s, u"result 16 false"_s}));
  EXPECT_EQ(facade().loadLinkageSetting(), std::nullopt);
}

TEST_F(FacadeLinkage, closesTheLink) {
  facade().setupLinkage();
  const QString token = signIn();
  facade().setIdCode(token);
  ASSERT_TRUE(waitForOwnReports({u"login complete"_s, u"linkage true"_s}));
  facade().closeLinkage();
  EXPECT_EQ(delegate.ownReports().mid(2), QStringList({u"status 3"_s, u"result 5 false"_s}));
  EXPECT_TRUE(browser.takeUrl().value_or(QString()).contains(u"/logout?"_s));
  EXPECT_FALSE(facade().bLoggedIn());
  EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), std::nullopt);
  EXPECT_FALSE(KaLinkageUtility::existCodeVerifier());
  EXPECT_EQ(facade().loadLinkageSetting(), token) << "the token in memory stays";
}

TEST_F(FacadeLinkage, runsAtOnceAfterALoginWhenAsked) {
  facade().initializeLinkageSetting();
  facade().setupLinkage();
  facade().setIdCode(signIn());
  ASSERT_TRUE(waitForOwnReports({u"result 10 false"_s, u"login complete"_s, u"linkage true"_s}));
  facade().downloadNow(/*initialAccess=*/true);
  EXPECT_TRUE(waitFor([this] { return delegate.reports().contains(u"(thread) result 4 false"_s); }));
}

TEST(FacadeWithoutDelegate, dropsItsReports) {
  const TestProfile profile;
  KaModelFacade &facade = KaModelFacade::sharedInstance();
  facade.initializeLinkageSetting();
  facade.setAppStatus(KaAppStatus::Error);
  facade.setEnableLoggin(true);
  facade.notifyDownloadProcessFinish();
  EXPECT_FALSE(facade.bLoggedIn());
}

} // namespace
