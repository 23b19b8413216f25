#include "engine/KaDownloadReport.h"
#include "sandbox/SampleLibrary.h"
#include "tests/engine/EngineFixture.h"
#include "tests/support/RefusedCalls.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <malloc.h>
#include <sys/syscall.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using sandbox::Endpoint;
using sandbox::Fault;
using sandbox::Service;

namespace {

const QByteArray kPreview(700, 'v');
const QString kUser = u"user-0001"_s;

/// A piece of what the account holds or the service does.
using Scene = std::function<void(Service &)>;

Scene pictureNamed(const QString &name, const QString &period = {}) {
  return [=](Service &service) {
    sandbox::LibraryObject object = image(u"10"_s, name);
    object.expandBody = "never taken from the 10G storage";
    object.expandMetadataDocument = R"({"sortation":{"matchedRules":["Birds"]}})";
    if (!period.isEmpty()) object.tags = {{u"x-strata-storage-period"_s, period}};
    service.library().add(object);
  };
}

QByteArray entry(int index, const QByteArray &shot, qint64 size = kPreview.size(), const QByteArray &uploaded = "") {
  return R"({"index":%1,"preview_object_key":"images/preview/user-0001/%1.x","file_size":%2,"original_file_name":)"
         R"(" %1.JPG","shooting_time":%3,"upload_time":"%4"})"_ba.replace("%1", QByteArray::number(index))
             .replace("%2", QByteArray::number(size))
             .replace("%3", shot)
             .replace("%4", uploaded);
}

QByteArray list(const QByteArrayList &entries) {
  return "{\"data\":[" + entries.join(',') + "]}";
}

/// 1.JPG, 2.JPG, ..., taken on as many days; the third one's time is not known.
Scene previews(int count) {
  return [=](Service &service) {
    QList<sandbox::SamplePreview> previews;
    for (int index = 1; index <= count; ++index) {
      const QString shot = index == 3 ? QString() : u"2024-05-0%1T23:30:00"_s.arg(index);
      previews.append({index, u"%1.x"_s.arg(index), kPreview, u" %1.JPG"_s.arg(index), shot, u"20240601/07"_s});
    }
    sandbox::addPreviews(service.library(), previews);
  };
}

Scene fault(Endpoint endpoint, const Fault &fault) {
  return [=](Service &service) { service.order(endpoint, fault); };
}

/// Lets the first request, the ordinary pass's, go by.
Scene second(Endpoint endpoint, const Fault &then) {
  return [=](Service &service) {
    service.order(endpoint, {.kind = Fault::Kind::Delay});
    service.order(endpoint, then);
  };
}

/// An account whose ordinary storage holds nothing new.
class LongTerm : public ProcessorTest {
protected:
  LongTerm() {
    QDir().mkpath(folder10G);
    delegate.change([this](auto &answers) {
      answers.option = {.parentFolder = profile.picturesFolder() + u"/nothing goes here"_s,
                        .parent10GFolder = folder10G};
      answers.records.insert(kUser, {u"20250101/00"_s, {}});
      answers.waits.pollingError = 2h;
    });
  }

  /// Each as the end of its stream's name, its word and its count.
  [[nodiscard]] QStringList reports() const {
    QStringList told;
    for (const sandbox::LogEvent &event : service.logEvents()) {
      const QJsonObject message = QJsonDocument::fromJson(event.message.toUtf8()).object();
      EXPECT_EQ(event.group, u"strata-prd-Ka-LogGroup");
      EXPECT_EQ(message[u"UUID"_s].toString(), kUser);
      EXPECT_LE(message[u"StartDate"_s].toInteger(), message[u"EndDate"_s].toInteger());
      told << event.stream.section(u'-', -1) + u' ' + message[u"Information"_s].toString() + u' '
                  + QString::number(message[u"DownloadSuccess"_s].toInt());
    }
    return told;
  }

