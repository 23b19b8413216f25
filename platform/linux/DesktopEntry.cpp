#include "platform/linux/DesktopEntry.h"

#include "platform/PrivateFile.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include <string_view>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

/// Bytes. No desktop entry comes near it.
constexpr qint64 kEntryLimit = 64LL << 10;

constexpr QByteArrayView kExec = "\nExec=";

/// Small openers split an Exec line at its blanks and take quotes for a part of the name: they go only where needed.
bool needsQuotes(const QString &argument) {
  constexpr std::u16string_view kReserved = u" \t\n\v\f\r\"'\\><~|&;$*?#()`";
  for (const QChar character : argument) {
    if (kReserved.find(character.unicode()) != kReserved.npos) return true;
  }
  return argument.isEmpty();
}

} // namespace

QString execArgument(const QString &argument) {
  if (!needsQuotes(argument)) return QString(argument).replace(u'%', u"%%"_s);
  QString quoted;
  for (const QChar character : argument) {
    // Read twice: as a string of the entry, then as a quoted argument.
    if (character == u'\\') {
      quoted += u"\\\\\\\\"_s;
    } else if (u"\"`$"_s.contains(character)) {
      quoted += u"\\\\"_s + character;
    } else if (character == u'%') {
      quoted += u"%%"_s;
    } else if (const qsizetype blank = u"\t\n\r"_s.indexOf(character); blank >= 0) {
      quoted += u'\\' + u"tnr"_s[blank]; // an entry ends with its line
    } else {
      quoted += character;
    }
  }
  return u'"' + quoted + u'"';
}

bool writeEntry(const QString &path, const QByteArray &text) {
  const QFileInfo entry(path);
  if (!QDir().mkpath(entry.path())) return false;
  sweepReplacements(entry.path(), {entry.fileName()});
  QSaveFile file(path);
  return file.open(QFile::WriteOnly) && file.write(text) == text.size() && file.commit();
}

QByteArray writtenEntry(const QString &path) {
  return readPrivateFile(path, kEntryLimit).value_or(QByteArray());
}

QByteArray withoutProgram(QByteArray entry) {
  const qsizetype exec = entry.indexOf(kExec);
  return exec < 0 ? entry : entry.remove(exec, entry.indexOf('\n', exec + 1) - exec);
}

std::optional<QByteArray> withProgram(QByteArray entry, const QByteArray &program) {
  const auto fileName = [](const QByteArray &path) { return path.mid(path.lastIndexOf('/') + 1).replace('"', ""); };
  const qsizetype exec = entry.indexOf(kExec);
  const qsizetype start = exec + kExec.size();
  const qsizetype end = entry.indexOf('\n', start);
  if (exec < 0 || end < 0 || fileName(entry.sliced(start, end - start)) != fileName(program)) return std::nullopt;
  return entry.replace(start, end - start, program);
}

} // namespace platform
