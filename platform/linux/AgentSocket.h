#pragma once

#include "platform/linux/FileDescriptor.h"

#include <QByteArray>
#include <QObject>

#include <chrono>

namespace platform {

/// The way to a profile's agent where no session bus leads to it: a socket of the kernel's that has no file, goes away
/// with its process and talks to this user alone.
class AgentSocket : public QObject {
  Q_OBJECT

public:
  enum class Answer {
    Taken,   ///< the agent has the message
    NoAgent, ///< nobody of this user's listens, or whoever did has ended
    Failed   ///< somebody listens and does not answer
  };

  /// @param profile  the profile's folder.
  /// @param message  not empty, at most 64 KiB.
  [[nodiscard]] static Answer send(const QString &profile, const QByteArray &message, std::chrono::milliseconds wait);

  /// Listens from now on; another one that does already stays.
  explicit AgentSocket(const QString &profile);

Q_SIGNALS:
  /// Once its sender was told that it has arrived.
  void received(const QByteArray &message);

private:
  void acceptPeer();

  FileDescriptor listener;
};

} // namespace platform
