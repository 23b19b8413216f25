#include "identity/KaLinkageUtility.h"
#include "tests/engine/EngineFixture.h"

#include <ctime>

using namespace Qt::StringLiterals;
using enum KaResultCode;
using enum KaTargetStorage;
using sandbox::Endpoint;
using sandbox::Fault;
using enum sandbox::TokenFault;

namespace {

class Session : public EngineTest {
protected:
  const std::optional<QString> old = link.idToken();
  EngineParts parts{delegate, link};
};

TEST_F(Session, keepsTokenAndCredentialsUntilTheLinkIsClosed) {
  ASSERT_EQ(parts.session.refreshIdToken(), Success);
  const auto idToken = link.idToken();
  EXPECT_NE(idToken, old);
  EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), idToken);
  EXPECT_EQ(KaLinkageUtility::loadTokenCode(), link.tokenCode(link.number()));

  ASSERT_EQ(parts.session.getCredential(), Success);
  const QString user = service.library().userId();
  EXPECT_THAT(delegate.answers().records.keys(),
              testing::UnorderedElementsAre(user, user + u"_(10G)"_s, user + u"_(2K)"_s));
  EXPECT_NE(parts.storage.credential(), KaCredential());
  parts.session.deleteCredential();
  EXPECT_EQ(parts.storage.credential(), KaCredential());
  link.close();
  EXPECT_EQ(parts.session.refreshIdToken(), Offline) << "no request in its name";
  parts.session.begin({});
  EXPECT_EQ(parts.session.refreshIdToken(), LinkInvalid);
  EXPECT_EQ(service.requestCount(Endpoint::RefreshToken), 1);
}

TEST_F(ProcessorTest, keepsTheTokenCodeOfARefreshThatQuittingFindsUnderWay) {
  const auto before = link.tokenCode(link.number());
  service.order(Endpoint::RefreshToken, {.kind = Fault::Kind::Delay, .delay = std::chrono::milliseconds(200)});
  start();
  ASSERT_TRUE(service.waitForRequests(Endpoint::RefreshToken, 1, std::chrono::seconds(20)));
  processor.reset();
  EXPECT_NE(KaLinkageUtility::loadTokenCode(), before) << "the service takes none but the new one";
  EXPECT_EQ(KaLinkageUtility::loadTokenCode(), link.tokenCode(link.number()));
}

TEST_F(Session, adoptsNoTokenOfABadAnswerButTheTokenCodeThatMadeTheOldOneWorthless) {
  for (const auto fault : {WrongNonce, MissingNonce, MissingIdToken, IdTokenOfWrongType, BadSignature, Expired}) {
    service.setTokenFault(fault);
    const auto codeBefore = link.tokenCode(link.number());
    EXPECT_EQ(parts.session.refreshIdToken(), LinkInvalid);
    EXPECT_EQ(link.idToken(), old);
    EXPECT_EQ(KaLinkageUtility::loadLinkageSetting(), old);
    EXPECT_NE(link.tokenCode(link.number()), codeBefore);
  }
}

TEST_F(Session, saysOnceThatTheDiskKeepsNoTokenAndGoesOnFromMemory) {
  const QDir pairing(profile.dataFolder() + u"/NORVALE INC/Downloaderpictora Shared/PairingInfo"_s);
  for (const QString &name : {u"PairingInfo"_s, u"PairingCode"_s}) {
    ASSERT_TRUE(QFile::remove(pairing.filePath(name)) && pairing.mkdir(name)) << "which no file can replace";
    delegate.forgetEvents();
    delegate.change([](auto &answers) { answers.onlookers.clear(); });
    EngineParts process(delegate, link);
    for (int times = 0; times < 2; ++times) {
      const auto before = link.idToken();
      EXPECT_EQ(process.session.refreshIdToken(), Success);
      EXPECT_NE(link.idToken(), before);
      EXPECT_EQ(delegate.events().filter(u"result"_s), QStringList{u"result 14"_s}) << qPrintable(name);
      EXPECT_EQ(delegate.answers().onlookers.size(), times) << "it is as true as before";
    }
    ASSERT_TRUE(pairing.rmdir(name));
    ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(u"again"_s) && KaLinkageUtility::saveTokenCode(u"again"_s));
  }
}

