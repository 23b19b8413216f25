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
    link.close();
    processor->deleteCredential();
  }
  /// Links to what @p idToken is of, as the facade does.
  void linkTo(const QString &idToken) {
    link.completeLogin(idToken);
    link.confirmFolders();
    processor->startReceiving(/*initialAccess=*/true);
  }
  [[nodiscard]] bool waitForRequest(Endpoint endpoint, int count = 1) {
    return service.waitForRequests(endpoint, count, std::chrono::seconds(20));
  }
  /// The endpoints asked since the counts were reset, but for those that a verification asks.
  [[nodiscard]] QList<Endpoint> asked() const {
    QList<Endpoint> endpoints;
    for (const sandbox::RequestRecord &request : service.requests())
      if (request.host != u"idp.localhost" && request.endpoint != Endpoint::Configuration)
        endpoints << request.endpoint;
    return endpoints;
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
                         u"load RecentPreviewDownloadData"_s, u"enableLoggin 0"_s, u"result 4"_s, u"status 1"_s, saved,
                         u"result 1"_s, u"status 0"_s, saved, u"enableLoggin 1"_s}));
  EXPECT_EQ(service.requestCount(Endpoint::ListDevices), 4);
  const QString check = u"|looking|looking|looked"_s;
  EXPECT_TRUE(delegate.answers().onlookers.join(u'|').startsWith(u"wait|looking|looking|looked|pass 1|file A.JPG"_s
                                                                 + check + check + check));

  // Its metadata comes at the second attempt, whose wait the asking cuts short.
  service.order(Endpoint::Metadata, {.status = 503});
  service.resetRequestCounts();
  addImages("B.JPG");
  ASSERT_TRUE(askUntil(u"result 1"_s, 2));
  EXPECT_EQ(fetched(), names("B.JPG"));
  EXPECT_EQ(files(), names("2024_04_30/A.JPG 2024_04_30/B.JPG"));
}

TEST_F(Processor, asksInAFirstAndASecondRunWithoutFaultsForTheGivenThingsInTheirOrder) {
  delegate.change([](auto &answers) {
    answers.option.checkBoxDownloadMetadata = u"true"_s;
    answers.waits.pollingNormal = std::chrono::milliseconds(1);
  });
  takeLongTermStorageToo(path(u"10G"_s));
  sandbox::LibraryObject ordinary = image(u"10"_s, u"A.JPG"_s);
  ordinary.tags.insert(u"x-strata-storage-period"_s, u"30"_s);
  add(ordinary);
  sandbox::LibraryObject expanded = image(u"11"_s, u"B.JPG"_s);
  expanded.expandBody = QByteArray(7000, 'e');
  add(expanded);
  start();
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s, 2));
  processor.reset();

  QString requests;
  for (const Endpoint endpoint : asked())
    requests += sandbox::endpointName(endpoint) + u' ';
  // A run refreshes the token for either part.
  const QString twoRuns = u"RefreshToken "_s + requests.split(u"RefreshToken "_s).mid(1, 4).join(u"RefreshToken "_s);
  EXPECT_EQ(twoRuns, u"RefreshToken Sts ListDevices SettingsObject ListItems "
                     "ObjectHead Metadata ObjectGet ObjectHead Metadata ObjectGet LogEvents "
                     "ListDevices SettingsObject ListItems ListDevices SettingsObject ListItems "
                     "ListDevices SettingsObject ListItems "
                     "RefreshToken Sts ListDevices ListItems "
                     "ObjectTagging ObjectTagging Metadata ObjectGet LogEvents PreviewList "
                     "RefreshToken Sts ListDevices SettingsObject ListItems "
                     "RefreshToken Sts ListDevices ListItems ObjectTagging PreviewList "_s);
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
  ASSERT_TRUE(askUntil(u"result 3 by user"_s));
  EXPECT_EQ(fetched(), names("A.JPG A.JPG B.JPG B.JPG B.JPG B.JPG")) << "what has come whole needs no name";
  EXPECT_EQ(files(), names("2024_04_30/2024-04-30.JPG 2024_04_30/A.JPG"));
}

