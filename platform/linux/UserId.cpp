#include "platform/UserId.h"

#include "platform/Folders.h"
#include "platform/PrivateFile.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUuid>

#include <unistd.h>

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

QByteArray readId(const QString &path) {
  QFile file(path);
  if (!file.open(QFile::ReadOnly)) return {};
  const QByteArray id = file.read(256).trimmed();
  return isId(id) ? id : QByteArray();
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
  const QString base = state.startsWith(u'/')
                           ? state
                           : QStandardPaths::writableLocation(QStandardPaths::HomeLocation) + u"/.local/state"_s;
  return base + u"/NORVALE INC/Downloaderpictora"_s;
}

} // namespace

QString stableUserId() {
  return stableUserId({u"/etc/machine-id"_s, u"/var/lib/dbus/machine-id"_s}, stateFolder() + u"/user-id"_s);
}

QString stableUserId(const QStringList &machineIdFiles, const QString &keptIdFile) {
  // An id made once stays in use when the machine gets one later: what it enciphered must stay readable.
  if (const QByteArray kept = readId(keptIdFile); !kept.isEmpty()) return hashed(kept);
  for (const QString &path : machineIdFiles) {
    if (const QByteArray id = readId(path); !id.isEmpty()) return hashed(id);
  }
  const QByteArray made = makeKeptId(keptIdFile);
  return made.isEmpty() ? QString() : hashed(made);
}

} // namespace platform
