#include "identity/KaLink.h"

#include "identity/KaLinkageUtility.h"
#include "tests/support/FakeBrowser.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QRegularExpression>

#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

struct Link : testing::Test {
  /// As it is after an earlier run of the program.
  KaLinkNumber takeUpStored(KaLink &link) {
    EXPECT_TRUE(KaLinkageUtility::saveLinkageSetting(u"A"_s) && KaLinkageUtility::saveTokenCode(u"code A"_s));
    EXPECT_TRUE(link.load());
    return link.number();
  }
  [[nodiscard]] static QString remembered(const KaLink &link) {
    return link.idToken().value_or(u"-"_s) + u'|' + link.tokenCode(link.number()).value_or(u"-"_s);
  }
  [[nodiscard]] static QString stored() {
    return KaLinkageUtility::loadLinkageSetting().value_or(u"-"_s) + u'|'
           + KaLinkageUtility::loadTokenCode().value_or(u"-"_s) + u'|'
           + (KaLinkageUtility::existCodeVerifier() ? u"verifier"_s : u"-"_s);
  }

  /// A login whose page has opened.
  static void beginLogin(KaLink &link) {
    link.beginLogin();
    EXPECT_TRUE(waitFor([] { return KaLinkageUtility::existCodeVerifier(); }));
  }

  int noArguments = 0;
  const QCoreApplication application{noArguments, nullptr};
  const TestProfile profile;
  const FakeBrowser browser{profile};
  KaLink kept;
};

TEST_F(Link, isTakenUpFromItsFilesOnceAndHandsItsVerifierOutOnce) {
  EXPECT_FALSE(kept.load() || kept.forRun() || kept.isLinkedOrBeingSetUp() || kept.isCurrent(0));
  const KaLinkNumber number = takeUpStored(kept);
  EXPECT_EQ(kept.state(), KaLinkState::Linked);
  EXPECT_EQ(remembered(kept), u"A|code A");
  const auto run = kept.forRun();
  EXPECT_TRUE(run && run->number == number && run->idToken == u"A"_s);
  EXPECT_TRUE(KaLinkageUtility::saveLinkageSetting(u"another"_s) && kept.load());
  EXPECT_TRUE(kept.isCurrent(number) && kept.idToken() == u"A"_s) << "there is one already";
  EXPECT_TRUE(kept.isRepeated(u"A"_s));
  ASSERT_TRUE(KaLinkageUtility::saveCodeVerifier(u"of a login"_s));
  EXPECT_EQ(kept.takeCodeVerifier(number), std::nullopt) << "a link with a token code has had its own";
  KaLinkageUtility::deleteTokenCode();
  KaLink fresh;
  EXPECT_TRUE(fresh.load());
  EXPECT_EQ(fresh.takeCodeVerifier(fresh.number()), u"of a login"_s);
  ASSERT_TRUE(KaLinkageUtility::saveCodeVerifier(u"of another"_s));
  EXPECT_EQ(fresh.takeCodeVerifier(fresh.number()), std::nullopt);
}

TEST_F(Link, costsNothingWhenALoginIsBegunAndGivenUp) {
  const KaLinkNumber number = takeUpStored(kept);
  EXPECT_FALSE(kept.giveUpLogin()) << "there is none";
  beginLogin(kept);
  EXPECT_EQ(stored(), u"-|-|verifier");
  EXPECT_EQ(remembered(kept), u"A|code A");
  EXPECT_FALSE(kept.forRun()) << "none begins meanwhile";
  EXPECT_TRUE(kept.loginRest() > 9min && kept.loginRest() <= 10min);
  EXPECT_EQ(kept.takeCodeVerifier(number), std::nullopt) << "it is not this link's";
  EXPECT_TRUE(kept.storeTokenCode(number, u"next"_s) && kept.storeIdToken(number, u"A2"_s));
  EXPECT_EQ(stored(), u"A2|next|verifier") << "a run that was under way goes on";
  EXPECT_EQ(remembered(kept), u"A2|next");
  EXPECT_FALSE(kept.giveUpLogin() || kept.forRun()) << "it may still complete";
  EXPECT_TRUE(kept.useNonce() && kept.giveUpLogin() && kept.forRun());
}

TEST_F(Link, isReplacedByACompletedLoginAndAwaitsItsFolders) {
  const KaLinkNumber old = takeUpStored(kept);
  kept.beginLogin();
  const QString nonce = kept.useNonce().value_or(QString());
  EXPECT_TRUE(QRegularExpression(u"^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"_s).match(nonce).hasMatch());
  EXPECT_TRUE(browser.takeUrl().value_or(QString()).contains(u"&nonce="_s + nonce + u'&'));
  EXPECT_EQ(kept.useNonce(), std::nullopt);
  ASSERT_TRUE(kept.storeTokenCode(old, u"late"_s));
  EXPECT_FALSE(kept.isRepeated(u"B"_s));
  EXPECT_TRUE(kept.completeLogin(u"B"_s));
  EXPECT_TRUE(kept.isRepeated(u"B"_s) && !kept.isRepeated(u"A"_s));
  EXPECT_TRUE(kept.storeIdToken(kept.number(), u"B2"_s) && kept.isRepeated(u"B"_s));
  EXPECT_TRUE(kept.storeIdToken(kept.number(), u"B"_s));
  EXPECT_EQ(stored(), u"B|-|verifier") << "the old link's code does not go with the new token, though it was faster "
                                          "than the news that the page has opened";
  EXPECT_EQ(remembered(kept), u"B|-");
  EXPECT_TRUE(kept.state() == KaLinkState::AwaitsFolders && !kept.forRun() && kept.loginRest() == 0ms);
  kept.confirmFolders();
  EXPECT_TRUE(kept.state() == KaLinkState::Linked && kept.forRun()->number == kept.number() && kept.number() != old);
  kept.close();
  kept.confirmFolders();
  EXPECT_EQ(kept.state(), KaLinkState::Unlinked) << "nothing awaits its folders any more";
  EXPECT_EQ(kept.idToken(), u"B"_s);
}

