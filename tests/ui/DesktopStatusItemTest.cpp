#include "ui/DesktopStatusItem.h"
#include "tests/ui/UiProfile.h"
#include "ui/AlertQueue.h"
#include "ui/Texts.h"

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QAction>
#include <QMenu>
#include <QMessageBox>
#include <QTimer>

using namespace Qt::StringLiterals;
using testing::ElementsAre;

namespace {

class DesktopItem : public testing::Test {
protected:
  DesktopItem() {
    installTexts();
    item = std::make_unique<DesktopStatusItem>();
    QObject::connect(item.get(), &StatusItemView::entryTriggered,
                     [this](StatusEntry entry) { chosen.push_back(entry); });
  }

  [[nodiscard]] static QMenu *menu() {
    for (QWidget *const widget : QApplication::topLevelWidgets())
      if (auto *const found = qobject_cast<QMenu *>(widget)) return found;
    return nullptr;
  }

  /// The visible entries as a person reads them.
  [[nodiscard]] static std::vector<std::string> entries() {
    std::vector<std::string> texts;
    for (const QAction *const action : menu()->actions()) {
      if (!action->isVisible()) continue;
      const QString mark = action->isSeparator() ? u"-"_s : action->text();
      texts.push_back(
          (mark + (action->isChecked() ? u" [x]"_s : QString()) + (action->isEnabled() ? QString() : u" (off)"_s))
              .toStdString());
    }
    return texts;
  }

  const UiProfile profile;
  std::unique_ptr<DesktopStatusItem> item;
  std::vector<StatusEntry> chosen;
};

TEST_F(DesktopItem, statesItsMenuByTheGivenValue) {
  EXPECT_THAT(entries(),
              ElementsAre("Download Now (off)", "-", "Log In…", "-", "Start at Login", "-", "Quit Downloaderpictora"));
  item->show({.isLinked = true, .isDownloadEnabled = true, .isLogginEnabled = false, .isLaunchedAtLogin = true});
  EXPECT_THAT(entries(), ElementsAre("Download Now", "-", "Log Out (off)", "-", "Start at Login [x]", "-",
                                     "Quit Downloaderpictora"));
}

TEST_F(DesktopItem, keepsItsEntriesForLife) {
  const auto before = menu()->actions();
  for (const bool linked : {true, false, true})
    item->show({.isLinked = linked, .isDownloadEnabled = linked});
  EXPECT_EQ(menu()->actions(), before);
}

TEST_F(DesktopItem, tellsWhichEntryWasChosen) {
  item->show({.isDownloadEnabled = true});
  for (QAction *const action : menu()->actions())
    action->trigger();
  EXPECT_THAT(chosen, ElementsAre(StatusEntry::Download, StatusEntry::Link, StatusEntry::Logout,
                                  StatusEntry::LaunchSetting, StatusEntry::Exit));
}

TEST_F(DesktopItem, takesBackACheckMarkThatTheStateDoesNotConfirm) {
  const StatusItemState state;
  item->show(state);
  menu()->actions()[5]->trigger();
  item->show(state);
  EXPECT_THAT(entries(), testing::Contains("Start at Login"));
}

class Alerts : public testing::Test {
protected:
  Alerts() { installTexts(); }

  [[nodiscard]] static QList<QMessageBox *> open() {
    QList<QMessageBox *> boxes;
    for (QWidget *const widget : QApplication::topLevelWidgets())
      if (auto *const box = qobject_cast<QMessageBox *>(widget); box && box->isVisible()) boxes << box;
    return boxes;
  }
  [[nodiscard]] static std::vector<std::string> openTexts() {
    std::vector<std::string> texts;
    for (const auto *const box : open())
      texts.push_back(box->text().toStdString());
    return texts;
  }

  const UiProfile profile;
  AlertQueue alerts;
};

TEST_F(Alerts, standOneAtATimeInOrderAndOnceEach) {
  for (const auto &text : {u"first"_s, u"second"_s, u"first"_s, u"second"_s, QString()})
    alerts.show(text);
  for (const char *const text : {"first", "second", ""}) {
    ASSERT_THAT(openTexts(), ElementsAre(text));
    open().first()->buttons().first()->click();
    QCoreApplication::processEvents();
  }
  EXPECT_THAT(openTexts(), testing::IsEmpty());
  alerts.show(u"first"_s);
  EXPECT_THAT(openTexts(), ElementsAre("first"));
}

TEST_F(Alerts, goOnWhenTheWindowIsClosedWithoutAnAnswer) {
  alerts.show(u"first"_s);
  alerts.show(u"second"_s);
  open().first()->close();
  QCoreApplication::processEvents();
  EXPECT_THAT(openTexts(), ElementsAre("second"));
}

TEST_F(Alerts, neitherBlockNorKeepTheProgramFromEnding) {
  bool went = false;
  QTimer::singleShot(0, [&] {
    alerts.show(u"first"_s);
    alerts.show(u"second"_s);
    went = true;
    QCoreApplication::quit();
  });
  EXPECT_EQ(QApplication::exec(), 0);
  EXPECT_TRUE(went);
}

} // namespace
