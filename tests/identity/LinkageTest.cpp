#include "identity/KaCryptionUtility.h"
#include "identity/KaLink.h"
#include "identity/KaLinkageUtility.h"
#include "log/KaLogUtility.h"
#include "tests/identity/SigningVectors.h"
#include "tests/log/LogFile.h"
#include "tests/service/ServiceFixture.h"
#include "tests/support/FakeBrowser.h"

using namespace Qt::StringLiterals;
using sandbox::Fault;

namespace {

const QString kKey = u"d559c2254fbbf739fad7c6549f630c1b"_s;

TEST(Cryption, enciphersAndHashesAsOtherImplementationsDo) {
  const QJsonArray vectors = signingVectors()["aes256ecb"_L1].toArray();
  ASSERT_FALSE(vectors.isEmpty());
  for (const auto &vector : vectors) {
    const QString plain = vector["plain"_L1].toString();
    auto enciphered = KaCryptionUtility::encrypt(plain, vector["keyText"_L1].toString() + u"more"_s).value();
    EXPECT_EQ(KaCryptionUtility::decrypt(enciphered, vector["keyText"_L1].toString()), plain);
    EXPECT_EQ(enciphered.remove(u"\r\n"_s), vector["base64Unbroken"_L1].toString());
  }
  // FIPS 180-2, appendix B.1.
  EXPECT_EQ(KaCryptionUtility::toSHA256hash(u"abc"_s),
            u"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"_s);
  const QJsonValue pkce = signingVectors()["pkceS256"_L1][0];
  EXPECT_EQ(KaCryptionUtility::GenerateCodeS256Challenge(pkce["verifier"_L1].toString()),
            pkce["challenge"_L1].toString());
}

TEST(Cryption, breaksLinesAndReadsDamagedOrForeignTextsAsAbsent) {
  EXPECT_EQ(KaCryptionUtility::encrypt(QString(47, u'x'), kKey)->size(), 64) << "no line follows";
  EXPECT_EQ(KaCryptionUtility::encrypt(QString(96, u'x'), kKey)->split(u"\r\n"_s).value(1).size(), 64);
  const QString text = u" 6XNf1it6\r\nIvEU\tkUaxmo0ppw==\n"_s;
  EXPECT_EQ(KaCryptionUtility::decrypt(text, kKey), u"a"_s);
  for (const QString &damaged : {u""_s, u"(hello, world)"_s, u"6XNf1it6IvEUkUaxmo0="_s, u"7YjHdEw3QScwGI9u4AHskA=="_s})
    EXPECT_EQ(KaCryptionUtility::decrypt(damaged, kKey), std::nullopt) << qPrintable(damaged);
  for (const QString &key : {QString(32, u'0'), kKey.left(31), QString()})
    EXPECT_EQ(KaCryptionUtility::decrypt(text, key), std::nullopt) << qPrintable(key);
  EXPECT_EQ(KaCryptionUtility::encrypt(text, kKey.left(31)), std::nullopt);
}

struct Linkage : ServiceTest {
  int noArguments = 0;
  const QCoreApplication application{noArguments, nullptr};
  QDir folder{profile.dataFolder() + u"/NORVALE INC/Downloaderpictora Shared/PairingInfo"_s};
  const sandbox::LinkedToken login = service.issueUnlinkedToken();
};

TEST_F(Linkage, keepsEachTextEncipheredForTheUserAloneUntilItForgets) {
  writeFile(folder.filePath(u"PairingInfo"_s), "an old file that anybody may read");
  EXPECT_TRUE(KaLinkageUtility::saveLinkageSetting(login.idToken));
  EXPECT_TRUE(KaLinkageUtility::saveCodeVerifier(u"verifier"_s));
  EXPECT_TRUE(KaLinkageUtility::saveTokenCode(u"code"_s));
  EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), login.idToken);
  EXPECT_EQ(KaLinkageUtility::loadTokenCode(), u"code"_s);
  EXPECT_EQ(folder.entryList(QDir::Files), QStringList({u"PairingCode"_s, u"PairingInfo"_s, u"tmpFile"_s}));
  for (const QFileInfo &file : folder.entryInfoList(QDir::Files))
    EXPECT_FALSE(file.permissions() & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther));
  EXPECT_EQ(KaLinkageUtility::loadCodeVerifier(), u"verifier"_s);
  EXPECT_EQ(KaLinkageUtility::loadCodeVerifier(), std::nullopt) << "it is handed out once";
  KaLinkageUtility::deletePairingInfo();
  EXPECT_EQ(folder.entryList(QDir::Files | QDir::Hidden), QStringList());
}

