#pragma once

#include <QDialog>

#include <array>
#include <memory>

namespace Ui {
class DownloadFolderSettingWindow;
}
class KaModelFacade;
class KaStatusView;
class QAbstractButton;
class QCheckBox;
class QLabel;
class QPushButton;
class QRadioButton;
class KaPathField;

/// The dialog of the download folders and options. It shows what the facade keeps; OK checks the folders and saves,
/// anything else leaves all as it was. Never blocks: its warnings and folder choosers are windows of its own. It takes
/// the room that its texts need, and on a small screen shows its buttons and scrolls the rest.
class KaDownloadFolderSettingView : public QDialog {
  Q_OBJECT

public:
  /// @param facade  outlives this window.
  explicit KaDownloadFolderSettingView(KaModelFacade &facade, QWidget *parent = nullptr);
  ~KaDownloadFolderSettingView() override;

  /// What a click on OK does.
  void confirm();
  /// The strip above the settings. What it asks for others do, but for the choice of a folder.
  [[nodiscard]] KaStatusView &statusView() const { return *status; }

Q_SIGNALS:
  /// After OK: the settings count until the program ends, but could not be stored.
  void notSaved();

protected:
  void showEvent(QShowEvent *event) override;
  void changeEvent(QEvent *event) override;
  bool eventFilter(QObject *watched, QEvent *event) override;

private:
  void addControls();
  void setTexts();
  void showOptions();
  void connectControls();
  void viewSetSubfolderName();
  void showExamples();
  static void viewSetCheckBoxState(QCheckBox &checkBox, const QString &option);
  void showWhether10GCounts();
  void clickThrough(QLabel &label, QAbstractButton &buddy);
  void keepInView(const QWidget *focused);

  void fitTexts();
  void makeRoom();
  void space();
  void placeExamples();
  [[nodiscard]] QSize wantedSize() const;

  void chooseFolder(KaPathField &path, bool turns10GOn);
  void inputFolderPathReferenceButton_Click();
  void input10GFolderPathReferenceButton_Click();
  void checkBoxCreateSubfolder_Click();
  void okButton_Click();

  /// Warns of a folder that cannot be used. @return whether it can.
  [[nodiscard]] bool checkOutputPath(const QString &path);
  /// The position of the radio button that is on; -1 when none is.
  [[nodiscard]] qint64 selectedChildFolder() const;

  KaModelFacade &model;
  KaStatusView *const status; ///< made before the settings, as who works by keyboard meets it before them
  const std::unique_ptr<Ui::DownloadFolderSettingWindow> window;
  std::array<QRadioButton *, 5> subFolderRadioButtons{}; ///< by the number of their scheme
  std::array<QLabel *, 5> examples{};                    ///< of each: where a picture of today would land
  QPushButton *okButton = nullptr;
  QPushButton *cancelButton = nullptr;
  QSize fitted; ///< the size that was wanted when the window was fitted last
};
