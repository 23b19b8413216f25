#include "identity/KaCryptionUtility.h"
#include "identity/KaLinkageUtility.h"
#include "tests/identity/SigningVectors.h"
#include "tests/support/FakeBrowser.h"

#include <QDir>
#include <QJsonArray>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString kKey = u"d559c2254fbbf739fad7c6549f630c1b"_s;

TEST(Cryption, enciphersAsAnotherImplementationDoes) {
  const QJsonArray vectors = signingVectors()["aes256ecb"_L1].toArray();
  ASSERT_FALSE(vectors.isEmpty());
  for (const auto &vector : vectors) {
    const QString plain = vector["plain"_L1].toString();
    auto enciphered = KaCryptionUtility::encrypt(plain, vector["keyText"_L1].toString() + u"more"_s).value();
    EXPECT_EQ(KaCryptionUtility::decrypt(enciphered, vector["keyText"_L1].toString()), plain);
    EXPECT_EQ(enciphered.remove(u"\r\n"_s), vector["base64Unbroken"_L1].toString());
  }
}

TEST(Cryption, breaksLinesAfterEvery64CharactersThatMoreFollow) {
  const auto enciphered = [](int size) { return KaCryptionUtility::encrypt(QString(size, u'x'), kKey).value(); };
  EXPECT_EQ(enciphered(47).size(), 64);
  EXPECT_EQ(enciphered(96).split(u"\r\n"_s).value(1).size(), 64);
  EXPECT_EQ(enciphered(96).size(), 64 + 2 + 64 + 2 + 24);
}

TEST(Cryption, readsDamagedAndForeignTextsAsAbsent) {
  const QString text = u" 6XNf1it6\r\nIvEU\tkUaxmo0ppw==\n"_s;
  EXPECT_EQ(KaCryptionUtility::decrypt(text, kKey), u"a"_s);
  for (const QString &damaged : {u""_s, u"(hello, world)"_s, u"6XNf1it6IvEUkUaxmo0="_s, u"7YjHdEw3QScwGI9u4AHskA=="_s})
    EXPECT_EQ(KaCryptionUtility::decrypt(damaged, kKey), std::nullopt) << qPrintable(damaged);
  for (const QString &key : {QString(32, u'0'), kKey.left(31), QString()})
    EXPECT_EQ(KaCryptionUtility::decrypt(text, key), std::nullopt) << qPrintable(key);
  EXPECT_EQ(KaCryptionUtility::encrypt(text, kKey.left(31)), std::nullopt);
}

TEST(Cryption, hashesAsPublished) {
  // FIPS 180-2, appendix B.1.
  EXPECT_EQ(KaCryptionUtility::toSHA256hash(u"abc"_s),
            u"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"_s);
  const QJsonValue vector = signingVectors()["pkceS256"_L1][0];
  EXPECT_EQ(KaCryptionUtility::GenerateCodeS256Challenge(vector["verifier"_L1].toString()),
            vector["challenge"_L1].toString());
}

struct Linkage : testing::Test {
  Linkage() {
    profile.writeUserDefaults({{u"strataHostName"_s, u"api.test:1"_s}, {u"strataSiteTopHostName"_s, u"www.test:2"_s}});
  }

  [[nodiscard]] QByteArray contentOf(const QString &name) const {
    QFile file(folder.filePath(name));
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
  }
  void put(const QString &name, const QByteArray &content) const {
    QFile file(folder.filePath(name));
    EXPECT_TRUE(folder.mkpath(u"."_s) && file.open(QFile::WriteOnly));
    EXPECT_EQ(file.write(content), content.size());
    EXPECT_TRUE(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther));
  }

  const TestProfile profile;
  const FakeBrowser browser{profile};
  const QDir folder{profile.dataFolder() + u"/NORVALE INC/Downloaderpictora Shared/PairingInfo"_s};
};