TEST_F(Processor, waitsForANewLinkAfterABadTokenAndTellsOnlyTheUserWhoAskedThatThereIsNothing) {
  service.setTokenFault(sandbox::TokenFault::WrongNonce);
  ASSERT_TRUE(run());
  EXPECT_EQ(told(), (QStringList{u"enableLoggin 0"_s, u"result 17"_s, u"enableLoggin 1"_s}));
  delegate.forgetEvents();
  processor->startReceiving(/*initialAccess=*/false); // in a wait for the next run nothing would come of it
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));
  EXPECT_EQ(told(), (QStringList{u"enableLoggin 0"_s, u"link holds"_s, u"status 0"_s, saved, u"enableLoggin 1"_s}));
  delegate.forgetEvents();
  ASSERT_TRUE(askUntil(u"result 3 by user"_s));
  EXPECT_FALSE(delegate.events().contains(u"status 0"_s));
}

TEST_F(Processor, keepsAWishThatComesWhileARunEnds) {
  delegate.change([this](auto &answers) {
    answers.onEvent = [this](const QString &event) {
      // The run is over, and the wait for the next one has not begun.
      if (event == u"enableLoggin 1" && delegate.events().count(event) == 1) processor->getContentsNow();
    };
  });
  start();
  EXPECT_TRUE(delegate.waitForEvent(u"result 3 by user"_s));
}

TEST_F(Processor, tellsWhatTheSettingsSayAlsoWhenALaterStepOfTheListingFails) {
  const std::optional<QByteArray> none;
  for (const auto &[document, offers10G, newVersion] :
       {std::tuple(none, false, false),
        {R"({"isEnableDownload10GStorage":null,"applicationAliasIds":1})", true, false},
        {R"({"isEnableDownload10GStorage":1,"kaLatestVersion":"99.0.0"})", true, true},
        {R"({"kaLatestVersion":"99.0.0"})", false, true},
        {R"({"isEnableDownload10GStorage":1,"kaLatestVersion":"0.9.9"})", true, false}})
    for (const bool fails : {false, true}) {
      addImages("A.JPG");
      service.library().setSettingsObject(document);
      if (fails) service.order(Endpoint::ListItems, {.status = 403, .times = -1});
      delegate.forgetEvents();
      ASSERT_TRUE(run());
      EXPECT_EQ(delegate.events().contains(u"result 24"_s), newVersion);
      EXPECT_EQ(delegate.events().contains(u"result 16"_s), fails);
      EXPECT_LE(delegate.events().indexOf(u"result 24"_s),
                delegate.events().indexOf(fails ? u"result 16"_s : u"status 1"_s));
      EXPECT_EQ(delegate.answers().offers10GStorage, offers10G);
      processor.reset();
      service.clearFaults();
      delegate.forgetTaken();
    }
}

TEST_F(Processor, tellsOfANewVersionOnceAProcessAsSoonAsThatCanBeRead) {
  addImages("A.JPG"); // so that there are re-checks
  service.library().setSettingsObject(R"({"kaLatestVersion":"99.0.0"})");
  service.order(Endpoint::SettingsObject, {.status = 503});
  service.order(Endpoint::SettingsObject, {.kind = Body, .body = "{}"}); // which says nothing of it
  ASSERT_TRUE(run() && askUntil(u"result 1"_s) && askUntil(u"result 3 by user"_s));
  EXPECT_EQ(delegate.events().count(u"result 24"_s), 1);
}

