#include "engine/KaDownloadSession.h"

#include "engine/KaDownloadProcessorDelegate.h"
#include "engine/KaTargetStorage.h"
#include "identity/KaIdVerificationUtility.h"
#include "log/KaLogUtility.h"
#include "platform/JsonValue.h"
#include "service/KaServerRequest.h"
#include "service/KaStorage.h"

#include <QJsonObject>
#include <QUuid>

#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

void writeRefreshFailure(const RefreshAnswer &answer) {
  QStringList lines{httpLine(answer.statusCode)};
  if (const auto body = platform::parseJsonObject(answer.data))
    if (const auto error = platform::jsonString(*body, "error"_L1)) lines << u"ErrorCode="_s + *error;
  KaLogUtility::writeConnectionResultLog(KaLogStep::RefreshNorvaleId, false, lines);
}

} // namespace

void KaDownloadSession::begin(const KaLinkSnapshot &link) {
  thread.check();
  if (link.number != current.number) {
    refreshed = KaRefresh::Succeeded;
    refreshCause = KaFaultCause::Unknown;
    failureTold = false;
    refreshFailureTold = false;
    verifier.reset();
  }
  current = link;
}

void KaDownloadSession::exchangeCodeVerifier() {
  thread.check();
  if (isOver()) return; // it would be spent on nothing
  if (const auto taken = with.link.takeCodeVerifier(current.number)) verifier = taken;
  if (!verifier) return;
  const TokenCodeAnswer answer = with.request.getTokenCode(*verifier, current.idToken);
  const bool isAnswered = answer.result == KaResultCode::Success || answer.result == KaResultCode::LinkInvalid;
  // On disk as well: the next run that can hand it in may be another process's.
  if (!isAnswered) return with.link.returnCodeVerifier(current.number, *verifier);
  verifier.reset();
  if (answer.result == KaResultCode::Success && keepTokenCode(answer.tokenCode))
    KaLogUtility::writeInfoLog(u"saveTokenCode_complete"_s);
}

/// At once: each one makes the one before it worthless.
bool KaDownloadSession::keepTokenCode(const QString &tokenCode) {
  const bool stored = with.link.storeTokenCode(current.number, tokenCode);
  if (!stored) tellUnsaved(u"the token code cannot be saved"_s);
  return stored;
}

/// The run goes on with what is in memory, but the next start of the program will have lost the link.
void KaDownloadSession::tellUnsaved(const QString &what) {
  if (isLinkOver()) return;
  KaLogUtility::writeErrorLog(what);
  tell([this] {
    if (std::exchange(hasToldUnsaved, true)) return with.delegate.noteUnsaved();
    with.delegate.setProcessingResult(KaResultCode::Unexpected, /*userTrigger=*/false);
  });
}

KaResultCode KaDownloadSession::refreshIdToken() {
  thread.check();
  const auto [result, kind, cause] = askForToken();
  refreshed = kind;
  refreshCause = cause;
  if (kind == KaRefresh::Succeeded) refreshFailureTold = false;
  if (kind == KaRefresh::Succeeded && std::exchange(failureTold, false))
    tell([this] { with.delegate.notifyLinkHolds(current.number); });
  return result;
}

KaDownloadSession::Refreshed KaDownloadSession::failed(KaResultCode result, KaRefresh kind) {
  return {result, kind, kind == KaRefresh::MayPass ? KaFaultCause::NoAnswer : KaFaultCause::Refused};
}

KaDownloadSession::Refreshed KaDownloadSession::askForToken() {
  if (current.idToken.isEmpty()) {
    KaLogUtility::writeErrorLog(u"ERR_LINK_INVALID : idToken is nil"_s);
    return failed(KaResultCode::LinkInvalid, KaRefresh::Refused);
  }
  const QString nonce = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
  const RefreshAnswer answer = with.request.refreshIdToken(current.idToken, nonce, with.link.tokenCode(current.number));
  if (answer.result != KaResultCode::Success) {
    writeRefreshFailure(answer);
    // Whatever brings no token code, a portal's page for one, is not the service's answer: only its no is final, and
    // that to a refresh whose token code could be had.
    const bool isRefused = answer.result == KaResultCode::LinkInvalid && !verifier;
    return failed(answer.result, isRefused ? KaRefresh::Refused : KaRefresh::MayPass);
  }
  KaLogUtility::writeConnectionResultLog(KaLogStep::RefreshNorvaleId, true);
  keepTokenCode(answer.tokenCode);
  return adoptToken(answer.data, nonce);
}

