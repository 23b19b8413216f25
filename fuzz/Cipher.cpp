// What is enciphered in our files, under a fixed key.
#include "fuzz/Fuzz.h"
#include "identity/KaCryptionUtility.h"

using namespace Qt::StringLiterals;

void tryInput(const QByteArray &input) {
  const QString key = u"d559c2254fbbf739fad7c6549f630c1b"_s;
  const QString text = QString::fromUtf8(input);
  const auto enciphered = KaCryptionUtility::encrypt(text, key);
  require(enciphered.has_value(), "any text can be enciphered");
  require(KaCryptionUtility::decrypt(*enciphered, key) == text, "what is enciphered can be deciphered");

  const auto plain = KaCryptionUtility::decrypt(text, key);
  if (!plain) return;
  const auto again = KaCryptionUtility::encrypt(*plain, key);
  require(again && KaCryptionUtility::decrypt(*again, key) == plain, "what was deciphered can be enciphered anew");
}
