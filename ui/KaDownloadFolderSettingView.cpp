#include "ui/KaDownloadFolderSettingView.h"

#include "app/KaModelFacade.h"
#include "engine/OutputFolder.h"
#include "log/ExceptionGuard.h"
#include "ui/KaStatusView.h"
#include "ui/MessageBoxes.h"
#include "ui/Mnemonics.h"
#include "ui/ScreenRoom.h"
#include "ui/Texts.h"
#include "ui_DownloadFolderSettingWindow.h"

#include <QApplication>
#include <QDateTime>
#include <QFileDialog>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QStyle>
#include <QWindow>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array kDateTitles{
    "DLG_SETTING_SAVE_SUB_FOLDER_YYYYMMDD_MAC"_L1, "DLG_SETTING_SAVE_SUB_FOLDER_YYYY_MM_MAC"_L1,
    "DLG_SETTING_SAVE_SUB_FOLDER_YYYY_YYYYMMDD_MAC"_L1, "DLG_SETTING_SAVE_SUB_FOLDER_YYYY_MM_YYYYMMDD_MAC"_L1};

QString stateWord(const QCheckBox &checkBox) {
  return checkBox.isChecked() ? u"true"_s : u"false"_s;
}

/// Empty for a code that has no message.
QString folderMessage(KaResultCode verdict) {
  if (verdict == KaResultCode::FolderNotAccessible) return localised("MSG_TRANS_FOLDER_NOT_ACCESS"_L1);
  if (verdict == KaResultCode::FolderNotSupported) return localised("MSG_TRANS_FOLDER_NOT_SUPPORT"_L1);
  if (verdict == KaResultCode::FolderPathTooLong) return localised("MSG_TRANS_FOLDER_TOO_LONG"_L1);
  return {};
}

/// Weaker than the text beside it, and as easy to read.
QPalette weakened(const QPalette &colors) {
  const QColor text = colors.color(QPalette::WindowText);
  const QColor ground = colors.color(QPalette::Window);
  const auto mix = [](float strong, float weak) { return 0.7F * strong + 0.3F * weak; };
  QPalette weak;
  weak.setColor(QPalette::WindowText,
                QColor::fromRgbF(mix(text.redF(), ground.redF()), mix(text.greenF(), ground.greenF()),
                                 mix(text.blueF(), ground.blueF())));
  return weak;
}

/// Shows a path in whole below the message: it may be long, and labels wrap at blanks alone.
void addPath(QMessageBox &box, const QString &path, QSize room) {
  auto *const whole = new QPlainTextEdit(path, &box);
  whole->setAccessibleName(box.text());
  whole->setReadOnly(true);
  whole->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  whole->setTabChangesFocus(true);
  whole->setWordWrapMode(QTextOption::WrapAnywhere);
  whole->setFrameShape(QFrame::NoFrame);
  whole->viewport()->setAutoFillBackground(false);
  whole->document()->setDocumentMargin(0);
  whole->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  constexpr int kLetters = 50;
  const QFontMetrics letters = whole->fontMetrics();
  const int beside = 3 * whole->style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
  const int width = qMin(kLetters * letters.averageCharWidth(), room.width() - beside);
  const int height = letters.boundingRect(0, 0, width, 0, Qt::TextWrapAnywhere, path).height();
  whole->setFixedSize(width + whole->style()->pixelMetric(QStyle::PM_ScrollBarExtent),
                      qMin(height + 1, room.height() / 3)); // more of it scrolls
  auto *const grid = static_cast<QGridLayout *>(box.layout());
  auto *const buttons = box.findChild<QDialogButtonBox *>();
  grid->removeWidget(buttons);
  grid->addWidget(whole, grid->rowCount(), grid->columnCount() - 1);
  grid->addWidget(buttons, grid->rowCount(), 0, 1, grid->columnCount());
  for (QAbstractButton *const button : buttons->buttons())
    QWidget::setTabOrder(whole, button); // as they are read
}

} // namespace

KaDownloadFolderSettingView::KaDownloadFolderSettingView(KaModelFacade &facade, QWidget *parent)
    : QDialog(parent), model(facade), status(new KaStatusView({.snapshot = [&facade] { return facade.snapshot(); },
                                                               .option = [&facade] { return facade.downloadOption(); }},
                                                              this)),
      window(std::make_unique<Ui::DownloadFolderSettingWindow>()) {
  window->setupUi(this);
  window->contentLayout->insertWidget(0, status);
  addControls();
  setTexts();
  connectControls();
  showOptions();
  fitTexts();
}

