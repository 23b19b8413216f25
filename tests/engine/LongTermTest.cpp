#include "engine/KaDownloadProcessor.h"
#include "engine/KaDownloadReport.h"
#include "engine/KaPreviewDownload.h"
#include "tests/engine/EngineFixture.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;
using sandbox::Endpoint;
using sandbox::Fault;
using sandbox::Service;

namespace {

const QByteArray kPreview(700, 'v');

/// An account whose ordinary storage holds nothing new.
class LongTerm : public EngineTest {
protected:
  LongTerm() {
    delegate.change([&](auto &answers) {
      answers.option.parent10GFolder = profile.picturesFolder();
      answers.option.checkBox10GDownload = u"true"_s;
      answers.option.childFolder = 4;
      answers.records.insert(user, {u"20250101/00"_s, {}});
      answers.waits.pollingError = std::chrono::hours(2);
    });
  }

  [[nodiscard]] QStringList reports() const {
    QStringList told;
    for (const sandbox::LogEvent &event : service.logEvents()) {
      const QJsonObject message = QJsonDocument::fromJson(event.message.toUtf8()).object();
      told << event.stream.section(u'-', -1) + u' ' + message[u"Information"_s].toString() + u' '
                  + QString::number(message[u"DownloadSuccess"_s].toInt());
    }
    return told;
  }

  const QString user = service.library().userId();
};

void addImage(Service &service, const QString &name, const QString &period = {}) {
  sandbox::LibraryObject image{.deviceId = u"dev1"_s, .date = u"20240501"_s, .hour = u"10"_s, .fileName = name};
  image.body = "picture";
  image.fileNameMetadata = sandbox::fileNameHeader(name);
  image.metadataDocument = "{}";
  if (!period.isEmpty()) image.tags = {{u"x-strata-storage-period"_s, period}};
  service.library().add(image);
}

/// Previews 1.JPG, 2.JPG, ...; each taken at a time of its own, but every third without one.
void addPreviews(Service &service, int count) {
  QJsonArray data;
  for (int index = 1; index <= count; ++index) {
    const QString key = u"images/preview/%1/%2.x"_s.arg(service.library().userId()).arg(index);
    service.library().addRaw(sandbox::contentBucket(), key, {.body = kPreview});
    data.append(QJsonObject{{u"index"_s, index},
                            {u"preview_object_key"_s, key},
                            {u"file_size"_s, kPreview.size()},
                            {u"original_file_name"_s, u" %1.JPG"_s.arg(index)},
                            {u"shooting_time"_s, index % 3 == 0 ? QString() : u"2024-05-0%1T23:30:00"_s.arg(index)},
                            {u"upload_time"_s, u"20240601/07"_s}});
  }
  service.library().addRaw(sandbox::previewListBucket(), service.library().userId() + u".json"_s,
                           {.body = QJsonDocument(QJsonObject{{u"data"_s, data}}).toJson()});
}

/// Lets the first request, the ordinary pass's, go by.
void orderSecond(Service &service, Endpoint endpoint, const Fault &fault) {
  service.order(endpoint, {.kind = Fault::Kind::Delay});
  service.order(endpoint, fault);
}

struct Branch {
  const char *name;
  std::function<void(Service &)> scene;
  QStringList events; ///< between the save of the ordinary record and those of the others
  QStringList reports = {};
  int previewLists = 1;
  QString wait = u"3600"_s; ///< empty: none, and nothing saved
};

class LongTermBranches : public LongTerm, public testing::WithParamInterface<Branch> {};

TEST_P(LongTermBranches, endAsTheyShould) {
  GetParam().scene(service);
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));

  const QString &wait = GetParam().wait;
  QStringList expected = GetParam().events;
  if (!wait.isEmpty())
    expected << u"save Recent10GDownloadData "_s + user + u"_(10G)"_s
             << u"save RecentPreviewDownloadData "_s + user + u"_(2K)"_s;
  const QStringList events = delegate.events();
  EXPECT_EQ(events.mid(events.indexOf(u"save RecentDownloadData "_s + user) + 1), expected << u"enableLoggin 1"_s);
  EXPECT_EQ(reports(), GetParam().reports);
  EXPECT_EQ(service.requestCount(Endpoint::PreviewList), GetParam().previewLists);
  if (!wait.isEmpty()) {
    EXPECT_TRUE(waitFor([&] { return logged(u"Polling Wait"_s).contains(u"Polling Wait|pollingWaitTime="_s + wait); }));
  }
}

