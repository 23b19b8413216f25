#include "log/KaLogUtility.h"
#include "service/KaApplicationConstants.h"
#include "service/KaXMLParser.h"
#include "service/SignatureV4.h"
#include "tests/identity/SigningVectors.h"
#include "tests/log/LogFile.h"
#include "tests/service/ServiceFixture.h"

#include <QJsonArray>
#include <QTimeZone>

using namespace Qt::StringLiterals;
using sandbox::Endpoint;
using sandbox::Fault;

namespace {

using enum KaResultCode;

using ServerRequest = ServiceTest;

TEST(SignatureV4, signsAsOtherImplementationsDo) {
  const QJsonObject vectors = signingVectors();
  const QJsonValue by = vectors["credential"_L1];
  const KaCredential credential = {by["AccessKeyId"_L1].toString(), by["SecretAccessKey"_L1].toString(), {}, {}};
  const QJsonArray cases = vectors["signatureV4"_L1].toArray();
  ASSERT_EQ(cases.size(), 3);
  for (const auto &vector : cases) {
    QVariantMap headers = vector["headers"_L1].toObject().toVariantMap();
    headers[u"host"_s] = vector["host"_L1].toString();
    QString canonicalHeaders;
    for (auto header = headers.cbegin(); header != headers.cend(); ++header)
      canonicalHeaders += header.key() + u':' + header->toString() + u'\n';
    const QString path = vector["path"_L1].toString();
    const SignatureV4Request request = {.timestamp = headers[u"x-amz-date"_s].toString(),
                                        .service = vector["service"_L1].toString(),
                                        .method = vector["method"_L1].toString(),
                                        .canonicalUri = path.section(u'?', 0, 0),
                                        .canonicalQuery = path.section(u'?', 1),
                                        .canonicalHeaders = canonicalHeaders,
                                        .signedHeaders = QStringList(headers.keys()).join(u';'),
                                        .payload = vector["body"_L1].toString()};
    EXPECT_EQ(signRequests(credential, request), vector["authorization"_L1].toString());
  }
}

TEST_F(ServerRequest, tellsHowAStatusIsToBeTaken) {
  const std::pair<int, KaResultCode> cases[] = {
      {200, Success},    {404, Success},    {400, LinkInvalid}, {401, LinkInvalid}, {403, LinkInvalid},
      {500, RetryLater}, {503, RetryLater}, {204, ServerError}, {302, ServerError}, {502, ServerError}};
  for (const auto &[status, result] : cases)
    EXPECT_EQ(KaServerRequest::checkHTTPResponse(status), result) << status;
}

TEST_F(ServerRequest, takesBadAnswersAboutTagsAsItHasTo) {
  const std::tuple<Fault, KaResultCode, qint64> cases[] = {
      {{.status = 403}, LinkInvalid, 403},
      {{.status = 404}, Success, 404},
      {{.kind = Fault::Kind::EmptyBody}, Success, 200},
      {{.kind = Fault::Kind::TruncatedBody}, ServerError, 0},
  };
  for (const auto &[fault, result, status] : cases) {
    service.order(Endpoint::ObjectTagging, fault);
    const auto answer = request.getAWSS3ObjectTag(by, imageKey);
    EXPECT_EQ(answer.result, result);
    EXPECT_EQ(answer.statusCode, status);
  }
}

TEST_F(ServerRequest, refusesBadCertificates) {
  using enum sandbox::BadCertificate;
  for (const auto kind : {UnknownAuthority, WrongName, Expired}) {
    const QString bad = u"https://sts.localhost:%1/"_s.arg(service.badlyCertifiedPort(kind));
    EXPECT_EQ(request.getAwsTemporaryCredential(bad).result, SecureConnectionFailed);
    EXPECT_EQ(request.getAwsPreviewlList(bad, by).result, NoHttpStatus);
  }
  EXPECT_TRUE(service.requests().isEmpty());
}

TEST_F(ServerRequest, reportsWhatItIsGivenAndTellsTheLogNothingPrivateOfARefusal) {
  const QString document =
      uR"({"logGroupName":"g", "logStreamName":"s", "logEvents":[{"timestamp":1,"message":"{\"UUID\":\"Grüße\"}"}]})"_s;
  EXPECT_EQ(request.notifyDownloadCompletion(by, document).result, Success);
  EXPECT_EQ(service.requests().last().body, document.toUtf8());
  EXPECT_EQ(service.logEvents().size(), 1);
  service.order(Endpoint::LogEvents, {.kind = Fault::Kind::EmptyBody});
  EXPECT_EQ(request.notifyDownloadCompletion(by, document).result, Success) << "it needs no answer";
  KaLogUtility::switchLogStatus();
  const QByteArray refusal = R"({"error":"E","errorDescription":"private"})";
  service.order(Endpoint::LogEvents, {.status = 400, .body = refusal});
  EXPECT_EQ(request.notifyDownloadCompletion(by, document).result, LinkInvalid);
  EXPECT_EQ(loggedLines(profile).mid(1), QStringList({u"    HTTP=400"_s, u"    ErrorCode=E"_s}));
}

