#include "identity/KaLinkageUtility.h"
#include "tests/engine/EngineFixture.h"

#include <stdexcept>

using namespace Qt::StringLiterals;
using sandbox::Endpoint;
using sandbox::Fault;
using enum sandbox::Fault::Kind;

namespace {

class Processor : public ProcessorTest {
protected:
  /// Asks for a run until @p event has come @p times: a signal without a waiter is lost.
  [[nodiscard]] bool askUntil(const QString &event, int times = 1) {
    return waitFor([&] {
      processor->getContentsNow();
      return delegate.events().count(event) >= times;
    });
  }
  void logOut() {
    delegate.change([](auto &answers) { answers.loggedIn = false; });
    processor->deleteCredential();
  }
  /// What was told since the records were loaded or forgetEvents().
  QStringList told() const { return delegate.events().filter(QRegularExpression(u"^(?!load)"_s)); }

  const QString saved = u"save RecentDownloadData "_s + service.library().userId();
};

TEST_F(Processor, fillsTheFolderChecksThreeTimesMoreAndFetchesWhatIsNewLater) {
  delegate.change([](auto &answers) { answers.waits.exifRetry = std::chrono::hours(1); });
  addImages("A.JPG");
  ASSERT_TRUE(run(/*initialAccess=*/true));
  EXPECT_EQ(delegate.events(),
            (QStringList{u"load RecentDownloadData"_s, u"load Recent10GDownloadData"_s,
                         u"load RecentPreviewDownloadData"_s, u"enableLoggin 0"_s, u"saveLinkage"_s, u"result 4"_s,
                         u"status 1"_s, u"result 1"_s, u"status 0"_s, saved, u"enableLoggin 1"_s}));
  EXPECT_EQ(service.requestCount(Endpoint::ListDevices), 4);

  // Its metadata comes at the second attempt, whose wait the asking cuts short.
  service.order(Endpoint::Metadata, {.status = 503});
  service.resetRequestCounts();
  addImages("B.JPG");
  ASSERT_TRUE(askUntil(u"result 1"_s, 2));
  EXPECT_EQ(fetched(), names("B.JPG"));
  EXPECT_EQ(files(), names("2024_04_30/A.JPG 2024_04_30/B.JPG"));
}

TEST_F(Processor, goesOnAfterAFailedPassAndCountsAnewWhenAReCheckFindsSomething) {
  addImages("A.JPG");
  sandbox::LibraryObject unnamed = image(u"11"_s, u"B.JPG"_s);
  unnamed.fileNameMetadata.reset();
  add(unnamed);
  service.order(Endpoint::ObjectGet, {.status = 503});
  service.order(Endpoint::ListItems, {.kind = Delay});
  service.order(Endpoint::ListItems, {.kind = Body, .body = "<L/>", .times = 2});
  start();
  ASSERT_TRUE(delegate.waitForEvent(u"result 1"_s));
  EXPECT_EQ(service.requestCount(Endpoint::ListItems), 7);
  EXPECT_FALSE(delegate.events().contains(u"result 11"_s));
  EXPECT_EQ(logged(u"[NG] 010"_s).size(), 1);
  // The copy that stays unconfirmed is fetched again by the next run alone.
  ASSERT_TRUE(askUntil(u"result 1"_s, 2));
  EXPECT_EQ(fetched(), names("A.JPG A.JPG B.JPG B.JPG B.JPG B.JPG B.JPG B.JPG B.JPG B.JPG"));
  EXPECT_EQ(files(), names("2024_04_30/2024-04-30.JPG 2024_04_30/A.JPG"));
}

TEST_F(Processor, waitsForANewLinkAfterABadTokenAndTellsOnlyTheUserWhoAskedThatThereIsNothing) {
  KaLinkageUtility::saveCodeVerifier(u"verifier"_s);
  service.setTokenFault(sandbox::TokenFault::WrongNonce);
  ASSERT_TRUE(run());
  EXPECT_EQ(told(), (QStringList{u"enableLoggin 0"_s, u"result 17"_s, u"enableLoggin 1"_s}));
  EXPECT_EQ(service.requestCount(Endpoint::TokenCode), 1);
  delegate.forgetEvents();
  processor->startReceiving(/*initialAccess=*/false); // in a wait for the next run nothing would come of it
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));
  EXPECT_EQ(told(), (QStringList{u"enableLoggin 0"_s, u"saveLinkage"_s, u"status 0"_s, saved, u"enableLoggin 1"_s}));
  delegate.forgetEvents();
  ASSERT_TRUE(askUntil(u"result 3 by user"_s));
  EXPECT_FALSE(delegate.events().contains(u"status 0"_s));
}

TEST_F(Processor, reportsTroubleAndChoosesTheWait) {
  for (const auto &[endpoint, fault, event, seconds] :
       {std::tuple(Endpoint::Sts, Fault{.status = 403}, u"result 16"_s, u"1800"_s),
        {Endpoint::ListDevices, {.kind = DroppedConnection}, u"status 1"_s, u"180"_s},
        {Endpoint::SettingsObject, {.status = 503}, u"result 11"_s, u"1800"_s}}) {
    service.order(endpoint, fault);
    EXPECT_TRUE(run());
    QStringList expected{u"enableLoggin 0"_s, u"saveLinkage"_s, event, saved, u"enableLoggin 1"_s};
    // Without credentials it does not know the user whose record to save.
    if (endpoint == Endpoint::Sts) expected.removeAll(saved);
    EXPECT_EQ(told(), expected);
    EXPECT_TRUE(waitFor([&] { return logged(u"Polling Wait"_s).join(u' ').endsWith(u'=' + seconds); }));
    processor.reset();
    delegate.forgetEvents();
  }
}

