#include "engine/KaDownloadProcessor.h"

#include "platform/AppInfo.h"
#include "sandbox/SampleLibrary.h"
#include "tests/engine/EngineFixture.h"

#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <stdexcept>

using namespace Qt::StringLiterals;
using sandbox::Endpoint;
using sandbox::Fault;

namespace {

class Processor : public EngineTest {
protected:
  /// Asks for a run until @p event has come @p times: a signal without a waiter is lost.
  [[nodiscard]] bool askUntil(KaDownloadProcessor &processor, const QString &event, int times = 1) {
    return waitFor([&] {
      processor.getContentsNow();
      return delegate.events().count(event) >= times;
    });
  }
  [[nodiscard]] QStringList saved() const { return delegate.events().filter(u"save "_s); }
  [[nodiscard]] QString saveOfOrdinary() { return u"save RecentDownloadData "_s + service.library().userId(); }
};

TEST_F(Processor, fillsTheFolderChecksThreeTimesMoreAndReports) {
  add(image(u"10"_s, u"A.JPG"_s));
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/true);
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));
  EXPECT_EQ(files(), QStringList{u"2024_04_30/A.JPG"_s});
  EXPECT_EQ(delegate.events(),
            (QStringList{u"load RecentDownloadData"_s, u"load Recent10GDownloadData"_s,
                         u"load RecentPreviewDownloadData"_s, u"enableLoggin 0"_s, u"saveLinkage"_s, u"result 4"_s,
                         u"status 1"_s, u"result 1"_s, u"status 0"_s, saveOfOrdinary(), u"enableLoggin 1"_s}));
  EXPECT_EQ(service.requestCount(Endpoint::ListDevices), 4);
  EXPECT_EQ(logged(u"Retry CheckImage"_s),
            (QStringList{u"Retry CheckImage|RetryCount=1"_s, u"Retry CheckImage|RetryCount=2"_s,
                         u"Retry CheckImage|RetryCount=3"_s}));
  EXPECT_EQ(logged(u"reCheck Wait"_s).size(), 3);
  for (const QString &title :
       {u"DownloadThread Start"_s, u"Load GetImageInfo"_s, u"Start Monitoring"_s, u"Start 30days Storage Download"_s,
        u"Load PairingInfo"_s, u"Save PairingInfo"_s, u"Initial Access Complete"_s, u"[OK] 010: Complete"_s,
        u"Download Complete"_s, u"Save GetImageInfo"_s})
    EXPECT_EQ(logged(title).size(), 1) << title.toStdString();
  EXPECT_TRUE(
      waitFor([this] { return logged(u"Polling Wait"_s) == QStringList{u"Polling Wait|pollingWaitTime=3600"_s}; }));
}

TEST_F(Processor, fillsTheFolderWithTheSampleAccount) {
  sandbox::fillSampleLibrary(service.library());
  delegate.change([](auto &answers) {
    answers.option.checkBoxCreateSubfolder = u"true"_s;
    answers.option.checkBoxDownloadMetadata = u"true"_s;
  });
  {
    KaDownloadProcessor processor(delegate);
    processor.startReceiving(/*initialAccess=*/false);
    ASSERT_TRUE(delegate.waitForEvent(u"result 1"_s));
  }
  QStringList expected;
  for (const sandbox::ExpectedFile &file : sandbox::expectedSampleFiles()) {
    const QByteArray content = contentOf(file.relativePath);
    EXPECT_EQ(QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex(), file.sha256)
        << file.relativePath.toStdString();
    const QFileInfo info(profile.picturesFolder() + u'/' + file.relativePath);
    EXPECT_EQ(info.lastModified().toSecsSinceEpoch(), file.modificationTime) << file.relativePath.toStdString();
    expected << file.relativePath;
  }
  expected.sort();
  EXPECT_EQ(files(), expected);
  EXPECT_EQ(logged(u"Download CreateSubFolder Enabled"_s).size(), 1);
  EXPECT_EQ(logged(u"Download Metadata Enabled"_s).size(), 1);
}

