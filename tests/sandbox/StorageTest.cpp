#include "sandbox/Library.h"
#include "tests/sandbox/Curl.h"

#include <gmock/gmock.h>

#include <QXmlStreamReader>

using namespace Qt::StringLiterals;
using namespace sandbox;

namespace {

struct Page {
  QStringList keys{};
  QStringList prefixes{};
  QString next{};
};

Page parsedPage(const QByteArray &document) {
  Page page;
  QXmlStreamReader xml(document);
  bool inPrefixes = false;
  while (!xml.atEnd()) {
    const auto token = xml.readNext();
    if (xml.name() == u"CommonPrefixes") inPrefixes = token == QXmlStreamReader::StartElement;
    if (token != QXmlStreamReader::StartElement) continue;
    if (xml.name() == u"Key") page.keys.append(xml.readElementText());
    if (xml.name() == u"Prefix" && inPrefixes) page.prefixes.append(xml.readElementText());
    if (xml.name() == u"NextContinuationToken") page.next = xml.readElementText();
  }
  EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
  return page;
}

class Storage : public testing::Test {
protected:
  [[nodiscard]] CurlAnswer get(const QString &key, const QString &extraQuery = {}, const QStringList &options = {}) {
    return curl(service, service.presignedUrl(credential, contentBucket(), key) + extraQuery,
                QStringList{u"-H"_s, u"x-amz-security-token: "_s + credential.sessionToken} + options);
  }
  /// All pages of a listing, one after another.
  [[nodiscard]] QList<Page> pages(const QString &query) {
    QList<Page> all;
    QString token;
    do {
      const CurlAnswer answer = get({}, u"&list-type=2"_s + query + token);
      EXPECT_EQ(answer.status, 200) << answer.body.toStdString();
      all.append(parsedPage(answer.body));
      token = u"&continuation-token="_s + QString::fromLatin1(all.last().next.toUtf8().toPercentEncoding());
    } while (!all.last().next.isEmpty() && all.size() < 100);
    return all;
  }
  void add(const QString &device, const QString &fileName) {
    service.library().add({.deviceId = device,
                           .date = u"20240501"_s,
                           .hour = u"10"_s,
                           .fileName = fileName,
                           .body = "picture",
                           .fileNameMetadata = fileNameHeader(fileName)});
  }

