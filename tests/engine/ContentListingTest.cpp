#include "tests/engine/EngineFixture.h"

#include <QElapsedTimer>

using namespace Qt::StringLiterals;
using sandbox::Endpoint;
using sandbox::Fault;

namespace {

class ContentListing : public EngineTest {
protected:
  /// @return DEVICE/DATE/HOUR/FILE of what was found, sorted.
  QStringList found(KaTargetStorage storage = KaTargetStorage::Days30) {
    EXPECT_EQ(parts.open(), KaResultCode::Success);
    EXPECT_EQ(parts.list(storage), KaResultCode::Success);
    QStringList keys;
    for (const QString &key : parts.listing.contentsDictionary().keys())
      keys << key.section(u'/', 3);
    keys.sort();
    return keys;
  }
  void addIn(const QString &device, const QString &hour, const QString &fileName) {
    sandbox::LibraryObject object = image(hour, fileName);
    object.deviceId = device;
    add(object);
  }
  void setRecord(const KaDownloadData &record, const QString &suffix = {}) {
    delegate.change([&](auto &answers) { answers.records[service.library().userId() + suffix] = record; });
  }
  QList<QByteArray> targets(Endpoint endpoint) const {
    QList<QByteArray> targets;
    for (const auto &request : service.requests())
      if (request.endpoint == endpoint) targets << request.target;
    return targets;
  }

