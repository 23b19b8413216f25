#pragma once

#include "platform/linux/FileDescriptor.h"

#include <QByteArray>
#include <QObject>

#include <chrono>
#include <functional>

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

  /// Whether this process does what a message asks for.
  using Judgement = std::function<bool(const QByteArray &message)>;

  /// Listens from now on; another one that does already stays.
  AgentSocket(const QString &profile, Judgement doesIt);

Q_SIGNALS:
  /// Once its sender was told that it has arrived. The sender of what is not done finds nobody instead, and only when
  /// all that hear of this have returned.
  void received(const QByteArray &message);

private:
  void acceptPeer();

  const Judgement isDone;
  FileDescriptor listener;
};

} // namespace platform
