#include "app/KaModelFacade.h"
#include "app/log/KaLogUtility.h"
#include "platform/AppInfo.h"
#include "tests/support/FakeBrowser.h"
#include "tests/ui/UiProfile.h"
#include "ui/KaCustomImageView.h"
#include "ui/KaDownloadFolderSettingView.h"
#include "ui/KaVersionInformationView.h"
#include "ui/Texts.h"

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QStringList kSchemes{u"yyyyMMddRadioButton"_s, u"yyyy_MMRadioButton"_s, u"yyyy_yyyyMMddRadioButton"_s,
                           u"yyyy_MM_yyyyMMddRadioButton"_s, u"noneRadioButton"_s};

class Settings : public testing::Test {
protected:
  Settings() {
    installTexts();
    for (const QString &folder : {u"one"_s, u"two"_s})
      QDir(profile.path()).mkpath(folder);
    stored = {profile.path(u"one"_s), profile.path(u"two"_s), u"false"_s, u"false"_s, u"true"_s, 2};
    facade.setDownloadOption(stored);
  }
  ~Settings() override { facade.endDownloadProcess(); }

  void open() {
    view = std::make_unique<KaDownloadFolderSettingView>(facade);
    view->show();
  }
  template <class Widget> [[nodiscard]] Widget &find(const QString &name) const {
    return *view->findChild<Widget *>(name);
  }
  void click(const QString &button) const { find<QAbstractButton>(button).click(); }
  /// Takes the warning that is open, if one is, away.
  [[nodiscard]] QString takeWarning() const {
    auto *const warning = view->findChild<QMessageBox *>();
    const QString text = warning ? warning->text() : QString();
    delete warning;
    return text;
  }
  [[nodiscard]] QColor colorOf(const QString &path) const {
    return find<QLineEdit>(path).palette().color(QPalette::Text);
  }

  const UiProfile profile;
  KaModelFacade &facade = KaModelFacade::sharedInstance();
  KaDownloadOption stored;
  std::unique_ptr<KaDownloadFolderSettingView> view;
};

TEST_F(Settings, showsWhatIsStoredAndSavesWhatIsShown) {
  open();
  EXPECT_EQ(find<QLineEdit>(u"inputFolderPathLabel"_s).text(), stored.parentFolder);
  EXPECT_EQ(find<QLineEdit>(u"input10GFolderPathLabel"_s).text(), stored.parent10GFolder);
  EXPECT_FALSE(find<QCheckBox>(u"checkBox10GDownloadButton"_s).isChecked());
  EXPECT_TRUE(find<QRadioButton>(kSchemes[2]).isChecked());
  EXPECT_FALSE(find<QRadioButton>(kSchemes[0]).text().contains(u'/'));

  click(u"checkBoxCreateSubfolder"_s);
  const QString rule = localised("DLG_SETTING_SORTING_RULE_NAME"_L1) + u'/';
  for (const QString &scheme : kSchemes)
    EXPECT_EQ(find<QRadioButton>(scheme).text().startsWith(rule), scheme != kSchemes[4]);
  click(u"checkBoxDownloadMetadata"_s);
  click(kSchemes[4]);
  click(u"okButton"_s);
  EXPECT_EQ(view->result(), QDialog::Accepted);
  EXPECT_EQ(facade.downloadOption(),
            (KaDownloadOption{stored.parentFolder, stored.parent10GFolder, u"false"_s, u"true"_s, u"false"_s, 4}));
}

TEST_F(Settings, choosesTheFirstSchemeForOneThatItDoesNotKnow) {
  for (const qint64 scheme : {Q_INT64_C(0), Q_INT64_C(5), Q_INT64_C(-1)}) {
    stored.childFolder = scheme;
    facade.setDownloadOption(stored);
    open();
    EXPECT_TRUE(find<QRadioButton>(kSchemes[0]).isChecked()) << scheme;
  }
}

TEST_F(Settings, savesNothingWhenCancelled) {
  for (const bool byKey : {false, true}) {
    open();
    click(kSchemes[0]);
    byKey ? QTest::keyClick(view.get(), Qt::Key_Escape) : click(u"cancelButton"_s);
    EXPECT_FALSE(view->isVisible());
    EXPECT_EQ(facade.downloadOption(), stored);
  }
}

