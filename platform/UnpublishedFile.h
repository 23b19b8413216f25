#pragma once

#include <QString>

#include <cstddef>
#include <memory>
#include <optional>

namespace platform {

/// A file that is being written and has no visible name until it is whole. Discarded with the object unless published;
/// a crash leaves nothing behind under a visible name.
class UnpublishedFile {
public:
  enum class Naming { Unnamed, Hidden }; ///< Hidden: what file systems without unnamed files get
  enum class Publish { Published, NameTaken, Failed };

  /// @return nothing when the folder takes no file; errno tells why.
  [[nodiscard]] static std::optional<UnpublishedFile> create(const QString &folder, Naming naming = Naming::Unnamed);
  UnpublishedFile(UnpublishedFile &&) noexcept;
  UnpublishedFile &operator=(UnpublishedFile &&) noexcept;
  ~UnpublishedFile();

  [[nodiscard]] bool write(const char *bytes, std::size_t count);
  /// Puts the content on disk.
  [[nodiscard]] bool sync();
  /// Gives the file its name, in the same folder; never overwrites. On disk the name is after syncFolder.
  [[nodiscard]] Publish publish(const QString &path);
  /// errno of the last operation that failed; 0 when none has.
  [[nodiscard]] int error() const;

private:
  class Private;
  explicit UnpublishedFile(std::unique_ptr<Private> made);
  std::unique_ptr<Private> d;
};

} // namespace platform
