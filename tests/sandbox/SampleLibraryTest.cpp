#include "sandbox/SampleLibrary.h"

#include <gmock/gmock.h>

#include <QImage>
#include <QSet>

using namespace Qt::StringLiterals;
using namespace sandbox;

namespace {

QHash<QString, ExpectedFile> byPath(const QList<ExpectedFile> &files) {
  QHash<QString, ExpectedFile> result;
  for (const ExpectedFile &file : files)
    result.insert(file.relativePath, file);
  return result;
}

const ExpectedOptions kUtc{.zone = QTimeZone::utc()};

TEST(SampleLibrary, holdsSixtyOddReadablePicturesOfThreeDevicesAndAnAlias) {
  QSet<QString> devices;
  QSet<QByteArray> pictures;
  for (const LibraryObject &object : sampleObjects()) {
    devices.insert(object.deviceId);
    pictures.insert(object.body);
    EXPECT_FALSE(QImage::fromData(object.body, "JPG").isNull());
    EXPECT_THAT(object.body.size(), testing::AllOf(testing::Gt(2'000), testing::Lt(600'000)));
  }
  EXPECT_EQ(devices.size(), 4);
  EXPECT_EQ(pictures.size(), sampleObjects().size());
  EXPECT_THAT(sampleObjects().size(), testing::AllOf(testing::Ge(55), testing::Le(70)));
}

TEST(SampleLibrary, leavesTheNewestHourToNamedObjects) {
  QString newest;
  QString newestNameless;
  for (const LibraryObject &object : sampleObjects()) {
    const QString hour = object.date + object.hour;
    if (object.deviceId != sampleAliasDevice()) newest = qMax(newest, hour);
    if (!object.fileNameMetadata) newestNameless = qMax(newestNameless, hour);
  }
  EXPECT_FALSE(newestNameless.isEmpty());
  EXPECT_LT(newestNameless, newest);
}

TEST(SampleLibrary, expectsFilesThatFitIntoAFileSystem) {
  const QList<ExpectedFile> files = expectedSampleFiles(kUtc);
  EXPECT_EQ(byPath(files).size(), files.size()) << "two files under one name";
  for (const ExpectedFile &file : files)
    for (const QString &component : file.relativePath.split(u'/'))
      EXPECT_THAT(component.toUtf8().size(), testing::AllOf(testing::Ge(1), testing::Le(255)));
}

/// Files whose place was worked out by hand.
TEST(SampleLibrary, expectsFilesWhereTheyBelong) {
  const QStringList paths = byPath(expectedSampleFiles(kUtc)).keys();
  const QString longStem = u"Panorama over the whole valley "_s.repeated(10);
  for (const QString &path : {u"2024_05_01/IMG_0001.JPG"_s,
                              u"2024_05_02/Evening at the lake .JPG"_s,
                              u"2024_05_02/a-b.JPG"_s,
                              u"2024_05_02/写真 春.JPG"_s,
                              u"2024_05_02/2024-05-02.JPG"_s,
                              u"2024_05_03/DSC00001.JPG"_s,
                              u"2024_05_03/DSC00001_1.JPG"_s,
                              u"2024_05_03/DSC00001_2.JPG"_s,
                              u"2024_05_03/DSC00001_3.JPG"_s,
                              u"2024_05_03/DSC00001_4.JPG"_s,
                              u"2024_05_03/before midnight.JPG"_s,
                              u"2024_05_04/after midnight.JPG"_s,
                              u"2024_05_03/far east.JPG"_s,
                              u"2024_05_05/2024-05-05.JPG"_s,
                              u"2024_05_05/2024-05-05_1.JPG"_s,
                              u"2024_05_05/2024-05-05_2.JPG"_s,
                              u"Birds/2024_05_06/BIRD_0001_1.JPG"_s,
                              u"Birds/Owls/2024_05_06/OWL_0001.JPG"_s,
                              u"Best of 2024/2024_05_06/sorted by upload hour.JPG"_s,
                              u"2024_05_07/WIDE_0003.JPG"_s,
                              u"2024_05_02/"_s + longStem.left(251) + u".JPG"_s,
                              u"2024_05_02/"_s + longStem.left(249) + u"_1.JPG"_s,
                              u"2024_05_02/"_s + longStem.left(249) + u"_2.JPG"_s})
    EXPECT_TRUE(paths.contains(path)) << path.toStdString();
}

TEST(SampleLibrary, expectsOriginalsAndNoRulesWithTheOptionsOff) {
  const auto on = byPath(expectedSampleFiles(kUtc));
  const auto off =
      byPath(expectedSampleFiles({.createSubfolder = false, .downloadMetadata = false, .zone = QTimeZone::utc()}));
  EXPECT_TRUE(off.contains(u"2024_05_06/BIRD_0001.JPG"_s));
  const QString wide = u"2024_05_07/WIDE_0001.JPG"_s;
  EXPECT_NE(on[wide].sha256, off[wide].sha256);
  EXPECT_GT(on[wide].size, off[wide].size);
}

struct ZoneCase {
  const char *name;
  QByteArray zone;
  int childFolder;
  QString path;
  qint64 modified;
};

class Zone : public testing::TestWithParam<ZoneCase> {};

// A picture captured at 2024-05-01T10:15:30Z, which zones without daylight saving move by the same hours ever since.
TEST_P(Zone, movesTheInstantAndNamesTheLocalDay) {
  const LibraryObject object{.deviceId = u"d"_s,
                             .date = u"20240501"_s,
                             .hour = u"10"_s,
                             .fileName = u"1.JPG"_s,
                             .body = "x",
                             .fileNameMetadata = fileNameHeader(u"n.JPG"_s),
                             .metadataDocument = R"({"captureTime":"2024-05-01T12:15:30.000+02:00"})"};
  const auto files =
      expectedFiles({object}, {.childFolder = GetParam().childFolder, .zone = QTimeZone(GetParam().zone)});
  ASSERT_EQ(files.size(), 1);
  EXPECT_EQ(files[0].relativePath, GetParam().path);
  EXPECT_EQ(files[0].modificationTime, GetParam().modified);
}

const std::vector<ZoneCase> kZoneCases{
    {"utc", "UTC", 0, u"2024_05_01/n.JPG"_s, 1714558530},
    {"tokyo", "Asia/Tokyo", 1, u"2024/05/n.JPG"_s, 1714558530 - 9 * 3600},
    {"phoenix", "America/Phoenix", 2, u"2024/2024_05_01/n.JPG"_s, 1714558530 + 7 * 3600},
    {"kolkata", "Asia/Kolkata", 3, u"2024/05/2024_05_01/n.JPG"_s, 1714558530 - 5 * 3600 - 1800},
    {"noFolder", "UTC", 4, u"n.JPG"_s, 1714558530},
};

INSTANTIATE_TEST_SUITE_P(Each, Zone, testing::ValuesIn(kZoneCases),
                         [](const auto &row) { return std::string(row.param.name); });

} // namespace
