#include "app/KaModelFacade.h"
#include "app/settings/SettingsFiles.h"
#include "tests/support/TestProfile.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

const QString kKey = u"user30days"_s;
const QString kFile = u"RecentDownloadData"_s;

struct Operation {
  const char *name;
  std::function<void(KaModelFacade &)> perform;
  std::optional<KaDownloadData> onNothing;  ///< the record afterwards, when there was none
  std::optional<KaDownloadData> onExisting; ///< when there was {"20240101/01", a b}
};

class FacadeData : public testing::Test {
protected:
  const TestProfile profile;
  KaModelFacade &facade = KaModelFacade::sharedInstance();
};

class Bookkeeping : public FacadeData, public testing::WithParamInterface<Operation> {};

TEST_P(Bookkeeping, changesAsDescribed) {
  GetParam().perform(facade);
  EXPECT_EQ(facade.downloadData(kKey), GetParam().onNothing);

  facade.setDownloadData(kKey, u"20240101/01"_s, {u"a"_s, u"b"_s});
  GetParam().perform(facade);
  EXPECT_EQ(facade.downloadData(kKey), GetParam().onExisting);
  EXPECT_EQ(facade.downloadDataLastDateTime(kKey), GetParam().onExisting->LastDateTime);
  EXPECT_EQ(facade.downloadDataContentIds(kKey), GetParam().onExisting->ContentIds);
  EXPECT_EQ(facade.downloadData(u"another key"_s), std::nullopt);
}

const QString kThen = u"20240101/01"_s;
const QString kLater = u"20240202/02"_s;
const std::vector<Operation> kOperations{
    {"uuid", [](auto &to) { to.setDownloadDataUUID(kKey); }, {{u"19700101/00"_s, {}}}, {{kThen, {u"a"_s, u"b"_s}}}},
    {"lastDateTime", [](auto &to) { to.setDownloadDataLastDateTime(kKey, kLater); }, {}, {{kLater, {u"a"_s, u"b"_s}}}},
    {"addContent",
     [](auto &to) { to.setDownloadDataAddContent(kKey, u"b"_s); },
     {},
     {{kThen, {u"a"_s, u"b"_s, u"b"_s}}}},
    {"removeContents", [](auto &to) { to.setDownloadDataRemoveContents(kKey); }, {}, {{kThen, {}}}},
    {"newDate", [](auto &to) { to.setDownloadDataNewDate(kKey, kLater, u"c"_s); }, {}, {{kLater, {u"c"_s}}}},
    {"data", [](auto &to) { to.setDownloadData(kKey, kLater, {u"d"_s}); }, {{kLater, {u"d"_s}}}, {{kLater, {u"d"_s}}}},
};

INSTANTIATE_TEST_SUITE_P(Facade, Bookkeeping, testing::ValuesIn(kOperations),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_F(FacadeData, bringsBookkeepingBackFromItsFile) {
  EXPECT_FALSE(facade.loadGetImageInfo(kFile));
  facade.setDownloadData(kKey, u"20240101/01"_s, {u"a"_s, u"b"_s});
  ASSERT_TRUE(facade.saveGetImageInfo(kFile, kKey));
  facade.setDownloadData(kKey, u"20250101/01"_s, {});
  ASSERT_TRUE(facade.loadGetImageInfo(kFile));
  EXPECT_EQ(facade.downloadData(kKey), (KaDownloadData{u"20240101/01"_s, {u"a"_s, u"b"_s}}));
  ASSERT_TRUE(facade.saveGetImageInfo(kFile, u"unknown"_s) && facade.loadGetImageInfo(kFile));
  EXPECT_EQ(facade.downloadData(u"unknown"_s), (KaDownloadData{u""_s, {}}));
}

TEST_F(FacadeData, startsWithTheDefaultSettingsAndKeepsChosenOnesAtOnce) {
  EXPECT_FALSE(facade.loadDownloadFolderSetting());
  EXPECT_EQ(facade.downloadOption(), defaultDownloadOption());
  const KaDownloadOption chosen{u"/a"_s, u"/b"_s, u"false"_s, u"true"_s, u"maybe"_s, 3};
  facade.setDownloadOption(chosen);
  EXPECT_EQ(loadDownloadOption(), chosen) << "the app folder is there from the start";
  EXPECT_EQ(facade.downloadOptionParentFolder(), u"/a"_s);
  EXPECT_EQ(facade.downloadOptionParent10GFolder(), u"/b"_s);
  EXPECT_EQ(facade.checkBox10GDownload(), u"false"_s);
  EXPECT_EQ(facade.checkBoxCreateSubfolder(), u"true"_s);
  EXPECT_EQ(facade.checkBoxDownloadMetadata(), u"maybe"_s);
  EXPECT_EQ(facade.downloadOptionChildFolder(), 3);
  const KaDownloadOption saved{u"/c"_s, u"/d"_s, u"false"_s, u"false"_s, u"false"_s, 2};
  ASSERT_TRUE(saveDownloadOption(saved));
  EXPECT_FALSE(facade.loadDownloadFolderSetting());
  EXPECT_EQ(facade.downloadOption(), saved);
}

} // namespace
