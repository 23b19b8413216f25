#include "service/SignatureV4.h"

#include "service/KaServerRequest.h"
#include "tests/identity/SigningVectors.h"
#include "tests/service/ServiceFixture.h"

#include <QJsonArray>
#include <QTimeZone>

#include <curl/curl.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

KaCredential vectorCredential(const QJsonObject &vectors) {
  const QJsonValue credential = vectors["credential"_L1];
  return {credential["AccessKeyId"_L1].toString(),
          credential["SecretAccessKey"_L1].toString(),
          credential["SessionToken"_L1].toString(),
          {}};
}

TEST(SignatureV4, signsAsOtherImplementationsDo) {
  const QJsonObject vectors = signingVectors();
  const QJsonArray cases = vectors["signatureV4"_L1].toArray();
  ASSERT_EQ(cases.size(), 3);
  for (const auto &vector : cases) {
    QMap<QString, QString> headers = {{u"host"_s, vector["host"_L1].toString()}};
    const QJsonObject sent = vector["headers"_L1].toObject();
    for (auto header = sent.begin(); header != sent.end(); ++header)
      headers.insert(header.key(), header.value().toString());
    QString canonicalHeaders;
    for (auto header = headers.cbegin(); header != headers.cend(); ++header)
      canonicalHeaders += header.key() + u':' + header.value() + u'\n';
    const QString path = vector["path"_L1].toString();

    EXPECT_EQ(signRequests(vectorCredential(vectors), {.timestamp = headers[u"x-amz-date"_s],
                                                       .service = vector["service"_L1].toString(),
                                                       .method = vector["method"_L1].toString(),
                                                       .canonicalUri = path.section(u'?', 0, 0),
                                                       .canonicalQuery = path.section(u'?', 1),
                                                       .canonicalHeaders = canonicalHeaders,
                                                       .signedHeaders = QStringList(headers.keys()).join(u';'),
                                                       .payload = vector["body"_L1].toString()}),
              vector["authorization"_L1].toString());
  }
}

TEST(SignatureV4, hashesTextUpToTheFirstNul) {
  EXPECT_EQ(toHex(toSHA256hash(u""_s)), u"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"_s);
  EXPECT_EQ(toHex(toSHA256hash(u"abc\0def"_s)), u"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"_s);
  // RFC 4231, test case 2.
  EXPECT_EQ(toHex(toHmacSHA256hash("Jefe", u"what do ya want for nothing?"_s)),
            u"5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843"_s);
}

TEST(SignatureV4, stampsTheTimeInUtc) {
  const QDateTime local(QDate(2024, 5, 1), QTime(1, 2, 3), QTimeZone("Asia/Tokyo"));
  EXPECT_EQ(getCurrentTimeStampUTCFormat(local), u"20240430T160203Z"_s);
}

using SignedRequests = ServiceTest;

TEST_F(SignedRequests, carryTheSignatureThatLibcurlMakes) {
  const KaCredential by = credential();
  KaServerRequest request;
  ASSERT_EQ(request.getAWSS3ObjectTag(by, imageKey).result, KaResultCode::Success);
  const sandbox::RequestRecord ours = service.requests().constLast();

  // libcurl signs every header that it is given, among them the time stamp.
  curl_slist *headers = nullptr;
  for (const char *name : {"x-amz-content-sha256", "x-amz-date", "x-amz-security-token"})
    headers = curl_slist_append(headers, (QByteArray(name) + ": " + ours.header(name)).constData());
  CURL *const curl = curl_easy_init();
  const QByteArray target = u"https://strata-prd-content.s3.localhost:%1"_s.arg(service.port()).toUtf8() + ours.target;
  curl_easy_setopt(curl, CURLOPT_URL, target.constData());
  curl_easy_setopt(curl, CURLOPT_CAINFO, service.trustAnchorsFile().toUtf8().constData());
  curl_easy_setopt(curl, CURLOPT_AWS_SIGV4, "aws:amz:eu-west-1:s3");
  curl_easy_setopt(curl, CURLOPT_USERPWD, (by.accessKeyId + u':' + by.secretAccessKey).toUtf8().constData());
  curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers);
  EXPECT_EQ(curl_easy_perform(curl), CURLE_OK);
  curl_easy_cleanup(curl);
  curl_slist_free_all(headers);

  const sandbox::RequestRecord second = service.requests().constLast();
  EXPECT_EQ(second.target, ours.target);
  EXPECT_EQ(second.header("Authorization"), ours.header("Authorization"));
}

} // namespace
