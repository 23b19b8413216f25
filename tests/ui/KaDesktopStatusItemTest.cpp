#include "ui/KaDesktopStatusItem.h"
#include "platform/ActivationToken.h"
#include "tests/ui/UiProfile.h"
#include "ui/StatusIcons.h"
#include "ui/Texts.h"

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QAction>
#include <QMessageBox>
#include <QTranslator>

using namespace Qt::StringLiterals;
using testing::ElementsAre;

namespace {

class DesktopItem : public testing::Test {
protected:
  DesktopItem() { installTexts(); }

  /// The visible entries as a person reads them.
  [[nodiscard]] static std::string entries() {
    QStringList texts;
    for (const QAction *const action : UiProfile::windows<QMenu>().first()->actions()) {
      const QString mark = action->isChecked() ? u" [x]"_s : action->isEnabled() ? QString() : u" (off)"_s;
      if (action->isVisible()) texts << (action->isSeparator() ? u"-"_s : action->text() + mark);
    }
    return texts.join(u'|').toStdString();
  }

  const UiProfile profile;
};

TEST_F(DesktopItem, statesItsMenuByTheGivenValueAndHasAPictureForEveryFrame) {
  for (int frame = 0; frame <= static_cast<int>(StatusFrame::Unlink); ++frame)
    EXPECT_EQ(statusIcon(static_cast<StatusFrame>(frame)).pixmap(96).width(), 96) << "is a drawing: " << frame;
  KaDesktopStatusItem item;
  std::vector<StatusEntry> chosen;
  QObject::connect(&item, &KaStatusItemView::entryTriggered, [&](StatusEntry entry) { chosen.push_back(entry); });
  const auto actions = UiProfile::windows<QMenu>().first()->actions();
  EXPECT_EQ(entries(), "Download Now (off)|-|Download Folders…|Log In…|-|Help|About Downloaderpictora|Start "
                       "with the Computer|-|Quit Downloaderpictora");
  const StatusItemState linked{
      .isLinked = true, .isDownloadEnabled = true, .isLogginEnabled = false, .isLaunchedAtLogin = true};
  item.show(linked);
  EXPECT_EQ(entries(), "Download Now|-|Download Folders…|Log Out (off)|-|Help|About Downloaderpictora|Start with "
                       "the Computer [x]|-|Quit Downloaderpictora");
  item.show({.isDownloadEnabled = true});
  const std::string confirmed = entries();
  qputenv("XDG_ACTIVATION_TOKEN", "panel's");
  actions.first()->trigger();
  EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN")) << "children would get it";
  EXPECT_EQ(platform::takeActivationToken(), u"panel's") << "it is there from the click on, for as long as one lives";
  for (QAction *const action : actions.sliced(1))
    action->trigger();
  EXPECT_THAT(chosen,
              ElementsAre(StatusEntry::Download, StatusEntry::DispSetting, StatusEntry::Link, StatusEntry::Logout,
                          StatusEntry::Help, StatusEntry::About, StatusEntry::LaunchSetting, StatusEntry::Exit));
  item.show({.isDownloadEnabled = true});
  EXPECT_EQ(entries(), confirmed) << "the state does not confirm the click";
  EXPECT_EQ(UiProfile::windows<QMenu>().first()->actions(), actions) << "an open menu would close";
}

TEST_F(DesktopItem, alertsOneAtATimeInOrderAndOnceEach) {
  QTranslator spanish; // without the words of Qt, which a system may lack
  ASSERT_TRUE(spanish.load(u":/i18n/pictora_es"_s) && QCoreApplication::installTranslator(&spanish));
  const QIcon own(u":/images/img_app_info.png"_s);
  QApplication::setWindowIcon(own);
  KaDesktopStatusItem item;
  for (const auto &text : {u"first"_s, u"second"_s, u"first"_s, u"second"_s, QString()})
    item.alert(text);
  for (const auto &text : {u"first"_s, u"second"_s, QString()}) {
    ASSERT_EQ(UiProfile::windows<QMessageBox>().size(), 1);
    const QMessageBox &box = *UiProfile::windows<QMessageBox>().first();
    EXPECT_EQ(box.text(), text);
    const QPixmap icon = box.iconPixmap();
    EXPECT_TRUE(icon.width() >= 16 && icon.toImage() == own.pixmap(icon.size()).toImage()) << "no warning";
    QAbstractButton *const ok = box.buttons().value(0);
    EXPECT_EQ(ok->text(), u"&Cerrar");
    ok->click();
    QCoreApplication::processEvents();
  }
  EXPECT_TRUE(UiProfile::windows<QMessageBox>().isEmpty());
  item.alert(u"first"_s);
  EXPECT_EQ(UiProfile::windows<QMessageBox>().size(), 1);
}

} // namespace
