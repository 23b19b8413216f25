#pragma once

#include <QString>
#include <QStringList>

namespace platform {

/// Absolute paths without a "/" at the end, whether they exist or not. Any thread.

[[nodiscard]] QString applicationSupportFolder();
[[nodiscard]] QString picturesFolder();
/// The program's own files, as they were installed with it.
[[nodiscard]] QString installedDataFolder();
/// Where programs are installed, for all users and for this one.
[[nodiscard]] QStringList applicationFolders();
/// The system's own places.
[[nodiscard]] QStringList systemFolders();
/// Below these lies what is not the start-up volume.
[[nodiscard]] QStringList externalVolumeRoots();

/// Leaves base folders that are not absolute out of the environment: they would be others for every folder that the
/// program is started in. Before anything asks for a folder, and before there are threads.
void dropRelativeBaseFolders();

/// Makes a folder for the user alone (0700), intermediate ones too; existing folders keep their mode.
/// The names of new ones are on disk when it returns.
/// @return whether it is a folder afterwards.
[[nodiscard]] bool makePrivateFolder(const QString &path);

/// Returns once the names in the folder are on disk. Some file systems cannot tell: their names count all the same.
void syncFolder(const QString &path);

} // namespace platform
