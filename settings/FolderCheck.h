#pragma once

#include "platform/VolumeFacts.h"
#include "service/KaResultCode.h"

#include <QString>
#include <QStringList>

#include <optional>

/// What the file system tells about a folder that shall hold downloads.
struct FolderFacts {
  QString resolvedPath;                        ///< without symbolic links; empty when there is no such path
  std::optional<platform::VolumeFacts> volume; ///< of the resolved path; absent when the system tells nothing
  bool directory = false;
  bool readable = false;
  bool writable = false;
  QStringList reservedFolders; ///< the system's and the applications' places
};

/// Whether a folder can hold downloads, as far as can be told without writing into it. Any thread.
/// @return Success, FolderNotAccessible (missing, no folder, not readable or writable), FolderNotSupported (removable,
/// network, system or application place) or FolderPathTooLong (over 200 characters).
[[nodiscard]] KaResultCode verifyDownloadFolder(const QString &path);

/// The verdict alone, from what is known about the folder.
[[nodiscard]] KaResultCode judgeDownloadFolder(const QString &path, const FolderFacts &facts);
