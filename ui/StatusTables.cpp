#include "ui/StatusTables.h"

#include "app/ResultMeaning.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr qint32 kAnimationFrames = 4;

ResultEffect backToNormal(QLatin1StringView messageKey) {
  return {.messageKey = messageKey, .appStatus = KaAppStatus::Normal};
}

// Every error clears the linked flag although the link itself is kept: the menu offers to link again.
ResultEffect failed(QLatin1StringView messageKey, KaErrorStatus errSubStatus) {
  return {
      .messageKey = messageKey, .appStatus = KaAppStatus::Error, .errSubStatus = errSubStatus, .clearsLinkage = true};
}

ResultEffect unlinked(QLatin1StringView messageKey) {
  return {.messageKey = messageKey, .appStatus = KaAppStatus::NotLinked, .clearsLinkage = true};
}

/// What is said of a login that a run could not check, or that was refused.
QLatin1StringView validationKey(KaFaultCause cause) {
  switch (cause) {
  case KaFaultCause::NoAnswer:
    return "MSG_ERR_VALIDATION_NO_ANSWER"_L1;
  case KaFaultCause::NotAccepted:
    return "MSG_ERR_VALIDATION_NOT_ACCEPTED"_L1;
  case KaFaultCause::WrongClock:
    return "MSG_ERR_CLOCK"_L1;
  case KaFaultCause::Unknown:
  case KaFaultCause::Refused:
    return "MSG_ERR_VALIDATION"_L1;
  }
  return "MSG_ERR_VALIDATION"_L1;
}

/// The same of a new login that did not complete, or of a request that was refused in the link's name.
QLatin1StringView linkInvalidKey(KaFaultCause cause) {
  switch (cause) {
  case KaFaultCause::NoAnswer:
    return "MSG_ERR_LINK_INVALID_NO_ANSWER"_L1;
  case KaFaultCause::NotAccepted:
  case KaFaultCause::WrongClock:
    return validationKey(cause);
  case KaFaultCause::Unknown:
  case KaFaultCause::Refused:
    return "MSG_ERR_LINK_INVALID"_L1;
  }
  return "MSG_ERR_LINK_INVALID"_L1;
}

TickEffect animationTick(qint32 animationCount) {
  switch (animationCount % kAnimationFrames) {
  case 0:
    return {StatusFrame::Receive1, true, animationCount + 1};
  case 1:
    return {StatusFrame::Receive2, {}, animationCount + 1};
  case 2:
    return {StatusFrame::Receive3, {}, animationCount + 1};
  }
  return {StatusFrame::Receive4, {}, 0};
}

QLatin1StringView errorTooltipKey(KaErrorStatus errSubStatus) {
  switch (errSubStatus) {
  case KaErrorStatus::Offline:
    return "TOOL_TIP_STATUS_OFFLINE"_L1;
  case KaErrorStatus::Maintenance:
    return "TOOL_TIP_STATUS_MAINTENANCE"_L1;
  case KaErrorStatus::DiskFull:
    return "TOOL_TIP_STATUS_DISK_FULL"_L1;
  case KaErrorStatus::Download:
    return "TOOL_TIP_STATUS_ERR_DOWNLOAD"_L1;
  }
  return {};
}

} // namespace

ResultEffect resultEffect(KaResultCode result, KaFaultCause cause) {
  switch (result) {
  case KaResultCode::DownloadComplete:
    return backToNormal("MSG_DOWNLOAD_COMPLETE"_L1);
  case KaResultCode::Download10GComplete:
    return backToNormal("MSG_10G_DOWNLOAD_COMPLETE"_L1);
  case KaResultCode::NothingToDownload:
    return backToNormal("MSG_DOWNLOAD_ZERO"_L1);
  case KaResultCode::InitialAccessComplete:
    return backToNormal("MSG_INITIAL_ACCESS_COMPLETE"_L1);
  case KaResultCode::Unlinked:
    return unlinked({});
  case KaResultCode::SecureConnectionFailed:
    return failed("MSG_ERR_CERTIFICATE"_L1, KaErrorStatus::Maintenance);
  case KaResultCode::NoBody:
    return failed("MSG_ERR_COMMUNICATION"_L1, KaErrorStatus::Maintenance);
  case KaResultCode::DiskFull:
    return failed("MSG_ERR_DISK_FULL"_L1, KaErrorStatus::DiskFull);
  case KaResultCode::Offline:
    return failed("MSG_ERR_OFFLINE"_L1, KaErrorStatus::Offline);
  case KaResultCode::NotLinked:
    return unlinked("MSG_ERR_UNLINK"_L1);
  case KaResultCode::RetryLater:
    return failed("MSG_ERR_RETRY"_L1, KaErrorStatus::Maintenance);
  case KaResultCode::ServerError:
    return failed("MSG_ERR_SERVER"_L1, KaErrorStatus::Maintenance);
  case KaResultCode::FileNotSaved:
    return failed("MSG_ERR_DOWNLOAD"_L1, KaErrorStatus::Download);
  case KaResultCode::Unexpected:
    return failed("MSG_ERR_UNEXPECTED"_L1, KaErrorStatus::Maintenance);
  case KaResultCode::LinkInvalid:
    return failed(linkInvalidKey(cause), KaErrorStatus::Maintenance);
  case KaResultCode::ValidationFailed:
    return unlinked(validationKey(cause));
  case KaResultCode::NewVersionReleased:
    return {.messageKey = "MSG_NEW_VERSION_RELEASED"_L1};
  case KaResultCode::Success:
  case KaResultCode::NoHttpStatus:
  case KaResultCode::FolderNotAccessible:
  case KaResultCode::FolderNotSupported:
  case KaResultCode::FolderPathTooLong:
  case KaResultCode::DefaultFileName:
  case KaResultCode::CaptureTimeMissing:
  case KaResultCode::ObjectMissing:
    return {};
  }
  return {};
}

