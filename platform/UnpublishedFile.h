#pragma once

#include <QString>

#include <cstddef>
#include <memory>
#include <optional>

namespace platform {

/// Why a file cannot be kept.
enum class FileFault {
  DiskFull, ///< or the user's share of it
  Other,
};

/// A file that is being written and has no visible name until it is whole. Discarded with the object unless published;
/// a crash leaves nothing behind under a visible name. In order: create, write, sync, publish until a name is free.
/// Once one of them has failed, fault() tells why, and those after it fail too. One thread at a time.
class UnpublishedFile {
public:
  enum class Naming { Unnamed, Hidden }; ///< Hidden: what file systems without unnamed files get
  enum class Publish { Published, NameTaken, Failed };

  /// A folder that takes no file shows in fault().
  [[nodiscard]] static UnpublishedFile create(const QString &folder, Naming naming = Naming::Unnamed);
  UnpublishedFile(UnpublishedFile &&) noexcept;
  UnpublishedFile &operator=(UnpublishedFile &&) noexcept;
  ~UnpublishedFile();

  [[nodiscard]] bool write(const char *bytes, std::size_t count);
  /// Puts the content on disk.
  [[nodiscard]] bool sync();
  /// Gives the file its name, in the same folder; never overwrites. On disk the name is after syncFolder.
  [[nodiscard]] Publish publish(const QString &path);
  /// Absent while nothing has failed. A name that is taken is no failure.
  [[nodiscard]] std::optional<FileFault> fault() const;

private:
  class Private;
  explicit UnpublishedFile(std::unique_ptr<Private> made);
  std::unique_ptr<Private> d;
};

} // namespace platform
