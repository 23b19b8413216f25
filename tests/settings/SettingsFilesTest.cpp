#include "app/settings/SettingsFiles.h"
#include "identity/KaCryptionUtility.h"
#include "platform/UserDefaults.h"
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
  [[nodiscard]] QByteArray content(const QString &name) const {
    QFile opened(path(name));
    return opened.open(QFile::ReadOnly) ? opened.readAll() : QByteArray();
  }
  void put(const QString &name, const QByteArray &bytes) const {
    QFile opened(path(name));
    ASSERT_TRUE(ensureAppFolder() && opened.open(QFile::WriteOnly) && opened.write(bytes) == bytes.size());
  }
  static bool isPrivate(const QString &file) {
    return !(QFile::permissions(file) & (QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther));
  }

  const TestProfile profile;
};

TEST_F(SettingsFiles, holdTheTargetSavedLastAndNoOtherForTheUserAlone) {
  QFile inTheWay(profile.dataFolder() + u"/NORVALE INC"_s);
  ASSERT_TRUE(inTheWay.open(QFile::WriteOnly));
  EXPECT_TRUE(!saveBookkeeping(kFile, u"A"_s, {}) && inTheWay.remove());
  EXPECT_EQ(loadBookkeeping(kFile), std::nullopt);
  KaDownloadData many{u"20240501/10"_s, {u"a"_s, u"a"_s, u"Grüße \"写真\""_s}};
  many.ContentIds += QStringList(100'000, u"images/original/user/device/20240501/10/IMG_0001.JPG"_s);
  ASSERT_TRUE(saveBookkeeping(kFile, u"A"_s, many));
  EXPECT_TRUE(loadBookkeeping(kFile) == (Targets{{u"A"_s, many}}));
  ASSERT_TRUE(saveBookkeeping(kFile, u"B"_s, {u"20240502/11"_s, {u"id"_s}}));
  EXPECT_EQ(loadBookkeeping(kFile), (Targets{{u"B"_s, {u"20240502/11"_s, {u"id"_s}}}}));
  EXPECT_EQ(KaCryptionUtility::decrypt(QString::fromUtf8(content(kFile))),
            uR"({"B":{"ContentIDs":["id"],"LastDateTime":"20240502/11"}})"_s);
  EXPECT_TRUE(isPrivate(path(kFile)) && isPrivate(profile.appFolder()));
}

TEST_F(SettingsFiles, keepNoBookkeepingThatIsDamaged) {
  ASSERT_TRUE(saveBookkeeping(kFile, u"key"_s, {u"20240501/10"_s, {u"id"_s, u"another id"_s}}));
  const auto enciphered = [](const QString &json) { return KaCryptionUtility::encrypt(json)->toUtf8(); };
  for (const QByteArray &bytes : {QByteArray(), content(kFile).chopped(99), QByteArray("{}"), enciphered(u"[]"_s)}) {
    put(kFile, bytes);
    EXPECT_EQ(loadBookkeeping(kFile), std::nullopt) << bytes.constData();
  }
  put(kFile, enciphered(u"{\"whole\":{\"ContentIDs\":[\"a\",7,\"b\"],\"LastDateTime\":\"20240501/10\"},"
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
  EXPECT_FALSE(saveDownloadOption({u"/a"_s, u"/b"_s})) << "the app folder is not made here";
  ASSERT_TRUE(ensureAppFolder());
  const KaDownloadOption odd{u" /Bilder & <Fotos> \"1\"/Ä é "_s, u"/写真/🎞"_s, u""_s, u"maybe"_s, u"true"_s, 1};
  ASSERT_TRUE(saveDownloadOption(odd));
  EXPECT_TRUE(loadDownloadOption() == odd && isPrivate(path(kPlist))) << content(kPlist).constData();
  ASSERT_TRUE(saveDownloadOption({u"/a"_s, u"/b"_s, u"false"_s, u"true"_s, u"false"_s, 2}));
  const QByteArray written = content(kPlist).replace('\n', "").replace('\t', "");
  EXPECT_TRUE(written.contains("<dict>" + kParents + kBoxes + "<key>ChildFolder</key><integer>2</integer></dict>"));
  ASSERT_TRUE(saveDownloadOption({u"/a"_s, u"/b"_s, u"true"_s, QString(), u"true"_s, 3}));
  EXPECT_EQ(loadDownloadOption(), (KaDownloadOption{u"/a"_s, u"/b"_s, u"true"_s, QString(), QString(), 0}));
  ASSERT_TRUE(saveDownloadOption({QString(), u"/b"_s, u"true"_s, u"true"_s, u"true"_s, 3}));
  EXPECT_EQ(content(kPlist).count("<key>"), 0);
}

TEST_F(SettingsFiles, bringNoSettingsBackWithoutBothParentFolders) {
  const auto read = [this](const QByteArray &members) {
    put(kPlist, "<plist version=\"1.0\"><dict>" + members + "</dict></plist>");
    return loadDownloadOption();
  };
  const KaDownloadOption noChildFolder{u"/a"_s, u"/b"_s, u"false"_s, u"true"_s, u"false"_s, 0};
  EXPECT_EQ(read(kParents + kBoxes), noChildFolder);
  EXPECT_EQ(read(kParents + kBoxes + "<key>ChildFolder</key><string>two</string>"), noChildFolder);
  for (const char *const missing : {"ParentFolder", "Parent10GFolder"})
    EXPECT_EQ(read(QByteArray(kParents).replace(missing, "Other") + kBoxes), std::nullopt) << missing;
  EXPECT_EQ(read(QByteArray(kParents).replace("<string>/a</string>", "<array/>") + kBoxes), std::nullopt);
  for (const QByteArray &damaged : {QByteArray(), "<plist version=\"1.0\"><dict>" + kParents, QByteArray("bplist00")}) {
    put(kPlist, damaged);
    EXPECT_EQ(loadDownloadOption(), std::nullopt) << damaged.constData();
  }
}

TEST_F(SettingsFiles, overrideWaitsByPositiveWholeNumbersOnly) {
  const auto overriddenBy = [](const QStringList &words) {
    const QStringList keys{u"PollingNormal"_s, u"PollingError"_s, u"ImageRetry"_s, u"ExifRetry"_s};
    for (qsizetype i = 0; i < words.size(); ++i)
      platform::standardUserDefaults().setString(keys[i] + u"WaitTime"_s, words[i]);
    KaWaitTimes waitTimes;
    loadWaitTimeOverrides(waitTimes);
    return waitTimes;
  };
  EXPECT_EQ(overriddenBy({u"0"_s, u"-3"_s, u"soon"_s}), (KaWaitTimes{1800s, 180s, 60s, 5s}));
  EXPECT_EQ(overriddenBy({u"7"_s, u"8"_s, u"9"_s, u"%1"_s.arg(INT64_MAX)}), (KaWaitTimes{7s, 8s, 9s, 876'000h}));
}

} // namespace
