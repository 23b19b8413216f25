#include "sandbox/Credentials.h"

#include "sandbox/Tokens.h"

using namespace Qt::StringLiterals;

namespace sandbox {

namespace {

/// Upper-case letters and digits, as access key ids are.
QString randomKeyId(qsizetype length) {
  constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ234567";
  QString text;
  for (const char byte : randomBytes(length))
    text += QLatin1Char(kAlphabet[uchar(byte) % 32]);
  return text;
}

QString randomBase64(qsizetype bytes) {
  return QString::fromLatin1(randomBytes(bytes).toBase64());
}

} // namespace

TemporaryCredential Credentials::issue(const QString &userId, const QDateTime &expiration) {
  // Real session tokens hold all of "/", "+" and "=", which signing and escaping must bear.
  const TemporaryCredential credential{.accessKeyId = u"ASIA"_s + randomKeyId(16),
                                       .secretAccessKey = randomBase64(28) + u"/+"_s,
                                       .sessionToken = u"FwoGZXIvYXdzE//+"_s + randomBase64(214),
                                       .expiration = expiration.toSecsSinceEpoch()};
  add({credential, userId});
  return credential;
}

void Credentials::add(const KnownCredential &entry) {
  known.with([&](auto &entries) { entries.insert(entry.credential.accessKeyId, entry); });
}

std::optional<KnownCredential> Credentials::find(const QString &accessKeyId) const {
  return known.with([&](const auto &entries) -> std::optional<KnownCredential> {
    const auto found = entries.find(accessKeyId);
    if (found == entries.end()) return std::nullopt;
    return *found;
  });
}

void Credentials::revokeAll() {
  known.with([](auto &entries) { entries.clear(); });
}

} // namespace sandbox
