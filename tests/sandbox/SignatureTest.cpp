#include "sandbox/SignatureCheck.h"

#include "sandbox/Library.h"
#include "tests/sandbox/Curl.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <functional>

using namespace Qt::StringLiterals;
using namespace sandbox;

namespace {

const QString kEmptyHash = u"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"_s;

QJsonObject knownAnswers() {
  QFile file(QStringLiteral(KA_TEST_DATA "/signing.json"));
  EXPECT_TRUE(file.open(QFile::ReadOnly));
  return QJsonDocument::fromJson(file.readAll()).object();
}

QDateTime utc(const QString &text) {
  return QDateTime::fromString(text, Qt::ISODate);
}

const QDateTime kSignedAt = utc(u"2024-05-01T10:00:00Z"_s);

KnownCredential knownCredential() {
  const QJsonObject credential = knownAnswers()[u"credential"_s].toObject();
  return {.credential = {.accessKeyId = credential[u"AccessKeyId"_s].toString(),
                         .secretAccessKey = credential[u"SecretAccessKey"_s].toString(),
                         .sessionToken = credential[u"SessionToken"_s].toString(),
                         .expiration = kSignedAt.addSecs(3600).toSecsSinceEpoch()},
          .userId = u"u-1"_s};
}

HttpRequest knownRequest(const QJsonObject &vector) {
  const QJsonObject headers = vector[u"headers"_s].toObject();
  HttpRequest request{.method = vector[u"method"_s].toString().toLatin1(),
                      .hostHeader = vector[u"host"_s].toString().toLatin1(),
                      .target = vector[u"path"_s].toString().toUtf8(),
                      .headers = {{"Host", vector[u"host"_s].toString().toLatin1()},
                                  {"Authorization", vector[u"authorization"_s].toString().toLatin1()}},
                      .body = vector[u"body"_s].toString().toUtf8()};
  for (auto it = headers.begin(); it != headers.end(); ++it)
    request.headers.append({it.key().toLatin1(), it->toString().toLatin1()});
  return request;
}

QByteArray codeOf(const SignatureVerdict &verdict) {
  return verdict.refusal ? verdict.refusal->code : QByteArray("accepted");
}

TEST(KnownSignatures, presignedOnesAreMadeAlike) {
  const QJsonArray vectors = knownAnswers()[u"presignedV2"_s].toArray();
  ASSERT_FALSE(vectors.isEmpty());
  const TemporaryCredential credential = knownCredential().credential;
  for (const QJsonValue &vector : vectors) {
    const QByteArray resource =
        '/' + vector[u"bucket"_s].toString().toLatin1() + '/' + vector[u"key"_s].toString().toLatin1();
    const QByteArray text =
        presignedStringToSign(vector[u"expires"_s].toString().toLatin1(), credential.sessionToken.toLatin1(), resource);
    EXPECT_EQ(text, vector[u"stringToSign"_s].toString().toLatin1());
    EXPECT_EQ(presignedSignature(text, credential.secretAccessKey.toLatin1()),
              vector[u"signatureBase64"_s].toString().toLatin1());
  }
}

TEST(KnownSignatures, versionFourOnesAreAccepted) {
  const QJsonArray vectors = knownAnswers()[u"signatureV4"_s].toArray();
  ASSERT_FALSE(vectors.isEmpty());
  Credentials credentials;
  credentials.add(knownCredential());
  for (const QJsonValue &vector : vectors) {
    const auto verdict = checkSignatureV4(knownRequest(vector.toObject()), vector[u"service"_s].toString().toLatin1(),
                                          credentials, kSignedAt);
    EXPECT_EQ(codeOf(verdict), "accepted") << vector[u"name"_s].toString().toStdString();
    EXPECT_EQ(verdict.userId, u"u-1"_s);
  }
}

/// A properly signed request, spoiled in one way.
struct Spoiling {
  const char *name;
  std::function<void(HttpRequest &, KnownCredential &)> spoil;
  const char *code;
  qint64 secondsLater = 0;
};

void replaceHeader(HttpRequest &request, const QByteArray &name, const QByteArray &from, const QByteArray &to) {
  for (auto &[key, value] : request.headers)
    if (key == name) value.replace(from, to);
}

const std::vector<Spoiling> kVersionFourSpoilings{
    {"nothing", [](auto &, auto &) {}, "accepted"},
    {"anotherSecret", [](auto &, auto &known) { known.credential.secretAccessKey += u'x'; }, "SignatureDoesNotMatch"},
    {"anotherMethod", [](auto &request, auto &) { request.method = "HEAD"; }, "SignatureDoesNotMatch"},
    {"anotherObject", [](auto &request, auto &) { request.target.replace("0001", "0002"); }, "SignatureDoesNotMatch"},
    {"anotherQuery", [](auto &request, auto &) { request.target += "&acl="; }, "SignatureDoesNotMatch"},
    {"anotherSessionToken", [](auto &, auto &known) { known.credential.sessionToken += u'x'; }, "InvalidToken"},
    {"unknownKeyId", [](auto &, auto &known) { known.credential.accessKeyId += u'x'; }, "InvalidAccessKeyId"},
    {"anotherRegion", [](auto &request, auto &) { replaceHeader(request, "Authorization", "eu-west-1", "us-east-1"); },
     "AuthorizationHeaderMalformed"},
    {"scopeOfAnotherDay",
     [](auto &request, auto &) { replaceHeader(request, "Authorization", "20240501", "20240502"); },
     "AuthorizationHeaderMalformed"},
    {"noAuthorization", [](auto &request, auto &) { request.headers.removeAt(1); }, "AccessDenied"},
    {"headerBesideTheSignature", [](auto &request, auto &) { request.headers.emplaceBack("x-amz-acl", "public-read"); },
     "AccessDenied"},
    {"wrongPayloadHash", [](auto &request, auto &) { request.body = "x"; }, "XAmzContentSHA256Mismatch"},
    {"fourteenMinutesLate", [](auto &, auto &) {}, "accepted", 14 * 60},
    {"sixteenMinutesLate", [](auto &, auto &) {}, "RequestTimeTooSkewed", 16 * 60},
    {"sixteenMinutesEarly", [](auto &, auto &) {}, "RequestTimeTooSkewed", -16 * 60},
    {"expiredCredential",
     [](auto &, auto &known) { known.credential.expiration = kSignedAt.addSecs(-1).toSecsSinceEpoch(); },
     "ExpiredToken"},
};

class SignedRequest : public testing::TestWithParam<Spoiling> {};

TEST_P(SignedRequest, isJudged) {
  HttpRequest request = knownRequest(knownAnswers()[u"signatureV4"_s][0].toObject());
  KnownCredential known = knownCredential();
  GetParam().spoil(request, known);
  Credentials credentials;
  credentials.add(known);
  EXPECT_EQ(codeOf(checkSignatureV4(request, "s3", credentials, kSignedAt.addSecs(GetParam().secondsLater))),
            GetParam().code);
}

INSTANTIATE_TEST_SUITE_P(Each, SignedRequest, testing::ValuesIn(kVersionFourSpoilings),
                         [](const auto &row) { return std::string(row.param.name); });

const std::vector<Spoiling> kPresignedSpoilings{
    {"nothing", [](auto &, auto &) {}, "accepted"},
    {"anotherSecret", [](auto &, auto &known) { known.credential.secretAccessKey += u'x'; }, "SignatureDoesNotMatch"},
    {"anotherMethod", [](auto &request, auto &) { request.method = "HEAD"; }, "SignatureDoesNotMatch"},
    {"anotherObject", [](auto &request, auto &) { request.target.replace("settings", "sittings"); },
     "SignatureDoesNotMatch"},
    {"longerLife", [](auto &request, auto &) { request.target.replace("1714560000", "1714560001"); },
     "SignatureDoesNotMatch"},
    {"noSessionToken", [](auto &request, auto &) { request.headers.clear(); }, "InvalidAccessKeyId"},
    {"anotherSessionToken", [](auto &, auto &known) { known.credential.sessionToken += u'x'; }, "InvalidToken"},
    {"unknownKeyId", [](auto &, auto &known) { known.credential.accessKeyId += u'x'; }, "InvalidAccessKeyId"},
    {"lastSecond", [](auto &, auto &) {}, "accepted", 2400},
    {"secondAfter", [](auto &, auto &) {}, "AccessDenied", 2401},
};

class PresignedRequest : public testing::TestWithParam<Spoiling> {};

TEST_P(PresignedRequest, isJudged) {
  const QJsonObject vector = knownAnswers()[u"presignedV2"_s][1].toObject();
  KnownCredential known = knownCredential();
  HttpRequest request{.method = "GET",
                      .hostHeader = "strata-prd-content.s3.localhost:1",
                      .target = "/conf/settings.json?&AWSAccessKeyId=" + known.credential.accessKeyId.toLatin1()
                                + "&Expires=" + vector[u"expires"_s].toString().toLatin1()
                                + "&Signature=" + vector[u"signaturePercentEncoded"_s].toString().toLatin1(),
                      .headers = {{"x-amz-security-token", known.credential.sessionToken.toLatin1()}}};
  GetParam().spoil(request, known);
  Credentials credentials;
  credentials.add(known);
  EXPECT_EQ(
      codeOf(checkPresigned(request, "strata-prd-content", credentials, kSignedAt.addSecs(GetParam().secondsLater))),
      GetParam().code);
}

INSTANTIATE_TEST_SUITE_P(Each, PresignedRequest, testing::ValuesIn(kPresignedSpoilings),
                         [](const auto &row) { return std::string(row.param.name); });

/// What the curl program signs by itself.
struct SelfSigned {
  const char *name;
  QString host;
  QString target;
  QString service;
  QStringList options;
};

const std::vector<SelfSigned> kSelfSigned{
    {"object",
     u"strata-prd-content.s3"_s,
     u"/conf/settings.json"_s,
     u"s3"_s,
     {u"-H"_s, u"x-amz-content-sha256: "_s + kEmptyHash}},
    {"head",
     u"strata-prd-content.s3"_s,
     u"/conf/settings.json"_s,
     u"s3"_s,
     {u"-I"_s, u"-H"_s, u"x-amz-content-sha256: "_s + kEmptyHash}},
    {"tagging",
     u"strata-prd-content.s3"_s,
     u"/conf/settings.json?tagging="_s,
     u"s3"_s,
     {u"-H"_s, u"x-amz-content-sha256: "_s + kEmptyHash}},
    {"report",
     u"logs"_s,
     u"/"_s,
     u"logs"_s,
     {u"-H"_s, u"x-amz-target: Logs_20140328.PutLogEvents"_s, u"-H"_s, u"content-type: application/x-amz-json-1.1"_s,
      u"--data-binary"_s,
      uR"({"logGroupName":"g","logStreamName":"s","logEvents":[{"timestamp":1714557600000,"message":"m"}]})"_s}},
};

class CurlSignature : public testing::TestWithParam<SelfSigned> {};

TEST_P(CurlSignature, isAcceptedWithTheRightSecretOnly) {
  Service service;
  service.library().setSettingsObject("{}");
  const TemporaryCredential credential = service.issueCredential();
  const auto ask = [&](const QString &secret) {
    return curl(service, urlOf(service, GetParam().host, GetParam().target),
                GetParam().options
                    + QStringList{u"--aws-sigv4"_s, u"aws:amz:eu-west-1:"_s + GetParam().service, u"--user"_s,
                                  credential.accessKeyId + u':' + secret, u"-H"_s,
                                  u"x-amz-security-token: "_s + credential.sessionToken})
        .status;
  };
  EXPECT_EQ(ask(credential.secretAccessKey), 200);
  EXPECT_THAT(ask(credential.secretAccessKey + u'x'), testing::AnyOf(403, 400));
}

INSTANTIATE_TEST_SUITE_P(Each, CurlSignature, testing::ValuesIn(kSelfSigned),
                         [](const auto &row) { return std::string(row.param.name); });

} // namespace
