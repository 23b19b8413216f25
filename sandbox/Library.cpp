#include "sandbox/Library.h"

#include "sandbox/Locked.h"

#include <QCryptographicHash>
#include <QStringList>

#include <map>

using namespace Qt::StringLiterals;

namespace sandbox {

namespace {

using Bucket = std::map<QByteArray, RawObject>;

struct Account {
  QString userId = u"user-0001"_s;
  std::map<QString, Bucket> buckets;

  Bucket &content() { return buckets[contentBucket()]; }
};

QByteArray etagOf(const QByteArray &body) {
  return '"' + QCryptographicHash::hash(body, QCryptographicHash::Md5).toHex() + '"';
}

QDateTime uploadMoment(const QString &date, const QString &hour) {
  return QDateTime(QDate::fromString(date, u"yyyyMMdd"_s), QTime(hour.toInt(), 0), Qt::UTC);
}

RawObject completed(RawObject object) {
  if (object.etag.isEmpty()) object.etag = etagOf(object.body);
  if (object.listedSize < 0) object.listedSize = object.body.size();
  if (!object.lastModified.isValid()) object.lastModified = QDateTime::currentDateTimeUtc();
  return object;
}

RawObject metadataObject(const QByteArray &document, const QDateTime &moment) {
  return completed({.body = document, .contentType = "application/json", .lastModified = moment});
}

/// The smallest key after every key that starts with @p prefix; empty when there is none.
QByteArray afterPrefix(QByteArray prefix) {
  while (!prefix.isEmpty() && prefix.back() == '\xff')
    prefix.chop(1);
  if (!prefix.isEmpty()) prefix.back() = char(uchar(prefix.back()) + 1);
  return prefix;
}

/// What @p key is folded into by the delimiter; empty when it stands for itself.
QByteArray commonPrefix(const QByteArray &key, const ListQuery &query) {
  if (query.delimiter.isEmpty()) return {};
  const auto found = key.indexOf(query.delimiter, query.prefix.size());
  return found < 0 ? QByteArray() : key.left(found + query.delimiter.size());
}

Bucket::const_iterator firstListed(const Bucket &bucket, const ListQuery &query) {
  if (query.after < query.prefix) return bucket.lower_bound(query.prefix);
  // A page that ended with a folded prefix goes on behind all of its keys.
  const bool folded =
      !query.delimiter.isEmpty() && query.after.endsWith(query.delimiter) && query.after != query.prefix;
  if (!folded) return bucket.upper_bound(query.after);
  const QByteArray next = afterPrefix(query.after);
  return next.isEmpty() ? bucket.end() : bucket.lower_bound(next);
}

ListPage listed(const Bucket &bucket, const ListQuery &query) {
  ListPage page;
  auto it = firstListed(bucket, query);
  while (it != bucket.end() && it->first.startsWith(query.prefix)) {
    if (page.objects.size() + page.commonPrefixes.size() >= query.maxKeys) {
      page.truncated = true;
      break;
    }
    const QByteArray folded = commonPrefix(it->first, query);
    if (folded.isEmpty()) {
      page.objects.append({it->first, it->second.listedSize, it->second.etag, it->second.lastModified});
      page.resumeAfter = it->first;
      ++it;
      continue;
    }
    page.commonPrefixes.append(folded);
    page.resumeAfter = folded;
    const QByteArray next = afterPrefix(folded);
    it = next.isEmpty() ? bucket.end() : bucket.lower_bound(next);
  }
  return page;
}

QString joinedKey(const QStringList &components) {
  return components.join(u'/');
}

QString stemOf(const QString &fileName) {
  const auto dot = fileName.lastIndexOf(u'.');
  return dot > 0 ? fileName.left(dot) : fileName;
}

/// One hour after another, from midnight of the first date.
QDateTime hourOf(const ManyObjects &many, int index) {
  return uploadMoment(many.firstDate, u"00"_s).addSecs(qint64(index / many.perHour) * 3600);
}

} // namespace

class Library::Private {
public:
  Locked<Account> account;
};

Library::Library() : d(std::make_unique<Private>()) {
  clear();
}

Library::~Library() = default;

void Library::clear() {
  d->account.with([](Account &account) {
    account.buckets.clear();
    account.buckets[contentBucket()];
    account.buckets[previewListBucket()];
  });
}

void Library::setUserId(const QString &userId) {
  d->account.with([&](Account &account) { account.userId = userId; });
}

QString Library::userId() const {
  return d->account.with([](const Account &account) { return account.userId; });
}

QString Library::imageKey(const LibraryObject &object) const {
  return joinedKey({u"images"_s, u"original"_s, userId(), object.deviceId, object.date, object.hour, object.fileName});
}

void Library::add(const LibraryObject &object) {
  const QString key = imageKey(object);
  const QDateTime moment = uploadMoment(object.date, object.hour);
  const RawObject image = completed({.body = object.body,
                                     .contentType = "image/jpeg",
                                     .fileNameMetadata = object.fileNameMetadata,
                                     .tags = object.tags,
                                     .listedSize = object.listedSize,
                                     .lastModified = moment});
  d->account.with([&](Account &account) {
    Bucket &bucket = account.content();
    bucket[key.toUtf8()] = image;
    if (object.metadataDocument)
      bucket[metadataKey(key, false).toUtf8()] = metadataObject(*object.metadataDocument, moment);
    if (object.expandMetadataDocument)
      bucket[metadataKey(key, true).toUtf8()] = metadataObject(*object.expandMetadataDocument, moment);
    if (object.expandBody) {
      RawObject expanded = image;
      expanded.body = *object.expandBody;
      expanded.etag = etagOf(expanded.body);
      expanded.listedSize = expanded.body.size();
      bucket[expandKey(key).toUtf8()] = expanded;
    }
  });
}

void Library::addMany(const ManyObjects &many) {
  const QByteArray body(many.size, 'p');
  const RawObject image{.body = body,
                        .contentType = "image/jpeg",
                        .tags = {{u"x-strata-storage-period"_s, u"30"_s}},
                        .listedSize = body.size(),
                        .etag = etagOf(body)};
  const RawObject metadata = metadataObject(R"({"captureTime":"2024-05-01T10:15:30.000+00:00"})", {});
  const QString device = joinedKey({u"images"_s, u"original"_s, userId(), many.deviceId});
  d->account.with([&](Account &account) {
    Bucket &bucket = account.content();
    QDateTime hour;
    QString folder;
    for (int index = 0; index < many.count; ++index) {
      if (index % many.perHour == 0) {
        hour = hourOf(many, index);
        folder = joinedKey({device, hour.toString(u"yyyyMMdd"_s), hour.toString(u"HH"_s)});
      }
      const QString name = u"M%1.JPG"_s.arg(index, 8, 10, QLatin1Char('0'));
      const QString key = folder + u'/' + name;
      const auto put = [&](const QString &at, RawObject object) -> RawObject & {
        object.lastModified = hour;
        return bucket.insert_or_assign(at.toUtf8(), std::move(object)).first->second;
      };
      put(key, image).fileNameMetadata = fileNameHeader(name);
      if (many.withMetadata) put(metadataKey(key, false), metadata);
    }
  });
}

void Library::remove(const LibraryObject &object) {
  const QString key = imageKey(object);
  d->account.with([&](Account &account) {
    for (const QString &each : {key, expandKey(key), metadataKey(key, false), metadataKey(key, true)})
      account.content().erase(each.toUtf8());
  });
}

void Library::setSettingsObject(const std::optional<QByteArray> &document) {
  const QString key = u"conf/settings.json"_s;
  if (!document) return removeRaw(contentBucket(), key);
  addRaw(contentBucket(), key, {.body = *document, .contentType = "application/json"});
}

void Library::addRaw(const QString &bucket, const QString &key, const RawObject &object) {
  const RawObject whole = completed(object);
  d->account.with([&](Account &account) { account.buckets[bucket][key.toUtf8()] = whole; });
}

void Library::removeRaw(const QString &bucket, const QString &key) {
  d->account.with([&](Account &account) { account.buckets[bucket].erase(key.toUtf8()); });
}

bool Library::hasBucket(const QString &bucket) const {
  return d->account.with([&](const Account &account) { return account.buckets.contains(bucket); });
}

std::optional<RawObject> Library::find(const QString &bucket, const QByteArray &key) const {
  return d->account.with([&](const Account &account) -> std::optional<RawObject> {
    const auto objects = account.buckets.find(bucket);
    if (objects == account.buckets.end()) return std::nullopt;
    const auto found = objects->second.find(key);
    if (found == objects->second.end()) return std::nullopt;
    return found->second;
  });
}

ListPage Library::list(const QString &bucket, const ListQuery &query) const {
  return d->account.with([&](const Account &account) {
    const auto objects = account.buckets.find(bucket);
    return objects == account.buckets.end() ? ListPage() : listed(objects->second, query);
  });
}

QString contentBucket() {
  return u"strata-prd-content"_s;
}

QString previewListBucket() {
  return u"strata-prd-ka-preview-list"_s;
}

QByteArray fileNameHeader(const QString &name) {
  return name.toUtf8().toBase64(QByteArray::Base64UrlEncoding);
}

QString expandKey(const QString &imageKey) {
  QStringList components = imageKey.split(u'/');
  if (components.size() > 1) components[1] = u"expand_"_s + components[1];
  return joinedKey(components);
}

QString metadataKey(const QString &imageKey, bool expand) {
  QStringList components = imageKey.split(u'/');
  const QString fileName = components.last();
  components[0] = u"metadata"_s;
  if (components.size() > 1) components[1] = expand ? u"expand_exif"_s : u"exif"_s;
  components.last() = stemOf(fileName) + u".json"_s;
  return joinedKey(components);
}

} // namespace sandbox
