#include "app/KaModelFacade.h"
#include "app/settings/SettingsFiles.h"
#include "tests/support/TestProfile.h"

#include <QFileInfo>

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

class Bookkeeping : public testing::TestWithParam<Operation> {
protected:
  const TestProfile profile;
};

TEST_P(Bookkeeping, changesAsDescribed) {
  KaModelFacade &facade = KaModelFacade::sharedInstance();
  GetParam().perform(facade);
  EXPECT_EQ(facade.downloadData(kKey), GetParam().onNothing);

  facade.setDownloadData(kKey, u"20240101/01"_s, {u"a"_s, u"b"_s});
  GetParam().perform(facade);
  EXPECT_EQ(facade.downloadData(kKey), GetParam().onExisting);
  EXPECT_EQ(facade.downloadDataLastDateTime(kKey), GetParam().onExisting->LastDateTime);
  EXPECT_EQ(facade.downloadDataContentIds(kKey), GetParam().onExisting->ContentIds);
  EXPECT_EQ(facade.downloadData(u"another key"_s), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Facade, Bookkeeping,
    testing::Values(
        Operation{"uuid", [](KaModelFacade &facade) { facade.setDownloadDataUUID(kKey); },
                  KaDownloadData{u"19700101/00"_s, {}}, KaDownloadData{u"20240101/01"_s, {u"a"_s, u"b"_s}}},
        Operation{"lastDateTime",
                  [](KaModelFacade &facade) { facade.setDownloadDataLastDateTime(kKey, u"20240202/02"_s); },
                  std::nullopt, KaDownloadData{u"20240202/02"_s, {u"a"_s, u"b"_s}}},
        Operation{"addContentKeepsDuplicates",
                  [](KaModelFacade &facade) {
                    facade.setDownloadDataAddContent(kKey, u"b"_s);
                    facade.setDownloadDataAddContent(kKey, u"c"_s);
                  },
                  std::nullopt, KaDownloadData{u"20240101/01"_s, {u"a"_s, u"b"_s, u"b"_s, u"c"_s}}},
        Operation{"removeContents", [](KaModelFacade &facade) { facade.setDownloadDataRemoveContents(kKey); },
                  std::nullopt, KaDownloadData{u"20240101/01"_s, {}}},
        Operation{"newDate",
                  [](KaModelFacade &facade) { facade.setDownloadDataNewDate(kKey, u"20240202/02"_s, u"c"_s); },
                  std::nullopt, KaDownloadData{u"20240202/02"_s, {u"c"_s}}},
        Operation{"data", [](KaModelFacade &facade) { facade.setDownloadData(kKey, u"20240303/03"_s, {u"d"_s}); },
                  KaDownloadData{u"20240303/03"_s, {u"d"_s}}, KaDownloadData{u"20240303/03"_s, {u"d"_s}}}),
    [](const auto &row) { return row.param.name; });

class FacadeData : public testing::Test {
protected:
  const TestProfile profile;
  KaModelFacade &facade = KaModelFacade::sharedInstance();
};

TEST_F(FacadeData, handsOutCopiesOfTheIds) {
  facade.setDownloadData(kKey, u"20240101/01"_s, {u"a"_s});
  auto ids = facade.downloadDataContentIds(kKey);
  ASSERT_TRUE(ids);
  ids->append(u"mine"_s);
  EXPECT_EQ(facade.downloadDataContentIds(kKey), QStringList{u"a"_s});
}

TEST_F(FacadeData, bringsBookkeepingBackFromItsFile) {
  EXPECT_FALSE(facade.loadGetImageInfo(kFile));
  facade.setDownloadData(kKey, u"20240101/01"_s, {u"a"_s, u"b"_s});
  ASSERT_TRUE(facade.saveGetImageInfo(kFile, kKey));
  facade.setDownloadData(kKey, u"20250101/01"_s, {});
  ASSERT_TRUE(facade.loadGetImageInfo(kFile));
  EXPECT_EQ(facade.downloadData(kKey), (KaDownloadData{u"20240101/01"_s, {u"a"_s, u"b"_s}}));
}

TEST_F(FacadeData, savesAnEmptyRecordForAnUnknownTarget) {
  ASSERT_TRUE(facade.saveGetImageInfo(kFile, kKey));
  ASSERT_TRUE(facade.loadGetImageInfo(kFile));
  EXPECT_EQ(facade.downloadData(kKey), (KaDownloadData{u""_s, {}}));
}

TEST_F(FacadeData, keepsSettingsAtOnce) {
  const KaDownloadOption option{u"/a"_s, u"/b"_s, u"false"_s, u"true"_s, u"false"_s, 3};
  facade.setDownloadOption(option);
  EXPECT_EQ(facade.downloadOption(), option);
  EXPECT_EQ(loadDownloadOption(), option);
  EXPECT_EQ(facade.downloadOptionParentFolder(), u"/a"_s);
  EXPECT_EQ(facade.downloadOptionParent10GFolder(), u"/b"_s);
  EXPECT_EQ(facade.checkBox10GDownload(), u"false"_s);
  EXPECT_EQ(facade.checkBoxCreateSubfolder(), u"true"_s);
  EXPECT_EQ(facade.checkBoxDownloadMetadata(), u"false"_s);
  EXPECT_EQ(facade.downloadOptionChildFolder(), 3);
}

TEST_F(FacadeData, startsWithTheDefaultsAndLoadsWhatWasSaved) {
  EXPECT_EQ(facade.downloadOption(), defaultDownloadOption());
  EXPECT_FALSE(facade.loadDownloadFolderSetting());
  EXPECT_EQ(facade.downloadOption(), defaultDownloadOption());
  const KaDownloadOption saved{u"/a"_s, u"/b"_s, u"false"_s, u"false"_s, u"false"_s, 2};
  ASSERT_TRUE(saveDownloadOption(saved)) << "the app folder is there from the start";
  EXPECT_FALSE(facade.loadDownloadFolderSetting());
  EXPECT_EQ(facade.downloadOption(), saved);
}

} // namespace
