#include "app/ResultMeaning.h"

ResultMeaning meaningOf(KaResultCode result) {
  switch (result) {
  case KaResultCode::DownloadComplete:
  case KaResultCode::Download10GComplete:
  case KaResultCode::NothingToDownload:
  case KaResultCode::InitialAccessComplete:
    return ResultMeaning::Good;
  case KaResultCode::LinkInvalid:
  case KaResultCode::ValidationFailed:
    return ResultMeaning::Login;
  case KaResultCode::SecureConnectionFailed:
  case KaResultCode::NoBody:
  case KaResultCode::Offline:
  case KaResultCode::RetryLater:
  case KaResultCode::ServerError:
    return ResultMeaning::Service;
  case KaResultCode::DiskFull:
  case KaResultCode::FileNotSaved:
    return ResultMeaning::Saving;
  case KaResultCode::Unexpected:
    return ResultMeaning::Unexpected;
  case KaResultCode::Success:
  case KaResultCode::Unlinked:
  case KaResultCode::NotLinked:
  case KaResultCode::NoHttpStatus:
  case KaResultCode::FolderNotAccessible:
  case KaResultCode::FolderNotSupported:
  case KaResultCode::FolderPathTooLong:
  case KaResultCode::DefaultFileName:
  case KaResultCode::CaptureTimeMissing:
  case KaResultCode::ObjectMissing:
  case KaResultCode::NewVersionReleased:
    return ResultMeaning::NoVerdict;
  }
  return ResultMeaning::NoVerdict;
}
