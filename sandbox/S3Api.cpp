#include "sandbox/S3Api.h"

#include "sandbox/Library.h"
#include "sandbox/SignatureCheck.h"

#include <QLocale>
#include <QUuid>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sandbox {

namespace {

constexpr int kMostKeys = 1000;
constexpr char kXmlHead[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr char kNamespace[] = " xmlns=\"http://s3.amazonaws.com/doc/2006-03-01/\"";
// A token with each of the three characters that a query must not carry bare.
constexpr char kTokenHead[] = "1/+";
constexpr char kTokenTail[] = "=";

const Refusal kAccessDenied{403, "AccessDenied", "Access Denied"};
const Refusal kNoSuchKey{404, "NoSuchKey", "The specified key does not exist."};
const Refusal kNoSuchBucket{404, "NoSuchBucket", "The specified bucket does not exist"};
const Refusal kNotAllowed{405, "MethodNotAllowed", "The specified method is not allowed against this resource."};
const Refusal kWrongToken{400, "InvalidArgument", "The continuation token provided is incorrect"};

QByteArray element(const char *name, const QByteArray &text) {
  return QByteArray("<") + name + '>' + escaped(text) + "</" + name + '>';
}

ServedAnswer xml(const QByteArray &document) {
  return {.contentType = "application/xml", .body = kXmlHead + document};
}

ServedAnswer refusalAnswer(const Refusal &refusal, const ReceivedRequest &request) {
  const QByteArray region = refusal.region.isEmpty() ? QByteArray() : element("Region", refusal.region);
  ServedAnswer answer =
      xml("<Error>" + element("Code", refusal.code) + element("Message", refusal.message) + region
          + element("Resource", request.path())
          + element("RequestId", QUuid::createUuid().toByteArray(QUuid::Id128).left(16).toUpper()) + "</Error>");
  answer.status = refusal.status;
  return answer;
}

QByteArray isoTime(const QDateTime &moment) {
  return moment.toUTC().toString(u"yyyy-MM-dd'T'HH:mm:ss.zzz'Z'"_s).toLatin1();
}

QByteArray httpTime(const QDateTime &moment) {
  return QLocale::c().toString(moment.toUTC(), u"ddd, dd MMM yyyy HH:mm:ss 'GMT'"_s).toLatin1();
}

QByteArray tokenAfter(const QByteArray &key) {
  return kTokenHead + key.toBase64(QByteArray::OmitTrailingEquals) + kTokenTail;
}

std::optional<QByteArray> keyOfToken(const QByteArray &token) {
  const QByteArray head = kTokenHead;
  const QByteArray tail = kTokenTail;
  if (!token.startsWith(head) || !token.endsWith(tail)) return std::nullopt;
  const QByteArray middle = token.mid(head.size(), token.size() - head.size() - tail.size());
  const auto decoded = QByteArray::fromBase64Encoding(middle, QByteArray::AbortOnBase64DecodingErrors);
  if (!decoded) return std::nullopt;
  return *decoded;
}

/// Users see what lies below their own id, which is the third part of every key, the common settings, and their own
/// preview list.
bool mayRead(const QByteArray &bucket, const QByteArray &key, const QString &userId) {
  const QByteArray user = userId.toUtf8();
  if (bucket == previewListBucket().toLatin1()) return key == user + ".json";
  if (key.startsWith("conf/")) return true;
  const qsizetype variantEnd = key.indexOf('/', key.indexOf('/') + 1);
  return variantEnd > 0 && key.sliced(variantEnd + 1).startsWith(user + '/');
}

QByteArray listedXml(const StoredEntry &object, const QByteArray &lastModified) {
  return "<Contents>" + element("Key", object.key) + element("LastModified", lastModified)
         + element("ETag", object.etag) + element("Size", QByteArray::number(object.size))
         + "<StorageClass>STANDARD</StorageClass></Contents>";
}

QByteArray listingXml(const QByteArray &bucket, const QueryParameters &query, const ListQuery &asked,
                      const ListPage &page) {
  QByteArray document =
      QByteArray("<ListBucketResult") + kNamespace + '>' + element("Name", bucket) + element("Prefix", asked.prefix);
  document.reserve(document.size() + page.objects.size() * 400);
  for (const char *name : {"start-after", "continuation-token"})
    if (const auto value = query.value(name))
      document += element(*name == 's' ? "StartAfter" : "ContinuationToken", *value);
  if (page.truncated) document += element("NextContinuationToken", tokenAfter(page.resumeAfter));
  document += element("KeyCount", QByteArray::number(page.objects.size() + page.commonPrefixes.size()))
              + element("MaxKeys", QByteArray::number(asked.maxKeys));
  if (!asked.delimiter.isEmpty()) document += element("Delimiter", asked.delimiter);
  document += element("IsTruncated", page.truncated ? "true" : "false");
  // Neighbours are often of the same moment, and writing one out takes longer than all the rest.
  QDateTime moment;
  QByteArray lastModified;
  for (const StoredEntry &object : page.objects) {
    if (object.lastModified != moment) {
      moment = object.lastModified;
      lastModified = isoTime(moment);
    }
    document += listedXml(object, lastModified);
  }
  for (const QByteArray &prefix : page.commonPrefixes)
    document += "<CommonPrefixes>" + element("Prefix", prefix) + "</CommonPrefixes>";
  return document + "</ListBucketResult>";
}

ServedAnswer tagging(const RawObject &object) {
  QByteArray tags;
  QStringList names = object.tags.keys();
  names.sort();
  for (const QString &name : names)
    tags += "<Tag>" + element("Key", name.toUtf8()) + element("Value", object.tags.value(name).toUtf8()) + "</Tag>";
  return xml(QByteArray("<Tagging") + kNamespace + "><TagSet>" + tags + "</TagSet></Tagging>");
}

ServedAnswer content(const RawObject &object) {
  ServedAnswer answer{.contentType = object.contentType, .body = object.body};
  answer.headers = {{"ETag", object.etag}, {"Last-Modified", httpTime(object.lastModified)}};
  if (object.fileNameMetadata) answer.headers.append({"x-amz-meta-file-name", *object.fileNameMetadata});
  return answer;
}

} // namespace

ServedAnswer S3Api::answer(const ReceivedRequest &request, const QDateTime &now) const {
  const StorageAddress address = storageAddress(request).value_or(StorageAddress());
  const QByteArray &bucket = address.bucket;
  if (!library.hasBucket(QString::fromLatin1(bucket))) return refusalAnswer(kNoSuchBucket, request);
  if (request.method != "GET" && request.method != "HEAD") return refusalAnswer(kNotAllowed, request);
  const SignatureVerdict verdict = isPresigned(request) ? checkPresigned(request, bucket, credentials, now)
                                                        : checkSignatureV4(request, region, "s3", credentials, now);
  if (verdict.refusal) return refusalAnswer(*verdict.refusal, request);
  if (address.key.isEmpty()) return listing(request, bucket, verdict.userId);
  return object(request, address, verdict.userId);
}

void S3Api::setPageSize(int keys) {
  pageSize = std::clamp(keys, 1, kMostKeys);
}

ServedAnswer S3Api::listing(const ReceivedRequest &request, const QByteArray &bucket, const QString &userId) const {
  const QueryParameters query = request.query();
  const ListQuery plain{.prefix = query.text("prefix"),
                        .after = query.text("start-after"),
                        .delimiter = query.text("delimiter"),
                        .maxKeys = query.contains("max-keys") ? query.text("max-keys").toInt() : kMostKeys};
  if (query.text("list-type") != "2" || !mayRead(bucket, plain.prefix, userId))
    return refusalAnswer(kAccessDenied, request);
  ListQuery asked = plain;
  asked.maxKeys = std::clamp(asked.maxKeys, 1, pageSize.load());
  if (const auto token = query.value("continuation-token")) {
    const auto key = keyOfToken(*token);
    if (!key) return refusalAnswer(kWrongToken, request);
    asked.after = *key;
  }
  return xml(listingXml(bucket, query, asked, library.list(QString::fromLatin1(bucket), asked)));
}

ServedAnswer S3Api::object(const ReceivedRequest &request, const StorageAddress &address, const QString &userId) const {
  if (!mayRead(address.bucket, address.key, userId)) return refusalAnswer(kAccessDenied, request);
  const auto found = library.find(QString::fromLatin1(address.bucket), address.key);
  if (!found) return refusalAnswer(kNoSuchKey, request);
  return request.query().contains("tagging") ? tagging(*found) : content(*found);
}

std::optional<StorageAddress> storageAddress(const ReceivedRequest &request) {
  const QByteArray host = request.host();
  const QByteArray path = request.path().mid(1);
  if (namesBucketInPath(request)) {
    const QByteArray bucket = textBefore(path, '/');
    return StorageAddress{bucket, path.mid(bucket.size() + 1)};
  }
  for (const QByteArray tail : {".s3.localhost", ".s3.sandbox.test"})
    if (host.endsWith(tail)) return StorageAddress{host.chopped(tail.size()), path};
  return std::nullopt;
}

Endpoint storageEndpoint(const ReceivedRequest &request, const StorageAddress &address) {
  const QueryParameters query = request.query();
  if (address.bucket == previewListBucket().toLatin1()) return Endpoint::PreviewList;
  if (address.key.isEmpty()) return query.contains("delimiter") ? Endpoint::ListDevices : Endpoint::ListItems;
  if (query.contains("tagging")) return Endpoint::ObjectTagging;
  if (request.method == "HEAD") return Endpoint::ObjectHead;
  if (address.key == "conf/settings.json") return Endpoint::SettingsObject;
  if (address.key.startsWith("metadata/")) return Endpoint::Metadata;
  if (address.key.startsWith("images/preview")) return Endpoint::PreviewObject;
  return Endpoint::ObjectGet;
}

} // namespace sandbox
