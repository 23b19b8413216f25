#include "engine/DiskSpace.h"
#include "engine/KaWaitCondition.h"
#include "engine/ObjectKey.h"
#include "engine/OutputFolder.h"
#include "engine/PresignedUrl.h"
#include "engine/VersionOrder.h"
#include "tests/engine/EngineFixture.h"
#include "tests/identity/SigningVectors.h"

#include <QJsonArray>
#include <QLocale>

#include <ctime>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

TEST(OutputFolder, followsTheSchemeInLocalTime) {
  QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
  qputenv("TZ", "EST5");
  tzset();
  const QDateTime oldYear = QDateTime::fromString(u"2025-01-01T04:59:59Z"_s, Qt::ISODate);
  EXPECT_EQ(getOutputDateFolderString(oldYear.addSecs(1), 0), u"/2025_01_01");
  EXPECT_EQ(getOutputDateFolderString(oldYear, 0), u"/2024_12_31");
  EXPECT_EQ(getOutputDateFolderString(oldYear, 1), u"/2024/12");
  EXPECT_EQ(getOutputDateFolderString(oldYear, 2), u"/2024/2024_12_31");
  EXPECT_EQ(defaultFilePath(u"/p"_s, oldYear, u"a/I.x.JPG"_s), u"/p/2024-12-31.JPG");
}

TEST(OutputFolder, isTakenFromThePlaceThatTheLevelNames) {
  const std::tuple<QString, qint64, QString> cases[] = {{u"a/b/c.JPG"_s, 0, u"c.JPG"_s},
                                                        {u"a/b/c.JPG"_s, 1, u"b"_s},
                                                        {u"a/b/c.JPG"_s, 2, u"a"_s},
                                                        {u"a/b/c.JPG"_s, -1, u"c.JPG"_s},
                                                        {u"a//b///"_s, 0, u"b"_s},
                                                        {u"a//b///"_s, 1, u"a"_s},
                                                        {u"a/b"_s, 9, u"a"_s},
                                                        {u"/a/b"_s, 2, u"/"_s},
                                                        {u"//"_s, 0, u"/"_s},
                                                        {QString(), 0, QString()}};
  for (const auto &[path, level, folder] : cases)
    EXPECT_EQ(getFolderNameFromPath(path, level), folder) << path.toStdString() << ' ' << level;
}

TEST(ObjectKey, isRewrittenByPosition) {
  const QString key = u"A/B/20240501/10/IMG_0001.JPG"_s;
  EXPECT_EQ(expandImagePathFromImagePath(key), u"A/expand_B/20240501/10/IMG_0001.JPG");
  EXPECT_EQ(exifPathFromImagePath(key, false), u"metadata/exif/20240501/10/IMG_0001.json");
  EXPECT_EQ(exifPathFromImagePath(key, true), u"metadata/expand_exif/20240501/10/IMG_0001.json");
  EXPECT_EQ(exifPathFromImagePath(u"A/I.x.JPG"_s, true), u"metadata/I.x.json");
}

TEST(DiskSpace, mustLeaveTheMargin) {
  constexpr float kMiB = 1024 * 1024;
  EXPECT_FALSE(leavesMargin(310 * kMiB, 60 * kMiB, /*bootDrive=*/true));
  EXPECT_TRUE(leavesMargin(250 * kMiB + 16, 0, /*bootDrive=*/true));
  EXPECT_TRUE(leavesMargin(300 * kMiB, 60 * kMiB, /*bootDrive=*/false));
  EXPECT_FALSE(leavesMargin(10 * kMiB, 0, /*bootDrive=*/false));
  EXPECT_FALSE(checkDiskSpace(0, u"/no/such/folder"_s));
  for (const QString &path : names("/home/u / /mnt2/x /data/mnt/x /mnt /mnt/x /media/u/STICK /run/media/u/STICK/"))
    EXPECT_EQ(checkDriveIsBoot(path), !path.contains(QRegularExpression(u"^/(mnt|media|run/media)(/|$)"_s)));
}

TEST(VersionOrder, isByNumbers) {
  for (const QString &row : names("1.10>1.9 1.0.1>1.0 99999999999999999999999>5 1.0b>1.0a")) {
    EXPECT_TRUE(isLaterVersion(row.section(u'>', 0, 0), row.section(u'>', 1))) << row.toStdString();
    EXPECT_FALSE(isLaterVersion(row.section(u'>', 1), row.section(u'>', 0, 0))) << row.toStdString();
  }
  EXPECT_FALSE(isLaterVersion(u"1.02", u"1.2"));
}

TEST(PresignedUrl, signsAsOtherImplementationsDo) {
  const QJsonObject known = signingVectors();
  const QJsonValue by = known["credential"_L1];
  const QJsonArray rows = known["presignedV2"_L1].toArray();
  ASSERT_FALSE(rows.isEmpty());
  for (const auto &row : rows)
    EXPECT_EQ(SignatureString(row["expires"_L1].toString(), row["bucket"_L1].toString(),
                              by["SecretAccessKey"_L1].toString(), by["SessionToken"_L1].toString(),
                              row["key"_L1].toString()),
              row["signaturePercentEncoded"_L1].toString());
}

TEST(PresignedUrl, encodesNothingButTheContinuationToken) {
  EXPECT_EQ(createS3URLString(baseURLString(u"https"_s, u"b"_s, u"host:1"_s, {}, u"list-type=2"_s),
                              optionURLString(u"ID"_s, u"99"_s, u"S%3D"_s),
                              {u"a/b c/"_s, u"a/b=1"_s, u"/"_s, u"t/+=-._~é"_s}),
            u"https://b.host:1?list-type=2&prefix=a/b c/&start-after=a/b=1&delimiter=/"
            "&continuation-token=t%2F%2B%3D%2D%2E%5F%7E%C3%A9&AWSAccessKeyId=ID&Expires=99&Signature=S%3D");
}

TEST(WaitCondition, losesASignalWithoutAWaiterButNeverTheEnd) {
  const std::atomic<bool> never = false;
  std::atomic<bool> ended = false;
  KaWaitCondition condition(ended);
  condition.signal();
  std::jthread quitter([&] {
    condition.awaitWaiter();
    KaWaitCondition(never).wait(std::chrono::milliseconds(20));
    ended = true;
    condition.signal();
  });
  condition.wait(std::chrono::milliseconds::max()); // beyond the clock
  EXPECT_TRUE(ended);
  condition.wait(/*kept=*/never);
}

} // namespace