  const QString folder10G = profile.picturesFolder() + u"/10G"_s;
};

struct Branch {
  const char *name;
  std::vector<Scene> scenes;
  QString events; ///< from the save of the ordinary record to those of the others
  int previewLists = 1;
  QString reports{};
  QString wait = u"1800"_s; ///< empty: none, and nothing saved
};

class LongTermBranches : public LongTerm, public testing::WithParamInterface<Branch> {};

TEST_P(LongTermBranches, endAsTheyShould) {
  const Branch &branch = GetParam();
  for (const Scene &scene : branch.scenes)
    scene(service);
  ASSERT_TRUE(run());
  QString events = delegate.events().join(u'|').section(u"save RecentDownloadData user-0001"_s, 1);
  // What a pass has saved is booked at once, too.
  const QString early = u"|save Recent10GDownloadData user-0001_(10G)"_s;
  if (events.count(early) > 1) events.remove(events.indexOf(early), early.size());
  const QString saves = u"|save Recent10GDownloadData user-0001_(10G)|save RecentPreviewDownloadData user-0001_(2K)"_s;
  EXPECT_EQ(events, branch.events + (branch.wait.isEmpty() ? QString() : saves) + u"|enableLoggin 1"_s);
  EXPECT_EQ(reports().join(u'|'), branch.reports);
  EXPECT_EQ(service.requestCount(Endpoint::PreviewList), branch.previewLists);
  const QString wait = u"Polling Wait|pollingWaitTime="_s + branch.wait;
  EXPECT_TRUE(branch.wait.isEmpty() || waitFor([&] { return logged(u"Polling Wait"_s).contains(wait); }));
}

const Scene kImage = pictureNamed(u"A.JPG"_s);
const Scene kOrdinary = pictureNamed(u"A.JPG"_s, u"30"_s);
const Scene kOther = pictureNamed(u"B.JPG"_s);
const Scene kOtherDropped =
    fault(Endpoint::ObjectGet, {.kind = Fault::Kind::DroppedConnection, .pathContains = u"B.JPG"_s});
const Scene kTagsRefused = fault(Endpoint::ObjectTagging, {.status = 503, .pathContains = u"A.JPG"_s});
const Scene kListingRefused = fault(Endpoint::ListItems, {.status = 403, .pathContains = u"19700101"_s});
const Scene kPreviewsGone = fault(Endpoint::PreviewObject, {.status = 404});
const Scene kSecondPreviewRefused = second(Endpoint::PreviewObject, {.status = 403});
const Scene kNoSettings = [](Service &service) { service.library().setSettingsObject({}); };
const QString kOne = u"|status 1|result 2|status 0"_s;
const QString kBoth = u"|status 1|status 1|result 2|status 0"_s;
const QString kBusy = u"|status 1"_s;
const QString kRefused = u"|result 16"_s;
const QString k10G = u"10G 10G 1"_s;

INSTANTIATE_TEST_SUITE_P(
    Engine, LongTermBranches,
    testing::Values(
        Branch{"nothing", {}, u"|status 0"_s}, Branch{"onlyImages", {kImage}, kOne, 1, k10G},
        Branch{"onlyPreviews", {previews(2)}, kOne, 1, u"10G 2K 2"_s},
        Branch{"both", {kImage, previews(1)}, kBoth, 1, k10G + u"|10G 2K 1"_s},
        Branch{"ordinaryImages", {kOrdinary}, kBusy + u"|status 0"_s},
        Branch{"previewsGone", {kImage, previews(1), kPreviewsGone}, kBoth, 1, k10G + u"|10G 2K 0"_s},
        Branch{"tagsFailOnce", {kImage, kOther, kTagsRefused}, kOne, 1, k10G},
        Branch{"imagesDropped", {kImage, kOther, kOtherDropped}, kBusy + u"|status 1"_s, 0, {}, u"7200"_s},
        Branch{"listingFails", {kImage, kListingRefused}, kRefused, 0},
        Branch{"previewListFails", {fault(Endpoint::PreviewList, {.status = 403})}, kRefused},
        Branch{"previewsFail", {kImage, previews(2), kSecondPreviewRefused}, kBusy + u"|status 1|result 16"_s, 1, k10G},
        Branch{"tokenFails", {second(Endpoint::RefreshToken, {.status = 503})}, u"|result 17"_s, 0, {}, {}},
        Branch{"credentialsFail", {second(Endpoint::Sts, {.status = 403})}, kRefused, 0},
        Branch{"reportRefused", {kImage, fault(Endpoint::LogEvents, {.status = 500})}, kOne},
        Branch{"notOfferedByTheService", {kImage, kNoSettings}, {}, 0, {}, {}}),
    [](const auto &row) { return row.param.name; });

TEST_F(LongTerm, isTakenIntoItsOwnFolderAndBookedApart) {
  for (const Scene &scene : {pictureNamed(u"A.JPG"_s, u"365"_s), pictureNamed(u"B.JPG"_s, u"30"_s), previews(3)})
    scene(service);
  // The ordinary pass: so the first listing is this one's.
  service.order(Endpoint::ListItems, {.kind = Fault::Kind::DroppedConnection});
  ASSERT_TRUE(run(/*initialAccess=*/true));
  EXPECT_TRUE(delegate.answers().onlookers.contains(u"unanswered"_s));
  EXPECT_TRUE(delegate.events().contains(u"result 4"_s));
  EXPECT_EQ(files(), names("10G/2024_04_30/A.JPG 10G/2024_05_01/1.JPG 10G/2024_05_02/2.JPG 10G/2024_06_01/3.JPG"));
  EXPECT_EQ(contentOf(path(u"10G/2024_04_30/A.JPG"_s)), image({}, {}).body);
  const auto records = delegate.answers().records;
  EXPECT_EQ(records[kUser + u"_(10G)"_s].ContentIds, QStringList{u"A"_s});
  EXPECT_EQ(records[kUser + u"_(2K)"_s], (KaDownloadData{QString(), {u"3"_s}}));
  for (const QString &title : {u"Save GetImageInfo"_s, u"Save 10G GetImageInfo"_s, u"Save 2K GetImageInfo"_s})
    EXPECT_EQ(logged(title), QStringList{title});
}

TEST_F(LongTerm, isLookedAtStepByStep) {
  for (const Scene &scene : {kImage, kOther, fault(Endpoint::ObjectGet, {.status = 404}), previews(1)})
    scene(service);
  writeFile(path(u"10G/2024_04_30/B.JPG"_s), image({}, {}).body); // so that nothing new is made
  ASSERT_TRUE(run());
  ASSERT_TRUE(waitFor([this] { return delegate.answers().onlookers.contains(u"wait 1800000"_s); }));
  EXPECT_EQ(delegate.answers().onlookers.join(u'|'),
            u"wait|looking|looking|looked|looking|looked|nothing new|looking|looked|pass 2|file |file |looking|"
            "pass 1|file 1.JPG|wait 1800000"_s);
}

TEST_F(LongTerm, isTakenAgainOnceTheServiceOffersItAgain) {
  kImage(service);
  kNoSettings(service);
  ASSERT_TRUE(run());
  const auto askUntil = [&](const QString &event) {
    return waitFor([&] {
      processor->getContentsNow();
      return delegate.events().contains(event);
    });
  };
  service.order(Endpoint::SettingsObject, {.kind = Fault::Kind::Body, .body = "{\"isEnable"});
  ASSERT_TRUE(askUntil(u"result 7 by user"_s));
  EXPECT_FALSE(delegate.answers().offers10GStorage) << "what is no answer offers nothing";
  EXPECT_EQ(service.requestCount(Endpoint::ObjectTagging), 0);
  service.library().setSettingsObject(R"({"isEnableDownload10GStorage":null})");
  EXPECT_TRUE(askUntil(u"result 2"_s));
  EXPECT_TRUE(delegate.answers().offers10GStorage);
}

TEST_F(LongTerm, isReportedBesideTheOrdinaryStorageWhoseReportsComeWhateverTheResult) {
  pictureNamed(u"A.JPG"_s, u"30"_s)(service);
  pictureNamed(u"B.JPG"_s, u"30"_s)(service);
  for (const auto &[metadata, report] :
       {std::pair(u"true"_s, u"S3AccessLog recent 1"_s), {u"false"_s, u"S3AccessLog original 1"_s}}) {
    delegate.forgetTaken();
    delegate.change([&](auto &answers) {
      answers.option.parentFolder = profile.picturesFolder();
      answers.option.checkBoxDownloadMetadata = metadata;
    });
    delegate.forgetEvents();
    service.order(Endpoint::ObjectGet, {.status = 503, .pathContains = u"B.JPG"_s});
    ASSERT_TRUE(run());
    EXPECT_EQ(reports().mid(reports().size() - 2), (QStringList{report, report}));
    processor.reset();
  }
}

TEST_F(LongTerm, endsQuietlyInMidRequest) {
  kImage(service);
  previews(1)(service);
  for (const auto endpoint :
       {Endpoint::ObjectTagging, Endpoint::LogEvents, Endpoint::PreviewList, Endpoint::PreviewObject}) {
    service.order(endpoint, {.kind = Fault::Kind::NoAnswer, .times = -1});
    start();
    ASSERT_TRUE(service.waitForRequests(endpoint, 1, 20s));
    processor.reset();
    service.clearFaults();
  }
  EXPECT_TRUE(delegate.events().filter(u"result"_s).isEmpty());
}

class Preview : public LongTerm {
protected:
  [[nodiscard]] KaPassOutcome take() {
    const KaResultCode listed = preview.getPreviewList();
    return listed == KaResultCode::Success ? preview.getPreview(folder10G, 0) : KaPassOutcome{listed};
  }

