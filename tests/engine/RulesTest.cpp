#include "engine/DiskSpace.h"
#include "engine/KaImageKey.h"
#include "engine/KaWaitCondition.h"
#include "engine/OutputFolder.h"
#include "engine/VersionOrder.h"
#include "tests/engine/EngineFixture.h"

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
  EXPECT_EQ(defaultFilePath(u"/p"_s, oldYear, KaImageKey(u"a/I.x.JPG"_s).extension()), u"/p/2024-12-31.JPG");
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

TEST(ImageKey, isTakenApartByPositionAndRewritten) {
  const KaImageKey key(u"A/B/user/dev/x/20240501/10/IMG_0001.JPG"_s);
  EXPECT_EQ(key.order(), u"20240501/10/IMG_0001.JPG");
  EXPECT_EQ(key.uploadHour(), QDateTime(QDate(2024, 5, 1), QTime(10, 0), Qt::UTC));
  EXPECT_EQ(key.expandImagePathFromImagePath().path(), u"A/expand_B/user/dev/x/20240501/10/IMG_0001.JPG");
  EXPECT_EQ(key.exifPathFromImagePath(false), u"metadata/exif/user/dev/x/20240501/10/IMG_0001.json");
  EXPECT_EQ(key.exifPathFromImagePath(true), u"metadata/expand_exif/user/dev/x/20240501/10/IMG_0001.json");
  EXPECT_EQ(KaImageKey(u"A/IMG.JPG"_s).exifPathFromImagePath(true), u"metadata/IMG.json");
  const std::tuple<QString, QString, QString> names[] = {{u"a/I.x.JPG"_s, u"I.x"_s, u"JPG"_s},
                                                         {u"a/.JPG"_s, u".JPG"_s, QString()},
                                                         {u"a/I."_s, u"I."_s, QString()},
                                                         {u"I"_s, u"I"_s, QString()},
                                                         {QString(), QString(), QString()}};
  for (const auto &[path, contentId, extension] : names) {
    EXPECT_EQ(KaImageKey(path).contentId(), contentId);
    EXPECT_EQ(KaImageKey(path).extension(), extension);
    EXPECT_FALSE(KaImageKey(path).hasUploadHour() || KaImageKey(path).uploadHour().isValid());
  }
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

TEST(WaitCondition, losesASignalWithoutAWaiterButNeitherWhatIsKeptNorTheEnd) {
  std::atomic<bool> ended = false;
  KaWaitCondition condition(ended);
  condition.signal();
  condition.wait(std::chrono::hours(1), [] { return true; });
  std::jthread quitter([&] {
    condition.awaitWaiter();
    const std::atomic<bool> never = false;
    KaWaitCondition(never).wait(std::chrono::milliseconds(20));
    ended = true;
    condition.signal();
  });
  condition.wait(std::chrono::milliseconds::max()); // beyond the clock
  EXPECT_TRUE(ended);
  condition.wait([] { return false; });
}

} // namespace