KaDownloadFolderSettingView::~KaDownloadFolderSettingView() {
  // The focus goes elsewhere while the rest of the window is taken down.
  disconnect(qApp, nullptr, this, nullptr);
}

void KaDownloadFolderSettingView::addControls() {
  subFolderRadioButtons = {window->yyyyMMddRadioButton, window->yyyy_MMRadioButton, window->yyyy_yyyyMMddRadioButton,
                           window->yyyy_MM_yyyyMMddRadioButton, window->noneRadioButton};
  for (QLabel *&example : examples) {
    example = new QLabel(window->scrollContent);
    example->setPalette(weakened(palette()));
  }
  okButton = window->buttonBox->addButton(QString(), QDialogButtonBox::AcceptRole);
  cancelButton = window->buttonBox->addButton(QString(), QDialogButtonBox::RejectRole);
  okButton->setObjectName(u"okButton"_s);
  cancelButton->setObjectName(u"cancelButton"_s);
  okButton->setDefault(true);
}

void KaDownloadFolderSettingView::setTexts() {
  setWindowTitle(localised("APP_SHORT_NAME"_L1));
  window->importFolderBox->setTitle(localised("DLG_SETTING_SAVE_FOLDER_TITLE"_L1));
  window->labelFolder->setText(localised("DLG_SETTING_FOLDER"_L1));
  window->inputFolderPathLabel->setAccessibleName(spoken(window->labelFolder->text()));
  window->label10GDownload->setText(localised("CHK_SETTING_SUB_10G_DOWNLOAD"_L1));
  clickThrough(*window->label10GDownload, *window->checkBox10GDownloadButton);
  window->input10GFolderPathLabel->setAccessibleName(window->checkBox10GDownloadButton->accessibleName());
  for (const auto &[button, titleKey] :
       {std::pair(window->inputFolderPathReferenceButton, "DLG_SETTING_CHOOSE_FOLDER"_L1),
        {window->input10GFolderPathReferenceButton, "DLG_SETTING_CHOOSE_10G_FOLDER"_L1}}) {
    button->setText(localised("DLG_COMMON_BUTTON_SELECT_MAC"_L1));
    button->setAccessibleName(localised(titleKey));
  }
  window->subFolderLabel->setText(localised("DLG_SETTING_SAVE_SUB_FOLDER"_L1)
                                  + localised("CHK_SETTING_SUB_10G_DOWNLOAD_SUPPLEMENT"_L1));
  window->labelCreateSubfolder->setText(localised("DLG_SETTING_CREATE_SUBFOLDER"_L1));
  window->labelDownloadMetadata->setText(localised("DLG_SETTING_DOWNLOAD_METADATA"_L1));
  clickThrough(*window->labelCreateSubfolder, *window->checkBoxCreateSubfolder);
  clickThrough(*window->labelDownloadMetadata, *window->checkBoxDownloadMetadata);
  cancelButton->setText(localised("DLG_COMMON_BUTTON_CANCEL"_L1));
  okButton->setText(localised("DLG_COMMON_BUTTON_OK_MAC"_L1));
  viewSetSubfolderName();
  giveMnemonics(*this);
}

void KaDownloadFolderSettingView::showEvent(QShowEvent *event) {
  QDialog::showEvent(event);
  fitTexts();
  connect(windowHandle(), &QWindow::screenChanged, this, &KaDownloadFolderSettingView::fitTexts, Qt::UniqueConnection);
}

void KaDownloadFolderSettingView::changeEvent(QEvent *event) {
  QDialog::changeEvent(event);
  if (!okButton) return; // in the making
  if (event->type() == QEvent::PaletteChange)
    for (QLabel *const example : examples)
      example->setPalette(weakened(palette()));
  if (event->type() == QEvent::LanguageChange) setTexts();
  // Later, since what is in the window hears of it after the window.
  if (event->type() == QEvent::LanguageChange || event->type() == QEvent::FontChange
      || event->type() == QEvent::StyleChange)
    QMetaObject::invokeMethod(this, &KaDownloadFolderSettingView::fitTexts, Qt::QueuedConnection);
}

/// Makes the window as large as its texts need, but never larger than the screen, nor smaller than the user made it.
void KaDownloadFolderSettingView::fitTexts() {
  space();
  placeExamples();
  // Layouts inside of others keep what they knew until then.
  for (const QWidget *const outer :
       {static_cast<QWidget *>(window->importFolderBox), window->scrollContent, static_cast<QWidget *>(this)})
    outer->layout()->activate();
  fitted = wantedSize();
  const QSize wanted = isVisible() ? fitted.expandedTo(size()) : fitted;
  resize(wanted.boundedTo(roomOnScreen(*this)));
  moveOntoScreen(*this);
}