TEST_F(Linkage, keepsEachTextEncipheredForTheUserAloneUntilItForgets) {
  EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), std::nullopt);
  const QString token = u"eyJ"_s + QString(900, u'x');
  put(u"PairingInfo"_s, "an old file that anybody may read");
  EXPECT_TRUE(KaLinkageUtility::saveLinkageSetting(token));
  EXPECT_TRUE(KaLinkageUtility::saveCodeVerifier(u"verifier"_s));
  EXPECT_TRUE(KaLinkageUtility::saveTokenCode(u"code"_s));
  EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), token);
  EXPECT_EQ(KaLinkageUtility::loadTokenCode(), u"code"_s);
  EXPECT_EQ(folder.entryList(QDir::Files), QStringList({u"PairingCode"_s, u"PairingInfo"_s, u"tmpFile"_s}));
  const QString stored = QString::fromLatin1(contentOf(u"PairingInfo"_s));
  EXPECT_EQ(KaCryptionUtility::decrypt(stored, KaCryptionUtility::secretKey()), token);
  const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
  for (const QFileInfo &file : folder.entryInfoList(QDir::Files))
    EXPECT_EQ(file.permissions() & others, 0) << qPrintable(file.fileName());
  KaLinkageUtility::deletePairingInfo();
  EXPECT_EQ(folder.entryList(QDir::Files | QDir::Hidden), QStringList());
}

TEST_F(Linkage, handsACodeVerifierOutOnceAndDropsADamagedOne) {
  ASSERT_TRUE(KaLinkageUtility::saveCodeVerifier(u"verifier"_s));
  EXPECT_TRUE(KaLinkageUtility::existCodeVerifier());
  EXPECT_EQ(KaLinkageUtility::loadCodeVerifier(), u"verifier"_s);
  EXPECT_FALSE(KaLinkageUtility::existCodeVerifier());
  put(u"tmpFile"_s, "damaged");
  EXPECT_EQ(KaLinkageUtility::loadCodeVerifier(), std::nullopt);
  EXPECT_FALSE(KaLinkageUtility::existCodeVerifier());
}

TEST_F(Linkage, readsAForeignOrDamagedFileAsAbsent) {
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(QString(200, u't')));
  const QByteArray whole = contentOf(u"PairingInfo"_s);
  const QByteArray foreign = KaCryptionUtility::encrypt(QString(200, u't'), QString(64, u'f')).value().toLatin1();
  for (const QByteArray &content : {foreign, whole.left(whole.size() / 2), QByteArray(), QByteArray("\xff\0\x01", 3)}) {
    put(u"PairingInfo"_s, content);
    EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), std::nullopt) << content.constData();
  }
}

TEST_F(Linkage, cannotSaveWhereItsFolderIsAFile) {
  QFile inTheWay(folder.path());
  ASSERT_TRUE(QDir().mkpath(QFileInfo(inTheWay).path()) && inTheWay.open(QFile::WriteOnly));
  EXPECT_FALSE(KaLinkageUtility::saveLinkageSetting(u"token"_s));
  EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), std::nullopt);
}

TEST_F(Linkage, opensTheLoginPageForTheVerifierThatItKeepsAndTheLogoutPage) {
  EXPECT_TRUE(KaLinkageUtility::setupLinkage(u"NONCE"_s));
  const QString verifier = KaLinkageUtility::loadCodeVerifier().value_or(QString());
  EXPECT_TRUE(QRegularExpression(u"^[A-Za-z0-9_-]{86}$"_s).match(verifier).hasMatch()) << qPrintable(verifier);
  EXPECT_NE(verifier, KaLinkageUtility::GenerateNonce());
  EXPECT_EQ(browser.takeUrl(),
            u"https://api.test:1/getLogin?appRedirectUrl=https://www.test:2/st/downloader-login.html"
            "&nonce=NONCE&codeChallenge=%1&downloaderRedirectUrl=downloaderpictora://authenticate"
            "&strataClient=pc_2.0&view=login"_s.arg(KaCryptionUtility::GenerateCodeS256Challenge(verifier)));
  EXPECT_TRUE(KaLinkageUtility::closeLinkage());
  EXPECT_EQ(browser.takeUrl(),
            u"https://api.test:1/logout?appRedirectUrl=https://www.test:2/st/downloader-logout.html"_s);

  browser.uninstall();
  EXPECT_FALSE(KaLinkageUtility::setupLinkage(u"NONCE"_s));
  EXPECT_FALSE(KaLinkageUtility::existCodeVerifier());
  EXPECT_FALSE(KaLinkageUtility::closeLinkage());
}

} // namespace
