#include "app/KaModelFacade.h"
#include "settings/SettingsFiles.h"
#include "tests/support/TestProfile.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString kKey = u"user30days"_s;
const QString kFile = u"RecentDownloadData"_s;
const QString kThen = u"20240101/01"_s;
const QString kLater = u"20240202/02"_s;

class FacadeData : public testing::Test {
protected:
  [[nodiscard]] bool holds(const QString &date, const QStringList &ids) const {
    return facade.downloadDataLastDateTime(kKey) == date && facade.downloadDataContentIds(kKey) == ids;
  }

  const TestProfile profile;
  KaModelFacade &facade = KaModelFacade::sharedInstance();
};

TEST_F(FacadeData, changesARecordOnlyWhereThereIsOne) {
  const auto changeAll = [this] {
    facade.setDownloadDataAddContent(kKey, u"x"_s);
    facade.setDownloadDataNewDate(kKey, kThen, u"a"_s);
    facade.setDownloadDataAddContent(kKey, u"a"_s);
    facade.setDownloadDataLastDateTime(kKey, kLater);
  };
  changeAll();
  facade.setDownloadDataRemoveContents(kKey);
  EXPECT_EQ(facade.downloadData(kKey), std::nullopt);
  facade.setDownloadDataUUID(kKey);
  EXPECT_TRUE(holds(u"19700101/00"_s, {}));
  changeAll();
  facade.setDownloadDataUUID(kKey);
  facade.setDownloadData(u"another key"_s, kThen, {u"b"_s});
  EXPECT_TRUE(holds(kLater, {u"a"_s, u"a"_s})) << "what is there stays";
  facade.setDownloadDataRemoveContents(kKey);
  EXPECT_TRUE(holds(kLater, {}));
}

TEST_F(FacadeData, bringsBookkeepingBackFromItsFile) {
  EXPECT_FALSE(facade.loadGetImageInfo(kFile));
  facade.setDownloadData(kKey, u"20240101/01"_s, {u"a"_s, u"b"_s});
  ASSERT_TRUE(facade.saveGetImageInfo(kFile, kKey));
  facade.setDownloadData(kKey, u"20250101/01"_s, {});
  ASSERT_TRUE(facade.loadGetImageInfo(kFile));
  EXPECT_EQ(facade.downloadData(kKey), (KaDownloadData{u"20240101/01"_s, {u"a"_s, u"b"_s}}));
}

TEST_F(FacadeData, startsWithTheDefaultSettingsAndKeepsChosenOnesAtOnce) {
  EXPECT_FALSE(facade.loadDownloadFolderSetting());
  EXPECT_EQ(facade.downloadOption(), defaultDownloadOption());
  const KaDownloadOption chosen{u"/a"_s, u"/b"_s, u"false"_s, u"true"_s, u"maybe"_s, 3};
  facade.setDownloadOption(chosen);
  EXPECT_EQ(loadDownloadOption(), chosen) << "the app folder is there from the start";
  const KaDownloadOption saved{u"/c"_s, u"/d"_s, u"false"_s, u"false"_s, u"false"_s, 2};
  ASSERT_TRUE(saveDownloadOption(saved));
  EXPECT_FALSE(facade.loadDownloadFolderSetting());
  EXPECT_EQ(facade.downloadOption(), saved);
}

} // namespace
