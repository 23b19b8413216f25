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
  QString uploadedBefore{}; ///< "yyyyMMdd": what was uploaded from that day on is not there yet; empty: all is
};

/// A reduced picture that the service made of an image.
struct SamplePreview {
  int index = 0;
  QString objectName{}; ///< the key's last component
  QByteArray body{};
  QString fileName{};
  QString shootingTime{}; ///< "yyyy-MM-ddTHH:mm:ss", may be empty
  QString uploadTime{};   ///< "yyyyMMdd/HH", UTC
};

/// The sample account: three devices and an alias device, about 60 JPEG pictures. Painted once per process, always the
/// same. Most images are tagged for the ordinary storage; the others belong to the 10G storage, too.
[[nodiscard]] const QList<LibraryObject> &sampleObjects();
/// The device of sampleObjects() that the sample settings object excludes, but for the 10G storage.
[[nodiscard]] QString sampleAliasDevice();
[[nodiscard]] const QList<SamplePreview> &samplePreviews();
/// Whether something of the sample was there before that day, as in ExpectedOptions.
[[nodiscard]] bool isUploadedBefore(const QString &uploadDate, const QString &uploadedBefore);
/// The tag that tells an image's storage: "30" is the ordinary one.
[[nodiscard]] QString storagePeriodTag();

/// Adds these previews, and their list in the place of any other.
void addPreviews(Library &library, const QList<SamplePreview> &previews);
/// Adds the sample objects, folder markers, the settings object, the previews and their list.
/// @param uploadedBefore  as in ExpectedOptions.
void fillSampleLibrary(Library &library, const QString &uploadedBefore = {});

/// Where the files of @p objects land, all of them, in download order. Bodies must not be empty, names on disk not
/// above 255 bytes.
[[nodiscard]] QList<ExpectedFile> expectedFiles(const QList<LibraryObject> &objects,
                                                const ExpectedOptions &options = {});
/// The same for the sample account, the alias device left out.
[[nodiscard]] QList<ExpectedFile> expectedSampleFiles(const ExpectedOptions &options = {});
/// What the folder of the 10G storage holds: originals by date alone, and the previews. Of @p options the date scheme
/// and the zone count.
[[nodiscard]] QList<ExpectedFile> expectedLongTermSampleFiles(const ExpectedOptions &options = {});

} // namespace sandbox
