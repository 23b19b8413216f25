#include "app/settings/SettingsFiles.h"
#include "tests/support/TestProfile.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class DownloadOption : public testing::Test {
protected:
  [[nodiscard]] QString file() const { return profile.appFolder() + u"/DownloadSettingData.plist"_s; }

  void put(const QByteArray &content) const {
    ASSERT_TRUE(ensureAppFolder());
    QFile opened(file());
    ASSERT_TRUE(opened.open(QFile::WriteOnly));
    opened.write(content);
  }
  [[nodiscard]] QByteArray content() const {
    QFile opened(file());
    return opened.open(QFile::ReadOnly) ? opened.readAll() : QByteArray();
  }

  const TestProfile profile;
};

TEST_F(DownloadOption, startsWithBothFoldersInTheRealPicturesFolder) {
  ASSERT_TRUE(QDir().rmdir(profile.picturesFolder()));
  const QString realFolder = profile.path(u"elsewhere"_s);
  ASSERT_TRUE(QDir().mkpath(realFolder));
  ASSERT_TRUE(QFile::link(realFolder, profile.picturesFolder()));

  const KaDownloadOption option = defaultDownloadOption();
  const QString resolved = QFileInfo(realFolder).canonicalFilePath();
  EXPECT_EQ(option.parentFolder, resolved + u"/Transferred"_s);
  EXPECT_EQ(option.parent10GFolder, resolved + u"/Transferred(10G)"_s);
  EXPECT_TRUE(QFileInfo(option.parentFolder).isDir());
  EXPECT_TRUE(QFileInfo(option.parent10GFolder).isDir());
  EXPECT_EQ(option.checkBox10GDownload, u"true"_s);
  EXPECT_EQ(option.checkBoxCreateSubfolder, u"true"_s);
  EXPECT_EQ(option.checkBoxDownloadMetadata, u"true"_s);
  EXPECT_EQ(option.childFolder, 0);
}

TEST_F(DownloadOption, comesBackAsItWasSaved) {
  ASSERT_TRUE(ensureAppFolder());
  const QList<KaDownloadOption> options = {
      {u"/home/u/Pictures/Transferred"_s, u"/srv/10G"_s, u"false"_s, u"true"_s, u"false"_s, 4},
      {u"/Bilder & <Fotos> \"1\"/Ä é"_s, u"/写真/사진/🎞"_s, u"true"_s, u"false"_s, u"true"_s, 1},
      {u" /leading and trailing "_s, u"/tab\there"_s, u""_s, u"maybe"_s, u"true"_s, 0}};
  for (const KaDownloadOption &option : options) {
    ASSERT_TRUE(saveDownloadOption(option));
    EXPECT_EQ(loadDownloadOption(), option) << content().constData();
  }
}

TEST_F(DownloadOption, isWrittenAsAnXmlPropertyListForTheUserAlone) {
  ASSERT_TRUE(ensureAppFolder());
  ASSERT_TRUE(saveDownloadOption({u"/a"_s, u"/b"_s, u"true"_s, u"false"_s, u"true"_s, 3}));
  const QByteArray dense = content().replace('\n', "").replace('\t', "");
  EXPECT_TRUE(dense.startsWith("<?xml")) << dense.constData();
  for (const char *entry :
       {"<key>ParentFolder</key><string>/a</string>", "<key>Parent10GFolder</key><string>/b</string>",
        "<key>CheckBox10GDownload</key><string>true</string>",
        "<key>CheckBoxCreateSubfolder</key><string>false</string>",
        "<key>CheckBoxDownloadMetadataKey</key><string>true</string>", "<key>ChildFolder</key><integer>3</integer>"})
    EXPECT_TRUE(dense.contains(entry)) << entry << " in " << dense.constData();
  EXPECT_EQ(dense.count("<key>"), 6);
  EXPECT_FALSE(QFile::permissions(file()) & (QFile::ReadGroup | QFile::ReadOther));
}