  EngineParts parts{delegate};
};

TEST_F(ContentListing, findsEveryDevicesImagesOverAllPages) {
  service.setListPageSize(2);
  for (const QString &name : {u"A.JPG"_s, u"B.JPG"_s, u"C.JPG"_s, u"D.JPG"_s, u"E &amp; <F>.JPG"_s})
    addIn(u"dev1"_s, u"10"_s, name);
  addIn(u"dev2"_s, u"11"_s, u"A.JPG"_s);
  addIn(u"dev3"_s, u"12"_s, u"A.JPG"_s);
  EXPECT_EQ(found(), (QStringList{u"dev1/20240501/10/A.JPG"_s, u"dev1/20240501/10/B.JPG"_s, u"dev1/20240501/10/C.JPG"_s,
                                  u"dev1/20240501/10/D.JPG"_s, u"dev1/20240501/10/E &amp; <F>.JPG"_s,
                                  u"dev2/20240501/11/A.JPG"_s, u"dev3/20240501/12/A.JPG"_s}));
  EXPECT_EQ(service.requestCount(Endpoint::ListDevices), 2);
  EXPECT_EQ(service.requestCount(Endpoint::ListItems), 3 + 1 + 1);
  EXPECT_EQ(logged(u"[OK] 005: Get DeviceList"_s).last(), u"[OK] 005: Get DeviceList|DeviceList=dev1,dev2,dev3"_s);
  EXPECT_EQ(logged(u"GetContentsList"_s), (QStringList{u"GetContentsList|TargetImageNumBeforeExclude=7"_s,
                                                       u"GetContentsList|TargetImageNumAfterExclude=7"_s}));
}

TEST_F(ContentListing, keepsListedSizes) {
  sandbox::LibraryObject object = image(u"10"_s, u"A.JPG"_s);
  object.listedSize = 6'000'000'000;
  add(object);
  ASSERT_EQ(found().size(), 1);
  EXPECT_EQ(parts.listing.contentsDictionary().value(service.library().imageKey(object)), 6'000'000'000);
}

TEST_F(ContentListing, leavesAliasDevicesAndFolderMarkersOut) {
  service.library().setSettingsObject(R"({"applicationAliasIds":["dev2",7],"isEnableDownload10GStorage":0})");
  addIn(u"dev1"_s, u"10"_s, u"A.JPG"_s);
  addIn(u"dev2"_s, u"10"_s, u"B.JPG"_s);
  sandbox::LibraryObject marker = image(u"10"_s, QString(), QByteArray());
  add(marker);
  EXPECT_EQ(found(), QStringList{u"dev1/20240501/10/A.JPG"_s});
  EXPECT_EQ(logged(u"[OK] 006: Get ExcludeDeviceList"_s),
            QStringList{u"[OK] 006: Get ExcludeDeviceList|ExcludeDeviceList=dev2"_s});
}

TEST_F(ContentListing, tellsDevicesApartWhoseIdsBeginAlike) {
  service.library().setSettingsObject(R"({"applicationAliasIds":["dev10"],"isEnableDownload10GStorage":0})");
  addIn(u"dev1"_s, u"10"_s, u"A.JPG"_s);
  addIn(u"dev10"_s, u"10"_s, u"B.JPG"_s);
  EXPECT_EQ(found(), QStringList{u"dev1/20240501/10/A.JPG"_s});
}

TEST_F(ContentListing, passesOverObjectsWithoutAnUploadHour) {
  addIn(u"dev1"_s, u"10"_s, u"A.JPG"_s);
  service.library().addRaw(sandbox::contentBucket(),
                           u"images/original/%1/dev1/zz/notes.txt"_s.arg(service.library().userId()), {.body = "text"});
  EXPECT_EQ(found(), QStringList{u"dev1/20240501/10/A.JPG"_s});
}

TEST_F(ContentListing, asksFromTheLastHourOnAndExcludesWhatItHoldsAlready) {
  setRecord({u"20240501/11"_s, {u"A"_s, u"A"_s}});
  addIn(u"dev1"_s, u"10"_s, u"OLD.JPG"_s);
  addIn(u"dev1"_s, u"11"_s, u"A.JPG"_s);
  addIn(u"dev1"_s, u"11"_s, u"B.JPG"_s);
  addIn(u"dev1"_s, u"12"_s, u"C.JPG"_s);
  EXPECT_EQ(found(), (QStringList{u"dev1/20240501/11/B.JPG"_s, u"dev1/20240501/12/C.JPG"_s}));
  const QString prefix = u"images/original/"_s + service.library().userId() + u"/dev1"_s;
  EXPECT_THAT(targets(Endpoint::ListItems).first().toStdString(),
              testing::StartsWith("/?list-type=2&prefix=" + prefix.toStdString()
                                  + "&start-after=" + prefix.toStdString() + "/20240501/11&AWSAccessKeyId="));
  EXPECT_EQ(logged(u"[OK] 007: Get ImageList"_s),
            QStringList{u"[OK] 007: Get ImageList|DeviceID=dev1|StartAfter="_s + prefix + u"/20240501/11"_s});
  EXPECT_EQ(logged(u"Exclude"_s), QStringList{u"Exclude|Message: This Content Is Already Downloaded."_s});
  QStringList ids;
  for (const QString &block : logged(u"ContentInfo"_s)) {
    const QString start = u"ContentInfo|Key:%1, ContentId:"_s.arg(ids.size());
    EXPECT_TRUE(block.startsWith(start)) << block.toStdString();
    ids << block.mid(start.size());
  }
  EXPECT_THAT(ids, testing::UnorderedElementsAre(u"A"_s, u"B"_s, u"C"_s));
}

TEST_F(ContentListing, listsThe10GStorageFromTheBeginningWithoutSettings) {
  setRecord({u"20240501/11"_s, {u"A"_s}}, u"_(10G)"_s);
  service.library().setSettingsObject(R"({"applicationAliasIds":["dev1"]})");
  addIn(u"dev1"_s, u"10"_s, u"OLD.JPG"_s);
  addIn(u"dev1"_s, u"11"_s, u"A.JPG"_s);
  EXPECT_EQ(found(KaTargetStorage::LongTerm10G), QStringList{u"dev1/20240501/10/OLD.JPG"_s});
  EXPECT_EQ(service.requestCount(Endpoint::SettingsObject), 0);
}

TEST_F(ContentListing, isEmptyWithoutDevices) {
  EXPECT_TRUE(found().isEmpty());
  EXPECT_EQ(service.requestCount(Endpoint::ListItems), 0);
}

TEST_F(ContentListing, endsWhenPagesGoRoundInCircles) {
  const QByteArray page = "<L><NextContinuationToken>again</NextContinuationToken></L>";
  service.order(Endpoint::ListDevices, {.kind = Fault::Kind::Body, .body = page, .times = -1});
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  EXPECT_EQ(parts.list(), KaResultCode::NoBody);
  EXPECT_EQ(service.requestCount(Endpoint::ListDevices), 2);
}

TEST_F(ContentListing, withholdsKeys) {
  addIn(u"dev1"_s, u"10"_s, u"A.JPG"_s);
  ASSERT_EQ(found().size(), 1);
  parts.listing.withhold({service.library().imageKey(image(u"10"_s, u"A.JPG"_s)), u"another"_s});
  EXPECT_TRUE(parts.listing.contentsDictionary().isEmpty());
}

TEST_F(ContentListing, excludesManyIdsInLinearTime) {
  constexpr int kCount = 20'000;
  service.library().addMany({.count = kCount,
                             .size = 1,
                             .deviceId = u"dev1"_s,
                             .firstDate = u"20240501"_s,
                             .perHour = kCount,
                             .withMetadata = false});
  QStringList ids;
  for (int number = 0; number < kCount; ++number)
    ids << u"M%1"_s.arg(number, 8, 10, QLatin1Char('0'));
  setRecord({u"20240501/00"_s, ids});
  KaLogUtility::switchLogStatus();
  QElapsedTimer timer;
  timer.start();
  EXPECT_TRUE(found().isEmpty());
  EXPECT_LT(timer.elapsed(), 10'000 * kSlowness);
}

struct Settings {
  const char *name;
  std::optional<QByteArray> document;
  bool keeps10G;
  bool newVersion;
};

class SettingsObjects : public EngineTest, public testing::WithParamInterface<Settings> {};

TEST_P(SettingsObjects, decideAboutThe10GStorageAndNewVersions) {
  service.library().setSettingsObject(GetParam().document);
  EngineParts parts(delegate);
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  delegate.change([](auto &answers) { answers.option.checkBox10GDownload = u"true"_s; });
  const KaDownloadOption before = delegate.answers().option;
  ASSERT_EQ(parts.listing.getContentsList(KaTargetStorage::Days30, /*notifyUserOfUpdate=*/false),
            KaResultCode::Success);
  EXPECT_FALSE(delegate.events().contains(u"result 24"_s));
  ASSERT_EQ(parts.listing.getContentsList(KaTargetStorage::Days30, /*notifyUserOfUpdate=*/true), KaResultCode::Success);
  EXPECT_EQ(delegate.events().contains(u"result 24"_s), GetParam().newVersion);
  KaDownloadOption expected = before;
  if (!GetParam().keeps10G) expected.checkBox10GDownload = u"false"_s;
  EXPECT_EQ(delegate.answers().option, expected);
}

INSTANTIATE_TEST_SUITE_P(
    ContentListing, SettingsObjects,
    testing::Values(
        Settings{"none", {}, false, false}, Settings{"noJson", "<x/>", false, false},
        Settings{"array", R"(["isEnableDownload10GStorage"])", false, false},
        Settings{"emptyObject", "{}", false, false},
        Settings{"keyWithFalse", R"({"isEnableDownload10GStorage":false})", true, false},
        Settings{"keyWithNull", R"({"isEnableDownload10GStorage":null})", true, false},
        Settings{"laterVersion", R"({"isEnableDownload10GStorage":1,"kaLatestVersion":"99.0.0"})", true, true},
        Settings{"earlierVersion", R"({"isEnableDownload10GStorage":1,"kaLatestVersion":"0.9.9"})", true, false},
        Settings{"versionOfWrongType", R"({"isEnableDownload10GStorage":1,"kaLatestVersion":99})", true, false},
        Settings{"aliasesOfWrongType", R"({"isEnableDownload10GStorage":1,"applicationAliasIds":"dev1"})", true,
                 false}),
    [](const auto &row) { return row.param.name; });

struct Saving {
  const char *name;
  KaTargetStorage storage;
  QString hour;
  KaDownloadData expected;
};

class Savings : public EngineTest, public testing::WithParamInterface<Saving> {};

TEST_P(Savings, keepTheNewestHour) {
  EngineParts parts(delegate);
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  const QString key = uuidKey(service.library().userId(), GetParam().storage);
  delegate.change([&](auto &answers) { answers.records[key] = {u"20240501/10"_s, {u"A"_s}}; });
  parts.listing.saveImageInfo(u"B"_s, u"20240501"_s, GetParam().hour, GetParam().storage);
  EXPECT_EQ(delegate.answers().records[key], GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    ContentListing, Savings,
    testing::Values(Saving{"sameHour", KaTargetStorage::Days30, u"10"_s, {u"20240501/10"_s, {u"A"_s, u"B"_s}}},
                    Saving{"laterHour", KaTargetStorage::Days30, u"11"_s, {u"20240501/11"_s, {u"B"_s}}},
                    Saving{"earlierHour", KaTargetStorage::Days30, u"09"_s, {u"20240501/10"_s, {u"A"_s}}},
                    Saving{"longTerm", KaTargetStorage::LongTerm10G, u"09"_s, {u"20240501/10"_s, {u"A"_s, u"B"_s}}}),
    [](const auto &row) { return row.param.name; });

} // namespace
