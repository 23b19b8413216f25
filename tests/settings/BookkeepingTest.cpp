#include "app/settings/SettingsFiles.h"
#include "identity/KaCryptionUtility.h"
#include "tests/support/TestProfile.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString kFile = u"RecentDownloadData"_s;

class Bookkeeping : public testing::Test {
protected:
  [[nodiscard]] QString path() const { return profile.appFolder() + u'/' + kFile; }
  [[nodiscard]] QByteArray content() const {
    QFile opened(path());
    return opened.open(QFile::ReadOnly) ? opened.readAll() : QByteArray();
  }
  void put(const QByteArray &bytes) const {
    ASSERT_TRUE(ensureAppFolder());
    QFile opened(path());
    ASSERT_TRUE(opened.open(QFile::WriteOnly));
    opened.write(bytes);
  }
  void putEnciphered(const QString &json) const { put(KaCryptionUtility::encrypt(json).value_or(QString()).toUtf8()); }

  const TestProfile profile;
};

TEST_F(Bookkeeping, isAbsentBeforeTheFirstSave) {
  EXPECT_EQ(loadBookkeeping(kFile), std::nullopt);
}

TEST_F(Bookkeeping, holdsTheTargetSavedLastAndNoOther) {
  const KaDownloadData first{u"20240501/10"_s, {u"a"_s, u"b"_s, u"a"_s}};
  const KaDownloadData second{u"20240502/11"_s, {u"Grüße \"写真\""_s}};
  ASSERT_TRUE(saveBookkeeping(kFile, u"A"_s, first));
  EXPECT_EQ(loadBookkeeping(kFile), (QHash<QString, KaDownloadData>{{u"A"_s, first}}));
  ASSERT_TRUE(saveBookkeeping(kFile, u"B"_s, second));
  EXPECT_EQ(loadBookkeeping(kFile), (QHash<QString, KaDownloadData>{{u"B"_s, second}}));
}

TEST_F(Bookkeeping, isOneEncipheredJsonObject) {
  ASSERT_TRUE(saveBookkeeping(kFile, u"key"_s, {u"20240501/10"_s, {u"id"_s}}));
  const auto json = KaCryptionUtility::decrypt(QString::fromUtf8(content()));
  ASSERT_TRUE(json);
  const QJsonObject expected =
      QJsonDocument::fromJson(R"({"key":{"ContentIDs":["id"],"LastDateTime":"20240501/10"}})").object();
  EXPECT_EQ(QJsonDocument::fromJson(json->toUtf8()).object(), expected);
}

TEST_F(Bookkeeping, isForTheUserAlone) {
  ASSERT_TRUE(saveBookkeeping(kFile, u"key"_s, {}));
  const auto others = QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
  EXPECT_FALSE(QFile::permissions(path()) & others);
  EXPECT_FALSE(QFile::permissions(profile.appFolder()) & others);
}

TEST_F(Bookkeeping, cannotBeSavedWhereTheAppFolderIsAFile) {
  ASSERT_TRUE(QDir().mkpath(QFileInfo(profile.appFolder()).path()));
  QFile inTheWay(profile.appFolder());
  ASSERT_TRUE(inTheWay.open(QFile::WriteOnly));
  EXPECT_FALSE(saveBookkeeping(kFile, u"key"_s, {}));
}

TEST_F(Bookkeeping, takesManyIds) {
  KaDownloadData data{u"20240501/10"_s, {}};
  for (int i = 0; i < 100'000; ++i)
    data.ContentIds.append(u"images/original/user/device/20240501/10/IMG_%1.JPG"_s.arg(i));
  ASSERT_TRUE(saveBookkeeping(kFile, u"key"_s, data));
  const auto loaded = loadBookkeeping(kFile);
  ASSERT_TRUE(loaded);
  EXPECT_TRUE(loaded->value(u"key"_s) == data);
}

TEST_F(Bookkeeping, isAbsentWhenDamaged) {
  ASSERT_TRUE(saveBookkeeping(kFile, u"key"_s, {u"20240501/10"_s, {u"id"_s, u"another id"_s}}));
  const QByteArray whole = content();
  const auto foreign = KaCryptionUtility::encrypt(u"{}"_s, QString(64, u'f'));
  ASSERT_TRUE(foreign);
  for (const QByteArray &bytes : {QByteArray(), whole.left(whole.size() / 2), foreign->toUtf8(), QByteArray("{}")}) {
    put(bytes);
    EXPECT_EQ(loadBookkeeping(kFile), std::nullopt) << bytes.constData();
  }
  for (const QString &json : {u"[]"_s, u"not json"_s, u"{\"key\":"_s}) {
    putEnciphered(json);
    EXPECT_EQ(loadBookkeeping(kFile), std::nullopt) << qPrintable(json);
  }
}

TEST_F(Bookkeeping, passesOverTargetsThatAreNotWhole) {
  putEnciphered(u"{\"whole\":{\"ContentIDs\":[\"a\",7,\"b\"],\"LastDateTime\":\"20240501/10\"},"
                "\"noDate\":{\"ContentIDs\":[]},\"noIds\":{\"LastDateTime\":\"20240501/10\"},"
                "\"dateOfWrongType\":{\"ContentIDs\":[],\"LastDateTime\":1},"
                "\"idsOfWrongType\":{\"ContentIDs\":{},\"LastDateTime\":\"20240501/10\"},\"noObject\":[]}"_s);
  EXPECT_EQ(loadBookkeeping(kFile),
            (QHash<QString, KaDownloadData>{{u"whole"_s, {u"20240501/10"_s, {u"a"_s, u"b"_s}}}}));
}

} // namespace
