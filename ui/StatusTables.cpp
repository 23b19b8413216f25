#include "ui/StatusTables.h"

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

ClickEffect clickEffect(KaResultCode result, KaFaultCause cause) {
  if (result == KaResultCode::DownloadComplete) return ClickEffect::OpenParentFolder;
  if (result == KaResultCode::Download10GComplete) return ClickEffect::OpenParent10GFolder;
  const bool isUnchecked = cause == KaFaultCause::NoAnswer || cause == KaFaultCause::WrongClock;
  if (result == KaResultCode::ValidationFailed && isUnchecked) return ClickEffect::LookNow;
  if (result == KaResultCode::NotLinked || result == KaResultCode::ValidationFailed) return ClickEffect::Link;
  return ClickEffect::None;
}
