#include "engine/DiskSpace.h"
#include "engine/KaContentDownload.h"
#include "engine/KaContentListing.h"
#include "engine/KaImageMetadata.h"
#include "engine/KaTargetStorage.h"
#include "engine/ListingParser.h"
#include "engine/ObjectKey.h"
#include "engine/OutputFolder.h"
#include "engine/PresignedUrl.h"
#include "engine/VersionOrder.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>
#include <QTimeZone>

#include <gtest/gtest.h>

#include <ctime>

using namespace Qt::StringLiterals;

inline void PrintTo(const QString &text, std::ostream *out) {
  *out << text.toStdString();
}

namespace {

constexpr auto kRowName = [](const auto &row) { return row.param.name; };

/// Before anything asks for the zone. Written out, so that no zone table is needed.
void setZone(const char *zone) {
  qputenv("TZ", zone);
  tzset();
}

QDateTime utc(const QString &text) {
  QDateTime instant = QDateTime::fromString(text, u"yyyy-MM-dd HH:mm:ss"_s);
  instant.setTimeSpec(Qt::UTC);
  return instant;
}

struct DateFolder {
  const char *name;
  const char *zone;
  qint64 scheme;
  QString captured;
  QString expected;
};

class DateFolders : public testing::TestWithParam<DateFolder> {};

TEST_P(DateFolders, followTheSchemeInLocalTime) {
  setZone(GetParam().zone);
  QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
  EXPECT_EQ(getOutputDateFolderString(utc(GetParam().captured), GetParam().scheme), GetParam().expected);
}

const QString kNoon = u"2024-05-01 12:00:00"_s;

INSTANTIATE_TEST_SUITE_P(
    OutputFolder, DateFolders,
    testing::Values(DateFolder{"day", "UTC0", 0, kNoon, u"/2024_05_01"_s},
                    DateFolder{"month", "UTC0", 1, kNoon, u"/2024/05"_s},
                    DateFolder{"yearAndDay", "UTC0", 2, kNoon, u"/2024/2024_05_01"_s},
                    DateFolder{"yearMonthDay", "UTC0", 3, kNoon, u"/2024/05/2024_05_01"_s},
                    DateFolder{"none", "UTC0", 4, kNoon, QString()},
                    DateFolder{"unknown", "UTC0", -1, kNoon, QString()},
                    DateFolder{"newDayEast", "JST-9", 0, u"2024-04-30 15:00:00"_s, u"/2024_05_01"_s},
                    DateFolder{"oldDayEast", "JST-9", 0, u"2024-04-30 14:59:59"_s, u"/2024_04_30"_s},
                    DateFolder{"oldYearWest", "EST5", 3, u"2025-01-01 04:59:59"_s, u"/2024/12/2024_12_31"_s}),
    kRowName);

struct FolderName {
  const char *name;
  QString path;
  qint64 level;
  QString expected;
};

class FolderNames : public testing::TestWithParam<FolderName> {};

TEST_P(FolderNames, areTakenFromTheEnd) {
  EXPECT_EQ(getFolderNameFromPath(GetParam().path, GetParam().level), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(OutputFolder, FolderNames,
                         testing::Values(FolderName{"file", u"a/20240501/10/I.JPG"_s, 0, u"I.JPG"_s},
                                         FolderName{"hour", u"a/20240501/10/I.JPG"_s, 1, u"10"_s},
                                         FolderName{"date", u"a/20240501/10/I.JPG"_s, 2, u"20240501"_s},
                                         FolderName{"belowZero", u"a/b"_s, -3, u"b"_s},
                                         FolderName{"trailingSlash", u"a/b/"_s, 0, u"b"_s},
                                         FolderName{"beyondRelative", u"a/b"_s, 7, u"a"_s},
                                         FolderName{"beyondAbsolute", u"/a/b"_s, 2, u"/"_s},
                                         FolderName{"root", u"/"_s, 0, u"/"_s},
                                         FolderName{"empty", QString(), 0, QString()}),
                         kRowName);

struct Destination {
  const char *name;
  QString path;
  bool stays;
};

class Destinations : public testing::TestWithParam<Destination> {};

TEST_P(Destinations, mustNotLeaveTheParentFolder) {
  EXPECT_EQ(staysInParentFolder(GetParam().path, u"/home/u/Pictures"_s), GetParam().stays);
}

INSTANTIATE_TEST_SUITE_P(OutputFolder, Destinations,
                         testing::Values(Destination{"parentItself", u"/home/u/Pictures"_s, true},
                                         Destination{"nested", u"/home/u/Pictures/a/b"_s, true},
                                         Destination{"dotsInNames", u"/home/u/Pictures/..a/b.."_s, true},
                                         Destination{"thereAndBack", u"/home/u/Pictures/a/../b"_s, true},
                                         Destination{"above", u"/home/u/Pictures/.."_s, false},
                                         Destination{"beside", u"/home/u/Pictures/../Pictures2"_s, false},
                                         Destination{"aboveFromBelow", u"/home/u/Pictures/a/../../b"_s, false}),
                         kRowName);

TEST(OutputFolder, takesRuleNamesVerbatim) {
  EXPECT_EQ(getOutputRuleFolderArray({u"Birds"_s, u" a/b "_s}), (QStringList{u"/Birds"_s, u"/ a/b "_s}));
}

TEST(OutputFolder, namesUnnamedFilesByTheirLocalDay) {
  setZone("JST-9");
  const QDateTime captured = utc(u"2024-04-30 20:00:00"_s);
  EXPECT_EQ(defaultFilePath(u"/p"_s, captured, u"a/IMG.JPG"_s), u"/p/2024-05-01.JPG"_s);
  EXPECT_EQ(defaultFilePath(u"/p"_s, captured, u"a/IMG"_s), u"/p/2024-05-01"_s);
}

struct DerivedKeys {
  const char *name;
  QString key;
  QString expand;
  QString metadata;
  QString expandMetadata;
  QString contentId;
};

class ObjectKeys : public testing::TestWithParam<DerivedKeys> {};

TEST_P(ObjectKeys, areRewrittenByPosition) {
  EXPECT_EQ(expandImagePathFromImagePath(GetParam().key), GetParam().expand);
  EXPECT_EQ(exifPathFromImagePath(GetParam().key, false), GetParam().metadata);
  EXPECT_EQ(exifPathFromImagePath(GetParam().key, true), GetParam().expandMetadata);
  EXPECT_EQ(contentIdFromPath(GetParam().key), GetParam().contentId);
}

INSTANTIATE_TEST_SUITE_P(
    ObjectKey, ObjectKeys,
    testing::Values(DerivedKeys{"image", u"A/B/20240501/10/IMG_0001.JPG"_s, u"A/expand_B/20240501/10/IMG_0001.JPG"_s,
                                u"metadata/exif/20240501/10/IMG_0001.json"_s,
                                u"metadata/expand_exif/20240501/10/IMG_0001.json"_s, u"IMG_0001"_s},
                    DerivedKeys{"expandVariant", u"A/expand_B/u/I.x.JPG"_s, u"A/expand_expand_B/u/I.x.JPG"_s,
                                u"metadata/exif/u/I.x.json"_s, u"metadata/expand_exif/u/I.x.json"_s, u"I.x"_s},
                    DerivedKeys{"twoComponents", u"A/IMG.JPG"_s, u"A/expand_IMG.JPG"_s, u"metadata/IMG.json"_s,
                                u"metadata/IMG.json"_s, u"IMG"_s},
                    DerivedKeys{"leadingDot", u"A/B/.IMG"_s, u"A/expand_B/.IMG"_s, u"metadata/exif/.IMG.json"_s,
                                u"metadata/expand_exif/.IMG.json"_s, u".IMG"_s}),
    kRowName);

TEST(ObjectKey, tellsTheUploadHour) {
  EXPECT_EQ(uploadHourFromPath(u"a/20240501/23/I.JPG"_s), utc(u"2024-05-01 23:00:00"_s));
  for (const QString &key : {u"a/20240532/23/I"_s, u"a/20240501/24/I"_s, u"a/2024051/023/I"_s, u"a/+0240501/23/I"_s,
                             u"20240501/10"_s, u"I"_s, QString()})
    EXPECT_FALSE(uploadHourFromPath(key).isValid()) << key.toStdString();
}

struct DateText {
  const char *name;
  QString text;
  KaDateFormat format;
  QString expectedUtc; ///< empty: no match
};

class DateTexts : public testing::TestWithParam<DateText> {};

TEST_P(DateTexts, matchTheirFormatOnly) {
  setZone("JST-9");
  const auto parsed = getDateTimeFromString(GetParam().text, GetParam().format);
  ASSERT_EQ(parsed.has_value(), !GetParam().expectedUtc.isEmpty());
  if (parsed) {
    EXPECT_EQ(parsed->toUTC().toString(u"yyyy-MM-dd HH:mm:ss.zzz"_s), GetParam().expectedUtc);
  }
}

constexpr auto kCapture = KaDateFormat::CaptureTime;
constexpr auto kShooting = KaDateFormat::ShootingTime;

INSTANTIATE_TEST_SUITE_P(
    ImageMetadata, DateTexts,
    testing::Values(DateText{"zulu", u"2024-05-01T10:15:30.250Z"_s, kCapture, u"2024-05-01 10:15:30.250"_s},
                    DateText{"offset", u"2024-05-01T10:15:30.250-05:30"_s, kCapture, u"2024-05-01 15:45:30.250"_s},
                    DateText{"noZone", u"2024-05-01T10:15:30.250"_s, kCapture, QString()},
                    DateText{"noMilliseconds", u"2024-05-01T10:15:30Z"_s, kCapture, QString()},
                    DateText{"noSuchDay", u"2024-02-30T10:15:30.250Z"_s, kCapture, QString()},
                    DateText{"blankInFront", u" 2024-05-01T10:15:30.250Z"_s, kCapture, QString()},
                    DateText{"lineAfter", u"2024-05-01T10:15:30.250Z\n"_s, kCapture, QString()},
                    DateText{"empty", QString(), kCapture, QString()},
                    DateText{"systemZone", u"2024-05-01T10:15:30"_s, kShooting, u"2024-05-01 01:15:30.000"_s},
                    DateText{"zoneTooMany", u"2024-05-01T10:15:30Z"_s, kShooting, QString()}),
    kRowName);

TEST(ImageMetadata, movesTheCaptureTimeBackByTheCurrentOffset) {
  setZone("JST-9");
  const QString key = u"a/b/20240501/10/I.JPG"_s;
  const QJsonObject document{{u"captureTime"_s, u"2024-04-30T12:00:00.000+02:00"_s}};
  EXPECT_EQ(captureDate({KaResultCode::Success, document}, key), utc(u"2024-04-30 01:00:00"_s));
  EXPECT_EQ(captureDate({KaResultCode::Success, {{u"captureTime"_s, u"yesterday"_s}}}, key),
            utc(u"2024-05-01 10:00:00"_s));
  EXPECT_EQ(captureDate({KaResultCode::RetryLater, document}, key), utc(u"2024-05-01 10:00:00"_s));
}

TEST(ImageMetadata, readsRuleNamesAndNothingElse) {
  const auto rules = [](const char *json) { return matchedRules(QJsonDocument::fromJson(json).object()); };
  EXPECT_EQ(rules(R"({"sortation":{"matchedRules":["A",1,"B"]}})"), (QStringList{u"A"_s, u"B"_s}));
  EXPECT_TRUE(rules(R"({"sortation":{"matchedRules":"A"}})").isEmpty());
  EXPECT_TRUE(rules(R"({"sortation":["A"]})").isEmpty());
  EXPECT_TRUE(rules(R"({})").isEmpty());
}

TEST(TargetStorage, hasAKeyPerUserAndKind) {
  EXPECT_EQ(uuidKey(u"u"_s, KaTargetStorage::Days30), u"u"_s);
  EXPECT_EQ(uuidKey(u"u"_s, KaTargetStorage::LongTerm10G), u"u_(10G)"_s);
  EXPECT_EQ(uuidKey(u"u"_s, KaTargetStorage::Preview2K), u"u_(2K)"_s);
}

TEST(ContentOrder, isByDateHourAndNameOverAllDevices) {
  const QStringList sorted{u"i/o/u/z/20240430/23/B"_s, u"i/o/u/a/20240501/01/A"_s, u"i/o/u/b/20240501/01/A"_s,
                           u"i/o/u/a/20240501/01/a"_s, u"i/o/u/a/20240501/10/A"_s, u"short"_s};
  EXPECT_EQ(sortImageList({sorted[4], sorted[5], sorted[2], sorted[0], sorted[3], sorted[1]}), sorted);
  EXPECT_TRUE(sortImageList({}).isEmpty());
}

struct Room {
  const char *name;
  double freeSize;
  double fileSize;
  bool boot;
  bool fits;
};

class Rooms : public testing::TestWithParam<Room> {};

TEST_P(Rooms, mustLeaveTheMargin) {
  EXPECT_EQ(
      leavesMargin(static_cast<float>(GetParam().freeSize), static_cast<float>(GetParam().fileSize), GetParam().boot),
      GetParam().fits);
}

constexpr double kMiB = 1024 * 1024;

// Near 16 TiB a 32-bit float counts in steps of 1 MiB, so that half a MiB is nothing.
INSTANTIATE_TEST_SUITE_P(
    DiskSpace, Rooms,
    testing::Values(Room{"bootRefused", 300 * kMiB, 60 * kMiB, true, false},
                    Room{"otherTaken", 300 * kMiB, 60 * kMiB, false, true},
                    Room{"bootExactlyFull", 310 * kMiB, 60 * kMiB, true, false},
                    Room{"bootOneByteMore", 250 * kMiB + 16, 0, true, true},
                    Room{"otherExactlyFull", 10 * kMiB, 0, false, false}, Room{"unknown", 0, 0, false, false},
                    Room{"roundedToFull", 16 * kMiB *kMiB + 0.4 * kMiB, 16 * kMiB *kMiB - 10 * kMiB, false, false}),
    kRowName);

TEST(DiskSpace, knowsTheStartUpVolume) {
  for (const QString &path : {u"/home/u"_s, u"/"_s, u"/mnt2/x"_s, u"/data/mnt/x"_s})
    EXPECT_TRUE(checkDriveIsBoot(path)) << path.toStdString();
  for (const QString &path : {u"/mnt"_s, u"/mnt/x"_s, u"/media/u/STICK"_s, u"/run/media/u/STICK/"_s})
    EXPECT_FALSE(checkDriveIsBoot(path)) << path.toStdString();
}

TEST(DiskSpace, isNoneWhereThereIsNoFolder) {
  EXPECT_FALSE(checkDiskSpace(0, u"/no/such/folder"_s));
}

struct Versions {
  const char *name;
  QStringView candidate;
  QStringView current;
  bool later;
};

class VersionPairs : public testing::TestWithParam<Versions> {};

TEST_P(VersionPairs, compareByNumbers) {
  EXPECT_EQ(isLaterVersion(GetParam().candidate, GetParam().current), GetParam().later);
}

INSTANTIATE_TEST_SUITE_P(
    VersionOrder, VersionPairs,
    testing::Values(Versions{"equal", u"1.2.3", u"1.2.3", false}, Versions{"tenAfterNine", u"1.10", u"1.9", true},
                    Versions{"nineBeforeTen", u"1.9", u"1.10", false}, Versions{"goesOn", u"1.0.1", u"1.0", true},
                    Versions{"endsEarlier", u"1.0", u"1.0.1", false}, Versions{"leadingZeros", u"1.02", u"1.2", false},
                    Versions{"longNumber", u"99999999999999999999999", u"5", true},
                    Versions{"text", u"1.0b", u"1.0a", true}, Versions{"empty", u"", u"1.0", false}),
    kRowName);

TEST(PresignedUrl, signsAsOtherImplementationsDo) {
  QFile file(QStringLiteral(KA_TEST_DATA "/signing.json"));
  ASSERT_TRUE(file.open(QFile::ReadOnly));
  const QJsonObject known = QJsonDocument::fromJson(file.readAll()).object();
  const QJsonObject credential = known[u"credential"_s].toObject();
  const QJsonArray rows = known[u"presignedV2"_s].toArray();
  ASSERT_FALSE(rows.isEmpty());
  for (const QJsonValue &row : rows) {
    EXPECT_EQ(SignatureString(row[u"expires"_s].toString(), row[u"bucket"_s].toString(),
                              credential[u"SecretAccessKey"_s].toString(), credential[u"SessionToken"_s].toString(),
                              row[u"key"_s].toString()),
              row[u"signaturePercentEncoded"_s].toString());
    EXPECT_EQ(toHMACSHA1(row[u"stringToSign"_s].toString(), credential[u"SecretAccessKey"_s].toString()).toBase64(),
              row[u"signatureBase64"_s].toString().toLatin1());
  }
}

TEST(PresignedUrl, encodesNothingButTheContinuationToken) {
  const QString base = baseURLString(u"https"_s, u"bucket"_s, u"host:1"_s, {}, u"list-type=2"_s);
  const QString options = optionURLString(u"ID"_s, u"99"_s, u"S%3D"_s);
  EXPECT_EQ(createS3URLString(base, options),
            u"https://bucket.host:1?list-type=2&AWSAccessKeyId=ID&Expires=99&Signature=S%3D"_s);
  EXPECT_EQ(createS3URLString(base, options, {u"a/b c/"_s, u"a/b=1"_s, u"/"_s, u"t/+=-._~é"_s}),
            u"https://bucket.host:1?list-type=2&prefix=a/b c/&start-after=a/b=1&delimiter=/"
            "&continuation-token=t%2F%2B%3D%2D%2E%5F%7E%C3%A9&AWSAccessKeyId=ID&Expires=99&Signature=S%3D"_s);
  EXPECT_TRUE(presignedObjectURL({u"ID"_s, u"s"_s, u"t"_s, u"99"_s}, u"bucket"_s, u"host"_s, u"conf/settings.json"_s)
                  .startsWith(u"https://bucket.host/conf/settings.json?&AWSAccessKeyId=ID&Expires=99&Signature="_s));
}

struct Listing {
  const char *name;
  QByteArray document;
  KaResultCode result;
  std::vector<ListedObject> contents{};
  QStringList devices{};
  bool isTruncated = false;
  std::optional<QString> token{};
};

class Listings : public testing::TestWithParam<Listing> {};

TEST_P(Listings, areReadByTheInnermostElement) {
  ListingPage page;
  ASSERT_EQ(parseXML(GetParam().document, page), GetParam().result);
  if (GetParam().result != KaResultCode::Success) return;
  EXPECT_EQ(page.contents, GetParam().contents);
  EXPECT_EQ(page.devices, GetParam().devices);
  EXPECT_EQ(page.isTruncated, GetParam().isTruncated);
  EXPECT_EQ(page.nextContinuationToken, GetParam().token);
}

constexpr auto kRead = KaResultCode::Success;
constexpr auto kMalformed = KaResultCode::NoBody;

INSTANTIATE_TEST_SUITE_P(
    ListingParser, Listings,
    testing::Values(
        Listing{"lastPage",
                "<L><Prefix>p/</Prefix><Contents><Key>p/a</Key><Size>5</Size></Contents></L>",
                kRead,
                {{u"p/a"_s, 5}}},
        Listing{
            "folderMarkers",
            "<L><Contents><Key>a/</Key><Size>0</Size></Contents><Contents><Key>b</Key><Size>1</Size></Contents></L>",
            kRead,
            {{u"b"_s, 1}}},
        Listing{"entities",
                "<L><Contents><Key>a&amp;b&#33;&lt;</Key><Size>1</Size></Contents></L>",
                kRead,
                {{u"a&b!<"_s, 1}}},
        Listing{"cdata",
                "<L><Contents><Key>a<![CDATA[&b]]>c</Key><Size><![CDATA[1]]>2</Size></Contents></L>",
                kRead,
                {{u"a&bc"_s, 12}}},
        Listing{"prettyPrinted",
                "<?xml version=\"1.0\"?>\n<L>\n  <IsTruncated>true</IsTruncated>\n  <Contents>\n    <Key>a</Key>\n"
                "    <Size>1</Size>\n  </Contents>\n <NextContinuationToken>t=</NextContinuationToken>\n</L>\n",
                kRead,
                {{u"a"_s, 1}},
                {},
                true,
                u"t="_s},
        Listing{"devices",
                "<L><Prefix>i/o/u/</Prefix><CommonPrefixes>\n <Prefix>i/o/u/d1/</Prefix>\n</CommonPrefixes>"
                "<CommonPrefixes><Prefix>i/o/u/d&amp;2/</Prefix></CommonPrefixes><Prefix>x/</Prefix></L>",
                kRead,
                {},
                {u"d1"_s, u"d&2"_s}},
        Listing{"emptyToken", "<L><NextContinuationToken></NextContinuationToken></L>", kRead},
        Listing{"hugeSize",
                "<L><Contents><Key>a</Key><Size>5000000000</Size></Contents></L>",
                kRead,
                {{u"a"_s, 5'000'000'000}}},
        Listing{"cutOff", "<L><Contents><Key>a</Key><Size>1</Size>", kMalformed},
        Listing{"noXml", "{\"a\":1}", kMalformed}, Listing{"empty", "", kMalformed}),
    kRowName);

TEST(ListingParser, readsCredentialsUntrimmed) {
  KaCredential credential;
  ASSERT_EQ(parseXML("<R>\n<C> <AccessKeyId>A</AccessKeyId><SecretAccessKey> s&amp;s </SecretAccessKey>"
                     "<SessionToken>t</SessionToken><Expiration> </Expiration><Key>k</Key></C></R>",
                     credential),
            KaResultCode::Success);
  EXPECT_EQ(credential, (KaCredential{u"A"_s, u" s&s "_s, u"t"_s, QString()}));
  EXPECT_EQ(parseXML("<R><AccessKeyId>A</R>", credential), KaResultCode::NoBody);
}

} // namespace