const QString kRenewed = u"saveLinkage"_s;
const QStringList kNothing{kRenewed, u"status 0"_s};
const QStringList kComplete{kRenewed, u"status 1"_s, u"result 2"_s, u"status 0"_s};
const QStringList kBothComplete{kRenewed, u"status 1"_s, u"status 1"_s, u"result 2"_s, u"status 0"_s};

INSTANTIATE_TEST_SUITE_P(
    Engine, LongTermBranches,
    testing::Values(Branch{"nothing", [](Service &) {}, kNothing},
                    Branch{"onlyImages", [](Service &s) { addImage(s, u"A.JPG"_s); }, kComplete, {u"10G 10G 1"_s}},
                    Branch{"onlyPreviews", [](Service &s) { addPreviews(s, 2); }, kComplete, {u"10G 2K 2"_s}},
                    Branch{"ordinaryImages",
                           [](Service &s) { addImage(s, u"A.JPG"_s, u"30"_s); },
                           {kRenewed, u"status 1"_s, u"status 0"_s}},
                    Branch{"both",
                           [](Service &s) {
                             addImage(s, u"A.JPG"_s, u"365"_s);
                             addPreviews(s, 1);
                           },
                           kBothComplete,
                           {u"10G 10G 1"_s, u"10G 2K 1"_s}},
                    Branch{"imagesButMissingPreviews",
                           [](Service &s) {
                             addImage(s, u"A.JPG"_s);
                             addPreviews(s, 1);
                             s.order(Endpoint::PreviewObject, {.status = 404});
                           },
                           kBothComplete,
                           {u"10G 10G 1"_s, u"10G 2K 0"_s}},
                    Branch{"imagesFail",
                           [](Service &s) {
                             addImage(s, u"A.JPG"_s);
                             addImage(s, u"B.JPG"_s);
                             addPreviews(s, 1);
                             s.order(Endpoint::ObjectGet, {.status = 503, .pathContains = u"B.JPG"_s});
                           },
                           {kRenewed, u"status 1"_s, u"result 11"_s},
                           {},
                           0},
                    Branch{"listingFails",
                           [](Service &s) {
                             addImage(s, u"A.JPG"_s);
                             s.order(Endpoint::ListItems, {.status = 403, .pathContains = u"19700101"_s});
                           },
                           {kRenewed, u"result 16"_s},
                           {},
                           0},
                    Branch{"listingWithoutStatus",
                           [](Service &s) {
                             orderSecond(s, Endpoint::ListDevices, {.kind = Fault::Kind::DroppedConnection});
                           },
                           {kRenewed, u"status 1"_s},
                           {},
                           0,
                           u"7200"_s},
                    Branch{"previewListFails",
                           [](Service &s) { s.order(Endpoint::PreviewList, {.status = 500}); },
                           {kRenewed, u"result 11"_s}},
                    Branch{"previewListWithoutStatus",
                           [](Service &s) { s.order(Endpoint::PreviewList, {.kind = Fault::Kind::DroppedConnection}); },
                           {kRenewed, u"status 1"_s},
                           {},
                           1,
                           u"7200"_s},
                    Branch{"previewsFail",
                           [](Service &s) {
                             addImage(s, u"A.JPG"_s);
                             addPreviews(s, 1);
                             s.order(Endpoint::PreviewObject, {.status = 403});
                           },
                           {kRenewed, u"status 1"_s, u"status 1"_s, u"result 16"_s},
                           {u"10G 10G 1"_s}},
                    Branch{"tokenFails",
                           [](Service &s) { orderSecond(s, Endpoint::RefreshToken, {.status = 503}); },
                           {u"result 17"_s},
                           {},
                           0,
                           {}},
                    Branch{"credentialsFail",
                           [](Service &s) { orderSecond(s, Endpoint::Sts, {.status = 403}); },
                           {kRenewed, u"result 16"_s},
                           {},
                           0},
                    Branch{"reportRefused",
                           [](Service &s) {
                             addImage(s, u"A.JPG"_s);
                             s.order(Endpoint::LogEvents, {.status = 500});
                           },
                           kComplete},
                    Branch{"switchedOffByTheService",
                           [](Service &s) {
                             addImage(s, u"A.JPG"_s);
                             s.library().setSettingsObject({});
                           },
                           {},
                           {},
                           0,
                           {}}),
    [](const auto &row) { return row.param.name; });