TEST_F(Processor, findsNothingQuietly) {
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));
  EXPECT_EQ(delegate.events().mid(3),
            (QStringList{u"enableLoggin 0"_s, u"saveLinkage"_s, u"status 0"_s, saveOfOrdinary(), u"enableLoggin 1"_s}));
  EXPECT_EQ(service.requestCount(Endpoint::ListDevices), 1);
  EXPECT_EQ(logged(u"No Download Target"_s).size(), 1);
}

TEST_F(Processor, tellsTheUserWhoAskedThatThereIsNothing) {
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));
  delegate.forgetEvents();
  ASSERT_TRUE(askUntil(processor, u"result 3 by user"_s));
  EXPECT_FALSE(delegate.events().contains(u"status 0"_s));
}

TEST_F(Processor, fetchesANewObjectAlone) {
  add(image(u"10"_s, u"A.JPG"_s));
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(delegate.waitForEvent(u"result 1"_s));
  service.resetRequestCounts();
  add(image(u"10"_s, u"B.JPG"_s));
  ASSERT_TRUE(askUntil(processor, u"result 1"_s, 2));
  EXPECT_EQ(fetched(), QStringList{u"B.JPG"_s});
  EXPECT_EQ(files(), (QStringList{u"2024_04_30/A.JPG"_s, u"2024_04_30/B.JPG"_s}));
}

TEST_F(Processor, beginsCountingAnewWhenAReCheckFindsSomething) {
  delegate.change([](auto &answers) { answers.waits.reCheck = std::chrono::hours(1); });
  add(image(u"10"_s, u"A.JPG"_s));
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(service.waitForRequests(Endpoint::ObjectGet, 1, std::chrono::seconds(20)));
  ASSERT_TRUE(waitFor([&] {
    processor.cancelPollingWait();
    return service.requestCount(Endpoint::ListItems) == 3;
  }));
  add(image(u"11"_s, u"B.JPG"_s));
  ASSERT_TRUE(waitFor([&] {
    processor.cancelPollingWait();
    return delegate.events().contains(u"result 1"_s);
  }));
  EXPECT_EQ(fetched(), (QStringList{u"A.JPG"_s, u"B.JPG"_s}));
  EXPECT_GE(service.requestCount(Endpoint::ListItems), 7);
}

TEST_F(Processor, doesNotFetchAnUnconfirmedCopyAgainInTheSameRun) {
  sandbox::LibraryObject unnamed = image(u"10"_s, u"A.JPG"_s);
  unnamed.fileNameMetadata.reset();
  add(unnamed);
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(delegate.waitForEvent(u"result 1"_s));
  EXPECT_EQ(service.requestCount(Endpoint::ObjectGet), 4);
  ASSERT_TRUE(askUntil(processor, u"result 1"_s, 2));
  EXPECT_EQ(service.requestCount(Endpoint::ObjectGet), 8);
  EXPECT_EQ(files(), QStringList{u"2024_04_30/2024-04-30.JPG"_s});
}

TEST_F(Processor, goesOnCheckingAfterAPassThatFailed) {
  add(image(u"10"_s, u"A.JPG"_s));
  service.order(Endpoint::ObjectGet, {.status = 503, .times = 2});
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(delegate.waitForEvent(u"result 1"_s));
  EXPECT_FALSE(delegate.events().contains(u"result 11"_s));
  EXPECT_EQ(logged(u"[NG] 010: Complete"_s).size(), 2);
  EXPECT_EQ(logged(u"[OK] 010: Complete"_s).size(), 1);
}

TEST_F(Processor, waitsForANewLinkWhenTheTokenCannotBeRefreshed) {
  service.setTokenFault(sandbox::TokenFault::WrongNonce);
  delegate.change([](auto &answers) {
    answers.waits.pollingNormal = std::chrono::milliseconds(1);
    answers.waits.pollingError = std::chrono::milliseconds(1);
  });
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));
  EXPECT_EQ(delegate.events().mid(3), (QStringList{u"enableLoggin 0"_s, u"result 17"_s, u"enableLoggin 1"_s}));
  // Only a new link wakes it: a run that the user asks for does not.
  processor.getContentsNow();
  delegate.change([](auto &answers) { answers.waits.pollingNormal = std::chrono::hours(1); });
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(delegate.waitForEvent(u"status 0"_s));
  EXPECT_EQ(service.requestCount(Endpoint::RefreshToken), 2);
  EXPECT_LE(logged(u"Polling Wait"_s).size(), 1);
}

