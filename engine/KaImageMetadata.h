#pragma once

#include "engine/KaImageKey.h"
#include "platform/ThreadBound.h"
#include "service/KaResultCode.h"

#include <QDateTime>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <optional>

class KaDownloadSession;
class KaStorage;
struct KaDownloadState;
struct StoredDocument;

struct KaMetadata {
  KaResultCode result = KaResultCode::Success;
  QJsonObject document{}; ///< empty when it could not be read
};

/// Reads the metadata file that goes with an image. Download thread.
class KaImageMetadata {
public:
  /// All of it outlives this object.
  struct Parts {
    KaStorage &storage;
    const KaDownloadSession &session;
    KaDownloadState &state;
  };
  explicit KaImageMetadata(const Parts &parts) : with(parts) {}
  KaImageMetadata(const KaImageMetadata &) = delete;
  KaImageMetadata &operator=(const KaImageMetadata &) = delete;

  /// Tries up to four times, with a wait between, since the file may come after its image; the end of the program or
  /// the link cuts that short. @return CaptureTimeMissing for a file without "captureTime", else the last request's
  /// code.
  [[nodiscard]] KaMetadata getExif(const KaImageKey &image);
  /// The same of the expand metadata; where there is none, the plain metadata.
  [[nodiscard]] KaMetadata getExpandExif(const KaImageKey &image);
  /// Metadata is read image by image, so there is nothing to list.
  [[nodiscard]] static KaResultCode getExifList(bool notifyUserOfUpdate);

private:
  enum class Kind { Plain, Expand };

  [[nodiscard]] KaMetadata read(const KaImageKey &image, Kind kind);
  [[nodiscard]] static KaMetadata taken(const StoredDocument &document, const QString &pathLine, Kind kind);

  const Parts with;
  const platform::ThreadBound thread;
};

enum class KaDateFormat {
  CaptureTime,  ///< "yyyy-MM-dd'T'HH:mm:ss.SSSZZZZZ": the zone ("Z" or "+HH:MM") stands in the text
  ShootingTime, ///< "yyyy-MM-dd'T'HH:mm:ss", in the system's zone
};

/// Absent when @p text is not of that very form, or names no time. A shooting time that the system's clocks leave out
/// becomes one beside the gap, of the same day.
[[nodiscard]] std::optional<QDateTime> getDateTimeFromString(const QString &text, KaDateFormat format);

/// When the image was taken: by its metadata, whose text is local time marked as UTC and moves back by the current
/// offset, else the upload hour of its key.
[[nodiscard]] QDateTime captureDate(const KaMetadata &metadata, const KaImageKey &image);

/// The names of the sort rules that the image matched.
[[nodiscard]] QStringList matchedRules(const QJsonObject &document);
