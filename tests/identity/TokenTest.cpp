#include "identity/KaIdVerificationUtility.h"
#include "tests/identity/SigningVectors.h"

#include <QJsonArray>
#include <QStringList>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QString encoded(const QByteArray &bytes) {
  return QString::fromLatin1(bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
}

struct DecodeCase {
  const char *name;
  QString text;
  std::optional<QByteArray> bytes;
};

class Base64UrlSafeDecode : public testing::TestWithParam<DecodeCase> {};

TEST_P(Base64UrlSafeDecode, isStrict) {
  EXPECT_EQ(KaIdVerificationUtility::base64UrlSafeDecode(GetParam().text), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(
    Token, Base64UrlSafeDecode,
    testing::Values(DecodeCase{"empty", u""_s, QByteArray("")}, DecodeCase{"remainder0", u"YWJj"_s, "abc"},
                    DecodeCase{"remainder2", u"YQ"_s, "a"}, DecodeCase{"remainder3", u"YWI"_s, std::nullopt},
                    DecodeCase{"remainder1", u"YWJjZ"_s, std::nullopt},
                    DecodeCase{"urlAlphabet", u"-_-_"_s, QByteArray("\xfb\xff\xbf")},
                    DecodeCase{"paddedAlready", u"YWI="_s, "ab"}, DecodeCase{"blank", u"YW Jj"_s, std::nullopt},
                    DecodeCase{"lineBreak", u"YWJj\nYWJ"_s, std::nullopt},
                    DecodeCase{"otherCharacter", u"YW*j"_s, std::nullopt},
                    DecodeCase{"notLatin", u"YW写j"_s, std::nullopt},
                    DecodeCase{"paddingInside", u"YQ==YWJj"_s, std::nullopt}),
    [](const auto &row) { return row.param.name; });

struct HeaderCase {
  const char *name;
  QByteArray json;
  bool valid;
  QString kid;
};

class TokenHeader : public testing::TestWithParam<HeaderCase> {};

TEST_P(TokenHeader, isJudgedByItsAlgorithm) {
  QByteArray json = GetParam().json;
  while (encoded(json).size() % 4 == 3)
    json += ' ';
  QString kid;
  EXPECT_EQ(KaIdVerificationUtility::validateHeader(encoded(json), kid), GetParam().valid);
  EXPECT_EQ(kid, GetParam().kid);
}

INSTANTIATE_TEST_SUITE_P(
    Token, TokenHeader,
    testing::Values(HeaderCase{"rs256", R"({"alg":"RS256","kid":"k"})", true, u"k"_s},
                    HeaderCase{"hs256StillTellsItsKid", R"({"alg":"HS256","kid":"k"})", false, u"k"_s},
                    HeaderCase{"none", R"({"alg":"none"})", false, u""_s},
                    HeaderCase{"otherCase", R"({"alg":"rs256","kid":"k"})", false, u"k"_s},
                    HeaderCase{"noAlgorithm", R"({"kid":"k"})", false, u"k"_s},
                    HeaderCase{"kidOfWrongType", R"({"alg":"RS256","kid":7})", true, u""_s},
                    HeaderCase{"array", R"(["RS256"])", false, u""_s}, HeaderCase{"noJson", "RS256", false, u""_s}),
    [](const auto &row) { return row.param.name; });

class TokenSignature : public testing::Test {
protected:
  [[nodiscard]] bool verifiesWith(const QString &exponent, const QString &someModulus) const {
    return KaIdVerificationUtility::verify(exponent, someModulus, parts[2], parts[0], parts[1]);
  }

  const QJsonObject vectors = signingVectors()["idTokens"_L1].toObject();
  const QJsonArray keys = vectors["jwks"_L1]["keys"_L1].toArray();
  const QString otherModulus = keys[0]["n"_L1].toString();
  const QString modulus = keys[1]["n"_L1].toString();
  QStringList parts = vectors["valid"_L1].toString().split(u'.');
};

TEST_F(TokenSignature, holdsAsAnotherImplementationMadeIt) {
  EXPECT_TRUE(verifiesWith(u"AQAB"_s, modulus));
}

TEST_F(TokenSignature, holdsForOneKeyOnly) {
  EXPECT_FALSE(verifiesWith(u"AQAB"_s, otherModulus));
  EXPECT_FALSE(verifiesWith(u"Aw"_s, modulus));
}

TEST_F(TokenSignature, coversHeaderAndPayload) {
  const QStringList whole = parts;
  for (const int part : {0, 1, 2}) {
    parts = whole;
    parts[part][5] = parts[part][5] == u'A' ? u'B' : u'A';
    EXPECT_FALSE(verifiesWith(u"AQAB"_s, modulus)) << part;
  }
  parts = whole;
  parts[2].clear();
  EXPECT_FALSE(verifiesWith(u"AQAB"_s, modulus));
}

TEST_F(TokenSignature, needsNumbersThatCanBeAKey) {
  const QByteArray zeros(256, '\0');
  EXPECT_FALSE(verifiesWith(u"AQAB"_s, u""_s));
  EXPECT_FALSE(verifiesWith(u"AQAB"_s, encoded(zeros)));
  EXPECT_FALSE(verifiesWith(u""_s, modulus));
  EXPECT_FALSE(verifiesWith(u"AAAA"_s, modulus));
  EXPECT_FALSE(verifiesWith(u"AQAB"_s, u"not base64"_s));
  EXPECT_FALSE(verifiesWith(u"AQAB"_s, encoded(QByteArray(2100, '\xff')))) << "over 16384 bits";
  EXPECT_FALSE(verifiesWith(u"AQAB"_s, encoded(QByteArray(3 * 1000 * 1000, '\xff'))));
}

TEST(Token, tellsItsClaimsUnchecked) {
  const QString token = signingVectors()["idTokens"_L1]["valid"_L1].toString();
  EXPECT_EQ(KaIdVerificationUtility::parseUserUUID(token), u"u-1"_s);
  EXPECT_EQ(KaIdVerificationUtility::ParseNonce(token), u"3F2504E0-4F89-11D3-9A0C-0305E82C3301"_s);
}

TEST(Token, tellsNoClaimWhenItIsNone) {
  const QString noSubject = encoded(R"({"sub":7})");
  for (const QString &token : {u""_s, u"a.b"_s, u"a.b.c.d"_s, u"a.!!!.c"_s, u"a."_s + noSubject + u".c"_s})
    EXPECT_EQ(KaIdVerificationUtility::parseUserUUID(token), std::nullopt) << qPrintable(token);
}

} // namespace
