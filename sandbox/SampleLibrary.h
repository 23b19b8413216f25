#pragma once

#include "sandbox/Library.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QTimeZone>

namespace sandbox {

/// A file that a complete first run leaves in the download folder.
struct ExpectedFile {
  QString relativePath{}; ///< below the parent folder
  QByteArray sha256{};    ///< lower-case hexadecimal
  qint64 size = 0;
  qint64 modificationTime = 0; ///< seconds since 1970
};

/// The agent's settings that decide where files land, with its defaults.
struct ExpectedOptions {
  int childFolder = 0;
  bool createSubfolder = true;
  bool downloadMetadata = true;
  QTimeZone zone = QTimeZone::systemTimeZone(); ///< the zone the agent runs in
};

/// The sample account: three devices and an alias device, about 60 JPEG pictures. Painted once per process, always the
/// same, and every image tagged for the ordinary storage.
[[nodiscard]] const QList<LibraryObject> &sampleObjects();
/// The device of sampleObjects() that the sample settings object excludes.
[[nodiscard]] QString sampleAliasDevice();

/// Adds the sample objects, folder markers and the settings object.
void fillSampleLibrary(Library &library);

/// Where the files of @p objects land, in download order. Bodies must not be empty, names on disk not above 255 bytes.
[[nodiscard]] QList<ExpectedFile> expectedFiles(const QList<LibraryObject> &objects,
                                                const ExpectedOptions &options = {});
/// The same for the sample account, the alias device left out.
[[nodiscard]] QList<ExpectedFile> expectedSampleFiles(const ExpectedOptions &options = {});

} // namespace sandbox