/// What the window tells may become longer while it is open. One that the user made smaller stays so until then.
void KaDownloadFolderSettingView::makeRoom() {
  if (wantedSize().expandedTo(fitted) != fitted) fitTexts();
}

/// Distances grow with the letters.
void KaDownloadFolderSettingView::space() {
  const int line = fontMetrics().height();
  layout()->setSpacing(line);
  window->contentLayout->setSpacing(line * 3 / 4);
  window->folderLayout->setVerticalSpacing(line / 2);
  window->radioLayout->setContentsMargins(line, 0, 0, 0);
  window->radioLayout->setHorizontalSpacing(line);
  window->choice10GLayout->setSpacing(line / 2);
  window->optionLayout->setHorizontalSpacing(line / 2);
  window->optionLayout->setVerticalSpacing(line / 2);
  // Beside the first line of its label, however large the letters are.
  for (const auto &[box, label] : {std::pair(window->checkBox10GDownloadButton, window->label10GDownload),
                                   {window->checkBoxCreateSubfolder, window->labelCreateSubfolder},
                                   {window->checkBoxDownloadMetadata, window->labelDownloadMetadata}})
    box->setMinimumHeight(label->fontMetrics().size(Qt::TextSingleLine, label->text()).height());
}

/// The examples stand beside the titles where the screen has room for both, else beneath.
void KaDownloadFolderSettingView::placeExamples() {
  int titles = 0;
  int widest = 0;
  for (std::size_t scheme = 0; scheme < examples.size(); ++scheme) {
    titles = qMax(titles, subFolderRadioButtons[scheme]->sizeHint().width());
    widest = qMax(widest, examples[scheme]->sizeHint().width());
  }
  const int line = fontMetrics().height();
  const int around = 4 * line + style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  const bool beside = titles + widest + around <= roomOnScreen(*this).width();
  const int indent = style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth)
                     + style()->pixelMetric(QStyle::PM_RadioButtonLabelSpacing);
  const QMargins margins = beside ? QMargins() : QMargins(indent, 0, 0, line / 3);
  window->radioLayout->setVerticalSpacing(beside ? line / 4 : 0);
  for (std::size_t scheme = 0; scheme < examples.size(); ++scheme) {
    const int row = 2 * int(scheme);
    examples[scheme]->setContentsMargins(margins);
    window->radioLayout->removeWidget(examples[scheme]);
    window->radioLayout->addWidget(examples[scheme], beside ? row : row + 1, beside ? 1 : 0);
  }
}

QSize KaDownloadFolderSettingView::wantedSize() const {
  // Left to itself a scroll area asks for little, and a window takes two thirds of the screen at most.
  const QWidget &content = *window->scrollContent;
  const QMargins margins = layout()->contentsMargins();
  const int sides = margins.left() + margins.right();
  const int width = qMax(content.sizeHint().width() + sides, layout()->totalSizeHint().width());
  const int outer =
      layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width) : layout()->totalSizeHint().height();
  // The second is what its texts take where it is narrowest, and a scroll area never gives it less.
  const int inner = qMax(content.heightForWidth(width - sides), content.minimumSizeHint().height());
  const int height = outer - window->scrollArea->sizeHint().height() + inner;
  const bool scrolls = height > roomOnScreen(*this).height();
  // Scales such as 1.5 take a pixel by rounding, and the whole window would scroll sideways for it.
  const int bar = scrolls ? window->scrollArea->verticalScrollBar()->sizeHint().width() + 1 : 0;
  return {width + bar, height};
}

void KaDownloadFolderSettingView::showOptions() {
  window->inputFolderPathLabel->setText(model.downloadOptionParentFolder());
  window->input10GFolderPathLabel->setText(model.downloadOptionParent10GFolder());
  viewSetCheckBoxState(*window->checkBox10GDownloadButton, model.checkBox10GDownload());
  viewSetCheckBoxState(*window->checkBoxCreateSubfolder, model.checkBoxCreateSubfolder());
  viewSetCheckBoxState(*window->checkBoxDownloadMetadata, model.checkBoxDownloadMetadata());
  viewSetSubfolderName();
  showWhether10GCounts();
  const qint64 stored = model.downloadOptionChildFolder();
  const bool known = stored >= 0 && stored < qint64(subFolderRadioButtons.size());
  subFolderRadioButtons[known ? std::size_t(stored) : 0]->setChecked(true);
}

