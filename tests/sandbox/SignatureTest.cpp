#include "sandbox/SignatureCheck.h"
#include "tests/identity/SigningVectors.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;
using namespace sandbox;

namespace {

const QDateTime kSignedAt = QDateTime::fromString(u"2024-05-01T10:00:00Z"_s, Qt::ISODate);

QByteArray bytes(const QJsonValue &object, QLatin1StringView name) {
  return object[name].toString().toUtf8();
}

using Spoiling = std::function<void(ReceivedRequest &, KnownCredential &)>;

/// The verdict on what another implementation signed, spoiled before it is judged.
QByteArray verdictOn(
    const QJsonValue &vector, const Spoiling &spoil = [](auto &, auto &) {}, qint64 secondsLater = 0) {
  const KaCredential by = credentialOf(signingVectors());
  KnownCredential known = {{.accessKeyId = by.accessKeyId,
                            .secretAccessKey = by.secretAccessKey,
                            .sessionToken = by.sessionToken,
                            .expiration = kSignedAt.addSecs(3600).toSecsSinceEpoch()},
                           u"u-1"_s};
  ReceivedRequest request = {.method = "GET"};
  const QByteArray awsService = bytes(vector, "service"_L1);
  if (awsService.isEmpty()) {
    request.target = '/' + bytes(vector, "key"_L1) + "?&AWSAccessKeyId=" + by.accessKeyId.toUtf8() + "&Expires="
                     + bytes(vector, "expires"_L1) + "&Signature=" + bytes(vector, "signaturePercentEncoded"_L1);
    request.headers = {{"x-amz-security-token", by.sessionToken.toUtf8()}};
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
  const auto verdict = awsService.isEmpty()
                           ? checkPresigned(request, bytes(vector, "bucket"_L1), credentials, now)
                           : checkSignatureV4(request, bytes(vector, "region"_L1), awsService, credentials, now);
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
      {"unsignedHeader", [](auto &request, auto &) { request.headers.emplaceBack("x-amz-acl", "x"); }, mismatch,
       denied},
      {"typeOfNoBody", [](auto &request, auto &) { request.headers.emplaceBack("Content-Type", "x"); }, mismatch, {}},
      {"moreThanWasSigned", [](auto &request, auto &) { request.target += "&acl"; }, mismatch, mismatch},
      {"outOfOrder",
       [](auto &request, auto &) {
         for (auto &[name, value] : request.headers)
           value.replace("=host;x-amz-content-sha256;", "=x-amz-content-sha256;host;");
       },
       {},
       denied},
      {"anotherBody", [](auto &request, auto &) { request.body = "x"; }, {}, "XAmzContentSHA256Mismatch"},
  };
  for (const Row &row : rows)
    for (const bool presigned : {true, false}) {
      const QByteArray expected = presigned ? row.presigned : row.versionFour;
      const QJsonValue vector = signingVectors()[presigned ? "presignedV2"_L1 : "signatureV4"_L1][presigned ? 1 : 0];
      EXPECT_TRUE(expected.isEmpty() || verdictOn(vector, row.spoil, row.secondsLater) == expected) << row.name;
    }
}

/// A request for an odd key as the rows above have theirs, with @p path on the wire and a signature over @p signedPath.
QJsonObject signedRow(const QJsonObject &vectors, bool presigned, const QString &path, const QString &signedPath) {
  const KaCredential by = credentialOf(vectors);
  QJsonObject row = presigned ? QJsonObject() : oddRow(vectors, path);
  row[u"authorization"_s] = signRequests(by, signedBy(oddRow(vectors, signedPath)));
  const QByteArray signature =
      presignedSignature(presignedStringToSign(by.expireUnixTime.toUtf8(), by.sessionToken.toUtf8(),
                                               '/' + bytes(vectors, "bucket"_L1) + signedPath.toUtf8()),
                         by.secretAccessKey.toUtf8());
  row[u"signaturePercentEncoded"_s] = QString::fromLatin1(signature.toPercentEncoding());
  row[u"bucket"_s] = vectors["bucket"_L1];
  row[u"expires"_s] = vectors["expires"_L1];
  row[u"key"_s] = path.mid(1);
  return row;
}

TEST(Signatures, areTakenOverTheOneEncodedPathAlone) {
  const QJsonObject vectors = oddKeys();
  const QByteArray mismatch = "SignatureDoesNotMatch";
  ASSERT_EQ(vectors["credential"_L1], signingVectors()["credential"_L1]);
  ASSERT_FALSE(vectors["keys"_L1].toArray().isEmpty());
  for (const QJsonValue vector : vectors["keys"_L1].toArray()) {
    const QString right = vector["encodedPath"_L1].toString();
    SCOPED_TRACE(right.toStdString());
    const QJsonObject row = signedRow(vectors, true, right, right);
    EXPECT_EQ(bytes(row, "signaturePercentEncoded"_L1), bytes(vector, "signatureBase64"_L1).toPercentEncoding());
    EXPECT_TRUE(bytes(row, "authorization"_L1).endsWith('=' + bytes(vector, "signatureV4"_L1)));
    const QString odd[] = {u'/' + vector["key"_L1].toString(), QString(right).replace(u"%7C"_s, u"|"_s),
                           QString(right).replace(u"%7C"_s, u"%7c"_s), QString(right).replace(u".JPG"_s, u"%2EJPG"_s),
                           QString(right).replace(u"%7C"_s, u"%257C"_s)};
    for (const bool presigned : {true, false}) {
      EXPECT_EQ(verdictOn(signedRow(vectors, presigned, right, right)), kOk);
      for (const QString &wrong : odd) {
        EXPECT_EQ(verdictOn(signedRow(vectors, presigned, wrong, right)), mismatch) << wrong.toStdString();
        EXPECT_EQ(verdictOn(signedRow(vectors, presigned, right, wrong)), mismatch) << wrong.toStdString();
        const bool isAnotherKey = wrong.contains(u"%257C"_s); // of its own, and rightly spelt
        EXPECT_EQ(verdictOn(signedRow(vectors, presigned, wrong, wrong)), isAnotherKey ? kOk : mismatch);
      }
    }
  }
}

} // namespace
