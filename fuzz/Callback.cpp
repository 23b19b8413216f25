// The URL that a browser calls back with, and the command line that it comes by.
#include "fuzz/Fuzz.h"
#include "main/AppDelegate.h"
#include "main/CommandLine.h"

using namespace Qt::StringLiterals;

void tryInput(const QByteArray &input) {
  const QString text = QString::fromUtf8(input);
  const auto line = parseCommandLine({u"downloaderpictora"_s, text});
  require(line.has_value() == text.startsWith(u"downloaderpictora:", Qt::CaseInsensitive), "only our scheme is taken");
  require(!parseCommandLine({u"downloaderpictora"_s, text, text}), "one URL is taken, not two");
  static_cast<void>(idTokenOf(text));
  static_cast<void>(entryOfAction(text));

  // A token is plain text; of the letters of the world a URL keeps some escaped.
  QByteArray plain = input;
  for (char &letter : plain)
    letter &= 0x7F;
  const QString page = u"downloaderpictora://authenticate?"_s;
  const QString token = u"idToken="_s + QString::fromLatin1(plain.toPercentEncoding());
  for (const QString &url : {page + token, page + u"state=1&"_s + token + u"&idToken=later"_s})
    require(idTokenOf(url) == QString::fromLatin1(plain), "a token comes as it was sent");
}
