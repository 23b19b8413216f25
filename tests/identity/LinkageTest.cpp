#include "identity/KaCryptionUtility.h"
#include "identity/KaLinkageUtility.h"
#include "tests/support/FakeBrowser.h"
#include "tests/support/TestProfile.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class Linkage : public testing::Test {
protected:
  [[nodiscard]] QString folder() const {
    return profile.dataFolder() + u"/NORVALE INC/Downloaderpictora Shared/PairingInfo"_s;
  }
  [[nodiscard]] QString file(const QString &name) const { return folder() + u'/' + name; }
  [[nodiscard]] QByteArray contentOf(const QString &name) const {
    QFile opened(file(name));
    return opened.open(QFile::ReadOnly) ? opened.readAll() : QByteArray();
  }
  void put(const QString &name, const QByteArray &content) const {
    QDir().mkpath(folder());
    QFile opened(file(name));
    ASSERT_TRUE(opened.open(QFile::WriteOnly));
    opened.write(content);
  }

  const TestProfile profile;
};

TEST_F(Linkage, readsAsAbsentBeforeAnythingWasSaved) {
  EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), std::nullopt);
  EXPECT_EQ(KaLinkageUtility::loadCodeVerifier(), std::nullopt);
  EXPECT_EQ(KaLinkageUtility::loadTokenCode(), std::nullopt);
  EXPECT_FALSE(KaLinkageUtility::existCodeVerifier());
}

TEST_F(Linkage, keepsEachTextInItsOwnEncipheredFile) {
  const QString token = u"eyJ"_s + QString(900, u'x');
  EXPECT_TRUE(KaLinkageUtility::saveLinkageSetting(token));
  EXPECT_TRUE(KaLinkageUtility::saveCodeVerifier(u"verifier"_s));
  EXPECT_TRUE(KaLinkageUtility::saveTokenCode(u"code"_s));
  EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), token);
  EXPECT_EQ(KaLinkageUtility::loadTokenCode(), u"code"_s);
  EXPECT_EQ(QDir(folder()).entryList(QDir::Files), QStringList({u"PairingCode"_s, u"PairingInfo"_s, u"tmpFile"_s}));
  EXPECT_EQ(KaCryptionUtility::decrypt(QString::fromUtf8(contentOf(u"tmpFile"_s))), u"verifier"_s);
  EXPECT_FALSE(contentOf(u"PairingInfo"_s).contains("eyJ"));
}

TEST_F(Linkage, letsOnlyTheUserRead) {
  put(u"PairingInfo"_s, "an old file that anybody may read");
  QFile::setPermissions(file(u"PairingInfo"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther);
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(u"token"_s));
  ASSERT_TRUE(KaLinkageUtility::saveTokenCode(u"code"_s));
  const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
  EXPECT_FALSE(QFile::permissions(file(u"PairingInfo"_s)) & others);
  EXPECT_FALSE(QFile::permissions(file(u"PairingCode"_s)) & others);
}

TEST_F(Linkage, makesItsFolderForTheUserAlone) {
  ASSERT_TRUE(KaLinkageUtility::saveTokenCode(u"code"_s));
  EXPECT_FALSE(QFile::permissions(folder())
               & (QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther));
}

TEST_F(Linkage, handsTheCodeVerifierOutOnce) {
  ASSERT_TRUE(KaLinkageUtility::saveCodeVerifier(u"verifier"_s));
  EXPECT_TRUE(KaLinkageUtility::existCodeVerifier());
  EXPECT_EQ(KaLinkageUtility::loadCodeVerifier(), u"verifier"_s);
  EXPECT_FALSE(KaLinkageUtility::existCodeVerifier());
  EXPECT_EQ(KaLinkageUtility::loadCodeVerifier(), std::nullopt);
}

TEST_F(Linkage, dropsACodeVerifierThatCannotBeRead) {
  put(u"tmpFile"_s, "damaged");
  EXPECT_TRUE(KaLinkageUtility::existCodeVerifier());
  EXPECT_EQ(KaLinkageUtility::loadCodeVerifier(), std::nullopt);
  EXPECT_FALSE(KaLinkageUtility::existCodeVerifier());
}

