#include "service/SavedFileName.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray base64Url(const QByteArray &bytes) {
  return bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
}

struct Header {
  const char *name;
  QByteArray header;
  std::optional<QString> expected;
};

class Headers : public testing::TestWithParam<Header> {};

TEST_P(Headers, giveTheName) {
  EXPECT_EQ(decodeFileNameHeader(GetParam().header), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    SavedFileName, Headers,
    testing::Values(Header{"plain", "SU1HXzEuSlBH", u"IMG_1.JPG"_s}, Header{"padded", "YS5qcGc=", u"a.jpg"_s},
                    Header{"unpadded", "YS5qcGc", u"a.jpg"_s},
                    // "ÿ?ÿ>" holds both characters that differ between the alphabets.
                    Header{"urlAlphabet", "w78_w78-", u"ÿ?ÿ>"_s}, Header{"plainAlphabet", "w78/w78+", u"ÿ?ÿ>"_s},
                    Header{"strayCharacters", "S U1H\"XzEu.SlBH", u"IMG_1.JPG"_s},
                    Header{"slashes", base64Url("a/b/../c.JPG"), u"a-b-..-c.JPG"_s},
                    Header{"blanksAround", base64Url(" \ta b.JPG\r\n"), u"a b.JPG"_s},
                    Header{"otherScripts", base64Url("写真 Grüße.JPG"), u"写真 Grüße.JPG"_s},
                    Header{"empty", "", u""_s}, Header{"notUtf8", base64Url("\xC3("), {}},
                    Header{"cutUtf8", base64Url("a\xE5\x86"), {}}, Header{"nul", base64Url(QByteArray("a\0b", 3)), {}},
                    Header{"halfAByte", "SU1HX", {}}),
    [](const auto &row) { return row.param.name; });

QString times(int count, QChar c) {
  return QString(count, c);
}

struct Target {
  const char *name;
  QString given;
  QString expected; ///< below the folder
  QString defaultName = u"20240501_1.JPG"_s;
};

class Targets : public testing::TestWithParam<Target> {};

TEST_P(Targets, areOneNameThatFits) {
  const Target &row = GetParam();
  const QString target = targetFilePath(u"/photos/day.1/"_s + row.defaultName, row.given);
  EXPECT_EQ(target, u"/photos/day.1/"_s + row.expected);
  EXPECT_LE(row.expected.toUtf8().size(), 255);
}

INSTANTIATE_TEST_SUITE_P(
    SavedFileName, Targets,
    testing::Values(Target{"own", u"IMG_1.JPG"_s, u"IMG_1.JPG"_s}, Target{"empty", u""_s, u"20240501_1.JPG"_s},
                    Target{"blank", u" \t"_s, u"20240501_1.JPG"_s}, Target{"dot", u"."_s, u"20240501_1.JPG"_s},
                    Target{"dotDot", u".."_s, u"20240501_1.JPG"_s},
                    Target{"slashes", u"../../etc/x"_s, u"..-..-etc-x"_s},
                    Target{"nul", u"a\0b.JPG"_s, u"20240501_1.JPG"_s}, Target{"hidden", u".JPG"_s, u".JPG"_s},
                    Target{"fits255", times(251, u'n') + u".JPG"_s, times(251, u'n') + u".JPG"_s},
                    Target{"cuts256", times(252, u'n') + u".JPG"_s, times(251, u'n') + u".JPG"_s},
                    Target{"cuts300", times(300, u'n') + u".jpeg"_s, times(250, u'n') + u".jpeg"_s},
                    Target{"cutsWithoutExtension", times(300, u'n'), times(254, u'n') + u'.'},
                    Target{"cutsAfterADotAtTheStart", u'.' + times(300, u'n'), u'.' + times(253, u'n') + u'.'},
                    Target{"longExtensionIsNone", u"a."_s + times(300, u'n'), u"a."_s + times(252, u'n') + u'.'},
                    // 251 bytes are left: 83 characters of three bytes, and two bytes that no fourth fits into.
                    Target{"cutsBetweenCharacters", times(100, u'写') + u".JPG"_s, times(83, u'写') + u".JPG"_s},
                    Target{"cutsBetweenSurrogatePairs", u"😀"_s.repeated(80) + u".JPG"_s,
                           u"😀"_s.repeated(62) + u".JPG"_s},
                    Target{"cutsTheDefaultNameToo", u""_s, times(251, u'd') + u".JPG"_s, times(300, u'd') + u".JPG"_s}),
    [](const auto &row) { return row.param.name; });

struct Collision {
  const char *name;
  QString target;
  unsigned counter;
  QString expected;
};

class Collisions : public testing::TestWithParam<Collision> {};

TEST_P(Collisions, getACounterBeforeTheExtension) {
  const Collision &row = GetParam();
  const QString numbered = numberedFilePath(u"/photos/day.1/"_s + row.target, row.counter);
  EXPECT_EQ(numbered, u"/photos/day.1/"_s + row.expected);
  EXPECT_LE(row.expected.toUtf8().size(), 255);
}

INSTANTIATE_TEST_SUITE_P(
    SavedFileName, Collisions,
    testing::Values(Collision{"first", u"a.JPG"_s, 1, u"a_1.JPG"_s},
                    Collision{"tenth", u"a.b.JPG"_s, 10, u"a.b_10.JPG"_s},
                    Collision{"noExtension", u"a"_s, 2, u"a_2"_s}, Collision{"hidden", u".JPG"_s, 1, u".JPG_1"_s},
                    Collision{"justFits", times(249, u'n') + u".JPG"_s, 1, times(249, u'n') + u"_1.JPG"_s},
                    Collision{"cuts", times(251, u'n') + u".JPG"_s, 1, times(249, u'n') + u"_1.JPG"_s},
                    Collision{"cutsForALongerCounter", times(251, u'n') + u".JPG"_s, 4'000'000'000,
                              times(240, u'n') + u"_4000000000.JPG"_s},
                    Collision{"cutsWithoutExtension", times(255, u'n'), 1, times(252, u'n') + u"_1"_s},
                    Collision{"cutsBetweenCharacters", times(83, u'写') + u".JPG"_s, 10,
                              times(82, u'写') + u"_10.JPG"_s}),
    [](const auto &row) { return row.param.name; });

} // namespace
