#pragma once

#include <QLineEdit>

/// A path that is shown, not typed: without a frame, shortened in its middle where room is short, whole in its tooltip.
/// It can be walked and copied, by keys as by mouse.
class KaPathField final : public QLineEdit {
  Q_OBJECT

public:
  explicit KaPathField(QWidget *parent = nullptr);

  /// Grey says that the folder does not count at the moment.
  void setGrey(bool grey);

  [[nodiscard]] QSize sizeHint() const override;

protected:
  void paintEvent(QPaintEvent *event) override;
};