struct Trouble {
  const char *name;
  Endpoint endpoint;
  Fault fault;
  QStringList events; ///< between the two of the log menu
  bool shortWait;
};

class Troubles : public EngineTest, public testing::WithParamInterface<Trouble> {};

TEST_P(Troubles, areReportedAndChooseTheWait) {
  service.order(GetParam().endpoint, GetParam().fault);
  delegate.change([](auto &answers) { answers.waits.pollingError = std::chrono::hours(2); });
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/true);
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));
  QStringList expected{u"enableLoggin 0"_s, u"saveLinkage"_s};
  expected << GetParam().events << u"enableLoggin 1"_s;
  QStringList events = delegate.events().mid(3);
  events.removeIf([](const QString &event) { return event.startsWith(u"save "_s); });
  EXPECT_EQ(events, expected);
  const QString seconds = GetParam().shortWait ? u"7200"_s : u"3600"_s;
  EXPECT_TRUE(
      waitFor([&] { return logged(u"Polling Wait"_s) == QStringList{u"Polling Wait|pollingWaitTime="_s + seconds}; }));
}

INSTANTIATE_TEST_SUITE_P(
    Engine, Troubles,
    testing::Values(
        Trouble{"credentialsRefused", Endpoint::Sts, {.status = 403}, {u"result 16"_s}, false},
        Trouble{"credentialsLater", Endpoint::Sts, {.status = 503}, {u"result 11"_s}, false},
        Trouble{"listingRefused", Endpoint::ListDevices, {.status = 403}, {u"result 16"_s}, false},
        Trouble{
            "listingMalformed", Endpoint::ListDevices, {.kind = Fault::Kind::MalformedBody}, {u"result 7"_s}, false},
        Trouble{"listingWithoutStatus",
                Endpoint::ListDevices,
                {.kind = Fault::Kind::DroppedConnection},
                {u"status 1"_s},
                true}),
    [](const auto &row) { return row.param.name; });

TEST_F(Processor, reportsBookkeepingThatCannotBeSaved) {
  delegate.change([](auto &answers) { answers.saves = false; });
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(delegate.waitForEvent(u"result 14"_s));
  processor.endDownloadProcess();
  ASSERT_TRUE(delegate.waitForEvent(u"finish"_s));
  EXPECT_EQ(delegate.events().count(u"result 14"_s), 2);
}

TEST_F(Processor, savesNothingBeforeItKnowsTheUser) {
  service.order(Endpoint::Sts, {.status = 503});
  {
    KaDownloadProcessor processor(delegate);
    processor.startReceiving(/*initialAccess=*/false);
    ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));
  }
  EXPECT_TRUE(saved().isEmpty());
  EXPECT_FALSE(delegate.events().contains(u"result 14"_s));
}

TEST_F(Processor, sleepsWhileNobodyIsLoggedIn) {
  delegate.change([](auto &answers) { answers.loggedIn = false; });
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(delegate.waitForEvent(u"load RecentPreviewDownloadData"_s));
  delegate.change([](auto &answers) { answers.loggedIn = true; });
  ASSERT_TRUE(waitFor([&] {
    processor.startReceiving(/*initialAccess=*/true);
    return delegate.events().contains(u"result 4"_s);
  }));
}

TEST_F(Processor, waitsForALinkAfterALogOutWhileWaiting) {
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));
  delegate.change([](auto &answers) { answers.loggedIn = false; });
  processor.deleteCredential();
  // The wake-up counts once the thread waits, and takes it back to waiting for a link.
  ASSERT_TRUE(waitFor([&] {
    processor.cancelPollingWait();
    return delegate.events().count(u"load RecentPreviewDownloadData"_s) >= 2;
  }));
  EXPECT_EQ(service.requestCount(Endpoint::RefreshToken), 1);
  EXPECT_EQ(delegate.events().count(u"enableLoggin 0"_s), 1);
}

