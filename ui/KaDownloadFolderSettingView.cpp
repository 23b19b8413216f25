#include "ui/KaDownloadFolderSettingView.h"

#include "app/KaModelFacade.h"
#include "log/ExceptionGuard.h"
#include "platform/NoDestructor.h"
#include "ui/Texts.h"
#include "ui_DownloadFolderSettingWindow.h"

#include <QAbstractButton>
#include <QFileDialog>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPushButton>
#include <QRegularExpression>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array kDateTitles{
    "DLG_SETTING_SAVE_SUB_FOLDER_YYYYMMDD_MAC"_L1, "DLG_SETTING_SAVE_SUB_FOLDER_YYYY_MM_MAC"_L1,
    "DLG_SETTING_SAVE_SUB_FOLDER_YYYY_YYYYMMDD_MAC"_L1, "DLG_SETTING_SAVE_SUB_FOLDER_YYYY_MM_YYYYMMDD_MAC"_L1};

QString stateWord(const QCheckBox &checkBox) {
  return checkBox.isChecked() ? u"true"_s : u"false"_s;
}

/// A text as it is read out: without the mark of its mnemonic, and without the letter that scripts of other kinds add.
QString spoken(QString text) {
  static const platform::NoDestructor<QRegularExpression> mark(uR"(\(&\w\)|&)"_s);
  return text.remove(*mark);
}

/// Empty for a code that has no message.
QString folderMessage(KaResultCode verdict) {
  if (verdict == KaResultCode::FolderNotAccessible) return localised("MSG_TRANS_FOLDER_NOT_ACCESS"_L1);
  if (verdict == KaResultCode::FolderNotSupported) return localised("MSG_TRANS_FOLDER_NOT_SUPPORT"_L1);
  if (verdict == KaResultCode::FolderPathTooLong) return localised("MSG_TRANS_FOLDER_TOO_LONG"_L1);
  return {};
}

} // namespace

KaDownloadFolderSettingView::KaDownloadFolderSettingView(KaModelFacade &facade, QWidget *parent)
    : QDialog(parent), model(facade), window(std::make_unique<Ui::DownloadFolderSettingWindow>()) {
  window->setupUi(this);
  subFolderRadioButtons = {window->yyyyMMddRadioButton, window->yyyy_MMRadioButton, window->yyyy_yyyyMMddRadioButton,
                           window->yyyy_MM_yyyyMMddRadioButton, window->noneRadioButton};
  setTexts();
  showOptions();
  connectControls();
  fitTexts();
}

KaDownloadFolderSettingView::~KaDownloadFolderSettingView() = default;

void KaDownloadFolderSettingView::setTexts() {
  setWindowTitle(localised("APP_SHORT_NAME"_L1));
  window->importFolderBox->setTitle(localised("DLG_SETTING_SAVE_FOLDER_TITLE"_L1));
  window->inputFolderPathLabel->setAccessibleName(window->importFolderBox->title());
  window->label10GDownload->setText(localised("CHK_SETTING_SUB_10G_DOWNLOAD"_L1));
  clickThrough(*window->label10GDownload, *window->checkBox10GDownloadButton);
  window->input10GFolderPathLabel->setAccessibleName(window->checkBox10GDownloadButton->accessibleName());
  for (const auto &[button, path] : {std::pair(window->inputFolderPathReferenceButton, window->inputFolderPathLabel),
                                     {window->input10GFolderPathReferenceButton, window->input10GFolderPathLabel}}) {
    button->setText(localised("DLG_COMMON_BUTTON_SELECT_MAC"_L1));
    button->setAccessibleDescription(path->accessibleName());
  }
  window->subFolderLabel->setText(localised("DLG_SETTING_SAVE_SUB_FOLDER"_L1)
                                  + localised("CHK_SETTING_SUB_10G_DOWNLOAD_SUPPLEMENT"_L1));
  for (QRadioButton *button : subFolderRadioButtons)
    button->setAccessibleDescription(window->subFolderLabel->text());
  window->labelCreateSubfolder->setText(localised("DLG_SETTING_CREATE_SUBFOLDER"_L1));
  window->labelDownloadMetadata->setText(localised("DLG_SETTING_DOWNLOAD_METADATA"_L1));
  clickThrough(*window->labelCreateSubfolder, *window->checkBoxCreateSubfolder);
  clickThrough(*window->labelDownloadMetadata, *window->checkBoxDownloadMetadata);
}

