#include "identity/KaCryptionUtility.h"
#include "tests/identity/SigningVectors.h"
#include "tests/support/TestProfile.h"

#include <QJsonArray>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString kKey = u"d559c2254fbbf739fad7c6549f630c1b"_s;

TEST(Cryption, enciphersAsAnotherImplementationDoes) {
  const QJsonArray vectors = signingVectors()["aes256ecb"_L1].toArray();
  ASSERT_FALSE(vectors.isEmpty());
  for (const auto &vector : vectors) {
    const QString plain = vector["plain"_L1].toString();
    const QString key = vector["keyText"_L1].toString();
    auto enciphered = KaCryptionUtility::encrypt(plain, key);
    ASSERT_TRUE(enciphered);
    EXPECT_EQ(KaCryptionUtility::decrypt(*enciphered, key), plain);
    EXPECT_EQ(enciphered->remove(u"\r\n"_s), vector["base64Unbroken"_L1].toString());
  }
}

TEST(Cryption, usesTheFirst32CharactersOfTheKey) {
  EXPECT_EQ(KaCryptionUtility::encrypt(u"text"_s, kKey), KaCryptionUtility::encrypt(u"text"_s, kKey + u"more"_s));
}

TEST(Cryption, breaksLinesAfterEvery64CharactersThatMoreFollow) {
  // Ciphertexts of 16, 48, 64, 96 and 112 bytes: 47 and 95 bytes of text fill whole lines.
  const QList<std::pair<int, QList<qsizetype>>> cases = {
      {1, {24}}, {47, {64}}, {48, {64, 24}}, {95, {64, 64}}, {96, {64, 64, 24}}};
  for (const auto &[length, expected] : cases) {
    const auto enciphered = KaCryptionUtility::encrypt(QString(length, u'x'), kKey);
    ASSERT_TRUE(enciphered);
    QList<qsizetype> lineLengths;
    for (const QString &line : enciphered->split(u"\r\n"_s))
      lineLengths.append(line.size());
    EXPECT_EQ(lineLengths, expected) << length;
  }
}

struct Damage {
  const char *name;
  QString text;
  QString key = kKey;
};

class DamagedText : public testing::TestWithParam<Damage> {};

TEST_P(DamagedText, readsAsAbsent) {
  EXPECT_EQ(KaCryptionUtility::decrypt(GetParam().text, GetParam().key), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Cryption, DamagedText,
                         testing::Values(Damage{"empty", u""_s}, Damage{"noBase64", u"(hello, world)"_s},
                                         Damage{"partOfABlock", u"6XNf1it6IvEUkUaxmo0="_s},
                                         Damage{"lostLastBlock", u"7YjHdEw3QScwGI9u4AHskA=="_s},
                                         Damage{"anotherKey", u"fCzdO+2o9+DoxNEDGA76Cw=="_s, QString(32, u'0')},
                                         Damage{"shortKey", u"fCzdO+2o9+DoxNEDGA76Cw=="_s, kKey.left(31)},
                                         Damage{"noKey", u"fCzdO+2o9+DoxNEDGA76Cw=="_s, QString()}),
                         [](const auto &row) { return row.param.name; });

TEST(Cryption, skipsWhatIsNotBase64) {
  EXPECT_EQ(KaCryptionUtility::decrypt(u" 6XNf1it6\r\nIvEU\tkUaxmo0ppw==\n"_s, kKey), u"a"_s);
}

TEST(Cryption, refusesToEncipherWithoutAWholeKey) {
  EXPECT_EQ(KaCryptionUtility::encrypt(u"text"_s, kKey.left(31)), std::nullopt);
}

TEST(Cryption, keepsOneKeyForTheUser) {
  const TestProfile profile;
  const QString key = KaCryptionUtility::secretKey();
  EXPECT_EQ(key.size(), 64);
  EXPECT_EQ(key, KaCryptionUtility::secretKey());
  EXPECT_EQ(KaCryptionUtility::decrypt(KaCryptionUtility::encrypt(u"Grüße"_s).value_or(QString())), u"Grüße"_s);
}

TEST(Cryption, hashesAsPublished) {
  // FIPS 180-2, appendix B.1.
  EXPECT_EQ(KaCryptionUtility::toSHA256hash(u"abc"_s),
            u"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"_s);
  const QJsonArray vectors = signingVectors()["pkceS256"_L1].toArray();
  ASSERT_FALSE(vectors.isEmpty());
  for (const auto &vector : vectors)
    EXPECT_EQ(KaCryptionUtility::GenerateCodeS256Challenge(vector["verifier"_L1].toString()),
              vector["challenge"_L1].toString());
}

} // namespace