TEST_F(Linkage, forgetsAllThreeTexts) {
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(u"token"_s));
  ASSERT_TRUE(KaLinkageUtility::saveCodeVerifier(u"verifier"_s));
  ASSERT_TRUE(KaLinkageUtility::saveTokenCode(u"code"_s));
  KaLinkageUtility::deletePairingInfo();
  EXPECT_TRUE(QDir(folder()).entryList(QDir::Files | QDir::Hidden).isEmpty());
}

TEST_F(Linkage, readsAForeignOrDamagedFileAsAbsent) {
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(QString(200, u't')));
  const QByteArray whole = contentOf(u"PairingInfo"_s);
  const auto foreign = KaCryptionUtility::encrypt(QString(200, u't'), QString(64, u'f'));
  ASSERT_TRUE(foreign);
  for (const QByteArray &content : {foreign->toUtf8(), whole.left(whole.size() / 2), whole.mid(8), QByteArray(),
                                    QByteArray("plain token"), QByteArray("\xff\xfe\0\x01", 4)}) {
    put(u"PairingInfo"_s, content);
    EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), std::nullopt) << content.constData();
  }
}

TEST_F(Linkage, cannotSaveWhereItsFolderIsAFile) {
  ASSERT_TRUE(QDir().mkpath(QFileInfo(folder()).path()));
  QFile inTheWay(folder());
  ASSERT_TRUE(inTheWay.open(QFile::WriteOnly));
  inTheWay.write("content");
  inTheWay.close();
  EXPECT_FALSE(KaLinkageUtility::saveLinkageSetting(u"token"_s));
  EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), std::nullopt);
  EXPECT_EQ(inTheWay.size(), 7);
}

TEST_F(Linkage, makesNoncesThatDiffer) {
  static const QRegularExpression form(u"^[A-Za-z0-9_-]{86}$"_s);
  const QString first = KaLinkageUtility::GenerateNonce();
  EXPECT_TRUE(form.match(first).hasMatch()) << qPrintable(first);
  EXPECT_NE(first, KaLinkageUtility::GenerateNonce());
}

class LinkageInTheBrowser : public Linkage {
protected:
  LinkageInTheBrowser() {
    profile.writeUserDefaults(
        {{u"strataHostName"_s, u"api.example.test:1"_s}, {u"strataSiteTopHostName"_s, u"www.example.test:2"_s}});
  }
  const FakeBrowser browser{profile};
};

TEST_F(LinkageInTheBrowser, opensTheLoginPageForTheVerifierThatItKeeps) {
  EXPECT_TRUE(KaLinkageUtility::setupLinkage(u"THE-NONCE"_s));
  const auto verifier = KaLinkageUtility::loadCodeVerifier();
  ASSERT_TRUE(verifier);
  EXPECT_EQ(verifier->size(), 86);
  EXPECT_EQ(browser.takeUrl(), u"https://api.example.test:1/getLogin"
                               "?appRedirectUrl=https://www.example.test:2/st/downloader-login.html&nonce=THE-NONCE"
                               "&codeChallenge="_s
                                   + KaCryptionUtility::GenerateCodeS256Challenge(*verifier)
                                   + u"&downloaderRedirectUrl=downloaderpictora://authenticate&strataClient=pc_2.0"
                                     "&view=login"_s);
}

TEST_F(LinkageInTheBrowser, keepsNoVerifierWhenThereIsNoBrowser) {
  browser.uninstall();
  EXPECT_FALSE(KaLinkageUtility::setupLinkage(u"nonce"_s));
  EXPECT_FALSE(KaLinkageUtility::existCodeVerifier());
  EXPECT_FALSE(KaLinkageUtility::closeLinkage());
}

TEST_F(LinkageInTheBrowser, opensTheLogoutPage) {
  EXPECT_TRUE(KaLinkageUtility::closeLinkage());
  EXPECT_EQ(browser.takeUrl(),
            u"https://api.example.test:1/logout?appRedirectUrl=https://www.example.test:2/st/downloader-logout.html"_s);
}

} // namespace
