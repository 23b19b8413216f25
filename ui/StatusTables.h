#pragma once

#include "engine/KaAppStatus.h"
#include "service/KaFaultCause.h"
#include "service/KaResultCode.h"

#include <QString>

#include <optional>

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
