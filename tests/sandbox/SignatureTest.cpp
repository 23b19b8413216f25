#include "sandbox/SignatureCheck.h"
#include "tests/identity/SigningVectors.h"

#include <gtest/gtest.h>

#include <QJsonArray>

#include <functional>

using namespace Qt::StringLiterals;
using namespace sandbox;

namespace {

const QDateTime kSignedAt = QDateTime::fromString(u"2024-05-01T10:00:00Z"_s, Qt::ISODate);

QByteArray bytes(const QJsonValue &object, QLatin1StringView name) {
  return object[name].toString().toUtf8();
}

using Spoiling = std::function<void(HttpRequest &, KnownCredential &)>;

/// The verdict on what another implementation signed, spoiled before it is judged.
QByteArray verdictOn(
    const QJsonValue &vector, const Spoiling &spoil = [](auto &, auto &) {}, qint64 secondsLater = 0) {
  const QJsonValue by = signingVectors()["credential"_L1];
  KnownCredential known = {{.accessKeyId = by["AccessKeyId"_L1].toString(),
                            .secretAccessKey = by["SecretAccessKey"_L1].toString(),
                            .sessionToken = by["SessionToken"_L1].toString(),
                            .expiration = kSignedAt.addSecs(3600).toSecsSinceEpoch()},
                           u"u-1"_s};
  HttpRequest request = {.method = "GET"};
  const QByteArray awsService = bytes(vector, "service"_L1);
  if (awsService.isEmpty()) {
    request.target = '/' + bytes(vector, "key"_L1) + "?&AWSAccessKeyId=" + bytes(by, "AccessKeyId"_L1) + "&Expires="
                     + bytes(vector, "expires"_L1) + "&Signature=" + bytes(vector, "signaturePercentEncoded"_L1);
    request.headers = {{"x-amz-security-token", bytes(by, "SessionToken"_L1)}};
  } else {
    request = {
        .method = bytes(vector, "method"_L1), .target = bytes(vector, "path"_L1), .body = bytes(vector, "body"_L1)};
    request.headers = {{"Host", bytes(vector, "host"_L1)}, {"Authorization", bytes(vector, "authorization"_L1)}};
    const QVariantMap headers = vector["headers"_L1].toObject().toVariantMap();
    for (auto it = headers.begin(); it != headers.end(); ++it)
      request.headers.append({it.key().toLatin1(), it->toByteArray()});
  }
  spoil(request, known);
  Credentials credentials;
  credentials.add(known);
  const QDateTime now = kSignedAt.addSecs(secondsLater);
  const auto verdict = awsService.isEmpty() ? checkPresigned(request, bytes(vector, "bucket"_L1), credentials, now)
                                            : checkSignatureV4(request, awsService, credentials, now);
  return verdict.refusal ? verdict.refusal->code : "accepted from " + verdict.userId.toLatin1();
}

const QByteArray kOk = "accepted from u-1";

// The agent's own signatures are held against the same answers.
TEST(Signatures, ofOtherImplementationsAreAccepted) {
  for (const auto kind : {"presignedV2"_L1, "signatureV4"_L1}) {
    const QJsonArray vectors = signingVectors()[kind].toArray();
    ASSERT_FALSE(vectors.isEmpty());
    for (const QJsonValue vector : vectors)
      EXPECT_EQ(verdictOn(vector), kOk) << bytes(vector, "key"_L1).constData() << bytes(vector, "name"_L1).constData();
  }
}

TEST(Signatures, areRefusedOnceSpoiledOrLate) {
  struct Row {
    const char *name;
    Spoiling spoil;
    QByteArray presigned, versionFour; ///< empty: not tried
    qint64 secondsLater = 0;
  };
  const Spoiling nothing = [](auto &, auto &) {};
  const QByteArray mismatch = "SignatureDoesNotMatch", denied = "AccessDenied", unknown = "InvalidAccessKeyId";
  const Row rows[] = {
      {"sixteenMinutesLate", nothing, {}, "RequestTimeTooSkewed", 16 * 60},
      {"lastSecond", nothing, kOk, {}, 2400},
      {"secondAfter", nothing, denied, {}, 2401},
      {"longerLife", [](auto &request, auto &) { request.target.replace("=1714560000", "=1714560001"); }, mismatch, {}},
      {"anotherMethod", [](auto &request, auto &) { request.method = "PUT"; }, mismatch, mismatch},
      {"anotherObject", [](auto &request, auto &) { request.target[1] = 'x'; }, mismatch, mismatch},
      {"anotherToken", [](auto &, auto &known) { known.credential.sessionToken += u'x'; }, "InvalidToken", {}},
      {"unknownKeyId", [](auto &, auto &known) { known.credential.accessKeyId += u'x'; }, unknown, unknown},
      {"expired", [](auto &, auto &known) { known.credential.expiration -= 3601; }, {}, "ExpiredToken"},
      {"unsignedHeader", [](auto &request, auto &) { request.headers.emplaceBack("x-amz-acl", "x"); }, {}, denied},
      {"anotherBody", [](auto &request, auto &) { request.body = "x"; }, {}, "XAmzContentSHA256Mismatch"},
  };
  for (const Row &row : rows)
    for (const bool presigned : {true, false}) {
      const QByteArray expected = presigned ? row.presigned : row.versionFour;
      const QJsonValue vector = signingVectors()[presigned ? "presignedV2"_L1 : "signatureV4"_L1][presigned ? 1 : 0];
      EXPECT_TRUE(expected.isEmpty() || verdictOn(vector, row.spoil, row.secondsLater) == expected) << row.name;
    }
}

} // namespace
