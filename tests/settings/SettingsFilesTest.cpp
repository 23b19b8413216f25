#include "settings/SettingsFiles.h"
#include "identity/KaCryptionUtility.h"
#include "log/KaLogUtility.h"
#include "platform/UserDefaults.h"
#include "tests/log/LogFile.h"
#include "tests/support/TestProfile.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString kFile = u"RecentDownloadData"_s;
using Targets = QHash<QString, KaDownloadData>;

class SettingsFiles : public testing::Test {
protected:
  [[nodiscard]] QString path(const QString &name) const { return profile.appFolder() + u'/' + name; }
  static bool isPrivate(const QString &file) {
    return !(QFile::permissions(file) & (QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther));
  }

  const TestProfile profile;
};

TEST_F(SettingsFiles, holdTheTargetSavedLastAndNoOtherForTheUserAlone) {
  const KaDownloadData many{u"20240501/10"_s, QStringList(1'000'000, u"Grüße \"写真\""_s)};
  ASSERT_TRUE(saveBookkeeping(kFile, u"A"_s, many));
  EXPECT_TRUE(loadBookkeeping(kFile) == (Targets{{u"A"_s, many}}));
  ASSERT_TRUE(saveBookkeeping(kFile, u"B"_s, {u"20240502/11"_s, {u"id"_s}}));
  EXPECT_EQ(loadBookkeeping(kFile), (Targets{{u"B"_s, {u"20240502/11"_s, {u"id"_s}}}}));
  EXPECT_EQ(KaCryptionUtility::decrypt(QString::fromUtf8(contentOf(path(kFile)))),
            uR"({"B":{"ContentIDs":["id"],"LastDateTime":"20240502/11"}})"_s);
  EXPECT_TRUE(isPrivate(path(kFile)) && isPrivate(profile.appFolder()));
}

TEST_F(SettingsFiles, keepNothingWhereTheirFolderCannotBe) {
  writeFile(profile.dataFolder() + u"/NORVALE INC"_s, {});
  EXPECT_FALSE(ensureAppFolder() || saveBookkeeping(kFile, u"A"_s, {}) || saveDownloadOption(defaultDownloadOption()));
}

TEST_F(SettingsFiles, keepNoBookkeepingThatIsDamaged) {
  ASSERT_TRUE(saveBookkeeping(kFile, u"key"_s, {u"20240501/10"_s, {u"id"_s, u"another id"_s}}));
  const auto enciphered = [](const QString &json) { return KaCryptionUtility::encrypt(json)->toUtf8(); };
  for (const QByteArray &bytes :
       {QByteArray(), contentOf(path(kFile)).chopped(99), QByteArray("{}"), enciphered(u"[]"_s)}) {
    writeFile(path(kFile), bytes);
    EXPECT_EQ(loadBookkeeping(kFile), std::nullopt) << bytes.constData();
  }
  writeFile(path(kFile),
            enciphered(u"{\"whole\":{\"ContentIDs\":[\"a\",7,\"b\"],\"LastDateTime\":\"20240501/10\"},"
                       "\"noDate\":{\"ContentIDs\":[]},\"noIds\":{\"LastDateTime\":\"20240501/10\"},"
                       "\"idsOfWrongType\":{\"ContentIDs\":{},\"LastDateTime\":\"20240501/10\"},\"noObject\":[]}"_s));
  EXPECT_EQ(loadBookkeeping(kFile), (Targets{{u"whole"_s, {u"20240501/10"_s, {u"a"_s, u"b"_s}}}}));
}

TEST_F(SettingsFiles, startWithBothFoldersInTheRealPicturesFolder) {
  const QString real = QFileInfo(profile.path()).canonicalFilePath() + u"/elsewhere"_s;
  ASSERT_TRUE(QDir().rename(profile.picturesFolder(), real) && QFile::link(real, profile.picturesFolder()));
  const QString parent = real + u"/Transferred"_s;
  EXPECT_EQ(defaultDownloadOption(),
            (KaDownloadOption{parent, parent + u"(10G)"_s, u"true"_s, u"true"_s, u"true"_s, 0}));
  EXPECT_TRUE(QFileInfo(parent).isDir() && QFileInfo(parent + u"(10G)"_s).isDir());
}

const QString kPlist = u"DownloadSettingData.plist"_s;
const QByteArray kParents = "<key>ParentFolder</key><string>/a</string><key>Parent10GFolder</key><string>/b</string>";
const QByteArray kBoxes = "<key>CheckBox10GDownload</key><string>false</string>"
                          "<key>CheckBoxCreateSubfolder</key><string>true</string>"
                          "<key>CheckBoxDownloadMetadataKey</key><string>false</string>";

