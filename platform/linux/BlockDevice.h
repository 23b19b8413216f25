#pragma once

#include <QString>
#include <QStringList>

namespace platform {

/// The disks that a block device lies on, as folders of sysfs: a partition's own, and all that an enciphered or joined
/// volume is made of.
/// @param device  the device's folder in sysfs, without symbolic links; none for an empty one.
[[nodiscard]] QStringList disksOf(const QString &device);

/// Whether what is at @p sysfsPath hangs on a bus that devices leave at run time.
[[nodiscard]] bool isHotPluggable(const QString &sysfsPath);

/// Whether a disk, or what it holds, is made to be taken away while the system runs.
[[nodiscard]] bool isRemovableDisk(const QString &disk);

} // namespace platform
