// A file name from an object's header (base64url), from a list, or an extension from its key.
#include "fuzz/Fuzz.h"
#include "service/SavedFileName.h"

using namespace Qt::StringLiterals;

void tryInput(const QByteArray &input) {
  const QString folder = u"/home/Pictures"_s;
  const QString text = QString::fromUtf8(input);
  const QString usual = folder + u"/2024-05-01.jpg"_s;
  const QString odd = folder + u"/2024-05-01."_s + QString(text).remove(u'/');
  const auto decoded = decodeFileNameHeader(input);
  for (const QString &beside : {usual, odd})
    for (const QString &name : {text, decoded.value_or(QString())}) {
      const QString path = targetFilePath(beside, name);
      requireFileIn(folder, path);
      for (const unsigned counter : {1U, 2U, 4'294'967'295U}) {
        const QString numbered = numberedFilePath(path, counter);
        requireFileIn(folder, numbered);
        require(numbered != path, "a name with a counter is another one");
      }
      require(numberedFilePath(path, 1) != numberedFilePath(path, 2), "each counter gives a name of its own");
    }

  const auto base64Url = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;
  const auto again = decodeFileNameHeader(text.toUtf8().toBase64(base64Url));
  require(again.has_value() != text.contains(QChar(u'\0')), "a header carries every name that is one");
  const bool isMarked = text.startsWith(QChar(QChar::ByteOrderMark)); // that goes
  require(!again || isMarked || *again == QString(text).replace(u'/', u'-').trimmed(),
          "a header's name comes as it was sent");
}
