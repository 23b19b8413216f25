#include "fuzz/Fuzz.h"

#include "tests/support/TestProfile.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  static_cast<void>(home());
  tryInput(QByteArray(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(size)));
  return 0;
}

void require(bool holds, const char *promise) {
  if (holds) return;
  std::fprintf(stderr, "broken promise: %s\n", promise);
  std::abort();
}

void requireFileIn(const QString &folder, const QString &path) {
  const QByteArray name = path.mid(folder.size() + 1).toUtf8();
  require(path.startsWith(folder + u'/') && !name.contains('/'), "a file lands in its folder");
  require(!name.isEmpty() && name != "." && name != ".." && !name.contains('\0'), "a file has a name");
  require(name.size() <= 255, "a name has at most 255 bytes");
}

const TestProfile &home() {
  static const TestProfile profile({{u"idTokenHostName"_s, u"idp.example.test"_s}});
  return profile;
}

QByteArray sampleToken(const char *name) {
  static const QJsonObject samples =
      QJsonDocument::fromJson(contentOf(QStringLiteral(KA_TEST_DATA "/signing.json"))).object();
  const QJsonValue value = samples.value("idTokens"_L1).toObject().value(QLatin1StringView(name));
  require(!value.isUndefined(), "the sample tokens are there");
  return value.isObject() ? QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact) : value.toString().toUtf8();
}
