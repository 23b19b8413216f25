#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

class QMessageBox;

/// Shows messages that the user confirms, one at a time. A text that is open or waits already is not shown twice, so
/// an absent user comes back to a few windows at most. Never blocks, and leaves the menu usable. Main thread.
class KaAlertQueue : public QObject {
  Q_OBJECT

public:
  using QObject::QObject;
  ~KaAlertQueue() override;

  void show(const QString &text);

private:
  void open(const QString &text);
  void openNext();

  QPointer<QMessageBox> current;
  QStringList waiting;
};