void KaDownloadFolderSettingView::fitTexts() {
  // Left to itself a window takes two thirds of the screen at most, which cuts wrapped texts off where they are large.
  const int width = sizeHint().width();
  setMinimumSize(width, layout()->totalHeightForWidth(width));
  resize(minimumSize());
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
  QPushButton *const okButton =
      window->buttonBox->addButton(localised("DLG_COMMON_BUTTON_OK_MAC"_L1), QDialogButtonBox::AcceptRole);
  QPushButton *const cancelButton =
      window->buttonBox->addButton(localised("DLG_COMMON_BUTTON_CANCEL"_L1), QDialogButtonBox::RejectRole);
  okButton->setObjectName(u"okButton"_s);
  cancelButton->setObjectName(u"cancelButton"_s);
  okButton->setDefault(true);
  const auto onClick = [this](QAbstractButton *button, auto action) {
    connect(button, &QAbstractButton::clicked, this, action);
  };
  onClick(okButton, &KaDownloadFolderSettingView::confirm);
  onClick(cancelButton, &QDialog::reject);
  onClick(window->inputFolderPathReferenceButton, &KaDownloadFolderSettingView::inputFolderPathReferenceButton_Click);
  onClick(window->input10GFolderPathReferenceButton,
          &KaDownloadFolderSettingView::input10GFolderPathReferenceButton_Click);
  onClick(window->checkBox10GDownloadButton, &KaDownloadFolderSettingView::showWhether10GCounts);
  onClick(window->checkBoxCreateSubfolder, &KaDownloadFolderSettingView::viewSetSubfolderName);
}

void KaDownloadFolderSettingView::viewSetSubfolderName() {
  const QString rule =
      window->checkBoxCreateSubfolder->isChecked() ? localised("DLG_SETTING_SORTING_RULE_NAME"_L1) + u'/' : QString();
  for (std::size_t scheme = 0; scheme < kDateTitles.size(); ++scheme)
    subFolderRadioButtons[scheme]->setText(rule + localised(kDateTitles[scheme]));
  window->noneRadioButton->setText(localised("DLG_SETTING_SAVE_SUB_FOLDER_NONE"_L1));
}

void KaDownloadFolderSettingView::viewSetCheckBoxState(QCheckBox &checkBox, const QString &option) {
  checkBox.setChecked(option == u"true");
}

void KaDownloadFolderSettingView::showWhether10GCounts() {
  QPalette colors; // the desktop's
  if (!window->checkBox10GDownloadButton->isChecked() || !model.offers10GStorage())
    colors.setColor(QPalette::Text, QColor::fromRgbF(0.5F, 0.5F, 0.5F));
  window->input10GFolderPathLabel->setPalette(colors);
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
  return QDialog::eventFilter(watched, event);
}

void KaDownloadFolderSettingView::chooseFolder(QLineEdit &path, bool turns10GOn) {
  auto *const chooser = new QFileDialog(this, windowTitle(), path.text());
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
  model.setDownloadOption({.parentFolder = window->inputFolderPathLabel->text(),
                           .parent10GFolder = window->input10GFolderPathLabel->text(),
                           .checkBox10GDownload = stateWord(*window->checkBox10GDownloadButton),
                           .checkBoxCreateSubfolder = stateWord(*window->checkBoxCreateSubfolder),
                           .checkBoxDownloadMetadata = stateWord(*window->checkBoxDownloadMetadata),
                           .childFolder = childFolder});
}

bool KaDownloadFolderSettingView::checkOutputPath(const QString &path) {
  const KaResultCode verdict = model.verifyDownloadOptionParentFolder(path);
  if (verdict == KaResultCode::Success) return true;
  auto *const warning =
      new QMessageBox(QMessageBox::Warning, windowTitle(), folderMessage(verdict), QMessageBox::NoButton, this);
  warning->setAttribute(Qt::WA_DeleteOnClose);
  warning->setInformativeText(path);
  warning->setTextFormat(Qt::PlainText);
  warning->addButton(localised("DLG_COMMON_BUTTON_OK_MAC"_L1), QMessageBox::AcceptRole);
  warning->open();
  return false;
}

qint64 KaDownloadFolderSettingView::selectedChildFolder() const {
  for (std::size_t scheme = 0; scheme < subFolderRadioButtons.size(); ++scheme)
    if (subFolderRadioButtons[scheme]->isChecked()) return qint64(scheme);
  return -1;
}
