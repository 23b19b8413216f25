#pragma once

#include "engine/KaAppStatus.h"
#include "platform/Notification.h"
#include "service/KaFaultCause.h"
#include "service/KaResultCode.h"

#include <QString>

#include <optional>
#include <span>

/// Which error, while the status is an error.
enum class KaErrorStatus : qint64 {
  Offline = 0,
  Maintenance = 1,
  DiskFull = 2,
  Download = 3,
};

/// The pictures of the status item.
enum class StatusFrame { Standby, Receive1, Receive2, Receive3, Receive4, Error, Unlink };

/// What a reported result does to the status item. What is absent stays as it was.
struct ResultEffect {
  QLatin1StringView messageKey{}; ///< empty: nothing to say
  std::optional<KaAppStatus> appStatus{};
  std::optional<KaErrorStatus> errSubStatus{};
  bool clearsLinkage = false;

  friend bool operator==(const ResultEffect &, const ResultEffect &) = default;
};

/// @param cause  chooses the words for a login that could not be checked, or was refused.
[[nodiscard]] ResultEffect resultEffect(KaResultCode result, KaFaultCause cause = KaFaultCause::Unknown);

/// What a tick shows.
struct TickEffect {
  std::optional<StatusFrame> frame{}; ///< absent: no picture
  std::optional<bool> restatesMenu{}; ///< the menu is stated anew, as linked or not
  qint32 animationCount = 0;          ///< the counter afterwards

  friend bool operator==(const TickEffect &, const TickEffect &) = default;
};

[[nodiscard]] TickEffect tickEffect(KaAppStatus status, qint32 animationCount);

/// @return empty: no tooltip.
[[nodiscard]] QLatin1StringView tooltipKey(KaAppStatus status, KaErrorStatus errSubStatus);

/// What a click on the notification of a result does.
enum class ClickEffect {
  None,
  OpenParentFolder,
  OpenParent10GFolder,
  Link,    ///< starts a login, which ends the link that is there
  LookNow, ///< asks for a run: the link is as good as before, and was merely not checked
};

[[nodiscard]] ClickEffect clickEffect(KaResultCode result, KaFaultCause cause = KaFaultCause::Unknown);

/// What the user is told without having asked stands as a notification for as long as it is true, one of a kind.
enum class NotificationKind {
  LoggedIn,
  Complete,
  Complete10G,
  LoginNeeded,
  Failure,       ///< of the last run, for want of the service
  SavingTrouble, ///< pictures wait for room or for a folder
  Unexpected,
  NewVersion,
};
using NotificationKinds = std::span<const NotificationKind>;

[[nodiscard]] NotificationKind notificationKind(KaResultCode result, KaFaultCause cause = KaFaultCause::Unknown);
[[nodiscard]] platform::Notification::Topic notificationTopic(NotificationKind kind);
[[nodiscard]] platform::Notification::Urgency notificationUrgency(NotificationKind kind);

/// @name What is not true any more
/// @{
[[nodiscard]] NotificationKinds endedBy(KaResultCode result, KaFaultCause cause = KaFaultCause::Unknown);
/// ... once a run's listing has succeeded. @param isAllHere  no picture is still to come.
[[nodiscard]] NotificationKinds endedByListing(bool isAllHere);
/// ... once there is a link, or it holds again.
[[nodiscard]] NotificationKinds endedByLink();
/// @}
