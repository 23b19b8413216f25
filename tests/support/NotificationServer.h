#pragma once

#include <QDBusConnection>
#include <QMap>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QVariantMap>

#include <functional>

/// A notification service that shows nothing and remembers everything, on the session bus.
class NotificationServer : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
  NotificationServer();
  ~NotificationServer() override;

  /// From now on it is another one, which knows nothing of what was shown.
  void restart();
  /// Takes one away that stands and says why, by the number that stands for it on the bus.
  void close(uint id, uint reason);
  /// @param texts  sorted.
  [[nodiscard]] bool waitForStanding(const QStringList &texts) const;

  QStringList capabilities{QStringLiteral("body-markup")};
  uint lastId = 0;
  QMap<uint, QString> standing;
  QSet<uint> past;   ///< gone by themselves, and in the list of those
  QVariantList last; ///< program, icon, title, action, its label
  QVariantMap lastHints;
  std::function<void()> beforeAnswer; ///< once, before the next one gets its id

public Q_SLOTS:
  QStringList GetCapabilities() const { return capabilities; }
  uint Notify(const QString &program, uint replaced, const QString &icon, const QString &title, const QString &body,
              const QStringList &actions, const QVariantMap &hints, int milliseconds);
  void CloseNotification(uint id) { close(id, 3); }

Q_SIGNALS:
  void ActivationToken(uint id, const QString &token);
  void ActionInvoked(uint id, const QString &action);
  void NotificationClosed(uint id, uint reason);

private:
  QDBusConnection bus;
};
