#pragma once

#include "ui/KaLogStateDelegate.h"

#include <QDialog>

#include <memory>

namespace Ui {
class VersionInformationWindow;
}

/// The about window: picture, name, version and copyright, which ends in a full stop while the log is on.
class KaVersionInformationView : public QDialog, public KaLogStateDelegate {
  Q_OBJECT

public:
  explicit KaVersionInformationView(QWidget *parent = nullptr);
  ~KaVersionInformationView() override;

  void didSwitchStatus() override;

protected:
  void changeEvent(QEvent *event) override;

private:
  void fitTexts();
  void showPicture(QSize size);

  const std::unique_ptr<Ui::VersionInformationWindow> window;
};