TEST_F(LongTerm, isTakenOnceAndBookedApart) {
  addImage(service, u"A.JPG"_s, u"365"_s);
  addImage(service, u"B.JPG"_s, u"30"_s);
  addPreviews(service, 3);
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(delegate.waitForEvent(u"result 2"_s));
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));
  const QStringList inPlace{u"1.JPG"_s, u"2.JPG"_s, u"3.JPG"_s, u"A.JPG"_s};
  EXPECT_EQ(files(), inPlace);
  const auto records = delegate.answers().records;
  EXPECT_EQ(records[user + u"_(10G)"_s].ContentIds, QStringList{u"A"_s});
  EXPECT_EQ(records[user + u"_(2K)"_s], (KaDownloadData{QString(), {u"3"_s}}));

  service.resetRequestCounts();
  ASSERT_TRUE(waitFor([&] {
    processor.getContentsNow();
    return delegate.events().count(u"enableLoggin 1"_s) >= 2;
  }));
  EXPECT_EQ(service.requestCount(Endpoint::ObjectGet) + service.requestCount(Endpoint::PreviewObject), 0);
  EXPECT_EQ(service.logEvents().size(), 2);
  EXPECT_EQ(files(), inPlace);
}

TEST_F(LongTerm, isReportedBesideAnOrdinaryPassThatSavedSomething) {
  delegate.change([](auto &answers) {
    answers.records.clear();
    answers.option.checkBoxDownloadMetadata = u"true"_s;
  });
  addImage(service, u"A.JPG"_s, u"30"_s);
  addImage(service, u"B.JPG"_s, u"30"_s);
  service.order(Endpoint::ObjectGet, {.status = 503, .pathContains = u"B.JPG"_s}); // the pass fails and is told
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s));
  EXPECT_EQ(reports(), (QStringList{u"S3AccessLog recent 1"_s, u"S3AccessLog recent 1"_s}));
}

class Preview : public LongTerm {
protected:
  [[nodiscard]] KaResultCode take() {
    const KaResultCode listed = preview.getPreviewList();
    return listed == KaResultCode::Success ? preview.getPreview(profile.picturesFolder(), 0) : listed;
  }
  [[nodiscard]] QString threshold() const { return delegate.answers().records[user + u"_(2K)"_s].ContentIds.value(0); }

  EngineParts parts{delegate};
  KaPreviewDownload preview{delegate, parts.request, parts.session, parts.state};
};

TEST_F(Preview, landsByShootingTimeOrUploadHour) {
  qputenv("TZ", "JST-9");
  tzset();
  addPreviews(service, 3);
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  EXPECT_EQ(take(), KaResultCode::Success);
  const QStringList expected{u"2024_05_01/1.JPG"_s, u"2024_05_02/2.JPG"_s, u"2024_06_01/3.JPG"_s};
  EXPECT_EQ(files(), expected);
  const auto modified = [&](int file) {
    return QFileInfo(profile.picturesFolder() + u'/' + expected[file]).lastModified().toSecsSinceEpoch();
  };
  EXPECT_EQ(modified(0), 1714573800); // 2024-05-01 14:30 UTC: local time, not moved
  EXPECT_EQ(modified(2), 1717225200); // 2024-06-01 07:00 UTC
  EXPECT_EQ(logged(u"[NG] 008: Get Exif"_s).size(), 1);
}

struct Trouble {
  const char *name;
  std::function<void(Service &, FakeDelegate &)> scene;
  KaResultCode result;
  QStringList files;
  QString threshold;
  quint64 count;
  int requests;
};

class PreviewTroubles : public Preview, public testing::WithParamInterface<Trouble> {};

TEST_P(PreviewTroubles, loseNothing) {
  addPreviews(service, 2);
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  GetParam().scene(service, delegate);
  EXPECT_EQ(take(), GetParam().result);
  EXPECT_EQ(files(), GetParam().files);
  EXPECT_EQ(threshold(), GetParam().threshold);
  EXPECT_EQ(preview.downloadSuccessCount(), GetParam().count);
  EXPECT_EQ(service.requestCount(Endpoint::PreviewObject), GetParam().requests);
}

const QString kFirst = u"2024_05_01/1.JPG"_s;
const QString kSecond = u"2024_05_02/2.JPG"_s;
Fault cut(int times) {
  return {.kind = Fault::Kind::Body, .body = kPreview.chopped(1), .times = times};
}

