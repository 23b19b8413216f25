#include "service/PresignedUrl.h"
#include "tests/identity/SigningVectors.h"

#include <gtest/gtest.h>

#include <QTimeZone>

using namespace Qt::StringLiterals;

namespace {

TEST(SignatureV4, signsAsOtherImplementationsDo) {
  const QJsonObject vectors = signingVectors();
  const QJsonArray rows = vectors["signatureV4"_L1].toArray();
  ASSERT_EQ(rows.size(), 4);
  for (const QJsonValue row : rows)
    EXPECT_EQ(signRequests(credentialOf(vectors), signedBy(row.toObject())), row["authorization"_L1].toString());
}

TEST(SignatureV4, hashesTextUpToTheFirstNulAndStampsTheTimeInUtc) {
  EXPECT_EQ(signature_v4::toHex(signature_v4::toSHA256hash(u"abc\0def"_s)),
            u"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"_s);
  const QDateTime local(QDate(2024, 5, 1), QTime(1, 2, 3), QTimeZone("Asia/Tokyo"));
  EXPECT_EQ(signature_v4::getCurrentTimeStampUTCFormat(local), u"20240430T160203Z"_s);
}

TEST(PresignedUrl, signsAsOtherImplementationsDo) {
  const QJsonObject vectors = signingVectors();
  const KaCredential by = credentialOf(vectors);
  ASSERT_FALSE(vectors["presignedV2"_L1].toArray().isEmpty());
  for (const QJsonValue row : vectors["presignedV2"_L1].toArray())
    EXPECT_EQ(SignatureString(row["expires"_L1].toString(), row["bucket"_L1].toString(), by.secretAccessKey,
                              by.sessionToken, row["key"_L1].toString()),
              row["signaturePercentEncoded"_L1].toString());
  const QJsonObject odd = oddKeys();
  const QString bucket = odd["bucket"_L1].toString();
  ASSERT_EQ(odd["keys"_L1].toArray().size(), 22);
  for (const QJsonValue row : odd["keys"_L1].toArray())
    for (const auto &[place, isPathStyle] : {std::pair(odd["host"_L1].toString(), false), {u"h:1/"_s + bucket, true}})
      EXPECT_EQ(presignedObjectURL(credentialOf(odd),
                                   {bucket, isPathStyle ? u"h:1"_s : u"s3-accelerate.amazonaws.com"_s, isPathStyle},
                                   row["key"_L1].toString()),
                u"https://"_s + place + row["encodedPath"_L1].toString()
                    + u"?&AWSAccessKeyId=ASIAEXAMPLEEXAMPLE01&Expires=2147483646&Signature="_s
                    + QString::fromLatin1(row["signatureBase64"_L1].toString().toLatin1().toPercentEncoding()));
}

TEST(PresignedUrl, encodesListParametersAsKeysAndAContinuationTokenWhole) {
  EXPECT_EQ(createS3URLString(baseURLString(u"https"_s, {u"b"_s, u"host:1"_s}, {}, u"list-type=2"_s),
                              optionURLString(u"ID"_s, u"99"_s, u"S%3D"_s),
                              {u"a/auth0|5/c 1/"_s, u"a/~b=1_x-y.z+é"_s, u"/"_s, u"t/+=-._~é"_s}),
            u"https://b.host:1?list-type=2&prefix=a/auth0%7C5/c%201/&start-after=a/~b%3D1_x-y.z%2B%C3%A9&delimiter=/"
            "&continuation-token=t%2F%2B%3D%2D%2E%5F%7E%C3%A9&AWSAccessKeyId=ID&Expires=99&Signature=S%3D");
}

} // namespace
