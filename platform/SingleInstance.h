#pragma once

#include <QObject>
#include <QString>

#include <memory>
#include <optional>

namespace platform {

/// One agent per session, reachable by later starts and by the desktop's tools. Main thread.
class SingleInstance : public QObject {
  Q_OBJECT

public:
  enum class HandOver { Delivered, NoAgent, Failed, NoBus };

  explicit SingleInstance(QObject *parent = nullptr);
  ~SingleInstance() override;

  /// Gives a running agent @p url, or without one asks it to show itself. Needs a QCoreApplication and no display;
  /// blocks up to 5 s.
  [[nodiscard]] static HandOver handOver(const std::optional<QString> &url);

  /// Becomes the session's one agent. @return false when another one is.
  [[nodiscard]] bool becomePrimary();

Q_SIGNALS:
  void urlReceived(const QString &url);
  void activated();
  /// A word that a tool sent.
  void actionRequested(const QString &action);

private:
  class Private;
  std::unique_ptr<Private> d;
};

} // namespace platform
