#include "service/KaXMLParser.h"
#include "service/ListingXml.h"
#include "tests/service/ServiceFixture.h"

#include <ctime>
#include <malloc.h>

using namespace Qt::StringLiterals;
using sandbox::Endpoint;
using sandbox::Fault;

namespace {

using enum KaResultCode;
constexpr int kMiB = 1024 * 1024;

/// Something to find for each reader, in front of what is hostile.
const QByteArray kFinds = "<T><Key>k</Key><Size>7</Size><AccessKeyId>id</AccessKeyId><AccessKeyId>\n</"
                          "AccessKeyId><K>x-strata-storage-period</K><V>30</V>";

struct Document {
  const char *name;
  QByteArray (*make)();
  bool canBeParsed = false;
};

QByteArray nested(int depth) {
  return QByteArray("<a>").repeated(depth) + "x" + QByteArray("</a>").repeated(depth);
}

/// Filled with white space up to @p size.
QByteArray filled(qsizetype size) {
  return kFinds + QByteArray(size - kFinds.size() - 4, ' ') + "</T>";
}

QByteArray numbered(qsizetype count, const char *before, const char *after) {
  QByteArray all;
  all.reserve(16 * kMiB);
  for (qsizetype i = 0; i < count; ++i)
    all.append(before).append(QByteArray::number(i, 36)).append(after);
  return all;
}

QByteArray bomb() {
  QByteArray declared = "<!DOCTYPE T [<!ENTITY e0 \"boom\">";
  for (int i = 1; i < 30; ++i)
    declared += u"<!ENTITY e%1 \"&e%2;&e%2;\">"_s.arg(i).arg(i - 1).toUtf8();
  return declared + "]>" + kFinds + "&e29;</T>";
}

const Document kDocuments[] = {
    {"DocumentType", [] { return "<!DOCTYPE T>" + kFinds + "</T>"; }},
    {"EntityBomb", &bomb},
    {"UndeclaredEntity", [] { return kFinds + "&x;</T>"; }},
    {"ThirtyTwoDeep", [] { return kFinds + nested(31) + "</T>"; }, true},
    {"ThirtyThreeDeep", [] { return kFinds + nested(32) + "</T>"; }},
    {"MillionsDeep", [] { return kFinds + QByteArray("<a>").repeated(5 * kMiB); }},
    {"HugeAndDeep", [] { return kFinds + QByteArray("<a>").repeated(64 * kMiB / 3); }},
    {"LargestFlat", [] { return kFinds + QByteArray("<a></a>").repeated(2 * kMiB) + "</T>"; }, true},
    {"Largest", [] { return filled(16 * kMiB); }, true},
    {"OneByteMore", [] { return filled(16 * kMiB + 1); }},
    {"ManyAttributes", [] { return kFinds + "<a" + numbered(50'000, " attribute", "=\"value\"") + "/></T>"; }, true},
    {"OnlyAttributes", [] { return kFinds + "<a" + numbered(1'500'000, " a", "=\"\"") + "/></T>"; }},
    {"OnlyNames", [] { return kFinds + numbered(1'800'000, "<a", "/>") + "</T>"; }},
    {"HugeText", [] { return kFinds + "<Key>" + QByteArray(15 * kMiB, 'x') + "</Key></T>"; }, true},
    {"HugeAttribute", [] { return kFinds + "<a b=\"" + QByteArray(15 * kMiB, 'x') + "\"/></T>"; }},
    {"MostEntries", [] { return kFinds + QByteArray("<Size>1</Size>").repeated(100'000) + "</T>"; }, true},
    {"OneTooMany", [] { return kFinds + QByteArray("<Size>1</Size>").repeated(100'001) + "</T>"; }, true},
    {"HugeKeys", [] { return kFinds + QByteArray("<Key>k</Key><Size>1</Size>").repeated(600'000) + "</T>"; }, true},
    {"CutShort", [] { return kFinds + "<Key>k"; }},
    {"NoXml", [] { return QByteArray("{\"Key\": 1}"); }},
    {"InvalidUtf8", [] { return kFinds + "<Key>\xC3(</Key></T>"; }},
    {"Nul", [] { return kFinds + QByteArray(1, '\0') + "</T>"; }},
    {"Nothing", [] { return QByteArray(); }},
};

/// In KiB, from the system's own account of this process.
qint64 memoryNow(const QByteArray &which) {
  const QByteArray all = contentOf(u"/proc/self/status"_s);
  return all.mid(all.indexOf(which + ':') + which.size() + 1).trimmed().split(' ').value(0).toLongLong();
}

/// Runs @p read and holds it to its bounds.
template <class Read> void expectCheap(const Read &read) {
  ::malloc_trim(0);
  writeFile(u"/proc/self/clear_refs"_s, "5"); // forgets the highest use
  const qint64 before = memoryNow("VmRSS");
  const std::clock_t start = std::clock();
  read();
  const auto milliseconds = (std::clock() - start) * 1000 / CLOCKS_PER_SEC;
  EXPECT_LT(milliseconds, 500 * kSlowness);
  if (kSlowness > 1) return; // a sanitizer keeps what is freed
  ASSERT_GT(before, 0);
  EXPECT_LT(memoryNow("VmHWM") - before, 64 * 1024);
}

class HostileXml : public testing::TestWithParam<Document> {};

TEST_P(HostileXml, costsLittle) {
  const QByteArray document = GetParam().make();
  const bool canBeListed = GetParam().canBeParsed && document.count("<Size>") <= 100'000;
  expectCheap([&] { EXPECT_EQ(listingPageIn(document).has_value(), canBeListed); });
  KaXMLParser parser;
  parser.setTarget({u"x-strata-storage-period"_s});
  expectCheap([&] {
    EXPECT_EQ(parser.parseXML(document, KaXMLParser::kKeyValueType), GetParam().canBeParsed ? Success : NoBody);
  });
}

INSTANTIATE_TEST_SUITE_P(Documents, HostileXml, testing::ValuesIn(kDocuments),
                         [](const auto &tested) { return std::string(tested.param.name); });

using HostileAnswer = ServiceTest;

TEST_F(HostileAnswer, isAFailureToParseAndNothingMore) {
  for (const Document &document : kDocuments) {
    const QByteArray body = document.make();
    if (body.isEmpty() || body.size() > 17 * kMiB) continue; // no body, or too much to send so often
    SCOPED_TRACE(document.name);
    for (const Endpoint endpoint : {Endpoint::ListItems, Endpoint::Sts, Endpoint::ObjectTagging})
      service.order(endpoint, {.kind = Fault::Kind::Body, .body = body});
    const bool canBeListed = document.canBeParsed && body.count("<Size>") <= 100'000;
    EXPECT_EQ(storage.listObjects(u"images/"_s, {}, [](const ListingPage &) {}).result, canBeListed ? Success : NoBody);
    const CredentialAnswer credential = request.getAwsTemporaryCredential(u"t"_s);
    EXPECT_EQ(credential.result, Success);
    EXPECT_EQ(credential.credential.has_value(), document.canBeParsed);
    EXPECT_EQ(credential.credential.value_or(KaCredential()).accessKeyId, document.canBeParsed ? u"id"_s : QString());
    const TagVerdict verdict = storage.checkObjectTagIs10GStorage(imageKey);
    EXPECT_EQ(verdict.result, Success);
    const bool findsTag = body.startsWith("<T>") && body.size() <= 16 * kMiB;
    EXPECT_EQ(verdict.bDownloadContent, !findsTag) << "what stood in front of an error has been found";
  }
}

TEST(Xml, givesTheTextAfterATargetName) {
  const std::pair<QByteArray, QHash<QString, QString>> cases[] = {
      {"<T><K>period</K><V>31</V><K>x</K><V>y</V><K>period</K><V>30</V></T>", {{u"period"_s, u"30"_s}}},
      {"<T><K>owner</K><V>period</V><K>30</K></T>", {{u"owner"_s, u"period"_s}, {u"period"_s, u"30"_s}}},
      {"<T>p&#101;r<![CDATA[io]]>d<V>写&amp;<!-- c --><![CDATA[<d>]]></V></T>", {{u"period"_s, u"写&<d>"_s}}},
      {"<T><K>period</K>\n<V>30</V></T>", {{u"period"_s, u"\n"_s}}},
  };
  KaXMLParser parser;
  parser.setTarget({u"period"_s, u"owner"_s});
  for (const auto &[xml, values] : cases) {
    EXPECT_EQ(parser.parseXML(xml, KaXMLParser::kKeyValueType), Success) << xml.constData();
    EXPECT_EQ(parser.result(), values) << xml.constData();
    EXPECT_EQ(parser.result_length(), quint64(values.size()));
  }
  EXPECT_EQ(parser.parseXML("<T><K>period</K><V>30</V></T>", KaXMLParser::kKeyValueType - 1), Success);
  EXPECT_EQ(parser.result_length(), 0) << "another mode collects nothing";
}

TEST(Xml, listsWhatAPageHolds) {
  const auto page = listingPageIn(R"(<?xml version="1.0" encoding="UTF-8"?>
<s3:L xmlns:s3="x"><Prefix>images/</Prefix><Contents><Key>a&amp;<![CDATA[<b>]]>&#x5199;</Key><Size>7</Size></Contents>
<Contents><Key>folder/</Key><Size>0</Size></Contents><s3:Contents><s3:Key>é</s3:Key><Size>5000000000</Size></s3:Contents>
<CommonPrefixes><Prefix>images/original/u/c 1/</Prefix></CommonPrefixes><Prefix>x/</Prefix>
<CommonPrefixes><Prefix>d2</Prefix></CommonPrefixes><NextContinuationToken>t=</NextContinuationToken></s3:L>)");
  ASSERT_TRUE(page);
  EXPECT_EQ(page->page.contents, (std::vector<ListedObject>{{u"a&<b>写"_s, 7}, {u"é"_s, 5'000'000'000}}));
  EXPECT_EQ(page->page.devices, (QStringList{u"c 1"_s, u"d2"_s}));
  EXPECT_EQ(page->nextContinuationToken, u"t="_s);
  EXPECT_EQ(listingPageIn("<L><NextContinuationToken/></L>").value().nextContinuationToken, std::nullopt);
}

} // namespace