TickEffect tickEffect(KaAppStatus status, qint32 animationCount) {
  switch (status) {
  case KaAppStatus::Normal:
    return {StatusFrame::Standby, true, animationCount};
  case KaAppStatus::Downloading:
    return animationTick(animationCount);
  case KaAppStatus::Error:
    return {StatusFrame::Error, false, 0};
  case KaAppStatus::NotLinked:
    return {StatusFrame::Unlink, false, 0};
  }
  return {{}, {}, animationCount};
}

QLatin1StringView tooltipKey(KaAppStatus status, KaErrorStatus errSubStatus) {
  switch (status) {
  case KaAppStatus::Normal:
    return "TOOL_TIP_STATUS_NORMAL"_L1;
  case KaAppStatus::Downloading:
    return "TOOL_TIP_STATUS_DOWNLOADING"_L1;
  case KaAppStatus::Error:
    return errorTooltipKey(errSubStatus);
  case KaAppStatus::NotLinked:
    return "TOOL_TIP_STATUS_UNLINK"_L1;
  }
  return {};
}

namespace {

/// A login that may be as good as before.
bool isUnchecked(KaResultCode result, KaFaultCause cause) {
  return result == KaResultCode::ValidationFailed
         && (cause == KaFaultCause::NoAnswer || cause == KaFaultCause::WrongClock);
}

NotificationKind goodKind(KaResultCode result) {
  if (result == KaResultCode::InitialAccessComplete) return NotificationKind::LoggedIn;
  return result == KaResultCode::Download10GComplete ? NotificationKind::Complete10G : NotificationKind::Complete;
}

} // namespace

ClickEffect clickEffect(KaResultCode result, KaFaultCause cause) {
  if (result == KaResultCode::DownloadComplete) return ClickEffect::OpenParentFolder;
  if (result == KaResultCode::Download10GComplete) return ClickEffect::OpenParent10GFolder;
  if (isUnchecked(result, cause)) return ClickEffect::LookNow;
  if (result == KaResultCode::NotLinked || result == KaResultCode::ValidationFailed) return ClickEffect::Link;
  return ClickEffect::None;
}

NotificationKind notificationKind(KaResultCode result, KaFaultCause cause) {
  if (isUnchecked(result, cause)) return NotificationKind::Failure;
  if (result == KaResultCode::NotLinked) return NotificationKind::LoginNeeded;
  if (result == KaResultCode::NewVersionReleased) return NotificationKind::NewVersion;
  switch (meaningOf(result)) {
  case ResultMeaning::Good:
    return goodKind(result);
  case ResultMeaning::Login:
    return NotificationKind::LoginNeeded;
  case ResultMeaning::Service:
    return NotificationKind::Failure;
  case ResultMeaning::Saving:
    return NotificationKind::SavingTrouble;
  case ResultMeaning::Unexpected:
  case ResultMeaning::NoVerdict:
    break;
  }
  return NotificationKind::Unexpected;
}

platform::Notification::Topic notificationTopic(NotificationKind kind) {
  using enum platform::Notification::Topic;
  switch (kind) {
  case NotificationKind::LoggedIn:
    return Connected;
  case NotificationKind::Complete:
  case NotificationKind::Complete10G:
    return TransferComplete;
  case NotificationKind::LoginNeeded:
  case NotificationKind::Failure:
    return ConnectionError;
  case NotificationKind::SavingTrouble:
  case NotificationKind::Unexpected:
    return TransferError;
  case NotificationKind::NewVersion:
    break;
  }
  return Transfer;
}

platform::Notification::Urgency notificationUrgency(NotificationKind kind) {
  switch (kind) {
  case NotificationKind::LoggedIn:
  case NotificationKind::Complete:
  case NotificationKind::Complete10G:
  case NotificationKind::NewVersion:
    return platform::Notification::Urgency::Low;
  case NotificationKind::LoginNeeded:
  case NotificationKind::Failure:
  case NotificationKind::SavingTrouble:
  case NotificationKind::Unexpected:
    break;
  }
  return platform::Notification::Urgency::Normal;
}

NotificationKinds endedBy(KaResultCode result, KaFaultCause cause) {
  using enum NotificationKind;
  // What could not be saved is told again at the end of the same run, should it still not be.
  static constexpr std::array kByPictures{LoggedIn, LoginNeeded, Failure, SavingTrouble, Unexpected};
  static constexpr std::array kByDoubt{LoggedIn, Failure};
  static constexpr std::array kByLogOut{LoggedIn, Complete,      Complete10G, LoginNeeded,
                                        Failure,  SavingTrouble, Unexpected};
  if (result == KaResultCode::DownloadComplete || result == KaResultCode::Download10GComplete) return kByPictures;
  if (result == KaResultCode::NothingToDownload || result == KaResultCode::InitialAccessComplete)
    return endedByListing(/*isAllHere=*/false);
  if (result == KaResultCode::Unlinked) return kByLogOut;
  if (notificationKind(result, cause) == LoginNeeded) return kByDoubt;
  return {};
}

NotificationKinds endedByListing(bool isAllHere) {
  using enum NotificationKind;
  static constexpr std::array kEnded{LoginNeeded, Failure, Unexpected, SavingTrouble};
  return NotificationKinds(kEnded).first(isAllHere ? 4 : 3);
}

NotificationKinds endedByLink() {
  static constexpr std::array kEnded{NotificationKind::LoginNeeded};
  return kEnded;
}
