#include "app/KaModelFacade.h"
#include "log/KaLogUtility.h"
#include "platform/AppInfo.h"
#include "tests/support/FakeBrowser.h"
#include "tests/ui/UiProfile.h"
#include "ui/KaCustomImageView.h"
#include "ui/KaDownloadFolderSettingView.h"
#include "ui/KaVersionInformationView.h"
#include "ui/Texts.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QRadioButton>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QStringList kSchemes{u"yyyyMMddRadioButton"_s, u"yyyy_MMRadioButton"_s, u"yyyy_yyyyMMddRadioButton"_s,
                           u"yyyy_MM_yyyyMMddRadioButton"_s, u"noneRadioButton"_s};
const QColor kGrey = QColor::fromRgbF(0.5F, 0.5F, 0.5F);

class Settings : public testing::Test {
protected:
  Settings() { installTexts(); }
  ~Settings() override {
    facade.endDownloadProcess();
    facade.joinDownloadProcess();
  }

  void open(qint64 childFolder = 2) {
    stored.childFolder = childFolder;
    facade.setDownloadOption(stored);
    view = std::make_unique<KaDownloadFolderSettingView>(facade);
    view->show();
  }
  template <class Widget> Widget &find(const QString &name) const { return *view->findChild<Widget *>(name); }
  void click(const QString &button) const { find<QAbstractButton>(button).click(); }
  QLineEdit &folder() const { return find<QLineEdit>(u"inputFolderPathLabel"_s); }
  QLineEdit &folder10G() const { return find<QLineEdit>(u"input10GFolderPathLabel"_s); }
  /// What OK warns of; the window is open still.
  QString warning() const {
    click(u"okButton"_s);
    const std::unique_ptr<QMessageBox> box(view->findChild<QMessageBox *>());
    EXPECT_TRUE(view->isVisible() && facade.downloadOption() == stored);
    if (!box) return {};
    EXPECT_EQ(box->buttons().value(0)->text(), localised("DLG_COMMON_BUTTON_OK_MAC"_L1));
    return box->text();
  }

  const UiProfile profile;
  KaModelFacade &facade = KaModelFacade::sharedInstance();
  const QString usable = profile.picturesFolder();
  KaDownloadOption stored = {usable, usable + u"/Transferred"_s, u"false"_s, u"false"_s, u"true"_s};
  std::unique_ptr<KaDownloadFolderSettingView> view;
};

/// Texts that wrap need the height for their width; all others stand in one line.
[[nodiscard]] bool hasRoomForItsText(const QWidget &widget) {
  const auto *const label = qobject_cast<const QLabel *>(&widget);
  if (label && label->wordWrap())
    return label->height() >= label->heightForWidth(label->width())
           && label->width() >= label->minimumSizeHint().width();
  if (qobject_cast<const QGroupBox *>(&widget)) return widget.width() >= widget.minimumSizeHint().width();
  if (!label && !qobject_cast<const QAbstractButton *>(&widget)) return true;
  return widget.width() >= widget.sizeHint().width() && widget.height() >= widget.sizeHint().height();
}

TEST_F(Settings, haveRoomForTheirTextsInEveryLanguageAndSize) {
  for (const char *language : {"en", "de", "fr", "es", "it", "ja", "ko", "zh_CN"}) {
    QLocale::setDefault(QLocale(QLatin1StringView(language)));
    installTexts();
    for (const int size : {7, 9, 10, 12, 13, 15, 18, 21}) {
      QFont font = QApplication::font();
      font.setPointSize(size);
      QApplication::setFont(font);
      open();
      for (const QWidget *widget : view->findChildren<QWidget *>())
        EXPECT_TRUE(hasRoomForItsText(*widget)) << language << ' ' << size << ' ' << widget->objectName().toStdString();
    }
  }
}

TEST_F(Settings, showWhatIsStoredAndSaveWhatIsShown) {
  for (const qint64 scheme : {0, 1, 4, 5, -1}) {
    open(scheme);
    EXPECT_TRUE(find<QRadioButton>(kSchemes[scheme < 0 ? 0 : scheme % 5]).isChecked()) << scheme;
  }
  open();
  EXPECT_EQ(folder().text(), stored.parentFolder);
  EXPECT_EQ(folder10G().text(), stored.parent10GFolder);
  const QString rule = localised("DLG_SETTING_SORTING_RULE_NAME"_L1) + u'/';
  for (const bool on : {false, true}) {
    for (const QString &scheme : kSchemes)
      EXPECT_EQ(find<QRadioButton>(scheme).text().startsWith(rule), on && scheme != kSchemes[4]);
    if (!on) QTest::mouseClick(&find<QLabel>(u"labelCreateSubfolder"_s), Qt::LeftButton);
  }
  click(u"checkBoxDownloadMetadata"_s);
  click(kSchemes[4]);
  click(u"okButton"_s);
  EXPECT_EQ(view->result(), QDialog::Accepted);
  const KaDownloadOption saved{usable, stored.parent10GFolder, u"false"_s, u"true"_s, u"false"_s, 4};
  EXPECT_EQ(facade.downloadOption(), saved);

  for (const bool byKey : {false, true}) {
    open();
    click(kSchemes[0]);
    byKey ? QTest::keyClick(view.get(), Qt::Key_Escape) : click(u"cancelButton"_s);
    EXPECT_TRUE(!view->isVisible() && facade.downloadOption() == stored);
  }
}