TEST_F(SettingsFiles, bringTheSettingsBackUpToTheFirstMissingValue) {
  ASSERT_TRUE(ensureAppFolder());
  const KaDownloadOption odd{u" /Bilder & <Fotos> \"1\"/Ä é "_s, u"/写真/🎞"_s, u""_s, u"maybe"_s, u"true"_s, 1};
  ASSERT_TRUE(saveDownloadOption(odd));
  EXPECT_TRUE(loadDownloadOption() == odd && isPrivate(path(kPlist))) << contentOf(path(kPlist)).constData();
  ASSERT_TRUE(saveDownloadOption({u"/a"_s, u"/b"_s, u"false"_s, u"true"_s, u"false"_s, 2}));
  const QByteArray written = contentOf(path(kPlist)).replace('\n', "").replace('\t', "");
  EXPECT_TRUE(written.contains("<dict>" + kParents + kBoxes + "<key>ChildFolder</key><integer>2</integer></dict>"));
  ASSERT_TRUE(saveDownloadOption({u"/a"_s, u"/b"_s, u"true"_s, QString(), u"true"_s, 3}));
  EXPECT_EQ(loadDownloadOption(), (KaDownloadOption{u"/a"_s, u"/b"_s, u"true"_s, QString(), QString(), 0}));
}

TEST_F(SettingsFiles, areAbsentWithOneEntryOfTheLogWhenTheyAreThereButOfNoUse) {
  const auto asPlist = [](const QByteArray &doctype, const QByteArray &more) {
    return doctype + "<plist version=\"1.0\"><dict>" + kParents + more + "</dict></plist>";
  };
  const auto nested = [&](int depth) {
    return asPlist("",
                   "<key>deep</key>" + QByteArray("<array>").repeated(depth) + QByteArray("</array>").repeated(depth));
  };
  ASSERT_TRUE(saveBookkeeping(kFile, u"A"_s, {u"20240501/10"_s, {}}));
  // Of blanks the larger ones would be readable but for their size.
  const std::tuple<QByteArray, qint64, bool> cases[] = {
      {asPlist("", ""), 1 << 20, true},
      {asPlist("", ""), (1 << 20) + 1, false},
      {asPlist("", "").replace("<key>ParentFolder", "<key>Other"), 0, false},
      {asPlist("", "").replace("Parent10GFolder", "Other"), 0, false},
      {nested(14), 0, true},
      {nested(15), 0, false},
      {nested(200'000).left(1 << 20), 0, false},
      {asPlist("<!DOCTYPE plist [<!ENTITY e \"e\">]>", ""), 0, false},
      {"bplist00\xd1\x01\x02", 0, false},
      {"{\"ParentFolder\":\"/a\",\"Parent10GFolder\":\"/b\"}", 0, false},
  };
  KaLogUtility::switchLogStatus();
  const auto entries = [&](const QString &name) {
    return loggedLines(profile).filter(name + u" cannot be read"_s).size();
  };
  EXPECT_FALSE(loadDownloadOption() || loadBookkeeping(u"Recent10GDownloadData"_s));
  EXPECT_EQ(entries(QString()), 0) << "what is missing is no fault";
  for (const auto &[content, size, isRead] : cases) {
    const auto before = entries(kPlist);
    writeFile(path(kPlist), content.leftJustified(size, ' '));
    EXPECT_EQ(loadDownloadOption().has_value(), isRead) << content.left(200).constData();
    EXPECT_EQ(entries(kPlist) - before, isRead ? 0 : 1) << content.left(200).constData();
  }
  EXPECT_TRUE(loadBookkeeping(kFile) && entries(kFile) == 0);
  // The zeros that follow are none of the alphabet, and passed over.
  ASSERT_TRUE(QFile::resize(path(kFile), (256LL << 20) + 1));
  EXPECT_TRUE(!loadBookkeeping(kFile) && entries(kFile) == 1);
}

TEST_F(SettingsFiles, overrideWaitsByPositiveWholeNumbersOnly) {
  profile.writeUserDefaults({{u"PollingNormalWaitTime"_s, u"7"_s},
                             {u"PollingErrorWaitTime"_s, u"0"_s},
                             {u"ImageRetryWaitTime"_s, u"soon"_s},
                             {u"ExifRetryWaitTime"_s, QString::number(INT64_MAX)}});
  EXPECT_EQ(loadWaitTimes({1s, 2s, 3s, 4s}), (KaWaitTimes{7s, 2s, 3s, 876'000h}));
  platform::standardUserDefaults().setString(u"PollingErrorWaitTime"_s, u"8"_s);
  platform::standardUserDefaults().setString(u"ImageRetryWaitTime"_s, u"9"_s);
  EXPECT_EQ(loadWaitTimes({1s, 2s, 3s, 4s}), (KaWaitTimes{7s, 8s, 9s, 876'000h}));
}

} // namespace
