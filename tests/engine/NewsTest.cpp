#include "identity/KaLinkageUtility.h"
#include "tests/engine/EngineFixture.h"

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using sandbox::Endpoint;
using sandbox::Fault;
using sandbox::TokenFault;
using enum sandbox::Fault::Kind;

namespace {

/// The download thread under a clock that a test sets forward, as a sleep does, and asks how often it was looked at.
class News : public ProcessorTest {
protected:
  News() {
    delegate.change([](auto &answers) { answers.waits.pollingError = 1h; });
  }
  ~News() override { processor.reset(); }

  void begin(std::chrono::milliseconds lookInterval = 1h) {
    const auto now = [this] {
      const auto at = platform::BootClock::now() + std::chrono::hours(hoursAsleep);
      ++looks;
      return at;
    };
    processor = std::make_unique<KaDownloadProcessor>(delegate, link, KaWaitClock{now, lookInterval});
    processor->startReceiving(/*initialAccess=*/false);
  }
  [[nodiscard]] bool waitForRun(int number) { return delegate.waitForEvent(u"enableLoggin 1"_s, number); }
  [[nodiscard]] bool waitForLog(const QString &title, int times = 1) {
    return waitFor([&] { return logged(title).size() >= times; });
  }
  /// After a wait has been logged that looks at the clock all the time: until its end is settled.
  [[nodiscard]] bool waitHasBegun() {
    return waitFor([this, before = looks.load()] { return looks > before; });
  }
  /// Brings news, and waits until the thread has thought about it in its wait.
  [[nodiscard]] bool newsIsHeard() {
    const int before = looks;
    processor->newsFromOutside();
    return waitFor([&] { return looks > before; });
  }
  /// Results, statuses and "link holds" so far.
  [[nodiscard]] QStringList told() const {
    return delegate.events().filter(QRegularExpression(u"^(result|status|link)"_s));
  }
  [[nodiscard]] int runs() const { return int(delegate.events().count(u"enableLoggin 0"_s)); }
  /// An image that the ordinary storage's record has left behind.
  void offerToTheLongTermStorageAlone() {
    delegate.forgetTaken();
    takeLongTermStorageToo();
    delegate.change(
        [this](auto &answers) { answers.records[service.library().userId()].LastDateTime = u"20240601/00"_s; });
    addImages("A.JPG");
  }
  void orderFor(Endpoint endpoint, int atRequest, const Fault &fault) {
    if (atRequest > 1) service.order(endpoint, {.kind = Delay, .times = atRequest - 1});
    service.order(endpoint, fault);
  }