TEST_F(Processor, stopsAskingTheStorageOnceLoggedOut) {
  add(image(u"10"_s, u"A.JPG"_s));
  add(image(u"10"_s, u"B.JPG"_s));
  service.order(Endpoint::Metadata, {.kind = Fault::Kind::Delay, .delay = std::chrono::hours(1)});
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(service.waitForRequests(Endpoint::Metadata, 1, std::chrono::seconds(20)));
  delegate.change([](auto &answers) { answers.loggedIn = false; });
  processor.deleteCredential();
  service.clearFaults();
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));
  EXPECT_TRUE(files().isEmpty());
  EXPECT_EQ(service.requestCount(Endpoint::RefreshToken), 1);
}

TEST_F(Processor, startsANewLinkAtOnceThatWasMadeWhileTheRunOfAnOldOneEnded) {
  service.order(Endpoint::ListDevices, {.kind = Fault::Kind::NoAnswer});
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(service.waitForRequests(Endpoint::ListDevices, 1, std::chrono::seconds(20)));
  processor.deleteCredential();
  processor.startReceiving(/*initialAccess=*/true);
  service.clearFaults();
  EXPECT_TRUE(delegate.waitForEvent(u"result 4"_s));
}

/// What a run meets when the user closes the link under it.
class Closed : public EngineTest, public testing::WithParamInterface<Endpoint> {};

TEST_P(Closed, endsTheRunWithoutAWordAndWaitsForANewLink) {
  service.order(GetParam(), {.kind = Fault::Kind::NoAnswer});
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(service.waitForRequests(GetParam(), 1, std::chrono::seconds(20)));
  delegate.change([](auto &answers) { answers.loggedIn = false; });
  processor.deleteCredential();
  service.clearFaults();
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));
  EXPECT_TRUE(delegate.events().filter(u"result "_s).isEmpty());
  delegate.change([](auto &answers) { answers.loggedIn = true; });
  processor.startReceiving(/*initialAccess=*/true);
  EXPECT_TRUE(delegate.waitForEvent(u"result 4"_s));
}

INSTANTIATE_TEST_SUITE_P(Processor, Closed,
                         testing::Values(Endpoint::RefreshToken, Endpoint::Sts, Endpoint::ListDevices),
                         [](const auto &row) { return sandbox::endpointName(row.param).toStdString(); });

/// Where the thread stands when the program quits.
struct Quitting {
  const char *name;
  std::function<void(sandbox::Service &, FakeDelegate &)> arrange;
  std::function<bool(sandbox::Service &, FakeDelegate &)> stands;
  bool savesRecords;
};

class Quits : public EngineTest, public testing::WithParamInterface<Quitting> {};

TEST_P(Quits, withinASecondWithTheRecordsSaved) {
  add(image(u"10"_s, u"A.JPG"_s));
  add(image(u"11"_s, u"B.JPG"_s));
  GetParam().arrange(service, delegate);
  auto processor = std::make_unique<KaDownloadProcessor>(delegate);
  processor->startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(waitFor([this] { return GetParam().stands(service, delegate); }));
  service.resetRequestCounts();
  const qsizetype before = files().size();
  delegate.forgetEvents();

  QElapsedTimer timer;
  timer.start();
  processor->endDownloadProcess();
  ASSERT_TRUE(delegate.waitForEvent(u"finish"_s));
  EXPECT_LT(timer.elapsed(), 1000 * kSlowness);
  processor.reset();
  EXPECT_EQ(delegate.events().last(), u"finish"_s);
  const QString user = service.library().userId();
  const QStringList all{u"save RecentDownloadData "_s + user, u"save Recent10GDownloadData %1_(10G)"_s.arg(user),
                        u"save RecentPreviewDownloadData %1_(2K)"_s.arg(user)};
  const QStringList saves = delegate.events().filter(u"save "_s);
  EXPECT_EQ(saves.mid(std::max<qsizetype>(saves.size() - 3, 0)), GetParam().savesRecords ? all : QStringList());
  EXPECT_EQ(files().size(), before);
  EXPECT_EQ(service.requestCount(Endpoint::ObjectGet), 0);
  const platform::AppInfo &info = platform::appInfo();
  EXPECT_EQ(logged(u"DownloadThread End"_s),
            QStringList{u"DownloadThread End|Version=v%1, %2, %3"_s.arg(info.version, info.buildDate, info.buildTime)});
}