TEST_F(Settings, warnsOfAFolderThatCannotBeUsed) {
  for (const auto &[path, key] : {std::pair(profile.path(u"gone"_s), "MSG_TRANS_FOLDER_NOT_ACCESS"_L1),
                                  {u"/usr"_s, "MSG_TRANS_FOLDER_NOT_SUPPORT"_L1},
                                  {profile.path(u"x/"_s.repeated(200)), "MSG_TRANS_FOLDER_TOO_LONG"_L1}}) {
    if (key == "MSG_TRANS_FOLDER_TOO_LONG"_L1) QDir().mkpath(path);
    open();
    find<QLineEdit>(u"inputFolderPathLabel"_s).setText(path);
    click(u"okButton"_s);
    EXPECT_EQ(takeWarning(), localised(key));
    find<QLineEdit>(u"inputFolderPathLabel"_s).setText(stored.parentFolder);
    find<QLineEdit>(u"input10GFolderPathLabel"_s).setText(path);
    click(u"checkBox10GDownloadButton"_s);
    click(u"okButton"_s);
    EXPECT_EQ(takeWarning(), localised(key));
    EXPECT_EQ(facade.downloadOption(), stored);
    EXPECT_TRUE(view->isVisible());
  }
  // One that is not used may be as it is.
  click(u"checkBox10GDownloadButton"_s);
  click(u"okButton"_s);
  EXPECT_FALSE(view->isVisible());
  EXPECT_NE(facade.downloadOption().parent10GFolder, stored.parent10GFolder);
}

TEST_F(Settings, turnsThe10GFolderOnWhenOneIsChosen) {
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  open();
  EXPECT_EQ(colorOf(u"input10GFolderPathLabel"_s), QColor::fromRgbF(0.5F, 0.5F, 0.5F));
  click(u"input10GFolderPathReferenceButton"_s);
  auto *const chooser = view->findChild<QFileDialog *>();
  ASSERT_TRUE(chooser);
  EXPECT_EQ(chooser->directory().path(), stored.parent10GFolder);
  Q_EMIT chooser->fileSelected(stored.parentFolder);
  EXPECT_EQ(find<QLineEdit>(u"input10GFolderPathLabel"_s).text(), stored.parentFolder);
  EXPECT_TRUE(find<QCheckBox>(u"checkBox10GDownloadButton"_s).isChecked());
  EXPECT_EQ(colorOf(u"input10GFolderPathLabel"_s), colorOf(u"inputFolderPathLabel"_s));
}

TEST_F(Settings, takesClicksOnTheTextOfACheckBox) {
  open();
  QTest::mouseClick(&find<QLabel>(u"labelCreateSubfolder"_s), Qt::LeftButton);
  EXPECT_TRUE(find<QCheckBox>(u"checkBoxCreateSubfolder"_s).isChecked());
}

// As X11 and Wayland name the keys; test events carry none.
constexpr quint32 kLeftShift = 0xffe1;
constexpr quint32 kLeftControl = 0xffe3;
constexpr quint32 kRightControl = 0xffe4;

struct Clicks {
  const char *name;
  std::vector<quint32> held;
  bool switches;
  bool opens;
};

class AboutClicks : public testing::TestWithParam<Clicks> {};

TEST_P(AboutClicks, doWhatTheHeldKeysSay) {
  const UiProfile profile;
  const FakeBrowser browser(profile);
  installTexts();
  KaVersionInformationView view;
  auto &picture = *view.findChild<KaCustomImageView *>();
  auto &copyright = *view.findChild<QLabel *>(u"copyrightLabel"_s);
  EXPECT_EQ(copyright.text(), platform::appInfo().copyright);
  Qt::KeyboardModifiers modifiers;
  for (const quint32 key : GetParam().held) {
    const bool shift = key == kLeftShift;
    // An event carries what was held before it.
    QKeyEvent press(QEvent::KeyPress, shift ? Qt::Key_Shift : Qt::Key_Control, modifiers, 37, key, 0);
    QApplication::sendEvent(&picture, &press);
    modifiers |= shift ? Qt::ShiftModifier : Qt::ControlModifier;
  }
  for (const bool on : {true, false}) {
    QTest::mouseClick(&picture, Qt::LeftButton);
    EXPECT_EQ(KaLogUtility::outputLog(), GetParam().switches && on);
    EXPECT_EQ(copyright.text().endsWith(u'.'), GetParam().switches && on);
  }
  if (GetParam().opens) {
    EXPECT_EQ(browser.takeUrl(), profile.appFolder() + u"/Log"_s);
  } else {
    EXPECT_FALSE(QFile::exists(profile.path(u"opened-url"_s)));
  }
  KaModelFacade::sharedInstance().endDownloadProcess();
}

INSTANTIATE_TEST_SUITE_P(Ui, AboutClicks,
                         testing::Values(Clicks{"leftControl", {kLeftControl}, true, false},
                                         Clicks{"rightControl", {kRightControl}, false, false},
                                         Clicks{"shift", {kLeftShift}, false, true},
                                         Clicks{"both", {kLeftControl, kLeftShift}, true, false},
                                         Clicks{"none", {}, false, false}),
                         [](const auto &row) { return row.param.name; });

} // namespace