TEST_F(Session, readsTheExpiryAsUniversalTimeCutTo32Bits) {
  qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3"); // skips the hour of the first row
  tzset();
  for (const QString &row : names("2024-03-31T02:30:00Z=1711852200 =0 soon=0 2038-01-19T03:14:08Z=-2147483648")) {
    const QByteArray answer = "<A><Expiration>" + row.section(u'=', 0, 0).toLatin1() + "</Expiration></A>";
    service.order(Endpoint::Sts, {.kind = sandbox::Fault::Kind::Body, .body = answer, .times = 2});
    parts.session.begin({link.number(), u"e30.e30.e30"_s});
    EXPECT_EQ(parts.session.getCredential(), LinkInvalid) << "no user";
    parts.session.begin(*link.forRun());
    EXPECT_EQ(parts.session.getCredential(), Success);
    EXPECT_EQ(parts.storage.credential().expireUnixTime, row.section(u'=', 1));
  }
  service.order(Endpoint::Sts, {.kind = sandbox::Fault::Kind::MalformedBody});
  EXPECT_EQ(parts.session.getCredential(), NoBody);
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
  for (const KaTargetStorage storage : {Days30, LongTerm10G})
    delegate.change([&](auto &answers) { answers.records[uuidKey(service.library().userId(), storage)] = kHeld; });
  EngineParts parts(delegate, link);
  ASSERT_EQ(parts.open(), Success);
  for (const auto &[storage, expected] :
       {std::pair(Days30, names("11/B.JPG 12/D.JPG 12/E&amp;<F>.JPG")),
        {LongTerm10G, names("10/OLD.JPG 11/B.JPG 12/C.JPG 12/D.JPG 12/E&amp;<F>.JPG")}}) {
    const KaListing listing = parts.listing.getContentsList(storage, parts.bookkeeping.lastDateTime(storage));
    ASSERT_EQ(listing.result, Success);
    EXPECT_EQ(listing.settings.has_value(), storage == Days30);
    QStringList found;
    for (const KaListedImage &image : listing.images)
      found << image.key.path().section(u'/', -2);
    EXPECT_EQ(found, expected);
    EXPECT_EQ(listing.images.back().size, large.listedSize);
  }
}

TEST_F(ContentListing, sortsOverAllDevicesAndCountsAKeyOnce) {
  KaListedImages images;
  for (const QString &path : names("b/d2/20240501/10/C b/d1/20240501/11/A b/d1/20240501/10/C b/d2/20240430/23/Z "
                                   "b/d1/20240501/10/C"))
    images.push_back({KaImageKey(u"images/original/"_s + path), 1});
  QStringList sorted;
  for (const KaListedImage &image : sortImageList(std::move(images)))
    sorted << image.key.path().section(u'/', -4);
  EXPECT_EQ(sorted, names("d2/20240430/23/Z d1/20240501/10/C d2/20240501/10/C d1/20240501/11/A"));
}

TEST_F(ContentListing, keepsTheNewestHourInTheRecordOfTheOrdinaryStorage) {
  EngineParts parts(delegate, link);
  ASSERT_EQ(parts.open(), Success);
  for (const auto &[storage, hour, lastDateTime, ids] : {std::tuple(Days30, u"10"_s, u"20240501/11"_s, "A"),
                                                         {Days30, u"11"_s, u"20240501/11"_s, "A B"},
                                                         {Days30, u"12"_s, u"20240501/12"_s, "B"},
                                                         {LongTerm10G, u"10"_s, u"20240501/11"_s, "A B"}}) {
    const QString key = uuidKey(service.library().userId(), storage);
    delegate.change([&](auto &answers) { answers.records[key] = kHeld; });
    parts.bookkeeping.saveImageInfo(KaImageKey(u"images/original/u/d/20240501/%1/B.JPG"_s.arg(hour)), storage);
    EXPECT_EQ(delegate.answers().records[key], (KaDownloadData{lastDateTime, names(ids)}));
  }
}

} // namespace
