#include "tests/support/OddKeys.h"
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
class OddKeys : public ProcessorTest, public testing::WithParamInterface<QString> {
protected:
  OddKeys() : ProcessorTest({}, GetParam()) {
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
    QJsonArray data;
    for (const QString &name : oddNames()) {
      const QString key = u"images/preview/"_s + GetParam() + u'/' + name;
      service.library().addRaw(sandbox::contentBucket(), key, {.body = key.toUtf8()});
      data.append(QJsonObject{{u"index"_s, data.size() + 1},
                              {u"preview_object_key"_s, key},
                              {u"file_size"_s, key.toUtf8().size()},
                              {u"original_file_name"_s, name},
                              {u"shooting_time"_s, u"2024-05-01T10:00:00"_s},
                              {u"upload_time"_s, u"20240501/10"_s}});
      expected.insert(u"10G/"_s + name, key.toUtf8());
    }
    service.library().addRaw(sandbox::previewListBucket(), GetParam() + u".json"_s,
                             {.body = QJsonDocument(QJsonObject{{u"data"_s, data}}).toJson()});
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
}

INSTANTIATE_TEST_SUITE_P(OfAccount, OddKeys,
                         testing::Values(QString::fromLatin1(kOddAccount), u"realm/u@example.com"_s),
                         [](const auto &row) { return row.index == 0 ? "withABar" : "withASlash"; });

} // namespace
