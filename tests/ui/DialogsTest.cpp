#include "app/KaModelFacade.h"
#include "identity/KaLinkageUtility.h"
#include "log/KaLogUtility.h"
#include "platform/AppInfo.h"
#include "platform/UserDefaults.h"
#include "tests/support/FakeBrowser.h"
#include "tests/ui/UiProfile.h"
#include "ui/KaAlertQueue.h"
#include "ui/KaCustomImageView.h"
#include "ui/KaDownloadFolderSettingView.h"
#include "ui/KaStatusView.h"
#include "ui/KaVersionInformationView.h"
#include "ui/LoginItemQuestion.h"
#include "ui/Mnemonics.h"
#include "ui/OpenOrSay.h"
#include "ui/ScreenRoom.h"
#include "ui/Texts.h"
#include "ui/WindowColors.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const QStringList kSchemes{u"yyyyMMddRadioButton"_s, u"yyyy_MMRadioButton"_s, u"yyyy_yyyyMMddRadioButton"_s,
                           u"yyyy_MM_yyyyMMddRadioButton"_s, u"noneRadioButton"_s};
const QStringList kDates{u"yyyy_MM_dd"_s, u"yyyy/MM"_s, u"yyyy/yyyy_MM_dd"_s, u"yyyy/MM/yyyy_MM_dd"_s, {}};
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
  [[nodiscard]] bool shows(const QString &text) const {
    const auto labels = view->findChildren<QLabel *>();
    return std::ranges::any_of(labels,
                               [&](const QLabel *label) { return label->isVisible() && label->text() == text; });
  }
  QLineEdit &folder() const { return find<QLineEdit>(u"inputFolderPathLabel"_s); }
  QLineEdit &folder10G() const { return find<QLineEdit>(u"input10GFolderPathLabel"_s); }
  /// What OK warns of; the window is open still.
  QString warning() const {
    click(u"okButton"_s);
    const std::unique_ptr<QMessageBox> box(view->findChild<QMessageBox *>());
    EXPECT_TRUE(view->isVisible() && facade.downloadOption() == stored);
    if (!box) return {};
    const auto &path = *box->findChild<QPlainTextEdit *>();
    EXPECT_TRUE(path.isVisible() && path.textInteractionFlags().testFlag(Qt::TextSelectableByKeyboard));
    return box->text() + path.toPlainText();
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

const std::array kLanguages{"en", "de", "fr", "es", "it", "ja", "ko", "zh_CN"};

void speak(const char *language) {
  QLocale::setDefault(QLocale(QLatin1StringView(language)));
  installTexts();
}

/// What is cut off, or hidden though the screen has room for it.
QStringList cutOff(const QWidget &view) {
  QStringList flaws;
  for (const QWidget *widget : view.findChildren<QWidget *>())
    if (widget->isVisible() && !hasRoomForItsText(*widget)) flaws << widget->objectName();
  const auto &area = *view.findChild<QScrollArea *>();
  const QSize room = roomOnScreen(view);
  const auto scrolls = [](const QScrollBar &bar) { return bar.maximum() > 0 || bar.isVisible(); };
  if (scrolls(*area.verticalScrollBar()) && view.height() < room.height()) flaws << u"height"_s;
  const int spare = scrolls(*area.verticalScrollBar()) ? 1 : 0; // what a scale that is a fraction takes by rounding
  const bool needsMore = area.viewport()->width() < area.widget()->minimumSizeHint().width() + spare;
  if ((needsMore || scrolls(*area.horizontalScrollBar())) && view.width() < room.width()) flaws << u"width"_s;
  if (view.size().boundedTo(room) != view.size()) flaws << u"window"_s;
  const QRect buttons = view.findChild<QDialogButtonBox *>()->geometry();
  return view.rect().contains(buttons) ? flaws : flaws << u"buttons"_s;
}

TEST_F(Settings, haveRoomForTheirTextsInEveryLanguageAndSize) {
  for (const char *language : kLanguages) {
    speak(language);
    open();
    for (const int size : {7, 9, 10, 13, 18, 22, 36}) {
      QFont font = QApplication::font();
      font.setPointSize(size);
      QApplication::setFont(font);
      for (const int time : {0, 1, 2}) {
        if (time > 0) click(u"checkBoxCreateSubfolder"_s);
        QCoreApplication::sendPostedEvents(); // so that what the window makes of it is judged, not what was before
        EXPECT_TRUE(QTest::qWaitFor([this] { return cutOff(*view).isEmpty(); }, 1000))
            << language << ' ' << size << ' ' << cutOff(*view).join(u' ').toStdString();
      }
      showNotOpened(Openable::Page, u"https://a.example/"_s.repeated(20));
      const auto windows = UiProfile::windows<QDialog>();
      QDialog &notOpened = **std::ranges::find(windows, u"pageNotOpened"_s, &QObject::objectName);
      EXPECT_EQ(notOpened.size().boundedTo(roomOnScreen(notOpened)), notOpened.size()) << language << ' ' << size;
      notOpened.close();
    }
  }
  QFont usual = QApplication::font();
  usual.setPointSize(10);
  QApplication::setFont(usual);
  open();
  const QRect screen = view->screen()->availableGeometry();
  view->move(screen.center());
  speak("it");
  click(u"checkBoxCreateSubfolder"_s);
  const auto &box = find<QGroupBox>(u"importFolderBox"_s);
  EXPECT_TRUE(QTest::qWaitFor([&] { return box.title() == localised("DLG_SETTING_SAVE_FOLDER_TITLE"_L1); }, 1000));
  EXPECT_TRUE(QTest::qWaitFor([&] { return screen.contains(view->frameGeometry()); }, 1000));
  open();
  facade.noteFaultCause(KaFaultCause::NoAnswer);
  facade.setProcessingResult(KaResultCode::LinkInvalid, /*userTrigger=*/false);
  const QString longer = localised("MSG_ERR_LINK_INVALID_NO_ANSWER"_L1);
  EXPECT_TRUE(QTest::qWaitFor([&] { return shows(longer) && cutOff(*view).isEmpty(); }, 3000));
}

/// The contrast of a text with its ground, from 1 to 21.
double contrast(const QColor &text, const QColor &ground) {
  const auto luminance = [](const QColor &color) {
    const auto linear = [](double part) {
      return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
  };
  const auto [weak, strong] = std::minmax({luminance(text), luminance(ground)});
  return (strong + 0.05) / (weak + 0.05);
}

/// What can be reached by Tab and seen, in that order.
QList<QWidget *> reachable(const QWidget &window) {
  QList<QWidget *> found;
  for (QWidget *next = window.nextInFocusChain(); next != &window; next = next->nextInFocusChain())
    if ((next->focusPolicy() & Qt::TabFocus) && next->isVisibleTo(&window)) found << next;
  return found;
}

/// What somebody who cannot see the window is told of it: all that has a name, or takes the focus.
void collect(QAccessibleInterface *seen, QMap<QWidget *, QAccessibleInterface *> &found) {
  auto *const widget = qobject_cast<QWidget *>(seen->object());
  if (widget && widget->isVisible()) found[widget] = seen;
  for (int child = 0; child < seen->childCount(); ++child)
    collect(seen->child(child), found);
}

void expectAccess(QWidget &window) {
  QMap<QWidget *, QAccessibleInterface *> told;
  collect(QAccessible::queryAccessibleInterface(&window), told);
  QStringList keys;
  QStringList names;
  QPoint before;
  for (QWidget *const widget : reachable(window)) {
    SCOPED_TRACE(window.metaObject()->className() + widget->objectName().toStdString());
    ASSERT_TRUE(told.contains(widget) && told[widget]->state().focusable);
    EXPECT_FALSE(told[widget]->text(QAccessible::Name).isEmpty());
    EXPECT_NE(told[widget]->role(), QAccessible::Client);
    names << u"%1 %2"_s.arg(told[widget]->role()).arg(told[widget]->text(QAccessible::Name));
    const QPoint place = widget->mapTo(&window, widget->rect().center());
    EXPECT_TRUE(place.y() > before.y() + 5 || (place.x() > before.x() && place.y() > before.y() - 5)) << "as read";
    before = place;
    const auto *const button = qobject_cast<QAbstractButton *>(widget);
    if (button && !qobject_cast<const QToolButton *>(button)) // those are the pictures
      keys << (button->shortcut().isEmpty() ? told[widget]->text(QAccessible::Accelerator).section(u'+', -1)
                                            : button->shortcut().toString().section(u'+', -1));
  }
  EXPECT_EQ(names.removeDuplicates(), 0) << names.join(u'|').toStdString();
  EXPECT_FALSE(keys.contains(QString())) << "a button without a mnemonic";
  for (const QLabel *const label : window.findChildren<QLabel *>()) {
    const auto *const button = qobject_cast<QAbstractButton *>(label->buddy());
    if (button ? !button->text().isEmpty() : label->buddy() != nullptr) keys << mnemonicOf(label->text()).toUpper();
  }
  EXPECT_EQ(keys.removeDuplicates(), 0) << keys.join(u' ').toStdString();
}

void expectContrast(const QWidget &window) {
  for (const QWidget *const widget : window.findChildren<QWidget *>()) {
    const bool isPath = qobject_cast<const QLineEdit *>(widget); // it has its window's ground
    if (!isPath && !qobject_cast<const QLabel *>(widget) && !qobject_cast<const QAbstractButton *>(widget)) continue;
    const QColor text = widget->palette().color(isPath ? QPalette::Text : widget->foregroundRole());
    const QColor ground = widget->palette().color(isPath ? QPalette::Window : widget->backgroundRole());
    EXPECT_TRUE(text == kGrey || contrast(text, ground) >= 4.5) << widget->objectName().toStdString();
  }
}

/// Asks the question of the very first launch, and looks at it.
void expectQuestionForEverybody() {
  bool asked = false;
  QTimer::singleShot(0, [&] {
    QWidget *const question = QApplication::activeModalWidget();
    asked = question != nullptr;
    expectAccess(*question);
    expectContrast(*question);
    question->close();
  });
  platform::standardUserDefaults().setString(u"firstLaunch"_s, u"YES"_s);
  EXPECT_EQ(askAtFirstLaunch([] { return false; }), FirstLaunch::GoesOn);
  EXPECT_TRUE(asked);
}

TEST_F(Settings, andTheOtherWindowsAreOpenToEverybody) {
  facade.endDownloadProcess(); // there is nothing to fetch
  facade.joinDownloadProcess();
  for (const bool isLinked : {false, true}) {
    if (isLinked) {
      ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(u"token"_s));
      facade.initializeLinkageSetting();
      for (const QString &picture : {u"/B.JPG"_s, u"/A.JPG"_s})
        facade.noteFile(usable + picture);
    }
    for (const char *language : kLanguages) {
      SCOPED_TRACE(language);
      speak(language);
      expectQuestionForEverybody();
      open();
      EXPECT_EQ(std::ranges::count_if(view->findChildren<QToolButton *>(), &QWidget::isVisible), isLinked ? 2 : 0);
      folder().setText(u"/gone"_s);
      click(u"okButton"_s);
      KaVersionInformationView about;
      about.show();
      KaAlertQueue alerts;
      alerts.show(localised("MSG_ERR_OFFLINE"_L1));
      for (const Openable what : {Openable::Page, Openable::Folder})
        showNotOpened(what, u"/gone"_s);
      const auto windows = UiProfile::windows<QDialog>();
      EXPECT_EQ(windows.size(), 6);
      for (QDialog *const window : windows)
        expectAccess(*window);
      for (const QColor &desktop : {QColor(0xef, 0xef, 0xef), QColor(0x32, 0x32, 0x32)}) {
        QApplication::setPalette(QPalette(desktop));
        const auto hasIt = [&](const QDialog *window) { return window->palette().window() == desktop; };
        ASSERT_TRUE(QTest::qWaitFor([&] { return std::ranges::all_of(windows, hasIt); }, 1000));
        for (const QDialog *const window : windows)
          expectContrast(*window);
      }
      for (QDialog *const window : windows)
        window->close();
      QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
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
    for (const QString &scheme : kSchemes) {
      const auto &button = find<QRadioButton>(scheme);
      EXPECT_EQ(button.text().startsWith(rule), on && scheme != kSchemes[4]);
      const QString date = QDate::currentDate().toString(kDates[kSchemes.indexOf(scheme)]);
      const QString folder = QDir::cleanPath((on ? rule : QString()) + date);
      EXPECT_TRUE(button.toolTip().startsWith(QDir::cleanPath(usable + u'/' + folder) + u' '));
      EXPECT_TRUE(folder.isEmpty() || shows(folder + u"/…"_s)) << qPrintable(folder);
    }
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
    EXPECT_EQ(warning(), localised(key) + path);
    folder().setText(usable);
    folder10G().setText(path);
    QTest::mouseClick(&find<QLabel>(u"label10GDownload"_s), Qt::LeftButton);
    EXPECT_EQ(warning(), localised(key) + path);
  }
  click(u"checkBox10GDownloadButton"_s);
  click(u"okButton"_s);
  EXPECT_EQ(facade.downloadOption().parent10GFolder, tooLong);
}

TEST_F(Settings, turnThe10GFolderOnWhenOneIsChosen) {
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  const auto color = [this] { return folder10G().palette().color(QPalette::Text); };
  for (const auto &[which, remedy] : {std::pair(u""_s, StatusRemedy::None),
                                      {u"10G"_s, StatusRemedy::None},
                                      {u""_s, StatusRemedy::ChooseFolder},
                                      {u"10G"_s, StatusRemedy::Choose10GFolder}}) {
    open();
    EXPECT_EQ(color(), kGrey);
    if (remedy == StatusRemedy::None) {
      click(u"input%1FolderPathReferenceButton"_s.arg(which));
    } else {
      Q_EMIT view->statusView().remedyRequested(remedy);
    }
    auto *const chooser = view->findChild<QFileDialog *>();
    ASSERT_TRUE(chooser);
    EXPECT_EQ(chooser->directory().path(), which.isEmpty() ? usable : stored.parent10GFolder);
    EXPECT_EQ(chooser->windowTitle(),
              localised(which.isEmpty() ? "DLG_SETTING_CHOOSE_FOLDER"_L1 : "DLG_SETTING_CHOOSE_10G_FOLDER"_L1));
    const QPushButton &foreign = *new QPushButton(u"Own"_s, chooser);
    giveMnemonics(*view);
    EXPECT_EQ(foreign.text(), u"Own"_s) << "it belongs to another window";
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

TEST_F(Settings, showBothEndsOfALongPathAndAllOfItOnDemand) {
  open();
  find<QWidget>(u"okButton"_s).setFocus();
  const QString middle = u"/long/"_s.repeated(40);
  QList<QImage> pictures;
  for (const QString &path : {u"b"_s + middle + u'b', u"d"_s + middle + u'b', u"b"_s + middle + u'd'}) {
    folder().setText(path);
    EXPECT_EQ(folder().toolTip(), path);
    if (const QImage picture = folder().grab().toImage(); !pictures.contains(picture)) pictures << picture;
  }
  EXPECT_EQ(pictures.size(), 3);
  EXPECT_TRUE(folder().isReadOnly() && !folder().hasFrame());
}

TEST(About, showsTheLogAndSaysWithADotThatItIsOn) {
  const UiProfile profile;
  const FakeBrowser browser(profile);
  installTexts();
  KaVersionInformationView view;
  auto &picture = *view.findChild<KaCustomImageView *>();
  view.show();
  EXPECT_EQ(view.focusWidget(), &picture) << "keys go there";
  for (const QLabel *const label : view.findChildren<QLabel *>())
    EXPECT_TRUE(label->text().isEmpty() || label->objectName() == u"applicationNameLabel"
                || label->fontMetrics().height()
                       < view.findChild<QLabel *>(u"applicationNameLabel"_s)->fontMetrics().height());
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

TEST(WindowColors, areDarkAsWishedAndLeaveThoseOfTheThemeAlone) {
  const UiProfile profile;
  const auto isDark = [] { return QApplication::palette().color(QPalette::Window).lightness() < 128; };
  const QPalette light = QApplication::palette();
  ASSERT_FALSE(isDark());
  const QPalette dark(QColor(0x30, 0x10, 0x10));
  struct Row {
    const char *name;
    const QPalette *theme;
    QList<bool> wishes;
    bool isOurs; ///< at last
  };
  const Row rows[] = {{"light", &light, {false}, false},
                      {"dark and back", &light, {true, false}, false},
                      {"told twice", &light, {true, true}, true},
                      {"told twice and back", &light, {true, true, false, false}, false},
                      {"dark theme", &dark, {true}, false},
                      {"dark theme and back", &dark, {true, false}, false},
                      {"dark theme told to be light", &dark, {false}, false}};
  for (const Row &row : rows) {
    showWindowsDark(false);
    // What is set here stands for the theme's, which counts again once nothing is set.
    QApplication::setPalette(row.theme == &light ? QPalette() : *row.theme);
    const QPalette theme = QApplication::palette();
    for (const bool wish : row.wishes)
      showWindowsDark(wish);
    EXPECT_EQ(QApplication::palette() == theme, !row.isOurs) << row.name;
    EXPECT_EQ(isDark(), row.isOurs || row.theme == &dark) << row.name;
  }
}

} // namespace
