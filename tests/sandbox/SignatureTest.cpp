#include "sandbox/SignatureCheck.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <functional>

using namespace Qt::StringLiterals;
using namespace sandbox;

namespace {

/// A member of the known answers.
QJsonValue known(const QString &name) {
  QFile file(QStringLiteral(KA_TEST_DATA "/signing.json"));
  EXPECT_TRUE(file.open(QFile::ReadOnly));
  return QJsonDocument::fromJson(file.readAll()).object()[name];
}

QByteArray bytes(const QJsonValue &object, const char *name) {
  return object[QLatin1StringView(name)].toString().toLatin1();
}

const QDateTime kSignedAt = QDateTime::fromString(u"2024-05-01T10:00:00Z"_s, Qt::ISODate);

KnownCredential knownCredential() {
  const QJsonValue credential = known(u"credential"_s);
  return {.credential = {.accessKeyId = credential[u"AccessKeyId"_s].toString(),
                         .secretAccessKey = credential[u"SecretAccessKey"_s].toString(),
                         .sessionToken = credential[u"SessionToken"_s].toString(),
                         .expiration = kSignedAt.addSecs(3600).toSecsSinceEpoch()},
          .userId = u"u-1"_s};
}

HttpRequest versionFourRequest(const QJsonValue &vector) {
  const QByteArray host = bytes(vector, "host");
  HttpRequest request{.method = bytes(vector, "method"),
                      .hostHeader = host,
                      .target = bytes(vector, "path"),
                      .headers = {{"Host", host}, {"Authorization", bytes(vector, "authorization")}},
                      .body = vector[u"body"_s].toString().toUtf8()};
  const QJsonObject headers = vector[u"headers"_s].toObject();
  for (auto it = headers.begin(); it != headers.end(); ++it)
    request.headers.append({it.key().toLatin1(), it->toString().toLatin1()});
  return request;
}

HttpRequest presignedRequest() {
  const QJsonValue credential = known(u"credential"_s);
  const QJsonValue vector = known(u"presignedV2"_s)[1];
  return {.method = "GET",
          .hostHeader = "strata-prd-content.s3.localhost:1",
          .target = "/conf/settings.json?&AWSAccessKeyId=" + bytes(credential, "AccessKeyId")
                    + "&Expires=" + bytes(vector, "expires") + "&Signature=" + bytes(vector, "signaturePercentEncoded"),
          .headers = {{"x-amz-security-token", bytes(credential, "SessionToken")}}};
}

QByteArray codeOf(const SignatureVerdict &verdict) {
  return verdict.refusal ? verdict.refusal->code : "accepted from " + verdict.userId.toLatin1();
}

TEST(KnownSignatures, areMadeAlikeAndAccepted) {
  const QJsonArray presigned = known(u"presignedV2"_s).toArray();
  const QJsonValue credential = known(u"credential"_s);
  for (const QJsonValue vector : presigned) {
    const QByteArray resource = '/' + bytes(vector, "bucket") + '/' + bytes(vector, "key");
    const QByteArray text =
        presignedStringToSign(bytes(vector, "expires"), bytes(credential, "SessionToken"), resource);
    EXPECT_EQ(text, bytes(vector, "stringToSign"));
    EXPECT_EQ(presignedSignature(text, bytes(credential, "SecretAccessKey")), bytes(vector, "signatureBase64"));
  }

  const QJsonArray versionFour = known(u"signatureV4"_s).toArray();
  ASSERT_FALSE(versionFour.isEmpty() || presigned.isEmpty());
  Credentials credentials;
  credentials.add(knownCredential());
  for (const QJsonValue vector : versionFour) {
    const HttpRequest request = versionFourRequest(vector);
    EXPECT_EQ(codeOf(checkSignatureV4(request, bytes(vector, "service"), credentials, kSignedAt)), "accepted from u-1")
        << bytes(vector, "name").constData();
  }
}

/// A properly signed request, spoiled in one way, and the verdicts on a presigned one and on one of version 4.
struct Spoiling {
  const char *name;
  std::function<void(HttpRequest &, KnownCredential &)> spoil;
  QByteArray presigned, versionFour; ///< empty: not tried
  qint64 secondsLater = 0;
};

class SignedRequest : public testing::TestWithParam<Spoiling> {};

TEST_P(SignedRequest, isJudged) {
  const Spoiling &row = GetParam();
  const QDateTime now = kSignedAt.addSecs(row.secondsLater);
  for (const bool presigned : {true, false}) {
    HttpRequest request = presigned ? presignedRequest() : versionFourRequest(known(u"signatureV4"_s)[0]);
    KnownCredential known = knownCredential();
    row.spoil(request, known);
    Credentials credentials;
    credentials.add(known);
    const auto verdict = presigned ? checkPresigned(request, "strata-prd-content", credentials, now)
                                   : checkSignatureV4(request, "s3", credentials, now);
    const QByteArray expected = presigned ? row.presigned : row.versionFour;
    EXPECT_TRUE(expected.isEmpty() || codeOf(verdict) == expected) << presigned << codeOf(verdict).constData();
  }
}

const auto kNothing = [](auto &, auto &) {};
const QByteArray kOk = "accepted from u-1";
const QByteArray kMismatch = "SignatureDoesNotMatch";
const QByteArray kDenied = "AccessDenied";
const QByteArray kUnknown = "InvalidAccessKeyId";
const QByteArray kBadToken = "InvalidToken";
const std::vector<Spoiling> kSpoilings{
    {"fourteenMinutesLate", kNothing, kOk, kOk, 14 * 60},
    {"sixteenMinutesLate", kNothing, {}, "RequestTimeTooSkewed", 16 * 60},
    {"lastSecond", kNothing, kOk, {}, 2400},
    {"secondAfter", kNothing, kDenied, {}, 2401},
    {"longerLife", [](auto &request, auto &) { request.target.replace("=1714560000", "=1714560001"); }, kMismatch, {}},
    {"anotherSecret", [](auto &, auto &known) { known.credential.secretAccessKey += u'x'; }, kMismatch, kMismatch},
    {"anotherMethod", [](auto &request, auto &) { request.method = "HEAD"; }, kMismatch, kMismatch},
    {"anotherObject", [](auto &request, auto &) { request.target[1] = 'x'; }, kMismatch, kMismatch},
    {"anotherToken", [](auto &, auto &known) { known.credential.sessionToken += u'x'; }, kBadToken, kBadToken},
    {"unknownKeyId", [](auto &, auto &known) { known.credential.accessKeyId += u'x'; }, kUnknown, kUnknown},
    {"expired", [](auto &, auto &known) { known.credential.expiration -= 3601; }, {}, "ExpiredToken"},
    {"noHeader", [](auto &request, auto &) { request.headers = {}; }, kUnknown, kDenied},
    {"unsignedHeader", [](auto &request, auto &) { request.headers.emplaceBack("x-amz-acl", "x"); }, {}, kDenied},
    {"anotherBody", [](auto &request, auto &) { request.body = "x"; }, {}, "XAmzContentSHA256Mismatch"},
};

INSTANTIATE_TEST_SUITE_P(Each, SignedRequest, testing::ValuesIn(kSpoilings),
                         [](const auto &row) { return std::string(row.param.name); });

} // namespace