TEST(SignatureV4, hashesTextUpToTheFirstNulAndStampsTheTimeInUtc) {
  EXPECT_EQ(toHex(toSHA256hash(u"abc\0def"_s)), u"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"_s);
  const QDateTime local(QDate(2024, 5, 1), QTime(1, 2, 3), QTimeZone("Asia/Tokyo"));
  EXPECT_EQ(getCurrentTimeStampUTCFormat(local), u"20240430T160203Z"_s);
}

TEST(Xml, givesTheTextAfterATargetName) {
  QByteArray bomb = "<!DOCTYPE T [<!ENTITY e0 \"boom\">";
  for (int i = 1; i < 30; ++i)
    bomb += u"<!ENTITY e%1 \"&e%2;&e%2;\">"_s.arg(i).arg(i - 1).toUtf8();
  const QHash<QString, QString> thirty = {{u"period"_s, u"30"_s}};
  const std::tuple<QByteArray, KaResultCode, QHash<QString, QString>> cases[] = {
      {"<T><K>period</K><V>31</V><K>x</K><V>y</V><K>period</K><V>30</V></T>", Success, thirty},
      {"<T><K>owner</K><V>period</V><K>30</K></T>", Success, {{u"owner"_s, u"period"_s}, {u"period"_s, u"30"_s}}},
      {"<T>p&#101;r<![CDATA[io]]>d<V>写&amp;<!-- c --><![CDATA[<d>]]></V></T>", Success, {{u"period"_s, u"写&<d>"_s}}},
      {"<!DOCTYPE T [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><T>period<V>3&x;0</V></T>", Success, thirty},
      {"<T><K>period</K><V>30</V><K>own", NoBody, thirty},
      {bomb + "]><T>period<V>&e29;</V></T>", NoBody, {}},
  };
  KaXMLParser parser;
  parser.setTarget({u"period"_s, u"owner"_s});
  for (const auto &[xml, result, values] : cases) {
    EXPECT_EQ(parser.parseXML(xml, KaXMLParser::kKeyValueType), result) << xml.constData();
    EXPECT_EQ(parser.result(), values) << xml.constData();
    EXPECT_EQ(parser.result_length(), result == Success ? quint64(values.size()) : 0);
  }
}

TEST(Constants, keepWhatTheyFirstReadUnderTheirOddKeys) {
  const TestProfile profile;
  profile.writeUserDefaults({{u"awsLogsGroupName"_s, u"ignored"_s}, {u"awsLogGroupName"_s, u"mine"_s}});
  platform::UserDefaults &defaults = platform::standardUserDefaults();
  EXPECT_EQ(KaApplicationConstants::awsLogsGroupName(), u"mine"_s);
  defaults.setString(u"awsLogGroupName"_s, u"another"_s);
  EXPECT_EQ(KaApplicationConstants::awsLogsGroupName(), u"mine"_s);
  EXPECT_EQ(KaApplicationConstants::awsS3PreviewListBucketName(), u"strata-prd-ka-preview-list"_s);
  EXPECT_EQ(defaults.string(u"awsS3PreviewListBucketName"_s), u"strata-prd-Ka-S3AccessLog"_s);
}

} // namespace