void KaDownloadFolderSettingView::connectControls() {
  connect(status, &KaStatusView::remedyRequested, this, [this](StatusRemedy remedy) {
    if (remedy == StatusRemedy::ChooseFolder) inputFolderPathReferenceButton_Click();
    if (remedy == StatusRemedy::Choose10GFolder) input10GFolderPathReferenceButton_Click();
  });
  window->scrollContent->installEventFilter(this);
  const auto onClick = [this](QAbstractButton *button, auto action) {
    connect(button, &QAbstractButton::clicked, this, action);
  };
  onClick(okButton, &KaDownloadFolderSettingView::confirm);
  onClick(cancelButton, &QDialog::reject);
  onClick(window->inputFolderPathReferenceButton, &KaDownloadFolderSettingView::inputFolderPathReferenceButton_Click);
  onClick(window->input10GFolderPathReferenceButton,
          &KaDownloadFolderSettingView::input10GFolderPathReferenceButton_Click);
  onClick(window->checkBox10GDownloadButton, &KaDownloadFolderSettingView::showWhether10GCounts);
  onClick(window->checkBoxCreateSubfolder, &KaDownloadFolderSettingView::checkBoxCreateSubfolder_Click);
  // The title's mnemonic leads to the choice made, so that it changes none.
  for (QRadioButton *const button : subFolderRadioButtons)
    connect(button, &QRadioButton::toggled, this, [this, button](bool on) {
      if (on) window->subFolderLabel->setBuddy(button);
    });
  connect(window->inputFolderPathLabel, &QLineEdit::textChanged, this, &KaDownloadFolderSettingView::showExamples);
  connect(qApp, &QApplication::focusChanged, this, [this](const QWidget *, const QWidget *now) { keepInView(now); });
}

/// The scroll area itself looks only after steps of the focus within it.
void KaDownloadFolderSettingView::keepInView(const QWidget *focused) {
  if (!focused || !window->scrollContent->isAncestorOf(focused)) return;
  const QPoint middle = focused->mapTo(window->scrollContent, focused->rect().center());
  // With what may belong to it above and below.
  window->scrollArea->ensureVisible(middle.x(), middle.y(), 0, 3 * fontMetrics().height());
}

void KaDownloadFolderSettingView::viewSetSubfolderName() {
  const QString rule =
      window->checkBoxCreateSubfolder->isChecked() ? localised("DLG_SETTING_SORTING_RULE_NAME"_L1) + u'/' : QString();
  for (std::size_t scheme = 0; scheme < kDateTitles.size(); ++scheme)
    subFolderRadioButtons[scheme]->setText(rule + localised(kDateTitles[scheme]));
  window->noneRadioButton->setText(localised("DLG_SETTING_SAVE_SUB_FOLDER_NONE"_L1));
  showExamples();
}

/// Beside each scheme, where it would put a picture that is taken now.
void KaDownloadFolderSettingView::showExamples() {
  const QString rule =
      window->checkBoxCreateSubfolder->isChecked() ? u'/' + localised("DLG_SETTING_SORTING_RULE_NAME"_L1) : QString();
  const QString group = spoken(window->subFolderLabel->text());
  const QDateTime now = QDateTime::currentDateTime();
  for (std::size_t scheme = 0; scheme < examples.size(); ++scheme) {
    QRadioButton &button = *subFolderRadioButtons[scheme];
    // The titles have too few letters for marks of their own, and a title that is set takes the shortcut away.
    button.setShortcut(QKeySequence(Qt::ALT | Qt::Key(Qt::Key_1 + int(scheme))));
    const QString folder = rule + getOutputDateFolderString(now, qint64(scheme));
    examples[scheme]->setText(folder.isEmpty() ? QString() : folder.mid(1) + u"/…"_s);
    examples[scheme]->setHidden(folder.isEmpty());
    const QString key = u" (%1)"_s.arg(button.shortcut().toString(QKeySequence::NativeText));
    button.setAccessibleDescription(group + u' ' + examples[scheme]->text() + key);
    button.setToolTip(window->inputFolderPathLabel->text() + folder + key);
  }
}

void KaDownloadFolderSettingView::checkBoxCreateSubfolder_Click() {
  viewSetSubfolderName();
  fitTexts();
}

void KaDownloadFolderSettingView::viewSetCheckBoxState(QCheckBox &checkBox, const QString &option) {
  checkBox.setChecked(option == u"true");
}

