#pragma once

#include <QtGlobal>

/// The outcome of a step, a request or a run. The numbers cross edges (notifications, logs) and never change.
enum class KaResultCode : qint64 {
  Success = 0,
  DownloadComplete = 1,       ///< three re-checks in a row found nothing new
  Download10GComplete = 2,    ///< the 10G and preview passes saved files
  NothingToDownload = 3,      ///< a run that the user asked for found nothing
  InitialAccessComplete = 4,  ///< the first listing after linking succeeded
  Unlinked = 5,               ///< the user closed the link
  SecureConnectionFailed = 6, ///< TLS or certificate failure
  NoBody = 7,                 ///< a success status without a body, or a document that cannot be parsed
  DiskFull = 8,
  Offline = 9,       ///< any other transport failure
  NotLinked = 10,    ///< no link is stored
  RetryLater = 11,   ///< the wait for an answer ran out, or HTTP 500 or 503
  ServerError = 12,  ///< any other HTTP status
  FileNotSaved = 13, ///< a file or its folder could not be written
  Unexpected = 14,
  NoHttpStatus = 15,     ///< an S3 list or object request ended without an HTTP status
  LinkInvalid = 16,      ///< HTTP 400, 401 or 403, or a token that does not hold
  ValidationFailed = 17, ///< the ID token could not be refreshed
  FolderNotAccessible = 18,
  FolderNotSupported = 19,
  FolderPathTooLong = 20,
  DefaultFileName = 21,    ///< saved, but the object carried no usable file name
  CaptureTimeMissing = 22, ///< metadata without a capture time
  ObjectMissing = 23,      ///< the object does not exist any more
  NewVersionReleased = 24,
};