  std::atomic<int> hoursAsleep = 0;
  std::atomic<int> looks = 0;
};

struct Cause {
  const char *name;
  Endpoint endpoint = Endpoint::RefreshToken;
  Fault fault{};
  std::optional<TokenFault> token{};
};

class PassingCause : public News, public testing::WithParamInterface<Cause> {
protected:
  void meet(int times) {
    Fault fault = GetParam().fault;
    fault.times = times;
    GetParam().token ? service.setTokenFault(*GetParam().token, times) : service.order(GetParam().endpoint, fault);
  }
};

TEST_P(PassingCause, isToldOnceAndHealsByItself) {
  delegate.change([](auto &answers) { answers.waits.pollingError = 1ms; });
  if (GetParam().endpoint == Endpoint::TokenCode) {
    link.completeLogin(signIn());
    link.confirmFolders();
  }
  meet(3);
  delegate.change([this](auto &answers) {
    answers.onEvent = [this](const QString &event) {
      if (event != u"result 17" || GetParam().endpoint != Endpoint::TokenCode) return;
      EXPECT_TRUE(KaLinkageUtility::existCodeVerifier()) << "a kill would lose the link";
    };
  });
  begin();
  ASSERT_TRUE(delegate.waitForEvent(u"status 0"_s));
  EXPECT_EQ(told(), (QStringList{u"result 17"_s, u"link holds"_s, u"status 0"_s}));
  EXPECT_EQ(delegate.answers().cause, KaFaultCause::NoAnswer);
  EXPECT_TRUE(delegate.answers().onlookers.join(u'|').startsWith(u"wait|looking|wait 1|looking|wait 1|looking|"_s));
  EXPECT_EQ(runs(), 4);
}

INSTANTIATE_TEST_SUITE_P(
    Engine, PassingCause,
    testing::Values(Cause{"dropped", Endpoint::RefreshToken, {.kind = DroppedConnection}},
                    Cause{"unavailable", Endpoint::RefreshToken, {.status = 503}},
                    Cause{"missing", Endpoint::RefreshToken, {.status = 404}},
                    Cause{"redirect", Endpoint::RefreshToken, {.status = 302}},
                    Cause{"empty", Endpoint::RefreshToken, {.kind = EmptyBody}},
                    Cause{"portal", Endpoint::RefreshToken, {.kind = Body, .body = "<html>Welcome</html>"}},
                    Cause{"portalOfJson", Endpoint::RefreshToken, {.kind = Body, .body = R"({"login":"required"})"}},
                    Cause{.name = "noTokenCode", .token = TokenFault::MissingTokenCode},
                    Cause{.name = "clock", .token = TokenFault::Expired},
                    Cause{"configuration", Endpoint::Configuration, {.status = 403}},
                    Cause{"discovery", Endpoint::Discovery, {.kind = MalformedBody}},
                    Cause{"keys", Endpoint::Keys, {.status = 401}},
                    Cause{"tokenCode", Endpoint::TokenCode, {.status = 503}}),
    [](const auto &row) { return row.param.name; });

class Refusal : public News, public testing::WithParamInterface<std::variant<int, TokenFault>> {};

TEST_P(Refusal, waitsForANewLinkWhateverTheNews) {
  delegate.change([](auto &answers) { answers.waits.pollingError = 1ms; });
  const auto &refused = GetParam();
  if (const int *const status = std::get_if<int>(&refused)) {
    service.order(Endpoint::RefreshToken, {.status = *status});
  } else {
    service.setTokenFault(std::get<TokenFault>(refused));
  }
  begin();
  ASSERT_TRUE(waitForRun(1));
  processor->newsFromOutside();
  // What wakes that wait loads the records anew.
  ASSERT_TRUE(waitFor([&] {
    processor->startReceiving(/*initialAccess=*/false);
    return delegate.events().count(u"load RecentDownloadData"_s) == 2;
  }));
  EXPECT_EQ(told().mid(0, 1), QStringList{u"result 17"_s});
  EXPECT_EQ(delegate.answers().cause, KaFaultCause::Refused);
  EXPECT_EQ(delegate.answers().onlookers.mid(0, 3), (QStringList{u"wait"_s, u"looking"_s, u"wait"_s}));
  EXPECT_LE(runs(), 2);
}

INSTANTIATE_TEST_SUITE_P(Engine, Refusal,
                         testing::Values(400, 401, 403, TokenFault::WrongNonce, TokenFault::MissingNonce,
                                         TokenFault::MissingIdToken, TokenFault::BadSignature, TokenFault::WrongIssuer,
                                         TokenFault::WrongAudience, TokenFault::AlgorithmNone,
                                         TokenFault::UnknownKeyId));

TEST_F(News, tellsAUserWhoAsksAgainOfAFailureThatIsKnown) {
  service.order(Endpoint::RefreshToken, {.status = 503, .times = 2});
  begin();
  ASSERT_TRUE(delegate.waitForEvent(u"result 17"_s));
  ASSERT_TRUE(waitFor([&] {
    processor->getContentsNow();
    return told().contains(u"result 3 by user"_s);
  }));
  EXPECT_EQ(told().mid(0, 3), (QStringList{u"result 17"_s, u"result 17 by user"_s, u"link holds"_s}));
}

TEST_F(News, ofTroubleIsToldAnewOnceARefreshHasSucceeded) {
  delegate.change([](auto &answers) { answers.waits.pollingNormal = answers.waits.pollingError = 1ms; });
  for (const Fault &fault : {Fault{.status = 503, .times = 2}, Fault{.kind = Delay}, Fault{.status = 503, .times = 2}})
    service.order(Endpoint::RefreshToken, fault);
  begin();
  EXPECT_TRUE(delegate.waitForEvent(u"result 17"_s, 2, 5 * kSlowness));
  ASSERT_TRUE(service.waitForRequests(Endpoint::RefreshToken, 6, 20s));
  EXPECT_EQ(delegate.events().count(u"result 17"_s), 2);
}

TEST_F(News, wakesAWaitForTheNextRunOncePerErrorPollingWait) {
  begin();
  ASSERT_TRUE(waitForLog(u"Polling Wait"_s));
  processor->newsFromOutside();
  ASSERT_TRUE(waitForLog(u"Polling Wait"_s, 2));
  processor->newsFromOutside();
  EXPECT_FALSE(delegate.waitForEvent(u"enableLoggin 0"_s, 3, 1));
  hoursAsleep = 1; // what came too early counts as soon as it may
  processor->newsFromOutside();
  EXPECT_TRUE(waitForRun(3));
}

TEST_F(News, isNotNeededForATimeThatIsOver) {
  begin(/*lookInterval=*/1ms);
  ASSERT_TRUE(waitForLog(u"Polling Wait"_s) && waitHasBegun());
  hoursAsleep = 1;
  EXPECT_TRUE(waitForRun(2)) << "the half hour was slept away";
}

TEST_F(News, endsNoReCheckWaitButThatItsTimeIsOver) {
  addImages("A.JPG");
  delegate.change([](auto &answers) { answers.waits.reCheck = 1h; });
  begin();
  ASSERT_TRUE(waitForLog(u"reCheck Wait"_s));
  processor->newsFromOutside();
  EXPECT_FALSE(service.waitForRequests(Endpoint::ListDevices, 2, 300ms));
  hoursAsleep = 2;
  processor->newsFromOutside();
  EXPECT_TRUE(service.waitForRequests(Endpoint::ListDevices, 2, 20s));
}

TEST_F(News, ofARunThatFailedCountsAndOfOneThatHadItsAnswersDoesNot) {
  for (const bool fails : {true, false}) {
    if (fails) service.order(Endpoint::Sts, {.status = 503});
    delegate.forgetEvents();
    delegate.change([&](auto &answers) {
      answers.onEvent = [this, end = fails ? u"result 11"_s : u"status 0"_s](const QString &event) {
        if (event == end && runs() == 1) processor->newsFromOutside();
      };
    });
    begin();
    EXPECT_EQ(delegate.waitForEvent(u"enableLoggin 0"_s, 2, fails ? 20 : 1), fails);
    processor.reset();
  }
}

TEST_F(News, ofANetworkEndsASilentWaitForOneInWhichAUserIsToldAlone) {
  delegate.change([](auto &answers) { answers.hasNetwork = false; });
  begin();
  ASSERT_TRUE(waitForLog(u"Network Wait"_s));
  ASSERT_TRUE(newsIsHeard());
  EXPECT_EQ(told(), QStringList());
  processor->getContentsNow();
  ASSERT_TRUE(delegate.waitForEvent(u"result 9 by user"_s));
  ASSERT_TRUE(newsIsHeard());
  EXPECT_EQ(service.requests().size(), 0);
  EXPECT_EQ(delegate.answers().onlookers, (QStringList{u"wait"_s, u"wait"_s})) << "for a link, and for a network";
  delegate.change([](auto &answers) { answers.hasNetwork = true; });
  processor->newsFromOutside();
  ASSERT_TRUE(waitForRun(1));
  EXPECT_EQ(told(), (QStringList{u"result 9 by user"_s, u"link holds"_s, u"status 0"_s}));
  EXPECT_EQ(logged(u"Network Wait"_s).size(), 1);
}

TEST_F(News, isNotNeededToSeeANetworkNorToLogOutOrQuitWithoutOne) {
  delegate.change([](auto &answers) { answers.hasNetwork = false; });
  begin(/*lookInterval=*/1ms);
  ASSERT_TRUE(waitForLog(u"Network Wait"_s));
  delegate.change([](auto &answers) { answers.hasNetwork = true; });
  ASSERT_TRUE(waitForLog(u"Polling Wait"_s));
  delegate.change([](auto &answers) { answers.hasNetwork = false; });
  begin();
  ASSERT_TRUE(waitForLog(u"Network Wait"_s, 2));
  link.close();
  processor->deleteCredential();
  ASSERT_TRUE(waitFor([&] {
    processor->cancelPollingWait();
    return delegate.events().count(u"load RecentDownloadData"_s) >= 3;
  })) << "it waits for a link";
  ASSERT_TRUE(KaLinkageUtility::saveCodeVerifier(u"of the login"_s));
  QFile verifier(profile.dataFolder() + u"/NORVALE INC/Downloaderpictora Shared/PairingInfo/tmpFile"_s);
  ASSERT_TRUE(verifier.open(QFile::ReadOnly));
  link.completeLogin(service.issueLinkedToken().idToken);
  link.confirmFolders();
  processor->startReceiving(/*initialAccess=*/true);
  ASSERT_TRUE(waitForLog(u"Network Wait"_s, 3));
  processor->endDownloadProcess();
  EXPECT_TRUE(delegate.waitForEvent(u"finish"_s, 2, kSlowness));
  struct stat facts = {};
  EXPECT_TRUE(::fstat(verifier.handle(), &facts) == 0 && facts.st_nlink == 1)
      << "it stays where it is, for the next process to hand in";
}

/// A renewal that fails before a re-check: the third of a run whose credentials always expire.
TEST_F(News, comesBackFromARenewalThatFailsBeforeAReCheck) {
  delegate.change([](auto &answers) { answers.waits.pollingError = 1ms; });
  takeLongTermStorageToo();
  service.setCredentialLifetime(300s);
  addImages("A.JPG");
  orderFor(Endpoint::RefreshToken, 3, {.status = 503, .times = 2});
  begin();
  ASSERT_TRUE(delegate.waitForEvent(u"status 0"_s));
  EXPECT_EQ(told(), (QStringList{u"status 1"_s, u"result 17"_s, u"link holds"_s, u"status 0"_s}));
  ASSERT_TRUE(waitForLog(u"Polling Wait"_s, 3));
  EXPECT_EQ(logged(u"Start 10G Storage Download"_s).size(), 1) << "not after a failure";
  EXPECT_EQ(delegate.events().count(u"save RecentDownloadData "_s + service.library().userId()), 3);
}

TEST_F(News, comesBackFromARenewalThatFailsBeforeAnImage) {
  offerToTheLongTermStorageAlone();
  service.setCredentialLifetime(300s);
  orderFor(Endpoint::RefreshToken, 3, {.status = 503});
  service.order(Endpoint::ObjectTagging, {.status = 500}); // else the tag would make the pass forget it
  delegate.change([](auto &answers) { answers.waits.pollingError = 1ms; });
  begin();
  ASSERT_TRUE(delegate.waitForEvent(u"result 2"_s));
  EXPECT_EQ(told().mid(0, 7), (QStringList{u"status 0"_s, u"status 1"_s, u"result 11"_s, u"link holds"_s, u"status 0"_s,
                                           u"status 1"_s, u"result 2"_s}));
}

TEST_F(News, endsARunThatLosesTheNetworkBeforeAReCheckInSilenceUnlessTheUserAsks) {
  delegate.change([](auto &answers) {
    answers.waits.reCheck = 1h;
    answers.waits.pollingError = 1ms;
  });
  addImages("A.JPG");
  service.setCredentialLifetime(300s);
  begin(/*lookInterval=*/1ms);
  ASSERT_TRUE(waitForLog(u"reCheck Wait"_s) && waitHasBegun());
  delegate.change([](auto &answers) { answers.hasNetwork = false; });
  hoursAsleep = 2;
  ASSERT_TRUE(waitForLog(u"Network Wait"_s));
  EXPECT_EQ(told(), (QStringList{u"status 1"_s, u"status 0"_s, u"status 0"_s}));

  addImages("B.JPG");
  delegate.change([](auto &answers) { answers.hasNetwork = true; });
  ASSERT_TRUE(waitForLog(u"reCheck Wait"_s, 2) && waitHasBegun());
  delegate.change([](auto &answers) { answers.hasNetwork = false; });
  processor->getContentsNow();
  ASSERT_TRUE(delegate.waitForEvent(u"result 9 by user"_s));
  delegate.change([](auto &answers) { answers.hasNetwork = true; });
  EXPECT_TRUE(delegate.waitForEvent(u"link holds"_s));
}

TEST_F(News, ofANetworkThatIsAPortalTellsOnceThoughTheUserWasToldOfNone) {
  delegate.change([](auto &answers) {
    answers.hasNetwork = false;
    answers.waits.pollingError = 1ms;
  });
  begin();
  ASSERT_TRUE(waitForLog(u"Network Wait"_s));
  processor->getContentsNow();
  ASSERT_TRUE(delegate.waitForEvent(u"result 9 by user"_s));
  service.order(Endpoint::RefreshToken, {.status = 302, .times = 3});
  delegate.change([](auto &answers) { answers.hasNetwork = true; });
  processor->newsFromOutside();
  ASSERT_TRUE(delegate.waitForEvent(u"status 0"_s));
  EXPECT_EQ(told(), (QStringList{u"result 9 by user"_s, u"result 17"_s, u"link holds"_s, u"status 0"_s}));
}

TEST_F(News, ofAClockThatIsFarOffIsTheCauseOfWhatIsRefusedForItsTime) {
  delegate.change([](auto &answers) { answers.waits.pollingError = 1ms; });
  service.setClockAhead(-3h);
  begin();
  ASSERT_TRUE(delegate.waitForEvent(u"result 17"_s));
  EXPECT_EQ(delegate.answers().cause, KaFaultCause::WrongClock) << "of a token that is too old, so says this clock";
  service.setClockAhead(0h);
  ASSERT_TRUE(delegate.waitForEvent(u"status 0"_s));
  processor.reset();
  offerToTheLongTermStorageAlone();
  service.setClockAhead(20min);
  begin();
  ASSERT_TRUE(delegate.waitForEvent(u"result 16"_s));
  EXPECT_EQ(delegate.answers().cause, KaFaultCause::WrongClock) << "of a signature from another time";
  EXPECT_EQ(delegate.answers().storage, KaTargetStorage::LongTerm10G);
  processor.reset();
  delegate.change([](auto &answers) { answers.waits.pollingError = 1h; });
  service.order(Endpoint::RefreshToken, {.status = 503});
  begin();
  ASSERT_TRUE(delegate.waitForEvent(u"result 17"_s, 2));
  EXPECT_EQ(delegate.answers().cause, KaFaultCause::NoAnswer) << "whatever the clock shows";
  processor.reset();
  service.setClockAhead(0h);
  service.order(Endpoint::Sts, {.status = 403});
  begin();
  ASSERT_TRUE(delegate.waitForEvent(u"result 16"_s, 2));
  EXPECT_EQ(delegate.answers().cause, KaFaultCause::Refused);
}

TEST_F(News, isNoneOfTheLinkWhenCredentialsEndInTheMiddleOfARun) {
  service.setCredentialLifetime(0s);
  service.order(Endpoint::ListDevices, {.status = 403});
  begin();
  ASSERT_TRUE(waitForRun(1));
  EXPECT_EQ(told(), QStringList{u"status 1"_s});
  EXPECT_TRUE(waitFor([this] { return delegate.answers().onlookers.endsWith(u"wait 3600000"_s); }));
  EXPECT_TRUE(delegate.answers().onlookers.contains(u"unanswered"_s));
  processor.reset();

  // A renewal that costs the credentials: what the pass asks for afterwards is refused unasked.
  delegate.forgetEvents();
  service.resetRequestCounts();
  service.setCredentialLifetime(300s);
  offerToTheLongTermStorageAlone();
  orderFor(Endpoint::Sts, 3, {.status = 503, .times = -1});
  begin();
  ASSERT_TRUE(waitForRun(1));
  EXPECT_EQ(told(), (QStringList{u"status 0"_s, u"status 1"_s, u"status 1"_s}));
}

} // namespace