TEST_F(Processor, reportsTroubleAndChoosesTheWait) {
  for (const auto &[endpoint, fault, event, seconds] :
       {std::tuple(Endpoint::Sts, Fault{.status = 403}, u"result 16"_s, u"1800"_s),
        {Endpoint::ListDevices, {.kind = DroppedConnection}, u"status 1"_s, u"180"_s},
        {Endpoint::SettingsObject, {.status = 503}, u"result 11"_s, u"1800"_s}}) {
    service.order(endpoint, fault);
    EXPECT_TRUE(run());
    QStringList expected{u"enableLoggin 0"_s, event, saved, u"enableLoggin 1"_s};
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

/// A run whose link ends while a request of it is under way, whose answer comes all the same.
class OldLink : public Processor, public testing::WithParamInterface<Endpoint> {
protected:
  /// Starts in a way that leads to a request for @p endpoint: a verifier is exchanged for a fresh login alone.
  void startBy(Endpoint endpoint) {
    const QString idToken = endpoint == Endpoint::TokenCode ? signIn() : QString();
    start();
    if (!idToken.isEmpty()) linkTo(idToken);
  }
};

TEST_P(OldLink, endsItsRunWithoutAWordAndIsNotBroughtBackByItsLateAnswer) {
  struct End {
    bool isClosed, isLoginBegun;
    const char *files;
  };
  addImages("A.JPG");
  for (const End &end : {End{true, false, ""}, End{true, true, "tmpFile"}, End{false, false, "PairingInfo"}}) {
    service.order(GetParam(), {.kind = Delay, .delay = std::chrono::hours(1)});
    service.resetRequestCounts();
    processor ? linkTo(signIn()) : startBy(GetParam());
    ASSERT_TRUE(waitForRequest(GetParam()));
    delegate.forgetEvents();
    delegate.change([](auto &answers) { answers.onlookers.clear(); });
    service.library().setUserId(end.isClosed ? u"user-0001"_s : u"user-0002"_s);
    const QString other = end.isClosed ? QString() : service.issueLinkedToken().idToken;
    // Nothing ends the request under way.
    end.isClosed ? link.close() : static_cast<void>(link.completeLogin(other));
    if (end.isLoginBegun) beginLogin(link);
    service.clearFaults();
    ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));
    EXPECT_TRUE(delegate.events().filter(QRegularExpression(u"^(result|status)"_s)).isEmpty());
    EXPECT_FALSE(delegate.answers().onlookers.join(u'|').contains(QRegularExpression(u"look|file|pass|wait "_s)));
    EXPECT_EQ(link.state(), end.isClosed ? KaLinkState::Unlinked : KaLinkState::AwaitsFolders);
    EXPECT_EQ(KaLinkageUtility::loadLinkageSetting().value_or(QString()), other);
    EXPECT_EQ(pairingFiles(), names(end.files));
    EXPECT_TRUE(files().isEmpty());
    EXPECT_TRUE(end.isLoginBegun || service.requests().back().endpoint == GetParam()) << "nothing in its name";
  }
}

INSTANTIATE_TEST_SUITE_P(Engine, OldLink,
                         testing::Values(Endpoint::TokenCode, Endpoint::RefreshToken, Endpoint::Keys, Endpoint::Sts,
                                         Endpoint::ListDevices, Endpoint::Metadata, Endpoint::ObjectGet),
                         [](const auto &row) { return sandbox::endpointName(row.param).toStdString(); });

TEST_F(Processor, endsTheRequestOfAClosedLinkAtOnceAndForgetsItsCredentials) {
  service.order(Endpoint::ListDevices, {.kind = NoAnswer});
  start();
  ASSERT_TRUE(waitForRequest(Endpoint::ListDevices));
  logOut();
  EXPECT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s, 1, kSlowness));
  EXPECT_TRUE(delegate.events().filter(u"result"_s).isEmpty());
  EXPECT_EQ(logged(u"ERROR"_s).filter(u"deleteCredential"_s).size(), 1);
}

TEST_F(Processor, beginsNoRunWhileALoginIsUnderWayAndKeepsItsVerifierForIt) {
  ASSERT_TRUE(run());
  service.resetRequestCounts();
  const QString idToken = signIn();
  processor->getContentsNow(); // comes to nothing before the login has completed
  ASSERT_TRUE(
      waitFor([&] { return !logged(u"Login Wait"_s).isEmpty() && delegate.answers().onlookers.last() == u"wait"; }));
  linkTo(idToken);
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s, 2));
  const QList<Endpoint> order = asked();
  const auto exchanged = order.indexOf(Endpoint::TokenCode);
  EXPECT_EQ(order.mid(exchanged, 2), (QList<Endpoint>{Endpoint::TokenCode, Endpoint::RefreshToken}));
  EXPECT_EQ(order.count(Endpoint::RefreshToken), 1);
  EXPECT_TRUE(delegate.events().contains(u"result 4"_s));
  EXPECT_TRUE(delegate.events().filter(QRegularExpression(u"^result (17|3 by user)"_s)).isEmpty());
}

