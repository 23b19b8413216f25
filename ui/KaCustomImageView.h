#pragma once

#include <QLabel>

class KaLogStateDelegate;

/// The picture of the about window, and the only switch of the diagnostic log: a click with the left command key held
/// (Control, where there is none) switches it, a click with a Shift key held shows its folder.
class KaCustomImageView : public QLabel {
  Q_OBJECT

public:
  explicit KaCustomImageView(QWidget *parent = nullptr);

  /// Not owned; may be null.
  void setDLogDelegate(KaLogStateDelegate *delegate) { dLogDelegate = delegate; }

protected:
  void keyPressEvent(QKeyEvent *event) override;
  void keyReleaseEvent(QKeyEvent *event) override;
  void mousePressEvent(QMouseEvent *event) override;

private:
  void clicked();
  void flagsChanged(const QKeyEvent &event);

  bool clickingCommandKey = false;
  bool clickingShiftKey = false;
  KaLogStateDelegate *dLogDelegate = nullptr;
};
