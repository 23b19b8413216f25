#include "identity/KaLinkageUtility.h"
#include "tests/engine/EngineFixture.h"

#include <ctime>

using namespace Qt::StringLiterals;
using enum KaResultCode;
using enum KaTargetStorage;
using sandbox::Endpoint;
using enum sandbox::TokenFault;

namespace {

class Session : public EngineTest {
protected:
  const std::optional<QString> old = delegate.answers().token;
  std::optional<QString> idToken = old;
  EngineParts parts{delegate};
};

TEST_F(Session, keepsTokenAndCredentialsUntilTheLinkIsClosed) {
  KaLinkageUtility::saveCodeVerifier(u"verifier"_s);
  parts.session.exchangeCodeVerifier({});
  EXPECT_TRUE(KaLinkageUtility::existCodeVerifier()) << "it can be handed in once, with a token";
  ASSERT_EQ(parts.session.refreshIdToken(idToken), Success);
  EXPECT_NE(idToken, old);
  EXPECT_EQ(delegate.answers().token, idToken);

  ASSERT_EQ(parts.session.getCredential(*idToken), Success);
  const QString user = service.library().userId();
  EXPECT_THAT(delegate.answers().records.keys(),
              testing::UnorderedElementsAre(user, user + u"_(10G)"_s, user + u"_(2K)"_s));
  parts.session.deleteCredential();
  EXPECT_EQ(parts.session.access().credential, KaCredential());
  EXPECT_TRUE(parts.session.access().presigning.secretKey.isEmpty());
  delegate.change([](auto &answers) { answers.loggedIn = false; });
  EXPECT_EQ(parts.session.refreshIdToken(idToken), LinkInvalid);
  idToken.reset();
  EXPECT_EQ(parts.session.refreshIdToken(idToken), LinkInvalid);
  EXPECT_EQ(service.requestCount(Endpoint::RefreshToken), 1);
}

TEST_F(Session, adoptsNoTokenOfABadAnswer) {
  for (const auto fault : {WrongNonce, MissingNonce, MissingIdToken, IdTokenOfWrongType, BadSignature, Expired}) {
    service.setTokenFault(fault);
    delegate.forgetEvents();
    EXPECT_EQ(parts.session.refreshIdToken(idToken), LinkInvalid);
    EXPECT_EQ(idToken, old);
    EXPECT_EQ(delegate.answers().token, old);
    EXPECT_EQ(delegate.events(), names(fault == BadSignature || fault == Expired ? "saveLinkage" : ""));
  }
}

TEST_F(Session, readsTheExpiryAsUniversalTimeCutTo32Bits) {
  qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3"); // skips the hour of the first row
  tzset();
  for (const QString &row : names("2024-03-31T02:30:00Z=1711852200 =0 soon=0 2038-01-19T03:14:08Z=-2147483648")) {
    const QByteArray answer = "<A><Expiration>" + row.section(u'=', 0, 0).toLatin1() + "</Expiration></A>";
    service.order(Endpoint::Sts, {.kind = sandbox::Fault::Kind::Body, .body = answer, .times = 2});
    EXPECT_EQ(parts.session.getCredential(*old), Success);
    EXPECT_EQ(parts.session.getCredential(u"e30.e30.e30"_s), LinkInvalid) << "no user";
    EXPECT_EQ(parts.session.access().presigning.expireUnixTime, row.section(u'=', 1));
  }
}

using ContentListing = EngineTest;
const KaDownloadData kHeld{u"20240501/11"_s, {u"A"_s}};

TEST_F(ContentListing, findsWhatIsNewOnEachDeviceOverAllPages) {
  service.setListPageSize(2);
  // An alias begins like another device's id; a folder marker has no size, and what has no upload hour is no image.
  service.library().setSettingsObject(R"({"applicationAliasIds":["dev10",7],"isEnableDownload10GStorage":0})");
  addImages("10/OLD.JPG 11/A.JPG 11/B.JPG dev10/12/C.JPG dev2/12/D.JPG");
  add(image(u"12"_s, QString(), QByteArray()));
  sandbox::LibraryObject large = image(u"12"_s, u"E&amp;<F>.JPG"_s);
  large.listedSize = 6'000'000'000;
  add(large);
  const QString device = u"images/original/%1/dev1/"_s.arg(service.library().userId());
  for (const QString &odd : names("zz 20240532/23 20240501/24 2024051/023 +0240501/23"))
    service.library().addRaw(sandbox::contentBucket(), device + odd + u"/N.JPG"_s, {.body = "text"});
  EngineParts parts(delegate);
  ASSERT_EQ(parts.open(), Success);
  for (const auto &[storage, expected] :
       {std::pair(Days30, names("11/B.JPG 12/D.JPG 12/E&amp;<F>.JPG")),
        {LongTerm10G, names("10/OLD.JPG 11/B.JPG 12/C.JPG 12/D.JPG 12/E&amp;<F>.JPG")}}) {
    const QString key = uuidKey(service.library().userId(), storage);
    delegate.change([&](auto &answers) { answers.records[key] = kHeld; });
    ASSERT_EQ(parts.list(storage), Success);
    QStringList found;
    for (const QString &object : sortImageList(parts.listing.contentsDictionary().keys()))
      found << object.section(u'/', -2);
    EXPECT_EQ(found, expected);
    EXPECT_EQ(parts.listing.contentsDictionary().value(service.library().imageKey(large)), large.listedSize);
  }
}

TEST_F(ContentListing, learnsAboutThe10GStorageAndNewVersionsFromTheSettings) {
  EngineParts parts(delegate);
  ASSERT_EQ(parts.open(), Success);
  for (const auto &[document, keeps10G, newVersion] :
       {std::tuple(std::optional<QByteArray>(), false, false),
        {R"({"isEnableDownload10GStorage":null,"applicationAliasIds":1})", true, false},
        {R"({"isEnableDownload10GStorage":1,"kaLatestVersion":"99.0.0"})", true, true},
        {R"({"isEnableDownload10GStorage":1,"kaLatestVersion":"0.9.9"})", true, false}}) {
    service.library().setSettingsObject(document);
    delegate.change([](auto &answers) { answers.option.checkBox10GDownload = u"true"_s; });
    delegate.forgetEvents();
    for (const bool notify : {false, true}) {
      EXPECT_EQ(parts.listing.getContentsList(Days30, notify), Success);
      EXPECT_EQ(delegate.events().contains(u"result 24"_s), notify && newVersion);
    }
    EXPECT_EQ(delegate.answers().option.checkBox10GDownload, keeps10G ? u"true"_s : u"false"_s);
    EXPECT_EQ(delegate.answers().option.parentFolder, profile.picturesFolder());
  }
}

TEST_F(ContentListing, keepsTheNewestHourInTheRecordOfTheOrdinaryStorage) {
  EngineParts parts(delegate);
  ASSERT_EQ(parts.open(), Success);
  for (const auto &[storage, hour, lastDateTime, ids] : {std::tuple(Days30, u"10"_s, u"20240501/11"_s, "A"),
                                                         {Days30, u"11"_s, u"20240501/11"_s, "A B"},
                                                         {Days30, u"12"_s, u"20240501/12"_s, "B"},
                                                         {LongTerm10G, u"10"_s, u"20240501/11"_s, "A B"}}) {
    const QString key = uuidKey(service.library().userId(), storage);
    delegate.change([&](auto &answers) { answers.records[key] = kHeld; });
    parts.listing.saveImageInfo(u"B"_s, u"20240501"_s, hour, storage);
    EXPECT_EQ(delegate.answers().records[key], (KaDownloadData{lastDateTime, names(ids)}));
  }
}

} // namespace
