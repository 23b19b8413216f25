#pragma once

#include <QDialog>

#include <array>
#include <memory>

namespace Ui {
class DownloadFolderSettingWindow;
}
class KaModelFacade;
class QAbstractButton;
class QCheckBox;
class QLabel;
class QLineEdit;
class QRadioButton;

/// The dialog of the download folders and options. It shows what the facade keeps; OK checks the folders and saves,
/// anything else leaves all as it was. Never blocks: its warnings and folder choosers are windows of its own.
class KaDownloadFolderSettingView : public QDialog {
  Q_OBJECT

public:
  /// @param facade  outlives this window.
  explicit KaDownloadFolderSettingView(KaModelFacade &facade, QWidget *parent = nullptr);
  ~KaDownloadFolderSettingView() override;

  /// What a click on OK does.
  void confirm();

private:
  void setTexts();
  void fitTexts();
  void showOptions();
  void connectControls();
  void viewSetSubfolderName();
  static void viewSetCheckBoxState(QCheckBox &checkBox, const QString &option);
  void showWhether10GCounts();
  void clickThrough(QLabel &label, QAbstractButton &buddy);
  bool eventFilter(QObject *watched, QEvent *event) override;

  void chooseFolder(QLineEdit &path, bool turns10GOn);
  void inputFolderPathReferenceButton_Click();
  void input10GFolderPathReferenceButton_Click();
  void okButton_Click();

  /// Warns of a folder that cannot be used. @return whether it can.
  [[nodiscard]] bool checkOutputPath(const QString &path);
  /// The position of the radio button that is on; -1 when none is.
  [[nodiscard]] qint64 selectedChildFolder() const;

  KaModelFacade &model;
  const std::unique_ptr<Ui::DownloadFolderSettingWindow> window;
  std::array<QRadioButton *, 5> subFolderRadioButtons{}; ///< by the number of their scheme
};