  Service service;
  const TemporaryCredential credential = service.issueCredential();
};

TEST_F(Storage, listsEveryKeyOnceOverAllPages) {
  QStringList names;
  for (int index = 0; index < 23; ++index)
    names.append(u"a&b <%1>.JPG"_s.arg(index, 2, 10, QLatin1Char('0')));
  for (const QString &name : names)
    add(u"dev1"_s, name);
  service.setListPageSize(4);

  QStringList listed;
  const QList<Page> all = pages(u"&prefix=images/original/user-0001/dev1"_s);
  for (const Page &page : all) {
    EXPECT_LE(page.keys.size(), 4);
    for (const QString &key : page.keys)
      listed.append(key.section(u'/', -1));
  }
  EXPECT_EQ(listed, names);
  EXPECT_EQ(all.size(), 6);
  for (const QChar special : {u'=', u'/', u'+'})
    EXPECT_TRUE(all.first().next.contains(special));
}

TEST_F(Storage, foldsDevicesOverSeveralPages) {
  for (const QString &device : {u"dev1"_s, u"dev2"_s, u"dev3"_s})
    for (const QString &name : {u"1.JPG"_s, u"2.JPG"_s})
      add(device, name);
  service.setListPageSize(1);
  QStringList devices;
  for (const Page &page : pages(u"&prefix=images/original/user-0001/&delimiter=/"_s))
    devices += page.prefixes;
  const QString root = u"images/original/user-0001/"_s;
  EXPECT_EQ(devices, QStringList({root + u"dev1/"_s, root + u"dev2/"_s, root + u"dev3/"_s}));
}

TEST_F(Storage, startsBehindTheStartKey) {
  for (const QString &name : {u"1.JPG"_s, u"2.JPG"_s, u"3.JPG"_s})
    add(u"dev1"_s, name);
  const QString folder = u"images/original/user-0001/dev1/20240501/10/"_s;
  const auto listed = [&](const QString &after) {
    return pages(u"&prefix=images/original/user-0001/dev1&start-after="_s + after).first().keys;
  };
  EXPECT_EQ(listed(folder + u"1.JPG"_s), QStringList({folder + u"2.JPG"_s, folder + u"3.JPG"_s}));
  EXPECT_EQ(listed(u"images/original/user-0001/dev1/20240501/10"_s).size(), 3);
  EXPECT_EQ(listed(u"images/original/user-0001/dev1/20240501/11"_s).size(), 0);
}

TEST_F(Storage, refusesBareContinuationTokens) {
  service.setListPageSize(1);
  add(u"dev1"_s, u"1.JPG"_s);
  add(u"dev1"_s, u"2.JPG"_s);
  const QString query = u"&prefix=images/original/user-0001/dev1"_s;
  const QString token = pages(query).first().next;
  const CurlAnswer answer = get({}, u"&list-type=2"_s + query + u"&continuation-token="_s + token);
  EXPECT_EQ(answer.status, 400);
  EXPECT_THAT(answer.body.toStdString(), testing::HasSubstr("<Code>InvalidArgument</Code>"));
}

TEST_F(Storage, carriesTheFileNameInAHeader) {
  add(u"dev1"_s, u"写真.JPG"_s);
  const CurlAnswer answer = get(u"images/original/user-0001/dev1/20240501/10/写真.JPG"_s, {}, {u"-i"_s});
  EXPECT_EQ(answer.status, 200);
  EXPECT_THAT(answer.body.toStdString(), testing::HasSubstr("x-amz-meta-file-name: 5YaZ55yfLkpQRw==\r\n"));
  EXPECT_THAT(answer.body.toStdString(), testing::EndsWith("\r\n\r\npicture"));
}

struct Refused {
  const char *name;
  QString key;
  QString query;
  int status;
  const char *code;
};

class StorageRefusal : public Storage, public testing::WithParamInterface<Refused> {};

TEST_P(StorageRefusal, comesAsAnErrorDocument) {
  const CurlAnswer answer = get(GetParam().key, GetParam().query);
  EXPECT_EQ(answer.status, GetParam().status);
  EXPECT_THAT(answer.body.toStdString(), testing::HasSubstr(std::string("<Code>") + GetParam().code + "</Code>"));
}

const std::vector<Refused> kRefused{
    {"missingObject", u"images/original/user-0001/dev1/20240501/10/none.JPG"_s, {}, 404, "NoSuchKey"},
    {"missingSettings", u"conf/settings.json"_s, {}, 404, "NoSuchKey"},
    {"objectOfAnotherUser", u"images/original/user-0002/dev1/20240501/10/1.JPG"_s, {}, 403, "AccessDenied"},
    {"listingOfAnotherUser", {}, u"&list-type=2&prefix=images/original/user-0002/"_s, 403, "AccessDenied"},
    {"listingAcrossUsers", {}, u"&list-type=2&prefix=images/original/user-0001"_s, 403, "AccessDenied"},
    {"listingOfEverything", {}, u"&list-type=2"_s, 403, "AccessDenied"},
};

INSTANTIATE_TEST_SUITE_P(Each, StorageRefusal, testing::ValuesIn(kRefused),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_F(Storage, refusesRevokedCredentials) {
  service.library().setSettingsObject("{}");
  EXPECT_EQ(get(u"conf/settings.json"_s).status, 200);
  service.revokeCredentials();
  EXPECT_EQ(get(u"conf/settings.json"_s).status, 403);
}

TEST_F(Storage, holdsManyObjectsInHoursOfTheirOwn) {
  service.library().addMany({.count = 2500, .size = 10, .deviceId = u"dev1"_s, .firstDate = u"20240501"_s});
  const QList<Page> all = pages(u"&prefix=images/original/user-0001/dev1"_s);
  ASSERT_EQ(all.size(), 3);
  EXPECT_EQ(all[2].keys.size(), 500);
  EXPECT_EQ(all[2].keys.last(), u"images/original/user-0001/dev1/20240501/02/M00002499.JPG"_s);
}

} // namespace
