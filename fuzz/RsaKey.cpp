// The numbers of a public key and a signature, a line of base64 each; what follows is the message.
#include "fuzz/Fuzz.h"
#include "identity/RsaSignature.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

QByteArray decoded(const QByteArray &text) {
  return QByteArray::fromBase64(text, QByteArray::Base64UrlEncoding);
}

/// Whose signature of the sample token is known: there is no second one.
const RsaPublicKey &sampleKey() {
  static const QJsonObject key =
      QJsonDocument::fromJson(sampleToken("jwks")).object().value("keys"_L1).toArray().last().toObject();
  static const RsaPublicKey numbers = {.modulus = decoded(key.value("n"_L1).toString().toLatin1()),
                                       .exponent = decoded(key.value("e"_L1).toString().toLatin1())};
  return numbers;
}

} // namespace

void tryInput(const QByteArray &input) {
  const QList<QByteArray> lines = input.split('\n');
  const auto number = [&](qsizetype i) { return QByteArray::fromBase64(lines.value(i)); };
  const RsaPublicKey key = {.modulus = number(0), .exponent = number(1)};
  const bool holds = verifyRsaSha256(key, lines.mid(3).join('\n'), number(2));
  // A digest with its padding takes 62 bytes; above is the largest key, with a zero in front.
  require(!holds || (key.modulus.size() >= 62 && key.modulus.size() <= 2049), "a key that verifies has a key's size");
  require(!holds || !key.exponent.isEmpty(), "a key that verifies has an exponent");

  const QByteArray token = sampleToken("valid");
  const qsizetype dot = token.lastIndexOf('.');
  const bool isSignature = number(2) == decoded(token.mid(dot + 1));
  require(verifyRsaSha256(sampleKey(), token.left(dot), number(2)) == isSignature, "one signature alone verifies");
}
