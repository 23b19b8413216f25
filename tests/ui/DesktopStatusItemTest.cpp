#include "ui/DesktopStatusItem.h"
#include "tests/ui/UiProfile.h"
#include "ui/StatusIcons.h"
#include "ui/Texts.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QImage>
#include <QMessageBox>

using namespace Qt::StringLiterals;
using testing::ElementsAre;

namespace {

class DesktopItem : public testing::Test {
protected:
  DesktopItem() { installTexts(); }

  [[nodiscard]] static QList<QMessageBox *> alerts() {
    QList<QMessageBox *> open;
    for (QWidget *const widget : QApplication::topLevelWidgets())
      if (auto *const box = qobject_cast<QMessageBox *>(widget); box && box->isVisible()) open << box;
    return open;
  }
  [[nodiscard]] static QList<QAction *> actions() {
    for (QWidget *const widget : QApplication::topLevelWidgets())
      if (auto *const menu = qobject_cast<QMenu *>(widget)) return menu->actions();
    return {};
  }
  /// The visible entries as a person reads them.
  [[nodiscard]] static std::vector<std::string> entries() {
    std::vector<std::string> texts;
    for (const QAction *const action : actions()) {
      if (!action->isVisible()) continue;
      const QString mark = action->isChecked() ? u" [x]"_s : action->isEnabled() ? QString() : u" (off)"_s;
      texts.push_back((action->isSeparator() ? u"-"_s : action->text() + mark).toStdString());
    }
    return texts;
  }
  const UiProfile profile;
};

TEST_F(DesktopItem, statesItsMenuByTheGivenValueWithEntriesThatStay) {
  DesktopStatusItem item;
  std::vector<StatusEntry> chosen;
  QObject::connect(&item, &StatusItemView::entryTriggered, [&](StatusEntry entry) { chosen.push_back(entry); });
  EXPECT_THAT(entries(),
              ElementsAre("Download Now (off)", "-", "Log In…", "-", "Start at Login", "-", "Quit Downloaderpictora"));
  const StatusItemState linked{
      .isLinked = true, .isDownloadEnabled = true, .isLogginEnabled = false, .isLaunchedAtLogin = true};
  item.show(linked);
  EXPECT_THAT(entries(), ElementsAre("Download Now", "-", "Log Out (off)", "-", "Start at Login [x]", "-",
                                     "Quit Downloaderpictora"));
  item.show({.isDownloadEnabled = true});
  for (QAction *const action : actions())
    action->trigger();
  EXPECT_THAT(chosen, ElementsAre(StatusEntry::Download, StatusEntry::Link, StatusEntry::Logout,
                                  StatusEntry::LaunchSetting, StatusEntry::Exit));
  item.show({.isDownloadEnabled = true});
  EXPECT_THAT(entries(), testing::Contains("Start at Login")) << "the state does not confirm it";
}

TEST_F(DesktopItem, alertsOneAtATimeInOrderAndOnceEach) {
  DesktopStatusItem item;
  for (const auto &text : {u"first"_s, u"second"_s, u"first"_s, u"second"_s, QString()})
    item.alert(text);
  for (const auto &text : {u"first"_s, u"second"_s, QString()}) {
    ASSERT_EQ(alerts().size(), 1);
    EXPECT_EQ(alerts().first()->text(), text);
    alerts().first()->close();
    QCoreApplication::processEvents();
  }
  EXPECT_TRUE(alerts().isEmpty());
  item.alert(u"first"_s);
  EXPECT_EQ(alerts().size(), 1);
}

TEST_F(DesktopItem, showsEveryFrameAsAPictureOfItsOwn) {
  std::vector<QImage> seen;
  for (int frame = 0; frame <= static_cast<int>(StatusFrame::Unlink); ++frame) {
    const QImage image = statusIcon(static_cast<StatusFrame>(frame)).pixmap(22).toImage();
    EXPECT_TRUE(image.size() == QSize(22, 22) && !testing::Value(seen, testing::Contains(image))) << frame;
    seen.push_back(image);
  }
}

} // namespace