INSTANTIATE_TEST_SUITE_P(
    Engine, PreviewTroubles,
    testing::Values(
        Trouble{"missingObjectIsPassedOver",
                [](auto &s, auto &) { s.order(Endpoint::PreviewObject, {.status = 404}); },
                KaResultCode::Success,
                {kSecond},
                u"2"_s,
                1,
                2},
        Trouble{"wrongSizeIsFetchedAgain",
                [](auto &s, auto &) { s.order(Endpoint::PreviewObject, cut(3)); },
                KaResultCode::Success,
                {kFirst, kSecond},
                u"2"_s,
                2,
                5},
        Trouble{"fourthCopyStaysAndCounts",
                [](auto &s, auto &) { s.order(Endpoint::PreviewObject, cut(8)); },
                KaResultCode::Success,
                {kFirst, kSecond},
                u"2"_s,
                2,
                8},
        Trouble{"failureEndsThePass",
                [](auto &s, auto &) { orderSecond(s, Endpoint::PreviewObject, {.status = 503}); },
                KaResultCode::RetryLater,
                {kFirst},
                u"1"_s,
                1,
                2},
        Trouble{"folderNotUsable",
                [](auto &, auto &d) {
                  d.change([](auto &answers) { answers.folderVerdict = KaResultCode::FolderNotSupported; });
                },
                KaResultCode::FileNotSaved,
                {},
                {},
                0,
                0},
        Trouble{"takenOnesAreNoLonger",
                [](auto &s, auto &d) { d.setDownloadDataNewDate(s.library().userId() + u"_(2K)"_s, {}, u"1"_s); },
                KaResultCode::Success,
                {kSecond},
                u"2"_s,
                1,
                1},
        Trouble{"noList",
                [](auto &s, auto &) { s.library().removeRaw(sandbox::previewListBucket(), u"user-0001.json"_s); },
                KaResultCode::Success,
                {},
                {},
                0,
                0},
        Trouble{"listThatIsNone",
                [](auto &s, auto &) { s.order(Endpoint::PreviewList, {.kind = Fault::Kind::MalformedBody}); },
                KaResultCode::Success,
                {},
                {},
                0,
                0},
        Trouble{"listRefused",
                [](auto &s, auto &) { s.order(Endpoint::PreviewList, {.status = 403}); },
                KaResultCode::LinkInvalid,
                {},
                {},
                0,
                0}),
    [](const auto &row) { return row.param.name; });

TEST_F(Preview, carriesWhatCannotBeSavedOverToTheRest) {
  addPreviews(service, 3);
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  QFile blocker(profile.picturesFolder() + u"/2024_05_02"_s);
  ASSERT_TRUE(blocker.open(QFile::WriteOnly));
  EXPECT_EQ(take(), KaResultCode::FileNotSaved);
  EXPECT_EQ(files(), (QStringList{kFirst, u"2024_05_02"_s}));
  EXPECT_EQ(logged(u"GetPreview Start"_s).size(), 3);
}

TEST(PreviewList, keepsWhatIsWholeAndNewAtTheFront) {
  const auto indices = [](const QByteArray &document, qint64 threshold) {
    auto previews = previewsIn(document);
    dropTaken(previews, threshold);
    QString text;
    for (const KaPreview &preview : previews)
      text += QString::number(preview.index) + u' ';
    return text.trimmed();
  };
  const auto entry = [](const QByteArray &index) {
    return "{\"index\":" + index
           + R"(,"preview_object_key":"k","file_size":1,"original_file_name":"n","shooting_time":"","upload_time":""})";
  };
  const auto list = [](const QByteArrayList &entries) { return "{\"data\":[" + entries.join(',') + "]}"; };
  EXPECT_EQ(indices(list({entry("1"), entry("2"), entry("1"), entry("3")}), 1), u"2 1 3");
  EXPECT_EQ(indices(list({entry("1"), entry("2")}), 2), u"");
  EXPECT_EQ(indices(list({entry("9007199254740993")}), 9007199254740992), u"9007199254740993");
  EXPECT_EQ(indices(list({"7", "{}", entry("\"1\""), entry("1.5"), entry("4"), entry("null")}), 0), u"4");
  EXPECT_EQ(indices(R"({"data":{"index":1}})", 0), u"");
  EXPECT_EQ(indices("[]", 0), u"");
}

TEST(DownloadReport, isTheTextThatTheLogServiceKnows) {
  const TestProfile profile;
  using namespace std::chrono_literals;
  const auto at = [](std::chrono::microseconds moment) { return KaDownloadReport::Moment(moment); };
  const KaDownloadReport report{u"u%11\""_s, u"g"_s, awsLogs10GStreamName(), at(1000400us), at(1000500us), 12, u"2K"_s};
  EXPECT_EQ(createLogMessage(report, at(2s)),
            uR"({"logGroupName":"g", "logStreamName":"strata-prd-Ka-S3AccessLog-10G", "logEvents":[{"timestamp":2000,)"
            uR"("message":"{\"UUID\":\"u%11"\",\"Version\":\"1.0.0\",\"StartDate\":1000,\"EndDate\":1001,)"
            uR"(\"DownloadSuccess\":12,\"OS\":\"Mac\",\"Information\":\"2K\"}"}]})"_s);
}

} // namespace
