#pragma once

#include "service/KaResultCode.h"

#include <QString>
#include <QTemporaryFile>

#include <cstddef>
#include <functional>
#include <memory>

/// One entry of the service's list of previews.
struct KaPreview {
  qint64 index = 0;           ///< running number; what the bookkeeping remembers
  QString preview_object_key; ///< in the content bucket
  qint64 file_size = 0;       ///< bytes
  QString original_file_name; ///< the name to save under
  QString shooting_time;      ///< "yyyy-MM-dd'T'HH:mm:ss", system time zone; may be empty
  QString upload_time;        ///< "yyyyMMdd/HH", UTC; empty, like the other time, when it is no text
};

/// The service's list of previews. While anything in it is new the document lies in a temporary file without a name,
/// and each walk reads it anew, so that no more than one entry is ever in memory. First takePiece and, unless that
/// failed, close; then the rest. One thread.
class PreviewList {
public:
  /// About a million entries; beyond it is no list but an attempt to fill the disk.
  static constexpr qint64 kMostBytes = 256 * 1024 * 1024;
  explicit PreviewList(qint64 bytes = kMostBytes) : mostBytes(bytes) {}

  /// Takes the next piece of the document. @return false once there is a fault.
  [[nodiscard]] bool takePiece(const char *bytes, std::size_t count);
  /// The document is complete. From its front the entries go whose index is not above @p threshold; an older entry
  /// behind a newer one stays. What is no whole entry is passed over, which the log tells. A document without a "data"
  /// array, or that is no JSON object from its beginning to its end, has no entries.
  void close(qint64 threshold);
  /// DiskFull or FileNotSaved when the document cannot be kept, NoBody for one that is too long.
  [[nodiscard]] KaResultCode fault() const { return kept; }

  [[nodiscard]] qsizetype count() const { return newCount; }
  [[nodiscard]] bool empty() const { return newCount == 0; }
  /// Calls @p take with each entry, in the document's order, until it returns false.
  void visit(const std::function<bool(const KaPreview &preview)> &take) const;

private:
  qint64 mostBytes;
  std::unique_ptr<QTemporaryFile> file; ///< absent in a list without entries
  KaResultCode kept = KaResultCode::Success;
  qint64 above = 0;
  qsizetype newCount = 0;
};