KaDownloadSession::Refreshed KaDownloadSession::adoptToken(const QByteArray &answer, const QString &nonce) {
  const QJsonObject body = platform::parseJsonObject(answer).value_or(QJsonObject());
  const auto newToken = platform::jsonString(body, "idToken"_L1);
  if (!newToken) KaLogUtility::writeErrorLog(u"ERR_LINK_INVALID : refresh idToken failed"_s);
  if (platform::jsonString(body, "nonce"_L1) != nonce) {
    KaLogUtility::writeErrorLog(u"ERR_LINK_INVALID : nonce value failed"_s);
    return failed(KaResultCode::LinkInvalid, KaRefresh::Refused);
  }
  if (!newToken) return failed(KaResultCode::LinkInvalid, KaRefresh::Refused);

  const auto [verdict, mayPass, cause] =
      KaIdVerificationUtility::validateJWT(with.request, newToken, /*checkNonce=*/false, {});
  if (verdict == KaResultCode::Success) current.idToken = *newToken;
  // The old one, too, when the new one does not hold: then the file is as it was.
  if (with.link.storeIdToken(current.number, current.idToken)) {
    KaLogUtility::writeInfoLog(u"Save PairingInfo"_s);
  } else {
    tellUnsaved(u"the ID token cannot be saved"_s);
  }
  if (isLinkOver()) return failed(KaResultCode::LinkInvalid, KaRefresh::Refused);
  if (verdict == KaResultCode::Success) return {};
  return {verdict, mayPass ? KaRefresh::MayPass : KaRefresh::Refused, cause};
}

KaResultCode KaDownloadSession::getCredential() {
  thread.check();
  with.storage.deleteCredential();
  const CredentialAnswer answer = with.request.getAwsTemporaryCredential(current.idToken);
  if (answer.result != KaResultCode::Success) {
    KaLogUtility::writeConnectionResultLog(KaLogStep::GetTemporaryCredentials, false, {httpLine(answer.statusCode)});
    return answer.result;
  }
  KaLogUtility::writeConnectionResultLog(KaLogStep::GetTemporaryCredentials, true);
  if (!answer.credential) return KaResultCode::NoBody;

  with.storage.setCredential(*answer.credential);
  // Looked at afterwards: a log-out that comes later deletes them itself.
  if (isLinkOver()) {
    with.storage.deleteCredential();
    return KaResultCode::LinkInvalid;
  }
  return takeUser();
}

KaResultCode KaDownloadSession::takeUser() {
  user = KaIdVerificationUtility::parseUserUUID(current.idToken);
  if (!user) {
    KaLogUtility::writeErrorLog(u"ERR_LINK_INVALID : userUUID is nil"_s);
    return KaResultCode::LinkInvalid;
  }
  for (const KaTargetStorage storage : kTargetStorages)
    with.delegate.setDownloadDataUUID(uuidKey(*user, storage));
  return KaResultCode::Success;
}

bool KaDownloadSession::isExpiring() const {
  return with.storage.expiresWithin(kRenewalLead);
}

bool KaDownloadSession::hasExpired() const {
  return with.storage.expiresWithin(std::chrono::seconds(0));
}

KaResultCode KaDownloadSession::renewIfExpiring() {
  if (!isExpiring()) return KaResultCode::Success;
  const KaResultCode result = refreshIdToken();
  return result == KaResultCode::Success ? getCredential() : result;
}

void KaDownloadSession::deleteCredential() {
  with.storage.deleteCredential();
  KaLogUtility::writeErrorLog(u"deleteCredential"_s);
}
