#pragma once

#include <QObject>

#include <memory>

namespace platform {

/// What the desktop's user wishes of all windows, as far as the desktop tells it. Main thread.
class ColorScheme : public QObject {
  Q_OBJECT

public:
  explicit ColorScheme(QObject *parent = nullptr);
  ~ColorScheme() override;

Q_SIGNALS:
  /// From the event loop, once it is known and whenever it is told anew; never where the desktop tells nothing.
  /// @param isDark  false also where the user has no wish.
  void told(bool isDark);

private:
  class Private;
  std::unique_ptr<Private> d;
};

} // namespace platform