TEST_F(Settings, warnOfAFolderThatCannotBeUsedUnlessItIsNot) {
  const QString tooLong = usable + u'/' + u"x/"_s.repeated(200);
  QDir().mkpath(tooLong);
  for (const auto &[path, key] : {std::pair(usable + u"/gone"_s, "MSG_TRANS_FOLDER_NOT_ACCESS"_L1),
                                  {u"/usr"_s, "MSG_TRANS_FOLDER_NOT_SUPPORT"_L1},
                                  {tooLong, "MSG_TRANS_FOLDER_TOO_LONG"_L1}}) {
    open();
    folder().setText(path);
    EXPECT_EQ(warning(), localised(key));
    folder().setText(usable);
    folder10G().setText(path);
    QTest::mouseClick(&find<QLabel>(u"label10GDownload"_s), Qt::LeftButton);
    EXPECT_EQ(warning(), localised(key));
  }
  click(u"checkBox10GDownloadButton"_s);
  click(u"okButton"_s);
  EXPECT_EQ(facade.downloadOption().parent10GFolder, tooLong);
}

TEST_F(Settings, turnThe10GFolderOnWhenOneIsChosen) {
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  const auto color = [this] { return folder10G().palette().color(QPalette::Text); };
  for (const QString &which : {QString(), u"10G"_s}) {
    open();
    EXPECT_EQ(color(), kGrey);
    click(u"input%1FolderPathReferenceButton"_s.arg(which));
    auto *const chooser = view->findChild<QFileDialog *>();
    EXPECT_EQ(chooser->directory().path(), which.isEmpty() ? usable : stored.parent10GFolder);
    Q_EMIT chooser->fileSelected(u"/chosen"_s);
    EXPECT_EQ((which.isEmpty() ? folder() : folder10G()).text(), u"/chosen");
    EXPECT_EQ(find<QCheckBox>(u"checkBox10GDownloadButton"_s).isChecked(), !which.isEmpty());
    EXPECT_EQ(color() == kGrey, which.isEmpty());
  }
  stored.checkBox10GDownload = u"true"_s;
  facade.setOffers10GStorage(false);
  open();
  EXPECT_TRUE(find<QCheckBox>(u"checkBox10GDownloadButton"_s).isChecked()) << "the user's choice";
  EXPECT_EQ(color(), kGrey);
}

TEST(About, showsTheLogAndSaysWithADotThatItIsOn) {
  const UiProfile profile;
  const FakeBrowser browser(profile);
  installTexts();
  KaVersionInformationView view;
  auto &picture = *view.findChild<KaCustomImageView *>();
  view.show();
  EXPECT_EQ(view.focusWidget(), &picture) << "keys go there";
  // Keys by the names that X11 and Wayland have for them, which tell left from right; test events carry none.
  const auto send = [&](QEvent::Type type, int key, quint32 name) {
    QKeyEvent event(type, key, type == QEvent::KeyRelease ? Qt::ShiftModifier : Qt::NoModifier, 0, name, 0);
    QApplication::sendEvent(&picture, &event);
  };
  for (const quint32 shift : {0xffe1, 0xffe2}) {
    send(QEvent::KeyPress, Qt::Key_Shift, shift);
    QTest::mouseClick(&picture, Qt::RightButton);
    EXPECT_FALSE(QFile::exists(profile.appFolder() + u"/Log"_s));
    QTest::mouseClick(&picture, Qt::LeftButton);
    EXPECT_EQ(browser.takeUrl(), profile.appFolder() + u"/Log"_s);
    EXPECT_TRUE(QDir().rmdir(profile.appFolder() + u"/Log"_s));
    send(QEvent::KeyRelease, Qt::Key_Shift, shift);
    send(QEvent::KeyPress, Qt::Key_Control, 0xffe4); // the right one
    QTest::mouseClick(&picture, Qt::LeftButton);
    EXPECT_FALSE(QFile::exists(profile.appFolder() + u"/Log"_s) || KaLogUtility::outputLog());
  }
  send(QEvent::KeyPress, Qt::Key_Control, 0xffe3);
  for (const bool on : {true, false}) {
    QTest::mouseClick(&picture, Qt::LeftButton);
    EXPECT_EQ(KaLogUtility::outputLog(), on);
    EXPECT_EQ(view.findChild<QLabel *>(u"copyrightLabel"_s)->text(),
              platform::appInfo().copyright + (on ? u"."_s : QString()));
  }
  KaModelFacade::sharedInstance().endDownloadProcess();
  KaModelFacade::sharedInstance().joinDownloadProcess();
}

} // namespace