  EngineParts parts{delegate, link};
  KaPreviewDownload &preview = parts.preview;
};

TEST_F(Preview, isDatedByShootingTimeOrUploadHourOrToday) {
  qputenv("TZ", "JST-9");
  tzset();
  previews(3)(service);
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  EXPECT_EQ(take().result, KaResultCode::Success);
  const auto modified = [&](const QString &file) {
    return QFileInfo(folder10G + u'/' + file).lastModified().toSecsSinceEpoch();
  };
  EXPECT_EQ(modified(u"2024_05_01/1.JPG"_s), 1714573800); // 14:30 UTC: local time, not moved
  EXPECT_EQ(modified(u"2024_06_01/3.JPG"_s), 1717225200); // 07:00 UTC
  EXPECT_TRUE(logged(u"[OK] 009: Download"_s).first().startsWith(u"[OK] 009: Download|Index=1|FilePath="_s));

  previews(4)(service);
  service.order(Endpoint::PreviewList, {.kind = Fault::Kind::Body, .body = list({entry(4, "\"soon\"")})});
  const QDateTime now = QDateTime::currentDateTime();
  EXPECT_EQ(take().savedCount, 1U);
  const QFileInfo undated(path(files().filter(u"/4.JPG"_s).value(0)));
  EXPECT_GE(undated.lastModified(), now.addSecs(-1));
  EXPECT_EQ(undated.dir().dirName(), undated.lastModified().toString(u"yyyy_MM_dd"_s));
}

TEST(ShootingTime, keepsTheDayOnWhichTheClocksLeaveItOut) {
  for (const auto &[zone, shot, filed] :
       {std::tuple("CET-1CEST,M3.5.0,M10.5.0/3", u"2024-03-31T02:30:00"_s, u"2024-03-31 03:30"_s),
        {"CST5CDT,M3.2.0/0,M11.1.0/1", u"2024-03-10T00:30:00"_s, u"2024-03-10 01:30"_s},         // at midnight
        {"<-02>2<-01>,M3.5.0/-1,M10.5.0/0", u"2024-03-30T23:30:00"_s, u"2024-03-30 22:30"_s}}) { // up to it
    qputenv("TZ", zone);
    tzset();
    const auto date = getDateTimeFromString(shot, KaDateFormat::ShootingTime);
    EXPECT_EQ(date ? date->toString(u"yyyy-MM-dd HH:mm") : QString(), filed) << zone;
  }
}

struct Trouble {
  const char *name;
  Scene scene;
  KaResultCode result;
  QString saved; ///< the numbers of the previews
  int requests = 0;
  KaResultCode folderVerdict = KaResultCode::Success;
};

class PreviewTroubles : public Preview, public testing::WithParamInterface<Trouble> {};

TEST_P(PreviewTroubles, loseNothing) {
  previews(2)(service);
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  writeFile(folder10G + u"/2024_05_09"_s, "in the way");
  GetParam().scene(service);
  delegate.change([](auto &answers) { answers.folderVerdict = GetParam().folderVerdict; });
  const KaPassOutcome outcome = take();
  EXPECT_EQ(outcome.result, GetParam().result);
  QStringList saved;
  for (const QString &file : files())
    if (file.endsWith(u".JPG")) saved << QFileInfo(file).baseName();
  EXPECT_EQ(saved.join(u' '), GetParam().saved);
  EXPECT_EQ(outcome.savedCount, quint64(saved.size()));
  EXPECT_EQ(delegate.answers().records[kUser + u"_(2K)"_s].ContentIds.value(0), saved.value(saved.size() - 1));
  EXPECT_EQ(service.requestCount(Endpoint::PreviewObject), GetParam().requests);
}

Scene listed(const QByteArrayList &entries) {
  return fault(Endpoint::PreviewList, {.kind = Fault::Kind::Body, .body = list(entries)});
}

using enum KaResultCode;
const QByteArray kTime = "\"2024-05-01T10:00:00\"";
const QByteArrayList kTooLarge{entry(1, kTime, Q_INT64_C(1) << 60), entry(2, kTime)};
const QByteArrayList kNoFolder{entry(1, "\"2024-05-09T10:00:00\""), entry(2, kTime)};
const Fault kCut{.kind = Fault::Kind::Body, .body = kPreview.chopped(1), .times = 8};

INSTANTIATE_TEST_SUITE_P(
    Engine, PreviewTroubles,
    testing::Values(Trouble{"missingOnePassedOver", kPreviewsGone, Success, u"2"_s, 2},
                    Trouble{"fourthCopyCounts", fault(Endpoint::PreviewObject, kCut), Success, u"1 2"_s, 8},
                    Trouble{"failureEnds", kSecondPreviewRefused, LinkInvalid, u"1"_s, 2},
                    Trouble{"noRoomCarriedOver", listed(kTooLarge), DiskFull, {}},
                    Trouble{"noFolderCarriedOver", listed(kNoFolder), FileNotSaved, {}},
                    Trouble{"unusableFolder", [](Service &) {}, FileNotSaved, {}, 0, FolderNotSupported}),
    [](const auto &row) { return row.param.name; });

TEST_F(Preview, forgetsAListThatIsGoneAndKeepsOneThatIsRefused) {
  previews(2)(service);
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  for (const auto &[fault, result, left] : {std::tuple(Fault{.status = 403}, KaResultCode::LinkInvalid, 2),
                                            {{.status = 404}, KaResultCode::Success, 0},
                                            {{.kind = Fault::Kind::MalformedBody}, KaResultCode::Success, 0}}) {
    EXPECT_EQ(preview.getPreviewList(), KaResultCode::Success);
    EXPECT_EQ(preview.previewList().count(), 2);
    service.order(Endpoint::PreviewList, fault);
    EXPECT_EQ(preview.getPreviewList(), result);
    EXPECT_EQ(preview.previewList().count(), left);
  }
  qputenv("TMPDIR", "/proc"); // which takes no file
  EXPECT_EQ(preview.getPreviewList(), KaResultCode::FileNotSaved);
}

/// In bytes, of the whole process.
std::size_t memoryInUse() {
  const struct mallinfo2 now = ::mallinfo2();
  return now.uordblks + now.hblkhd;
}

TEST_F(Preview, holdsNoListInMemoryHoweverLong) {
  constexpr int kCount = 60'000;
  QByteArrayList entries;
  for (int index = 1; index <= kCount; ++index)
    entries << entry(index, kTime, 1, QByteArray(1000, '0'));
  const QByteArray document = list(std::exchange(entries, {}));
  ASSERT_GT(document.size(), 64 * 1024 * 1024) << "what a body in memory may have";
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  service.order(Endpoint::PreviewList, {.kind = Fault::Kind::Body, .body = document});
  const std::size_t before = memoryInUse();
  EXPECT_EQ(preview.getPreviewList(), KaResultCode::Success);
  EXPECT_EQ(preview.previewList().count(), kCount);
  // The service's own copies go a little later. A sanitizer keeps no such account.
  EXPECT_TRUE(waitFor([&] { return memoryInUse() <= before + 200 * 1024; }));
  service.order(Endpoint::PreviewObject, {.status = 403});
  EXPECT_EQ(preview.getPreview(folder10G, 0).result, LinkInvalid);
  EXPECT_TRUE(preview.previewList().empty());
}

TEST(PreviewList, keepsWhatIsWholeAndNewAtTheFront) {
  const auto indices = [](const QByteArray &document, qint64 threshold) {
    PreviewList previews;
    EXPECT_TRUE(previews.takePiece(document.constData(), std::size_t(document.size())));
    previews.close(threshold);
    QString text;
    previews.visit([&](const KaPreview &preview) {
      text += QString::number(preview.index) + u' ';
      return preview.index != 8; // enough
    });
    return text;
  };
  const auto odd = [](const QByteArray &index) { return entry(1, "\"\"").replace(":1,", ':' + index + ','); };
  EXPECT_EQ(indices(list({entry(1, kTime), entry(2, kTime), entry(1, kTime), entry(3, "null")}), 1), u"2 1 3 ");
  EXPECT_EQ(indices(list({odd("9007199254740993")}), 9007199254740992), u"9007199254740993 ");
  EXPECT_EQ(indices(list({"7", "{}", odd("\"1\""), odd("1.5"), entry(4, "5"), entry(5, kTime), odd("null"),
                          odd("9223372036854775808")}),
                    0),
            u"4 5 ");
  const QByteArray two = list({entry(8, kTime), entry(9, kTime)});
  EXPECT_EQ(indices(two, 0), u"8 ");
  for (const QByteArray &bad :
       {two.chopped(1), QByteArray(two).replace("data", "dat"), two + '}', '[' + two + ']', "{\"a\":" + two + '}'})
    EXPECT_EQ(indices(bad, 0), u"") << bad.constData();
}

TEST(PreviewList, saysWhyItCannotBeKept) {
  const auto fault = [](PreviewList list) {
    EXPECT_FALSE(list.takePiece("{}", 2));
    return list.fault();
  };
  EXPECT_EQ(fault(PreviewList(1)), NoBody);
  for (const auto &[call, error, result] :
       {std::tuple(SYS_write, ENOSPC, DiskFull), {SYS_write, EIO, FileNotSaved}, {SYS_openat, EROFS, FileNotSaved}})
    if (!withRefusedCalls({{call, error}}, [&] { EXPECT_EQ(fault(PreviewList()), result) << call << error; }))
      GTEST_SKIP() << "the kernel refuses nothing on order";
}

TEST(DownloadReport, isTheTextThatTheLogServiceKnows) {
  const TestProfile profile;
  const auto at = [](std::chrono::microseconds moment) { return KaDownloadReport::Moment(moment); };
  const KaDownloadReport report{u"u%11\""_s, u"g"_s, awsLogs10GStreamName(), at(1000400us), at(1000500us), 12, u"2K"_s};
  EXPECT_EQ(createLogMessage(report, at(2s)),
            uR"({"logGroupName":"g", "logStreamName":"strata-prd-Ka-S3AccessLog-10G", "logEvents":[{"timestamp":2000,)"
            uR"("message":"{\"UUID\":\"u%11"\",\"Version\":\"1.0.0\",\"StartDate\":1000,\"EndDate\":1001,)"
            uR"(\"DownloadSuccess\":12,\"OS\":\"Mac\",\"Information\":\"2K\"}"}]})"_s);
}

} // namespace
