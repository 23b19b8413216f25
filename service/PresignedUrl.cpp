#include "service/PresignedUrl.h"

#include "service/PercentEncoding.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

constexpr int kSha1Size = 20;

QString parameter(const QString &name, const QString &value) {
  return value.isEmpty() ? QString() : u'&' + name + u'=' + value;
}

QString signedOptions(const KaCredential &by, const QString &bucket, const QString &path) {
  return optionURLString(by.accessKeyId, by.expireUnixTime,
                         SignatureString(by.expireUnixTime, bucket, by.secretAccessKey, by.sessionToken, path));
}

} // namespace

QString SignatureString(const QString &expireUnixTime, const QString &bucket, const QString &secretKey,
                        const QString &sessionToken, const QString &additionalPath) {
  const QString stringToSign = u"GET\n\n\n"_s + expireUnixTime + u"\nx-amz-security-token:"_s + sessionToken + u"\n/"_s
                               + bucket + u'/' + additionalPath;
  return percentEncodedWhole(QString::fromLatin1(toHMACSHA1(stringToSign, secretKey).toBase64()));
}

QString baseURLString(const QString &scheme, const BucketAddress &bucket, const QString &additionalPath,
                      const QString &optionPath) {
  const bool hasPath = bucket.isPathStyle || !additionalPath.isEmpty();
  const QString path = hasPath ? bucket.path(additionalPath) : QString();
  return scheme + u"://"_s + bucket.authority() + path + u'?' + optionPath;
}

QString optionURLString(const QString &accessKeyId, const QString &expireUnixTime, const QString &signature) {
  return u"&AWSAccessKeyId="_s + accessKeyId + u"&Expires="_s + expireUnixTime + u"&Signature="_s + signature;
}

QString createS3URLString(const QString &baseURL, const QString &optionURL, const ListParameters &parameters) {
  return baseURL + parameter(u"prefix"_s, percentEncodedKey(parameters.prefix))
         + parameter(u"start-after"_s, percentEncodedKey(parameters.startAfter))
         + parameter(u"delimiter"_s, percentEncodedKey(parameters.delimiter))
         + parameter(u"continuation-token"_s, percentEncodedWhole(parameters.continuationToken)) + optionURL;
}

QString presignedListURL(const KaCredential &by, const BucketAddress &bucket, const ListParameters &parameters) {
  return createS3URLString(baseURLString(u"https"_s, bucket, {}, u"list-type=2"_s),
                           signedOptions(by, bucket.bucket, {}), parameters);
}

QString presignedObjectURL(const KaCredential &by, const BucketAddress &bucket, const QString &objectKey) {
  const QString path = percentEncodedKey(objectKey);
  return createS3URLString(baseURLString(u"https"_s, bucket, path, {}), signedOptions(by, bucket.bucket, path));
}

QByteArray toHMACSHA1(const QString &text, const QString &key) {
  const QByteArray message = text.toUtf8();
  const QByteArray secret = key.toUtf8();
  QByteArray code(kSha1Size, '\0');
  unsigned int size = 0;
  if (!HMAC(EVP_sha1(), secret.constData(), static_cast<int>(secret.size()),
            reinterpret_cast<const unsigned char *>(message.constData()), static_cast<std::size_t>(message.size()),
            reinterpret_cast<unsigned char *>(code.data()), &size))
    throw std::runtime_error("HMAC is not available");
  return code;
}
