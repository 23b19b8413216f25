#pragma once

#include <QDateTime>
#include <QString>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>

namespace platform {

/// Why a file cannot be kept.
enum class FileFault {
  DiskFull, ///< or the user's share of it
  Other,
};

/// A file that is being written and has no visible name until it is whole. Discarded with the object unless published;
/// a crash leaves nothing behind under a visible name but, on file systems that can do no better, an empty file, which
/// goes with the next file that is made in the folder. In order: create, write, sync, setDates, publish until a name is
/// free. Once one of them has failed, fault() tells why, and those after it fail too. One thread at a time.
class UnpublishedFile {
public:
  enum class Naming { Unnamed, Hidden }; ///< Hidden: what file systems without unnamed files get
  enum class Publish {
    Published,
    NameTaken,
    NameRefused,   ///< the file system knows no such names
    AcrossVolumes, ///< the name would lie on another file system; no failure of the file
    Failed,
  };

  /// A folder that takes no file shows in fault().
  [[nodiscard]] static UnpublishedFile create(const QString &folder, Naming naming = Naming::Unnamed);
  UnpublishedFile(UnpublishedFile &&) noexcept;
  UnpublishedFile &operator=(UnpublishedFile &&) noexcept;
  ~UnpublishedFile();

  [[nodiscard]] bool write(const char *bytes, std::size_t count);
  /// Puts the content on disk.
  [[nodiscard]] bool sync();
  /// Sets the modification date, to the millisecond, as well as the file system can; none for an invalid @p instant.
  void setDates(const QDateTime &instant);
  /// Whether a regular file of the same bytes stands at @p path itself. Reads it, and no more than a piece at a time.
  /// @param shallEnd  asked between the pieces; once it says yes the answer is no.
  [[nodiscard]] bool isSameAs(const QString &path, const std::function<bool()> &shallEnd) const;
  /// Gives the file its name, in any folder of the same file system; never overwrites. On disk the name is after
  /// syncFolder.
  [[nodiscard]] Publish publish(const QString &path);
  /// Absent while nothing has failed. A name that is taken, refused or elsewhere is no failure.
  [[nodiscard]] std::optional<FileFault> fault() const;

private:
  class Private;
  explicit UnpublishedFile(std::unique_ptr<Private> made);
  std::unique_ptr<Private> d;
};

} // namespace platform
