#pragma once

#include "service/KaResultCode.h"

#include <QString>

/// Whether a folder can hold downloads.
/// @return Success, FolderNotAccessible (missing, no folder, not readable or writable), FolderNotSupported (removable,
/// network, system or application place) or FolderPathTooLong (over 200 characters).
[[nodiscard]] KaResultCode verifyDownloadFolder(const QString &path);