TEST_F(Processor, waitsForALinkAfterALogOutWhileWaiting) {
  delegate.change([](auto &answers) { answers.saves = false; });
  ASSERT_TRUE(run());
  logOut();
  ASSERT_TRUE(waitFor([&] {
    processor->cancelPollingWait();
    return delegate.events().count(u"load RecentPreviewDownloadData"_s) >= 2;
  }));
  processor.reset();
  EXPECT_EQ(service.requestCount(Endpoint::RefreshToken), 1);
  EXPECT_EQ(delegate.events().count(u"enableLoggin 0"_s), 1);
  EXPECT_EQ(delegate.events().count(u"result 14"_s), 2) << "the record could be saved neither then nor at the end";
}

TEST_F(Processor, endsTheRunOfAClosedLinkWithoutAWordAndWaitsForANewOne) {
  addImages("A.JPG");
  processor = std::make_unique<KaDownloadProcessor>(delegate);
  for (const Endpoint endpoint : {Endpoint::RefreshToken, Endpoint::Sts, Endpoint::ListDevices, Endpoint::Metadata}) {
    service.resetRequestCounts();
    delegate.forgetEvents();
    service.order(endpoint, {.kind = Delay, .delay = std::chrono::hours(1)});
    delegate.change([](auto &answers) { answers.loggedIn = true; });
    processor->startReceiving(/*initialAccess=*/false);
    ASSERT_TRUE(service.waitForRequests(endpoint, 1, std::chrono::seconds(20)));
    logOut();
    service.clearFaults();
    ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));
    EXPECT_TRUE(delegate.events().filter(u"result "_s).isEmpty());
    EXPECT_EQ(delegate.events().contains(u"saveLinkage"_s), endpoint != Endpoint::RefreshToken);
    EXPECT_EQ(service.requestCount(Endpoint::RefreshToken), 1);
    EXPECT_TRUE(files().isEmpty());
  }
  // One that is made while the run of the old one ends is served at once.
  service.order(Endpoint::ListDevices, {.kind = NoAnswer});
  service.resetRequestCounts();
  delegate.change([](auto &answers) { answers.loggedIn = true; });
  processor->startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(service.waitForRequests(Endpoint::ListDevices, 1, std::chrono::seconds(20)));
  processor->deleteCredential();
  processor->startReceiving(/*initialAccess=*/true);
  service.clearFaults();
  EXPECT_TRUE(delegate.waitForEvent(u"result 4"_s));
}

/// Where the thread stands when the program quits: in a wait that the log tells of, else in a request.
struct Quitting {
  const char *name;
  QString wait;
  Endpoint endpoint;
  Fault fault;
  bool savesRecords;
};

class Quits : public Processor, public testing::WithParamInterface<Quitting> {};

TEST_P(Quits, withinASecondWithTheRecordsSaved) {
  const auto &[name, wait, endpoint, fault, savesRecords] = GetParam();
  addImages("10/A.JPG 11/B.JPG");
  delegate.change([](auto &answers) { answers.waits.reCheck = answers.waits.exifRetry = std::chrono::hours(1); });
  service.order(endpoint, fault);
  start();
  ASSERT_TRUE(waitFor([&] { return wait.isEmpty() ? service.requestCount(endpoint) > 0 : !logged(wait).isEmpty(); }));
  const QStringList before = files();
  const qsizetype begun = logged(u"GetContentLoop Start"_s).size();
  processor->endDownloadProcess();
  ASSERT_TRUE(delegate.waitForEvent(u"finish"_s, 1, kSlowness));
  processor.reset();
  const QString user = service.library().userId();
  const QStringList all{saved, u"save Recent10GDownloadData %1_(10G)"_s.arg(user),
                        u"save RecentPreviewDownloadData %1_(2K)"_s.arg(user)};
  const QStringList saves = delegate.events().filter(u"save "_s);
  EXPECT_EQ(saves.mid(std::max<qsizetype>(saves.size() - 3, 0)), savesRecords ? all : QStringList());
  EXPECT_EQ(files(), before);
  EXPECT_EQ(logged(u"GetContentLoop Start"_s).size(), begun);
}

INSTANTIATE_TEST_SUITE_P(
    Engine, Quits,
    testing::Values(Quitting{"waitingForALink", u"[NG] 003"_s, Endpoint::RefreshToken, {.status = 403}, false},
                    Quitting{"waitingForARun", u"Polling Wait"_s, Endpoint::ListItems, {Body, 200, "<L/>"}, true},
                    Quitting{"waitingForAReCheck", u"reCheck Wait"_s, Endpoint::Other, {}, true},
                    Quitting{"waitingForMetadata", u"[NG] 008"_s, Endpoint::Metadata, {.status = 503}, true},
                    Quitting{"refreshing", {}, Endpoint::RefreshToken, {.kind = NoAnswer}, false},
                    Quitting{"downloading", {}, Endpoint::ObjectGet, {.kind = SlowBody}, true}),
    [](const auto &row) { return row.param.name; });

TEST_F(Processor, endsByAnExceptionWithoutSaving) {
  delegate.change([this](auto &answers) {
    answers.onBLoggedIn = [this] {
      if (delegate.events().contains(u"enableLoggin 1"_s)) throw std::runtime_error("out of order");
    };
  });
  start();
  ASSERT_TRUE(delegate.waitForEvent(u"finish"_s));
  EXPECT_EQ(told().mid(3), (QStringList{saved, u"enableLoggin 1"_s, u"result 14 by user"_s, u"finish"_s}));
}

} // namespace
