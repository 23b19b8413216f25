#pragma once

#include "app/KaSnapshot.h"

#include <QHash>
#include <QIcon>
#include <QWidget>

#include <array>

class KaSideWorker;
class QLabel;
class QToolButton;

/// The last pictures as buttons, newest first; a plain icon stands for one until it has been read, and for what cannot
/// be. Main thread.
class KaPictureRow : public QWidget {
  Q_OBJECT

public:
  explicit KaPictureRow(QWidget *parent = nullptr);

  /// @param files  paths, newest first.
  /// @param worker  reads them, one at a time; the row outlives it.
  void showFiles(const QStringList &files, KaSideWorker &worker);
  /// The worker is gone, and with it what it was at.
  void dropWorker() { underWay.clear(); }

Q_SIGNALS:
  void folderRequested(const QString &path);

private:
  void changeEvent(QEvent *event) override;

  void fitToFont();
  void showNames();
  void showIcon(std::size_t position);
  void readNext(KaSideWorker &worker);
  void take(const QString &file, const QImage &picture, int edge);
  [[nodiscard]] int edgeInPixels() const;

  std::array<QToolButton *, KaSnapshot::kLastFiles> buttons{};
  QLabel *const placeholder;
  QStringList shown;
  QHash<QString, QIcon> icons; ///< of those shown, as far as they have been read
  int readEdge = 0;            ///< what they were read for
  QString underWay;            ///< empty: none
};
