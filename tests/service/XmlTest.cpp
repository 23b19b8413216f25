#include "service/KaXMLParser.h"
#include "service/XmlText.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using Values = QHash<QString, QString>;

struct Document {
  const char *name;
  QByteArray xml;
  KaResultCode expected;
  Values values;
  qint64 mode = KaXMLParser::kKeyValueType;
};

class Documents : public testing::TestWithParam<Document> {};

TEST_P(Documents, giveTheTextAfterATargetName) {
  KaXMLParser parser;
  parser.setTarget({u"period"_s, u"owner"_s});
  const Document &row = GetParam();
  EXPECT_EQ(parser.parseXML(row.xml, row.mode), row.expected);
  EXPECT_EQ(parser.result(), row.values);
  EXPECT_EQ(parser.result_length(), row.expected == KaResultCode::Success ? quint64(row.values.size()) : 0);
}

INSTANTIATE_TEST_SUITE_P(
    Xml, Documents,
    testing::Values(
        Document{"pair", "<T><Key>period</Key><Value>30</Value></T>", KaResultCode::Success, {{u"period"_s, u"30"_s}}},
        Document{"laterValueReplaces",
                 "<T><K>period</K><V>30</V><K>period</K><V>31</V></T>",
                 KaResultCode::Success,
                 {{u"period"_s, u"31"_s}}},
        Document{"twoTargets",
                 "<T><K>owner</K><V>me</V><K>x</K><V>y</V><K>period</K><V>30</V></T>",
                 KaResultCode::Success,
                 {{u"owner"_s, u"me"_s}, {u"period"_s, u"30"_s}}},
        Document{"targetAfterTargetIsBoth",
                 "<T><K>owner</K><V>period</V><K>30</K></T>",
                 KaResultCode::Success,
                 {{u"owner"_s, u"period"_s}, {u"period"_s, u"30"_s}}},
        Document{"blanksBetweenAreTheValue",
                 "<T><K>period</K>\n <V>30</V></T>",
                 KaResultCode::Success,
                 {{u"period"_s, u"\n "_s}}},
        Document{"noValue", "<T><K>period</K></T>", KaResultCode::Success, {}},
        Document{"entitiesAndCdataAreOneText",
                 "<T><K>p&#101;r<![CDATA[io]]>d</K><V>a&amp;b<!-- c --><![CDATA[<d>]]>e</V></T>",
                 KaResultCode::Success,
                 {{u"period"_s, u"a&b<d>e"_s}}},
        Document{"otherScripts", "<T><K>period</K><V>写真</V></T>", KaResultCode::Success, {{u"period"_s, u"写真"_s}}},
        Document{"otherMode", "<T><K>period</K><V>30</V></T>", KaResultCode::Success, {}, 1},
        Document{"brokenOffKeepsWhatCameBefore",
                 "<T><K>period</K><V>30</V><K>own",
                 KaResultCode::NoBody,
                 {{u"period"_s, u"30"_s}}},
        Document{"empty", "", KaResultCode::NoBody, {}}, Document{"noXml", "{\"a\":1}", KaResultCode::NoBody, {}},
        Document{"unknownEntity", "<T><K>period</K><V>&what;</V></T>", KaResultCode::NoBody, {}},
        Document{"externalEntity",
                 "<!DOCTYPE T [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><T><K>period</K><V>a&x;b</V></T>",
                 KaResultCode::Success,
                 {{u"period"_s, u"ab"_s}}}),
    [](const auto &row) { return row.param.name; });

TEST(Xml, doesNotUnfoldAnEntityBomb) {
  QByteArray bomb = "<!DOCTYPE T [<!ENTITY e0 \"boom\">";
  for (int i = 1; i < 30; ++i) {
    const QByteArray inner = "&e" + QByteArray::number(i - 1) + ';';
    bomb += "<!ENTITY e" + QByteArray::number(i) + " \"" + inner + inner + "\">";
  }
  EXPECT_FALSE(walkXmlText(bomb + "]><T>&e29;</T>", {}));
}

TEST(Xml, tellsElementsAndTextsInOrder) {
  QStringList told;
  const XmlTextEvents events = {
      .startElement = [&told](const QString &element) { told << u'<' + element; },
      .text = [&told](const QString &element, const QString &text) { told << element + u'=' + text; },
      .endElement = [&told](const QString &element) { told << u'>' + element; },
  };
  EXPECT_TRUE(walkXmlText("<n:a xmlns:n='u'>1<b>2</b>3<c/></n:a>\n", events));
  EXPECT_EQ(told, QStringList({u"<a"_s, u"a=1"_s, u"<b"_s, u"b=2"_s, u">b"_s, u"a=3"_s, u"<c"_s, u">c"_s, u">a"_s}));
}

} // namespace
