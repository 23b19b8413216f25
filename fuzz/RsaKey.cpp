// The numbers of a public key and a signature, a line of base64 each; what follows is the message.
#include "fuzz/Fuzz.h"
#include "identity/RsaSignature.h"

#include <QList>

void tryInput(const QByteArray &input) {
  const QList<QByteArray> lines = input.split('\n');
  const auto number = [&](qsizetype i) { return QByteArray::fromBase64(lines.value(i)); };
  const RsaPublicKey key = {.modulus = number(0), .exponent = number(1)};
  const bool holds = verifyRsaSha256(key, lines.mid(3).join('\n'), number(2));
  // A digest with its padding takes 62 bytes; above is the largest key, with a zero in front.
  require(!holds || (key.modulus.size() >= 62 && key.modulus.size() <= 2049), "a key that verifies has a key's size");
  require(!holds || !key.exponent.isEmpty(), "a key that verifies has an exponent");
}
