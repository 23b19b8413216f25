#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

/// One entry of the service's list of previews.
struct KaPreview {
  qint64 index = 0;           ///< running number; what the bookkeeping remembers
  QString preview_object_key; ///< in the content bucket
  qint64 file_size = 0;       ///< bytes
  QString original_file_name; ///< the name to save under
  QString shooting_time;      ///< "yyyy-MM-dd'T'HH:mm:ss", system time zone; may be empty
  QString upload_time;        ///< "yyyyMMdd/HH", UTC
};

/// The entries of a list document, in its order. What is no whole entry is passed over, which the log tells; a document
/// without a "data" array has none.
[[nodiscard]] std::vector<KaPreview> previewsIn(const QByteArray &document);

/// @p previews without those at the front whose index is not above @p threshold. Only the front: an older entry behind
/// a newer one stays.
[[nodiscard]] std::vector<KaPreview> withoutTaken(std::vector<KaPreview> previews, qint64 threshold);
