#pragma once

#include <QDateTime>
#include <QString>

/// An image's object key, taken apart once. A key is a path: an area, a variant, any number of components (the account,
/// the device), the upload date "yyyyMMdd", the upload hour "HH" (UTC) and the file name. What a key of another form
/// lacks is empty. The views live as long as the key.
class KaImageKey {
public:
  KaImageKey() = default;
  explicit KaImageKey(const QString &path);

  [[nodiscard]] const QString &path() const { return text; }
  [[nodiscard]] QStringView date() const { return view(dateAt); }
  [[nodiscard]] QStringView hour() const { return view(hourAt); }
  [[nodiscard]] QStringView fileName() const { return view(fileNameAt); }
  /// The file name without its extension.
  [[nodiscard]] QString contentId() const;
  /// Without the dot; empty when there is none.
  [[nodiscard]] QString extension() const;
  /// What decides the order of download: date, hour and file name.
  [[nodiscard]] QStringView order() const { return QStringView(text).mid(dateAt.begin); }

  /// Whether date and hour tell an upload hour: without one an object can be neither dated nor recorded.
  [[nodiscard]] bool hasUploadHour() const;
  /// Invalid without one.
  [[nodiscard]] QDateTime uploadHour() const;

  /// The key of the "expand" variant.
  [[nodiscard]] KaImageKey expandImagePathFromImagePath() const;
  /// The key of the metadata file. @param expand  that of the expand variant.
  [[nodiscard]] QString exifPathFromImagePath(bool expand) const;

  friend bool operator==(const KaImageKey &left, const KaImageKey &right) { return left.text == right.text; }

private:
  /// Where a component stands. Small, since a listing holds a million keys; the storage takes none over 1024 bytes.
  struct Place {
    quint16 begin = 0;
    quint16 size = 0;
  };

  [[nodiscard]] QStringView view(Place place) const { return QStringView(text).mid(place.begin, place.size); }
  [[nodiscard]] Place placeOf(QStringView component) const;
  [[nodiscard]] qsizetype extensionDot() const;

  QString text;
  Place dateAt;
  Place hourAt;
  Place fileNameAt;
};

/// The hour that a date "yyyyMMdd" and an hour "HH" (UTC) tell; invalid when they tell none.
[[nodiscard]] QDateTime uploadHour(QStringView date, QStringView hour);