TEST_F(DownloadOption, endsTheListAtTheFirstMissingValue) {
  ASSERT_TRUE(ensureAppFolder());
  ASSERT_TRUE(saveDownloadOption({u"/a"_s, u"/b"_s, u"true"_s, QString(), u"true"_s, 3}));
  EXPECT_EQ(content().count("<key>"), 3);
  EXPECT_EQ(loadDownloadOption(), (KaDownloadOption{u"/a"_s, u"/b"_s, u"true"_s, QString(), QString(), 0}));
  ASSERT_TRUE(saveDownloadOption({QString(), u"/b"_s, u"true"_s, u"true"_s, u"true"_s, 3}));
  EXPECT_EQ(content().count("<key>"), 0);
}

TEST_F(DownloadOption, makesNoFolderWhenSaved) {
  EXPECT_FALSE(saveDownloadOption({u"/a"_s, u"/b"_s}));
  EXPECT_FALSE(QFileInfo::exists(profile.appFolder()));
}

TEST_F(DownloadOption, isAbsentWithoutAFile) {
  EXPECT_EQ(loadDownloadOption(), std::nullopt);
}

struct FileCase {
  const char *name;
  QByteArray members;
  std::optional<KaDownloadOption> expected;
};

class DownloadOptionFile : public DownloadOption, public testing::WithParamInterface<FileCase> {};

TEST_P(DownloadOptionFile, isReadForWhatItHolds) {
  put(R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict>)"
      + GetParam().members + "</dict></plist>\n");
  EXPECT_EQ(loadDownloadOption(), GetParam().expected);
}

const QByteArray kParents = "<key>ParentFolder</key><string>/a</string><key>Parent10GFolder</key><string>/b</string>";
const QByteArray kBoxes = "<key>CheckBox10GDownload</key><string>false</string>"
                          "<key>CheckBoxCreateSubfolder</key><string>true</string>"
                          "<key>CheckBoxDownloadMetadataKey</key><string>false</string>";

KaDownloadOption option(const QString &tenG, const QString &subfolder, const QString &metadata, qint64 childFolder) {
  return {u"/a"_s, u"/b"_s, tenG, subfolder, metadata, childFolder};
}

INSTANTIATE_TEST_SUITE_P(
    Settings, DownloadOptionFile,
    testing::Values(FileCase{"whole", kParents + kBoxes + "<key>ChildFolder</key><integer>2</integer>",
                             option(u"false"_s, u"true"_s, u"false"_s, 2)},
                    FileCase{"noChildFolder", kParents + kBoxes, option(u"false"_s, u"true"_s, u"false"_s, 0)},
                    FileCase{"childFolderOfWrongType", kParents + kBoxes + "<key>ChildFolder</key><string>two</string>",
                             option(u"false"_s, u"true"_s, u"false"_s, 0)},
                    FileCase{"noCheckBoxes", kParents, option(QString(), QString(), QString(), 0)},
                    FileCase{"checkBoxOfWrongType", kParents + "<key>CheckBox10GDownload</key><true/>",
                             option(QString(), QString(), QString(), 0)},
                    FileCase{"noParentFolder", "<key>Parent10GFolder</key><string>/b</string>" + kBoxes, std::nullopt},
                    FileCase{"no10GFolder", "<key>ParentFolder</key><string>/a</string>" + kBoxes, std::nullopt},
                    FileCase{"parentFolderOfWrongType",
                             "<key>ParentFolder</key><array/><key>Parent10GFolder</key><string>/b</string>",
                             std::nullopt},
                    FileCase{"otherMembersToo",
                             kParents + "<key>Other</key><dict><key>ParentFolder</key><string>/c</string></dict>",
                             option(QString(), QString(), QString(), 0)}),
    [](const auto &row) { return row.param.name; });

TEST_F(DownloadOption, isAbsentWhenTheFileIsDamaged) {
  for (const QByteArray &bytes :
       {QByteArray(), QByteArray("no property list"), QByteArray("<plist version=\"1.0\"><array/></plist>"),
        QByteArray("<plist version=\"1.0\"><dict><key>ParentFolder</key><string>/a</string><key>Parent10G"),
        QByteArray("\0\xff\xfe", 3), QByteArray("bplist00")}) {
    put(bytes);
    EXPECT_EQ(loadDownloadOption(), std::nullopt) << bytes.constData();
  }
}

} // namespace
