#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>

#include <memory>
#include <optional>

namespace sandbox {

/// The two buckets: "strata-prd-content" and "strata-prd-ka-preview-list".
[[nodiscard]] QString contentBucket();
[[nodiscard]] QString previewListBucket();

/// One uploaded image with everything that belongs to it.
struct LibraryObject {
  QString deviceId{};
  QString date{};     ///< upload date, "yyyyMMdd"
  QString hour{};     ///< upload hour, "HH", UTC
  QString fileName{}; ///< the key's last component
  QByteArray body{};
  std::optional<QByteArray> fileNameMetadata{}; ///< value of x-amz-meta-file-name as sent; see fileNameHeader()
  std::optional<QByteArray> metadataDocument{};
  std::optional<QByteArray> expandBody{}; ///< the expand variant; carries the same file-name metadata
  std::optional<QByteArray> expandMetadataDocument{};
  QHash<QString, QString> tags{};
  qint64 listedSize = -1; ///< what the listing claims; -1: the body's size
};

/// An object under a key of its own choice.
struct RawObject {
  QByteArray body{};
  QByteArray contentType = "binary/octet-stream";
  std::optional<QByteArray> fileNameMetadata{};
  QHash<QString, QString> tags{};
  qint64 listedSize = -1;
  // Filled when the object is added:
  QByteArray etag{};
  QDateTime lastModified{};
};

/// Many like images, for measuring. They share one body (and one metadata document), so that 100,000 cost little.
struct ManyObjects {
  int count = 0;
  qint64 size = 0;
  QString deviceId{};
  QString firstDate{}; ///< "yyyyMMdd"; one hour holds `perHour` objects, then comes the next hour
  int perHour = 1000;
  bool withMetadata = true; ///< a plain metadata document with a capture time for each
};

struct ListQuery {
  QByteArray prefix{};
  QByteArray after{}; ///< only keys greater than this
  QByteArray delimiter{};
  int maxKeys = 1000;
};

struct StoredEntry {
  QByteArray key{};
  qint64 size = 0;
  QByteArray etag{};
  QDateTime lastModified{};
};

struct ListPage {
  QList<StoredEntry> objects{};
  QList<QByteArray> commonPrefixes{};
  bool truncated = false;
  QByteArray resumeAfter{}; ///< `after` of the next page
};

/// What the account holds. Any thread; changes show in the next answer.
class Library {
public:
  Library();
  ~Library();
  Library(const Library &) = delete;
  Library &operator=(const Library &) = delete;

  /// The account whose keys add() and addMany() make, and the subject of tokens issued from now on.
  void setUserId(const QString &userId);
  [[nodiscard]] QString userId() const;

  /// Adds or replaces the image, its variants and its metadata documents.
  void add(const LibraryObject &object);
  void addMany(const ManyObjects &many);
  /// Removes what add() made of it.
  void remove(const LibraryObject &object);
  /// conf/settings.json; nullopt removes it.
  void setSettingsObject(const std::optional<QByteArray> &document);

  void addRaw(const QString &bucket, const QString &key, const RawObject &object);
  void removeRaw(const QString &bucket, const QString &key);
  void clear();

  /// "images/original/USER/DEVICE/DATE/HOUR/FILE".
  [[nodiscard]] QString imageKey(const LibraryObject &object) const;

  [[nodiscard]] bool hasBucket(const QString &bucket) const;
  [[nodiscard]] std::optional<RawObject> find(const QString &bucket, const QByteArray &key) const;
  [[nodiscard]] ListPage list(const QString &bucket, const ListQuery &query) const;

private:
  class Private;
  std::unique_ptr<Private> d;
};

/// The header value that carries @p name: base64url of its UTF-8.
[[nodiscard]] QByteArray fileNameHeader(const QString &name);
/// The key of an image's expand variant, and of the metadata document (or the expand one) of an image key.
[[nodiscard]] QString expandKey(const QString &imageKey);
[[nodiscard]] QString metadataKey(const QString &imageKey, bool expand);

} // namespace sandbox
