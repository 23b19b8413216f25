#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <chrono>
#include <memory>
#include <optional>

namespace platform {

/// One agent for each profile and each session, reachable by later starts and by the desktop's tools. Main thread.
class SingleInstance : public QObject {
  Q_OBJECT

public:
  enum class HandOver {
    Delivered,
    NoAgent, ///< or one that is ending
    Failed   ///< an agent is there and does not answer
  };
  enum class Claim {
    Won,
    HandedOver, ///< another agent has the profile, and has what this start was for
    Refused     ///< another agent has the profile and cannot be reached
  };

  /// @param showing  the actions that show something.
  explicit SingleInstance(const QStringList &showing = {}, QObject *parent = nullptr);
  ~SingleInstance() override;

  /// Gives a running agent @p url, or without one asks it to show itself: the session's agent or, where the bus knows
  /// none, the profile's. Needs a QCoreApplication and no display; blocks up to 5 s for an agent that does not answer,
  /// and as long again for a bus that does not.
  /// @param token  an activation token (ActivationToken.h); empty for none.
  [[nodiscard]] static HandOver handOver(const std::optional<QString> &url, const QString &token = {});

  /// Takes the profile, which stays taken until the process is gone. While another agent has it, tries to hand over to
  /// that one, which may be ending or slow to answer, for at most @p patience. The present activation token goes along.
  [[nodiscard]] Claim claimProfile(const std::optional<QString> &url,
                                   std::chrono::milliseconds patience = std::chrono::seconds(15));
  /// Can be reached from now on. @return false when the session has another agent.
  [[nodiscard]] bool serve();
  /// Cannot be reached any more: the process is about to end, and a start from now on is for the next one. Does not
  /// wait for a bus.
  void resign();

  /// Whether nobody would see what @p action shows: it is answered as if nobody were there, and activated() is told.
  [[nodiscard]] bool cannotShow(const QString &action) const;

Q_SIGNALS:
  void urlReceived(const QString &url);
  void activated(); ///< to show itself or, where nobody could see it, to end
  /// A word that a tool sent.
  void actionRequested(const QString &action);

private:
  [[nodiscard]] bool serveOnBus();

  class Private;
  std::unique_ptr<Private> d;
};

} // namespace platform
