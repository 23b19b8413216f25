#include "platform/UserId.h"

#include "platform/Folders.h"
#include "platform/Mutex.h"
#include "platform/NoDestructor.h"
#include "platform/PrivateFile.h"
#include "platform/linux/FileDescriptor.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUuid>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

/// A machine id is not to be shown to others as it is; hashed with this it is ours alone.
constexpr char kApplicationConstant[] = "com.norvale.Downloaderpictora/user/1";

/// 32 hexadecimal digits, with or without hyphens.
bool isId(const QByteArray &text) {
  const std::string_view characters(text.constData(), static_cast<std::size_t>(text.size()));
  return text.size() >= 32 && text.size() <= 36
         && characters.find_first_not_of("0123456789abcdef-") == std::string_view::npos;
}

struct IdFile {
  QByteArray id;          ///< empty when the file holds none, as on a system that has yet to get one
  bool isReadable = true; ///< or not there
};

IdFile readId(const QString &path) {
  const FileDescriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file) return {.id = {}, .isReadable = errno == ENOENT || errno == ENOTDIR};
  std::array<char, 256> text{};
  const ssize_t count = ::read(file.get(), text.data(), text.size());
  if (count < 0) return {.id = {}, .isReadable = false};
  const QByteArray id = QByteArray(text.data(), count).trimmed();
  return {.id = isId(id) ? id : QByteArray()};
}

QByteArray makeKeptId(const QString &path) {
  if (!makePrivateFolder(QFileInfo(path).path())) return {};
  const QByteArray id = QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
  return writePrivateFile(path, id) ? id : QByteArray();
}

QString hashed(const QByteArray &id) {
  QCryptographicHash hash(QCryptographicHash::Sha256);
  hash.addData(kApplicationConstant);
  hash.addData("\n" + id + "\n" + QByteArray::number(::getuid()));
  return QString::fromLatin1(hash.result().toHex());
}

QString stateFolder() {
  const QString state = qEnvironmentVariable("XDG_STATE_HOME");
  const QString base =
      state.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::HomeLocation) + u"/.local/state"_s : state;
  return base + u"/NORVALE INC/Downloaderpictora"_s;
}

} // namespace

QStringList stableUserIds() {
  static NoDestructor<Guarded<QStringList>> known;
  if (const QStringList ids = known->get(); !ids.isEmpty()) return ids;
  const QStringList ids =
      stableUserIds({u"/etc/machine-id"_s, u"/var/lib/dbus/machine-id"_s}, stateFolder() + u"/user-id"_s);
  known->set(ids);
  return ids;
}

QStringList stableUserIds(const QStringList &machineIdFiles, const QString &keptIdFile) {
  QStringList ids;
  // An id made once stays in use when the machine gets one later.
  for (const QString &path : QStringList{keptIdFile} + machineIdFiles) {
    const IdFile file = readId(path);
    // Whatever came after it would be another identity, which could read nothing and would be kept.
    if (!file.isReadable && ids.isEmpty()) return {};
    if (!file.id.isEmpty() && !ids.contains(hashed(file.id))) ids << hashed(file.id);
  }
  if (!ids.isEmpty()) return ids;
  const QFileInfo kept(keptIdFile);
  sweepReplacements(kept.path(), {kept.fileName()});
  const QByteArray made = makeKeptId(keptIdFile);
  return made.isEmpty() ? QStringList() : QStringList{hashed(made)};
}

} // namespace platform