TEST_F(Link, keepsNoRunWaitingForAPageThatDidNotOpenWhichIsStillGoodByHand) {
  takeUpStored(kept);
  browser.fail();
  QStringList notOpened;
  const auto note = [&](const QString &url) { notOpened << url; };
  // Of those that were begun anew, called back or closed meanwhile nothing is told.
  kept.beginLogin(note);
  EXPECT_TRUE(kept.useNonce());
  kept.beginLogin(note);
  kept.close();
  EXPECT_FALSE(kept.isLinkedOrBeingSetUp());
  takeUpStored(kept);
  kept.beginLogin(note);
  kept.beginLogin(note);
  EXPECT_TRUE(!kept.forRun() && notOpened.isEmpty()) << "nothing waits for the browser";
  ASSERT_TRUE(waitFor([&] { return !notOpened.isEmpty(); }));
  EXPECT_TRUE(kept.forRun() && kept.loginRest() == 0ms && kept.isLinkedOrBeingSetUp());
  EXPECT_EQ(stored(), u"-|-|-") << "no verifier of a page that did not open";
  EXPECT_TRUE(notOpened.last().contains(u"&nonce="_s + kept.useNonce().value_or(u"-"_s) + u'&'));
  EXPECT_TRUE(kept.completeLogin(u"B"_s));
  EXPECT_EQ(stored(), u"B|-|verifier");
  EXPECT_FALSE(waitFor([&] { return notOpened.size() > 1; }, 200ms));
}

TEST_F(Link, isNotBroughtBackByALateAnswerHoweverItEnded) {
  struct End {
    bool closes, beginsLogin;
    std::optional<QString> completes;
    QString memory, files;
  };
  for (const End &end :
       {End{true, false, {}, u"A|-"_s, u"-|-|-"_s}, End{true, true, {}, u"A|-"_s, u"-|-|verifier"_s},
        End{false, true, u"B"_s, u"B|-"_s, u"B|-|verifier"_s}, End{true, true, u"A"_s, u"A|-"_s, u"A|-|verifier"_s}}) {
    SCOPED_TRACE((end.memory + u' ' + end.files).toStdString());
    KaLink link;
    const KaLinkNumber number = takeUpStored(link);
    if (end.closes) link.close();
    if (end.beginsLogin) beginLogin(link);
    EXPECT_EQ(end.completes && link.completeLogin(*end.completes), end.completes.has_value());
    const KaLinkNumber next = link.number();
    QList<KaLinkNumber> told;
    for (const KaLinkNumber of : {number, next})
      link.whileCurrent(of, [&] { told << of; });
    EXPECT_EQ(told, next == 0 ? QList<KaLinkNumber>() : QList{next});
    EXPECT_FALSE(link.isCurrent(number) || link.tokenCode(number) || link.takeCodeVerifier(number));
    EXPECT_FALSE(link.storeIdToken(number, u"late"_s) || link.storeTokenCode(number, u"late"_s));
    EXPECT_EQ(link.number(), next);
    EXPECT_EQ(remembered(link), end.memory);
    EXPECT_EQ(stored(), end.files);
  }
}

TEST_F(Link, leavesNoFileWhenItEndsWhileAnswersAreBeingStored) {
  for (int round = 0; round < 20; ++round) {
    ASSERT_TRUE(kept.completeLogin(u"token"_s));
    const KaLinkNumber number = kept.number();
    std::atomic<int> times = 0;
    std::thread downloads([&] {
      while (kept.storeTokenCode(number, u"code"_s) && kept.storeIdToken(number, u"token"_s))
        ++times;
    });
    EXPECT_TRUE(waitFor([&] { return times > 0; }));
    kept.close();
    EXPECT_EQ(stored(), u"-|-|-") << round;
    downloads.join();
    EXPECT_EQ(stored(), u"-|-|-") << round;
  }
}

TEST_F(Link, endsOnlyAfterWhatIsBeingToldInItsNameAndIsReadMeanwhile) {
  const KaLinkNumber number = takeUpStored(kept);
  std::atomic<bool> inside = false;
  std::atomic<bool> ending = false;
  bool stayed = true;
  std::thread downloads([&] {
    kept.whileCurrent(number, [&] {
      inside = true;
      while (!ending)
        std::this_thread::yield();
      // Long enough for an end that does not wait to show.
      stayed = !waitFor([&] { return !kept.isCurrent(number); }, 50ms);
    });
  });
  EXPECT_TRUE(waitFor([&] { return inside.load(); }));
  EXPECT_TRUE(kept.forRun() && kept.state() == KaLinkState::Linked && remembered(kept) == u"A|code A"_s)
      << "nobody waits for whoever has the turn";
  ending = true;
  kept.close();
  EXPECT_FALSE(kept.isCurrent(number));
  downloads.join();
  EXPECT_TRUE(stayed);
}

} // namespace
