#pragma once

#include <QObject>

#include <memory>

namespace platform {

/// Waits for a desktop that shows tray icons. Qt settles for one kind of host at its first use of a tray icon and for
/// good, so none may be made before. Needs the QGuiApplication; main thread.
class TrayHost : public QObject {
  Q_OBJECT

public:
  explicit TrayHost(QObject *parent = nullptr);
  ~TrayHost() override;

Q_SIGNALS:
  /// Once, from the event loop: there is a host now.
  void appeared();

private:
  class Private;
  std::unique_ptr<Private> d;
};

} // namespace platform
