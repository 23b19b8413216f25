#include "service/StorageRequests.h"

#include "service/KaApplicationConstants.h"
#include "service/PercentEncoding.h"
#include "service/PresignedUrl.h"
#include "service/SignatureV4.h"

#include <QDateTime>

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds kSignedRequestWait(100);

BucketAddress bucketAddress(const QString &bucket) {
  return {bucket, KaApplicationConstants::awsS3AccelerateHostName(), KaApplicationConstants::awsS3PathStyle()};
}

} // namespace

BucketAddress contentBucket() {
  return bucketAddress(KaApplicationConstants::awsS3BucketName());
}

BucketAddress previewListBucket() {
  return bucketAddress(KaApplicationConstants::awsS3PreviewListBucketName());
}

SignedRequest signedRequest(const KaCredential &credential, const QString &objectKey, const QString &method,
                            const QString &query) {
  const BucketAddress bucket = contentBucket();
  const QString host = bucket.authority();
  const QString path = bucket.path(percentEncodedKey(objectKey));
  SignedRequest made;
  made.url = u"https://"_s + host + path + u'?' + query;
  made.timestamp = signature_v4::getCurrentTimeStampUTCFormat(QDateTime::currentDateTimeUtc());
  made.sessionToken = credential.sessionToken;
  made.payloadHash = signature_v4::toHex(signature_v4::toSHA256hash(QString()));
  made.authorization =
      signRequests(credential, {.timestamp = made.timestamp,
                                .region = KaApplicationConstants::awsRegion(),
                                .service = u"s3"_s,
                                .method = method,
                                .canonicalUri = path,
                                .canonicalQuery = query,
                                .canonicalHeaders = u"host:"_s + host + u"\nx-amz-content-sha256:"_s + made.payloadHash
                                                    + u"\nx-amz-date:"_s + made.timestamp + u"\nx-amz-security-token:"_s
                                                    + made.sessionToken + u'\n',
                                .signedHeaders = u"host;x-amz-content-sha256;x-amz-date;x-amz-security-token"_s,
                                .payload = {}});
  return made;
}

HttpRequest httpRequest(const SignedRequest &made, const QByteArray &method) {
  return {.method = method,
          .url = made.url,
          .headers = {{"x-amz-date", made.timestamp.toUtf8()},
                      {"x-amz-security-token", made.sessionToken.toUtf8()},
                      {"x-amz-content-sha256", made.payloadHash.toUtf8()},
                      {"Authorization", made.authorization.toUtf8()}},
          .wait = kSignedRequestWait};
}

HttpRequest presignedRequest(const QString &url, const KaCredential &credential) {
  return {.url = url, .headers = {{"x-amz-security-token", credential.sessionToken.toUtf8()}}};
}

QString objectURL(const KaCredential &by, const QString &key) {
  return presignedObjectURL(by, contentBucket(), key);
}

HttpRequest requestFor(const StorageQuestion &question, const KaCredential &by) {
  using enum StorageQuestion::Kind;
  switch (question.kind) {
  case Head:
    return httpRequest(signedRequest(by, question.key, u"HEAD"_s, {}), "HEAD");
  case Tags:
    return httpRequest(signedRequest(by, question.key, u"GET"_s, u"tagging="_s), "GET");
  case Document:
  case Content:
    return presignedRequest(objectURL(by, question.key), by);
  }
  Q_UNREACHABLE();
}