TEST_F(Linkage, readsAForeignOrHugeFileAsAbsentAndSavesNothingWhereItsFolderIsAFile) {
  KaLogUtility::switchLogStatus();
  EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), std::nullopt);
  const QString foreign = KaCryptionUtility::encrypt(login.idToken, QString(64, u'f')).value();
  writeFile(folder.filePath(u"PairingInfo"_s), foreign.toUtf8());
  EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), std::nullopt);
  // The zeros behind the text are passed over.
  ASSERT_TRUE(KaLinkageUtility::saveTokenCode(u"code"_s));
  ASSERT_TRUE(QFile::resize(folder.filePath(u"PairingCode"_s), 1 << 20));
  EXPECT_EQ(KaLinkageUtility::loadTokenCode(), u"code"_s);
  ASSERT_TRUE(QFile::resize(folder.filePath(u"PairingCode"_s), (1 << 20) + 1));
  EXPECT_EQ(KaLinkageUtility::loadTokenCode(), std::nullopt);
  EXPECT_EQ(loggedLines(profile).filter(u"cannot be read"_s),
            (QStringList{u"    PairingInfo cannot be read and counts as absent"_s,
                         u"    PairingCode cannot be read and counts as absent"_s}));
  ASSERT_TRUE(folder.removeRecursively() && QFile(folder.path()).open(QFile::WriteOnly));
  EXPECT_FALSE(KaLinkageUtility::saveLinkageSetting(u"token"_s));
}

TEST_F(Linkage, leavesNothingThatAKillLeftWhenItIsTakenUpOrClosed) {
  QStringList others =
      u"Other.AbCdEf PairingCode.backup PairingCode.AbCdE PairingCode.AbCdEfg PairingCode.AbC-Ef"_s.split(u' ');
  for (const QString &name : std::as_const(others))
    writeFile(folder.filePath(name), "x");
  ASSERT_TRUE(folder.mkdir(u"tmpFile.folder"_s)
              && QFile::link(folder.filePath(u"Other.AbCdEf"_s), folder.filePath(u"tmpFile.linked"_s)));
  others << u"tmpFile.linked"_s;
  others.sort();
  KaLink link;
  for (const bool isStart : {true, false}) {
    for (const QString &name : {u"PairingInfo.AbCdEf"_s, u"PairingCode.uvWX09"_s, u"tmpFile.XXXXXX"_s})
      writeFile(folder.filePath(name), "a token");
    if (isStart) {
      EXPECT_FALSE(link.load());
    } else {
      link.close();
    }
    EXPECT_EQ(filesBelow(folder.path()), others) << isStart;
    EXPECT_TRUE(folder.exists(u"tmpFile.folder"_s));
  }
}

TEST_F(Linkage, opensThePagesOfTheServiceAndSaysWhichDidNotOpen) {
  const FakeBrowser browser(profile);
  QStringList verdicts;
  const auto note = [&](bool opened, const QString &page) { verdicts << (opened ? u"opened"_s : page); };
  const QString verifier = KaLinkageUtility::setupLinkage(u"NONCE"_s, qApp, note);
  EXPECT_TRUE(QRegularExpression(u"^[A-Za-z0-9_-]{86}$"_s).match(verifier).hasMatch()) << qPrintable(verifier);
  const QString loginPage =
      url(u"api"_s, u"/getLogin?appRedirectUrl="_s)
      + url(u"www"_s, u"/st/downloader-login.html&nonce=NONCE&codeChallenge="_s)
      + KaCryptionUtility::GenerateCodeS256Challenge(verifier)
      + u"&downloaderRedirectUrl=downloaderpictora://authenticate&strataClient=pc_2.0&view=login"_s;
  EXPECT_EQ(browser.takeUrl(), loginPage);
  const QString logoutPage =
      url(u"api"_s, u"/logout?appRedirectUrl="_s) + url(u"www"_s, u"/st/downloader-logout.html"_s);
  KaLinkageUtility::closeLinkage(qApp, note);
  EXPECT_EQ(browser.takeUrl(), logoutPage);
  EXPECT_TRUE(waitFor([&] { return verdicts == QStringList{u"opened"_s, u"opened"_s}; }));
  browser.uninstall();
  KaLinkageUtility::closeLinkage(qApp, note);
  EXPECT_TRUE(waitFor([&] { return verdicts.size() == 3; }) && verdicts.last() == logoutPage);
}

TEST_F(Linkage, givesNoTokenCodeOfABadAnswer) {
  const std::pair<Fault, KaResultCode> cases[] = {
      {{.status = 403, .body = R"({"tokenCode":"c"})"}, KaResultCode::LinkInvalid},
      {{.kind = Fault::Kind::Body, .body = "<html>tokenCode</html>"}, KaResultCode::Offline},
      {{.kind = Fault::Kind::Body, .body = R"([{"tokenCode":"c"}])"}, KaResultCode::NoBody},
      {{.kind = Fault::Kind::Body, .body = R"({"tokenCode":7})"}, KaResultCode::NoBody},
  };
  for (const auto &[fault, result] : cases) {
    SCOPED_TRACE(fault.body.constData());
    for (const auto endpoint : {sandbox::Endpoint::TokenCode, sandbox::Endpoint::RefreshToken})
      service.order(endpoint, fault);
    const TokenCodeAnswer exchanged = request.getTokenCode(login.codeVerifier, login.idToken);
    EXPECT_EQ(std::pair(exchanged.result, exchanged.tokenCode), std::pair(result, QString()));
    const RefreshAnswer renewed = request.refreshIdToken(login.idToken, u"NEW"_s, u"code"_s);
    EXPECT_EQ(std::pair(renewed.result, renewed.tokenCode), std::pair(result, QString()));
    EXPECT_EQ(renewed.data, fault.body) << "kept whatever the result";
    EXPECT_EQ(service.requests().last().header("Content-Type"), "application/json");
  }
}

} // namespace
