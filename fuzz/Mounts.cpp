// The kernel's table of mounts; and any path as a mount point in it.
#include "fuzz/Fuzz.h"
#include "platform/linux/MountTable.h"

namespace {

/// As the kernel writes a path.
QByteArray escaped(const QByteArray &path) {
  QByteArray text;
  for (const char character : path)
    text += QByteArrayView(" \t\n\\#").contains(character)
                ? '\\' + QByteArray::number(character, 8).rightJustified(3, '0')
                : QByteArray(1, character);
  return text;
}

} // namespace

void tryInput(const QByteArray &input) {
  for (const platform::Mount &mount : platform::parseMountTable(input)) {
    static_cast<void>(platform::isUnmountablePlace(mount.mountPoint));
    require(platform::mountOf({mount}, mount.mountPoint) == mount, "a mount holds its mount point");
  }
  const QByteArray path = '/' + QByteArray(input).replace('\0', '-');
  const QByteArray line = "36 35 98:0 / " + escaped(path) + " rw,noatime master:1 - ext4 /dev/root rw\n";
  const auto mounts = platform::parseMountTable(line);
  require(mounts.size() == 1 && mounts[0].mountPoint == path && mounts[0].major == 98, "any folder is a mount point");
}