void KaDownloadFolderSettingView::showWhether10GCounts() {
  window->input10GFolderPathLabel->setGrey(!window->checkBox10GDownloadButton->isChecked()
                                           || !model.offers10GStorage());
}

/// A check box cannot wrap its text, so the label does, and takes clicks for it.
void KaDownloadFolderSettingView::clickThrough(QLabel &label, QAbstractButton &buddy) {
  buddy.setAccessibleName(spoken(label.text()));
  label.installEventFilter(this);
}

bool KaDownloadFolderSettingView::eventFilter(QObject *watched, QEvent *event) {
  if (event->type() == QEvent::MouseButtonRelease) {
    const auto &release = static_cast<const QMouseEvent &>(*event);
    const auto *const label = qobject_cast<QLabel *>(watched);
    auto *const button = label ? qobject_cast<QAbstractButton *>(label->buddy()) : nullptr;
    if (button && release.button() == Qt::LeftButton && label->rect().contains(release.position().toPoint()))
      button->click();
  }
  if (watched == window->scrollContent && event->type() == QEvent::LayoutRequest)
    QMetaObject::invokeMethod(this, &KaDownloadFolderSettingView::makeRoom, Qt::QueuedConnection);
  return QDialog::eventFilter(watched, event);
}

void KaDownloadFolderSettingView::chooseFolder(KaPathField &path, bool turns10GOn) {
  const QString title =
      turns10GOn ? localised("DLG_SETTING_CHOOSE_10G_FOLDER"_L1) : localised("DLG_SETTING_CHOOSE_FOLDER"_L1);
  auto *const chooser = new QFileDialog(this, title, path.text());
  chooser->setAttribute(Qt::WA_DeleteOnClose);
  chooser->setFileMode(QFileDialog::Directory);
  chooser->setOption(QFileDialog::ShowDirsOnly);
  connect(chooser, &QFileDialog::fileSelected, this, [this, &path, turns10GOn](const QString &folder) {
    path.setText(folder);
    if (turns10GOn) window->checkBox10GDownloadButton->setChecked(true);
    showWhether10GCounts();
  });
  chooser->open();
}

void KaDownloadFolderSettingView::inputFolderPathReferenceButton_Click() {
  chooseFolder(*window->inputFolderPathLabel, /*turns10GOn=*/false);
}

void KaDownloadFolderSettingView::input10GFolderPathReferenceButton_Click() {
  chooseFolder(*window->input10GFolderPathLabel, /*turns10GOn=*/true);
}

void KaDownloadFolderSettingView::confirm() {
  // What goes wrong is logged, and the window stays open.
  if (!findChild<QMessageBox *>()) (void)runGuarded([this] { okButton_Click(); });
}

void KaDownloadFolderSettingView::okButton_Click() {
  const qint64 childFolder = selectedChildFolder();
  if (childFolder < 0 || !checkOutputPath(window->inputFolderPathLabel->text())) return;
  if (window->checkBox10GDownloadButton->isChecked() && !checkOutputPath(window->input10GFolderPathLabel->text()))
    return;
  accept();
  const bool saved = model.setDownloadOption({.parentFolder = window->inputFolderPathLabel->text(),
                                              .parent10GFolder = window->input10GFolderPathLabel->text(),
                                              .checkBox10GDownload = stateWord(*window->checkBox10GDownloadButton),
                                              .checkBoxCreateSubfolder = stateWord(*window->checkBoxCreateSubfolder),
                                              .checkBoxDownloadMetadata = stateWord(*window->checkBoxDownloadMetadata),
                                              .childFolder = childFolder});
  if (!saved) Q_EMIT notSaved();
}

bool KaDownloadFolderSettingView::checkOutputPath(const QString &path) {
  const KaResultCode verdict = model.verifyDownloadOptionParentFolder(path);
  if (verdict == KaResultCode::Success) return true;
  auto *const warning =
      new QMessageBox(QMessageBox::NoIcon, windowTitle(), folderMessage(verdict), QMessageBox::NoButton, this);
  warning->setAttribute(Qt::WA_DeleteOnClose);
  warning->addButton(localised("DLG_COMMON_BUTTON_CLOSE"_L1), QMessageBox::AcceptRole);
  dressMessageBox(*warning);
  addPath(*warning, path, roomOnScreen(*this));
  warning->open();
  return false;
}

qint64 KaDownloadFolderSettingView::selectedChildFolder() const {
  for (std::size_t scheme = 0; scheme < subFolderRadioButtons.size(); ++scheme)
    if (subFolderRadioButtons[scheme]->isChecked()) return qint64(scheme);
  return -1;
}