TEST_F(Processor, goesOnWithItsLinkWhenALoginIsGivenUpWhichALateCallbackStillCompletes) {
  KaLink patient(std::chrono::milliseconds(50));
  patient.load();
  processor.reset();
  KaDownloadProcessor patientOne(delegate, patient); // goes away before its link
  patientOne.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));
  beginLogin(patient);
  const QString callback = service.signIn(browser.takeUrl().value_or(QString()));
  patientOne.getContentsNow();
  ASSERT_TRUE(delegate.waitForEvent(u"result 3 by user"_s)) << "the old link still works";
  EXPECT_EQ(service.requestCount(Endpoint::TokenCode), 0);
  patient.completeLogin(callback.section(u"idToken="_s, 1));
  patient.confirmFolders();
  patientOne.startReceiving(/*initialAccess=*/true);
  EXPECT_TRUE(delegate.waitForEvent(u"result 4"_s));
  EXPECT_EQ(service.requestCount(Endpoint::TokenCode), 1);
  EXPECT_FALSE(delegate.events().contains(u"result 17"_s));
}

TEST_F(Processor, servesALinkThatIsMadeDuringAReCheckWaitOfTheOldOne) {
  addImages("A.JPG");
  delegate.change([](auto &answers) { answers.waits.reCheck = std::chrono::hours(1); });
  start();
  ASSERT_TRUE(waitFor([&] { return !logged(u"reCheck Wait"_s).isEmpty(); }));
  logOut();
  linkTo(signIn());
  EXPECT_TRUE(delegate.waitForEvent(u"result 4"_s));
  EXPECT_FALSE(delegate.events().contains(u"result 17"_s));
  EXPECT_EQ(service.requestCount(Endpoint::TokenCode), 1);
  EXPECT_EQ(files().size(), 1);
}

/// An error after which the thread waits for the next run (1 wait), or for a link (0).
class AfterAnError : public Processor, public testing::WithParamInterface<std::pair<Endpoint, int>> {};

TEST_P(AfterAnError, runsOnceForANewLink) {
  const auto waits = [this] { return logged(u"Polling Wait"_s).size(); };
  const auto &[endpoint, waitsBefore] = GetParam();
  service.order(endpoint, {.status = 403});
  ASSERT_TRUE(run());
  ASSERT_TRUE(waitFor([&, before = waitsBefore] { return waits() == before; }));
  delegate.forgetEvents();
  linkTo(signIn());
  ASSERT_TRUE(waitFor([&, before = waitsBefore] { return waits() == before + 1; }));
  EXPECT_EQ(told().filter(QRegularExpression(u"^(?!save)"_s)),
            names("enableLoggin_0 result_4 status_0 enableLoggin_1").replaceInStrings(u"_"_s, u" "_s));
  EXPECT_EQ(logged(u"Start Monitoring"_s).size(), 2);
}

INSTANTIATE_TEST_SUITE_P(Engine, AfterAnError,
                         testing::Values(std::pair(Endpoint::Sts, 1), std::pair(Endpoint::RefreshToken, 0)),
                         [](const auto &row) { return sandbox::endpointName(row.param.first).toStdString(); });

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
  EXPECT_EQ(delegate.events().contains(u"result 17"_s), fault.status == 403) << "the end is no failure";
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
    answers.onEvent = [](const QString &event) {
      if (event == u"enableLoggin 1") throw std::runtime_error("out of order");
    };
  });
  start();
  ASSERT_TRUE(delegate.waitForEvent(u"finish"_s));
  EXPECT_EQ(told().mid(2), (QStringList{saved, u"enableLoggin 1"_s, u"result 14 by user"_s, u"finish"_s}));
}

} // namespace
