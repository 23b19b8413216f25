#include "tests/support/OddKeys.h"
#include "sandbox/SampleLibrary.h"
#include "tests/engine/EngineFixture.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

const QStringList kDevices{u"c#1"_s, u"c+1"_s, u"é 1"_s};

/// The file names of keys that other implementations were tried with.
QStringList oddNames() {
  QStringList names;
  for (const QJsonValue &row : oddKeys()["keys"_L1].toArray())
    names << row["key"_L1].toString().section(u'/', -1);
  return names;
}

/// An account whose every name asks to be encoded, and what a run has to make of it: content by path.
struct Account {
  const char *name;
  QString id;
  QHash<QString, QString> defaults{};
  QByteArray region = "eu-west-1";
  QStringList hosts{u"strata-prd-content.s3.localhost"_s, u"strata-prd-ka-preview-list.s3.localhost"_s};
};

class OddKeys : public ProcessorTest, public testing::WithParamInterface<Account> {
protected:
  OddKeys()
      : ProcessorTest(GetParam().defaults, GetParam().id, {.region = GetParam().region, .requestsPerConnection = 1}) {
    delegate.change([this](auto &answers) {
      answers.option = {.parentFolder = path(u"30"_s), .parent10GFolder = path(u"10G"_s), .childFolder = 4};
    });
    for (const QString &folder : {u"30"_s, u"10G"_s})
      QDir().mkpath(path(folder));
    for (const QString &device : kDevices)
      for (const QString &name : oddNames())
        addImage(device, name);
    addPreviews();
  }

  /// Each with all that can belong to an image; every second one with an expand variant, every third one kept long.
  void addImage(const QString &device, const QString &name) {
    const QString shown = device + u' ' + name;
    sandbox::LibraryObject object = image(u"10"_s, name, shown.toUtf8());
    object.deviceId = device;
    object.fileNameMetadata = sandbox::fileNameHeader(shown);
    const bool isExpanded = count % 2 == 0;
    const bool isKept = count % 3 == 0;
    ++count;
    if (isExpanded) object.expandBody = "expanded " + object.body;
    if (isExpanded) object.expandMetadataDocument = R"({"sortation":{"matchedRules":["a#b"]}})";
    if (!isKept) object.tags = {{u"x-strata-storage-period"_s, u"30"_s}};
    add(object);
    expected.insert((isExpanded ? u"30/a#b/"_s : u"30/"_s) + shown, object.expandBody.value_or(object.body));
    if (isKept) expected.insert(u"10G/"_s + shown, object.body);
  }

  void addPreviews() {
    QList<sandbox::SamplePreview> previews;
    for (const QString &name : oddNames()) {
      previews.append({int(previews.size()) + 1, name, "of " + name.toUtf8(), name, {}, u"20240501/10"_s});
      expected.insert(u"10G/"_s + name, previews.last().body);
    }
    sandbox::addPreviews(service.library(), previews);
  }

  int count = 0;
  QMap<QString, QByteArray> expected;
};

TEST_P(OddKeys, fillTheFoldersLikeAnyOthers) {
  ASSERT_GE(oddNames().size(), 20);
  start();
  ASSERT_TRUE(delegate.waitForEvent(u"result 2"_s));
  QMap<QString, QByteArray> arrived;
  for (const QString &file : files())
    arrived.insert(file, contentOf(path(file)));
  EXPECT_EQ(arrived.keys(), expected.keys());
  EXPECT_TRUE(arrived == expected);
  EXPECT_EQ(logged(u"[NG]"_s), QStringList()) << "nothing was refused or missing on the way";
  EXPECT_EQ(service.logEvents().size(), 3) << "reports";
  for (const sandbox::RequestRecord &request : service.requests())
    EXPECT_TRUE(!request.host.endsWith(u"s3.localhost") || GetParam().hosts.contains(request.host))
        << qPrintable(request.host);
}

const Account kAccounts[] = {
    {"withABar", QString::fromLatin1(kOddAccount)},
    {"withASlash", u"realm/u@example.com"_s},
    {"inPathStyleAndAnotherRegion",
     QString::fromLatin1(kOddAccount),
     {{u"awsRegion"_s, u"us-west-2"_s}, {u"awsS3PathStyle"_s, u"true"_s}},
     "us-west-2",
     {u"s3.localhost"_s}},
};
INSTANTIATE_TEST_SUITE_P(OfAccount, OddKeys, testing::ValuesIn(kAccounts),
                         [](const auto &row) { return row.param.name; });

} // namespace
