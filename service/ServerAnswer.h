#pragma once

#include "service/KaCredential.h"
#include "service/KaResultCode.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// What requests to the service bring back, as plain values. A statusCode is the HTTP status, 0 when no answer arrived;
/// it is for log entries: what a status means has been decided where the answer came in.

struct ServerAnswer {
  KaResultCode result = KaResultCode::Success;
  qint64 statusCode = 0;
  QByteArray data{}; ///< the body; kept whatever the result
};

struct CredentialAnswer {
  KaResultCode result = KaResultCode::Success; ///< of the request
  qint64 statusCode = 0;
  std::optional<KaCredential> credential{}; ///< absent when the request failed or its answer cannot be parsed
};

struct TokenCodeAnswer {
  KaResultCode result = KaResultCode::Success;
  QString tokenCode{}; ///< empty unless the result is Success
};

struct RefreshAnswer {
  KaResultCode result = KaResultCode::Success; ///< Offline, too, for a body that is no JSON; NoBody without token code
  qint64 statusCode = 0;
  QByteArray data{};   ///< the body; kept whatever the result
  QString tokenCode{}; ///< what the next refresh has to show; empty unless the result is Success
};

struct ListedObject {
  QString key{};   ///< never empty
  qint64 size = 0; ///< bytes; 0 when the listing tells none

  friend bool operator==(const ListedObject &, const ListedObject &) = default;
};

struct ListingPage {
  std::vector<ListedObject> contents{}; ///< those of size "0", which mark folders, are left out
  QStringList devices{};                ///< the last components of the common prefixes
};

struct ListingOutcome {
  KaResultCode result = KaResultCode::Success;
  qint64 statusCode = 0;   ///< of the last page
  bool isNotFound = false; ///< there is no such listing, so says the service, which counts as an empty one
};

struct StoredDocument {
  enum class State {
    There,
    Missing, ///< the service says that there is no such document
    Failed,  ///< the result tells why
  };
  State state = State::Failed;
  KaResultCode result = KaResultCode::Success; ///< no failure unless the state is Failed
  qint64 statusCode = 0;
  QByteArray content{}; ///< empty unless it is there
};

struct ObjectHead {
  KaResultCode result = KaResultCode::Success; ///< Success for an object that is missing, too
  bool isThere = false;
  qint64 statusCode = 0;
  qint64 contentLength = 0; ///< bytes
};

struct TagVerdict {
  KaResultCode result = KaResultCode::Success;
  bool bDownloadContent = true;
};

struct SavedObject {
  /// Success; DefaultFileName: it came without a name; ObjectMissing: there is no such object; else none has come.
  KaResultCode result = KaResultCode::Success;
  qint64 statusCode = 0;
  qint64 outputFileSize = 0; ///< bytes that came
  QString outputFilePath{};  ///< empty when nothing was saved
  bool bConfirmed = false;   ///< saved under its own name, of the size that was ordered
  bool bNew = false;         ///< false, too, for a file that was there before and is the very object
  QString triedPath{};       ///< what could not be saved, for the log; empty otherwise
};

/// How every log entry calls a status.
[[nodiscard]] inline QString httpLine(qint64 statusCode) {
  return QStringLiteral("HTTP=%1").arg(statusCode);
}
