#pragma once

#include "service/KaResultCode.h"

#include <QDateTime>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <optional>

class KaDownloadSession;
class KaServerRequest;
struct KaDownloadState;
struct ServerAnswer;

struct KaMetadata {
  KaResultCode result = KaResultCode::Success;
  QJsonObject document{}; ///< empty when it could not be read
};

/// Reads the metadata file that goes with an image. Download thread.
class KaImageMetadata {
public:
  KaImageMetadata(KaServerRequest &toSend, const KaDownloadSession &current, KaDownloadState &shared)
      : request(toSend), session(current), state(shared) {}
  KaImageMetadata(const KaImageMetadata &) = delete;
  KaImageMetadata &operator=(const KaImageMetadata &) = delete;

  /// Tries up to four times, with a wait between, since the file may come after its image; the end of the program cuts
  /// that short. @return CaptureTimeMissing for a file without "captureTime", else the last request's code.
  [[nodiscard]] KaMetadata getExif(const QString &imagePath);
  /// The same of the expand metadata; where there is none, the plain metadata.
  [[nodiscard]] KaMetadata getExpandExif(const QString &imagePath);
  /// Metadata is read image by image, so there is nothing to list.
  [[nodiscard]] static KaResultCode getExifList(bool notifyUserOfUpdate);

private:
  enum class Kind { Plain, Expand };

  [[nodiscard]] KaMetadata read(const QString &imagePath, Kind kind);
  [[nodiscard]] static KaMetadata taken(const ServerAnswer &answer, const QString &pathLine, Kind kind);

  KaServerRequest &request;
  const KaDownloadSession &session;
  KaDownloadState &state;
};

enum class KaDateFormat {
  CaptureTime,  ///< "yyyy-MM-dd'T'HH:mm:ss.SSSZZZZZ": the zone ("Z" or "+HH:MM") stands in the text
  ShootingTime, ///< "yyyy-MM-dd'T'HH:mm:ss", in the system's zone
};

/// Absent when @p text is not of that very form.
[[nodiscard]] std::optional<QDateTime> getDateTimeFromString(const QString &text, KaDateFormat format);

/// When the image was taken: by its metadata, whose text is local time marked as UTC and moves back by the current
/// offset, else the upload hour of its key.
[[nodiscard]] QDateTime captureDate(const KaMetadata &metadata, const QString &imagePath);

/// The names of the sort rules that the image matched.
[[nodiscard]] QStringList matchedRules(const QJsonObject &document);