std::function<void(sandbox::Service &, FakeDelegate &)> holding(Endpoint endpoint) {
  return [endpoint](sandbox::Service &service, FakeDelegate &) {
    service.order(endpoint, {.kind = Fault::Kind::NoAnswer, .times = -1});
  };
}

std::function<bool(sandbox::Service &, FakeDelegate &)> asked(Endpoint endpoint) {
  return [endpoint](sandbox::Service &service, FakeDelegate &) { return service.requestCount(endpoint) > 0; };
}

std::function<bool(sandbox::Service &, FakeDelegate &)> told(const QString &event) {
  return [event](sandbox::Service &, FakeDelegate &delegate) { return delegate.events().contains(event); };
}

const auto kNothing = [](sandbox::Service &, FakeDelegate &) {};

INSTANTIATE_TEST_SUITE_P(
    Engine, Quits,
    testing::Values(Quitting{"waitingForALink",
                             [](auto &, auto &delegate) {
                               delegate.change([](auto &answers) { answers.loggedIn = false; });
                             },
                             told(u"load RecentPreviewDownloadData"_s), false},
                    Quitting{"waitingForTheNextRun", kNothing, told(u"enableLoggin 1"_s), true},
                    Quitting{"waitingForAReCheck",
                             [](auto &, auto &delegate) {
                               delegate.change([](auto &answers) { answers.waits.reCheck = std::chrono::hours(1); });
                             },
                             [](auto &service, auto &delegate) {
                               return delegate.answers().records.value(service.library().userId()).LastDateTime
                                      == u"20240501/11";
                             },
                             true},
                    Quitting{"waitingForMetadata",
                             [](auto &service, auto &delegate) {
                               delegate.change([](auto &answers) { answers.waits.exifRetry = std::chrono::hours(1); });
                               service.order(Endpoint::Metadata, {.status = 503, .times = -1});
                             },
                             asked(Endpoint::Metadata), true},
                    Quitting{"refreshing", holding(Endpoint::RefreshToken), asked(Endpoint::RefreshToken), false},
                    Quitting{"gettingCredentials", holding(Endpoint::Sts), asked(Endpoint::Sts), false},
                    Quitting{"listing", holding(Endpoint::ListItems), asked(Endpoint::ListItems), true},
                    Quitting{"readingMetadata", holding(Endpoint::Metadata), asked(Endpoint::Metadata), true},
                    Quitting{"downloading",
                             [](auto &service, auto &) {
                               service.order(Endpoint::ObjectGet, {.kind = Fault::Kind::SlowBody, .times = -1});
                             },
                             asked(Endpoint::ObjectGet), true}),
    [](const auto &row) { return row.param.name; });

TEST_F(Processor, endsByAnExceptionWithoutSaving) {
  delegate.change([this](auto &answers) {
    answers.onBLoggedIn = [this] {
      if (service.requestCount(Endpoint::Sts) > 0) throw std::runtime_error("out of order");
    };
  });
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));
  ASSERT_TRUE(waitFor([&] {
    processor.cancelPollingWait();
    return delegate.events().contains(u"finish"_s);
  }));
  EXPECT_EQ(delegate.events().last(), u"finish"_s);
  EXPECT_EQ(delegate.events().count(u"result 14 by user"_s), 1);
  EXPECT_EQ(saved(), QStringList{saveOfOrdinary()});
  EXPECT_EQ(logged(u"DownloadThread End"_s).size(), 1);
  EXPECT_THAT(logged(u"ERROR"_s).last().toStdString(),
              testing::HasSubstr("runtime_error : out of order|<STACK TRACE>"));
}

} // namespace
