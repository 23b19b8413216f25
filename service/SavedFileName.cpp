#include "service/SavedFileName.h"

#include "platform/FileNames.h"

#include <QStringDecoder>

#include <algorithm>

using namespace Qt::StringLiterals;
using platform::cutAtCodePoint;

namespace {

/// A name in UTF-8, cut at the dot that no part holds.
struct NameParts {
  QByteArray stem;
  QByteArray extension;
};

NameParts split(const QString &name) {
  // More than this is no extension but a name with a dot in it, and must be open to cutting.
  constexpr qsizetype kLongestExtension = 100;
  const QByteArray bytes = name.toUtf8();
  const qsizetype dot = bytes.lastIndexOf('.');
  const qsizetype extensionSize = bytes.size() - dot - 1;
  if (dot <= 0 || extensionSize == 0 || extensionSize > kLongestExtension) return {bytes, {}};
  return {bytes.left(dot), bytes.mid(dot + 1)};
}

QString fittingName(const QString &name, qsizetype longest) {
  if (name.toUtf8().size() <= longest) return name;
  const NameParts parts = split(name);
  const QByteArray stem = cutAtCodePoint(parts.stem, longest - 1 - parts.extension.size());
  return QString::fromUtf8(stem + '.' + parts.extension);
}

/// What a name from outside may be at most: one component below its folder.
QString singleComponent(QString name) {
  name.replace(u'/', u'-');
  name = name.trimmed();
  const bool isNoName = name == u"."_s || name == u".."_s || name.contains(QChar(u'\0'));
  return isNoName ? QString() : name;
}

/// The path up to and with the last slash, and what follows it.
std::pair<QString, QString> splitPath(const QString &path) {
  const qsizetype end = path.lastIndexOf(u'/') + 1;
  return {path.left(end), path.mid(end)};
}

} // namespace

std::optional<QString> decodeFileNameHeader(const QByteArray &header) {
  QByteArray base64;
  for (const char c : header) {
    const char plain = c == '-' ? '+' : c == '_' ? '/' : c;
    const bool inAlphabet = (plain >= 'A' && plain <= 'Z') || (plain >= 'a' && plain <= 'z')
                            || (plain >= '0' && plain <= '9') || plain == '+' || plain == '/';
    if (inAlphabet) base64 += plain;
  }
  if (base64.size() % 4 == 1) return {}; // six bits make no byte

  QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
  const QString name = decoder(QByteArray::fromBase64(base64));
  if (decoder.hasError() || name.contains(QChar(u'\0'))) return {};
  return QString(name).replace(u'/', u'-').trimmed();
}

QString targetFilePath(const QString &defaultFilePath, const QString &name, qsizetype longest) {
  const auto [folder, defaultName] = splitPath(defaultFilePath);
  const QString own = singleComponent(name);
  // Its extension came from outside, too, and a path would end at a NUL.
  return folder + fittingName(own.isEmpty() ? QString(defaultName).remove(QChar(u'\0')) : own, longest);
}

QString numberedFilePath(const QString &targetPath, unsigned counter, qsizetype longest) {
  const auto [folder, name] = splitPath(targetPath);
  NameParts parts = split(name);
  const QByteArray suffix = '_' + QByteArray::number(counter);
  const QByteArray ending = parts.extension.isEmpty() ? suffix : suffix + '.' + parts.extension;
  if (parts.stem.size() + ending.size() > longest)
    parts.stem = cutAtCodePoint(parts.stem, longest - 1 - suffix.size() - parts.extension.size());
  return folder + QString::fromUtf8(parts.stem + ending);
}
