#include "engine/KaDownloadSession.h"

#include "engine/KaDownloadProcessorDelegate.h"
#include "engine/KaTargetStorage.h"
#include "engine/ListingParser.h"
#include "identity/KaIdVerificationUtility.h"
#include "identity/KaLinkageUtility.h"
#include "log/KaLogUtility.h"
#include "platform/JsonValue.h"
#include "service/KaApplicationConstants.h"
#include "service/KaServerRequest.h"

#include <QDateTime>
#include <QJsonObject>
#include <QUuid>

#include <chrono>

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds kRenewalLead(600);

QString httpLine(qint64 statusCode) {
  return u"HTTP=%1"_s.arg(statusCode);
}

void writeRefreshFailure(const ServerAnswer &answer) {
  QStringList lines{httpLine(answer.statusCode)};
  if (const auto body = parseJsonObject(answer.data))
    if (const auto error = jsonString(*body, "error"_L1)) lines << u"ErrorCode="_s + *error;
  KaLogUtility::writeConnectionResultLog(KaLogStep::RefreshNorvaleId, false, lines);
}

/// Whole seconds since 1970, cut to 32 bits; 0 for what is no date.
QString unixTime(const QString &expiration) {
  // Not in one piece: that would be read as local time, which lacks the hour that a change to summer time skips.
  constexpr qsizetype kDaySize = 10;
  const QDate day = QDate::fromString(expiration.left(kDaySize), u"yyyy-MM-dd"_s);
  const QTime time = QTime::fromString(expiration.mid(kDaySize), u"'T'HH:mm:ss'Z'"_s);
  if (!day.isValid() || !time.isValid()) return u"0"_s;
  return QString::number(static_cast<qint32>(QDateTime(day, time, Qt::UTC).toSecsSinceEpoch()));
}

} // namespace

void KaDownloadSession::exchangeCodeVerifier(const std::optional<QString> &idToken) {
  // The verifier is handed out once: without the token that goes with it, it would be wasted.
  if (!idToken || !KaLinkageUtility::existCodeVerifier()) return;
  if (const auto verifier = KaLinkageUtility::loadCodeVerifier())
    static_cast<void>(request.getTokenCode(*verifier, *idToken));
}

KaResultCode KaDownloadSession::refreshIdToken(std::optional<QString> &idToken) {
  if (!idToken) {
    KaLogUtility::writeErrorLog(u"ERR_LINK_INVALID : idToken is nil"_s);
    return KaResultCode::LinkInvalid;
  }
  // A run may outlast its link; a link that the user has closed must not come back to life.
  if (!delegate.bLoggedIn()) return KaResultCode::LinkInvalid;

  const QString url = u"https://"_s + KaApplicationConstants::strataHostName() + u"/refreshToken"_s;
  const QString nonce = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
  const ServerAnswer answer = request.refreshIdToken(url, *idToken, nonce);
  if (answer.result != KaResultCode::Success) {
    writeRefreshFailure(answer);
    return answer.result;
  }
  KaLogUtility::writeConnectionResultLog(KaLogStep::RefreshNorvaleId, true);
  return adoptToken(answer.data, nonce, idToken);
}

KaResultCode KaDownloadSession::adoptToken(const QByteArray &answer, const QString &nonce,
                                           std::optional<QString> &idToken) {
  const QJsonObject body = parseJsonObject(answer).value_or(QJsonObject());
  const auto newToken = jsonString(body, "idToken"_L1);
  if (!newToken) KaLogUtility::writeErrorLog(u"ERR_LINK_INVALID : refresh idToken failed"_s);
  if (jsonString(body, "nonce"_L1) != nonce) {
    KaLogUtility::writeErrorLog(u"ERR_LINK_INVALID : nonce value failed"_s);
    return KaResultCode::LinkInvalid;
  }
  if (!newToken) return KaResultCode::LinkInvalid;

  const KaResultCode verdict = KaIdVerificationUtility::validateJWT(request, newToken, /*checkNonce=*/false, {});
  if (!delegate.bLoggedIn()) return KaResultCode::LinkInvalid;
  if (verdict == KaResultCode::Success) idToken = newToken;
  if (delegate.saveLinkageSetting(*idToken)) KaLogUtility::writeInfoLog(u"Save PairingInfo"_s);
  return verdict;
}

KaResultCode KaDownloadSession::getCredential(const QString &idToken) {
  KaStorageAccess next = storageAccess.get();
  next.credential = {};
  storageAccess.set(next);

  const ServerAnswer answer = request.getAwsTemporaryCredential(createGetCredentialString(idToken));
  if (answer.result != KaResultCode::Success) {
    KaLogUtility::writeConnectionResultLog(KaLogStep::GetTemporaryCredentials, false, {httpLine(answer.statusCode)});
    return answer.result;
  }
  if (!delegate.bLoggedIn()) return KaResultCode::LinkInvalid;
  const KaResultCode result = parseXML(answer.data, next.credential);
  KaLogUtility::writeConnectionResultLog(KaLogStep::GetTemporaryCredentials, true);
  if (result != KaResultCode::Success) return result;

  const KaCredential &credential = next.credential;
  next.presigning = {credential.accessKeyId, credential.secretAccessKey, credential.sessionToken,
                     unixTime(credential.expiration)};
  storageAccess.set(next);

  user = KaIdVerificationUtility::parseUserUUID(idToken);
  if (!user) {
    KaLogUtility::writeErrorLog(u"ERR_LINK_INVALID : userUUID is nil"_s);
    return KaResultCode::LinkInvalid;
  }
  for (const auto storage : {KaTargetStorage::Days30, KaTargetStorage::LongTerm10G, KaTargetStorage::Preview2K})
    delegate.setDownloadDataUUID(uuidKey(*user, storage));
  return KaResultCode::Success;
}

KaResultCode KaDownloadSession::renewIfExpiring(std::optional<QString> &idToken) {
  const qint64 expiry = access().presigning.expireUnixTime.toLongLong();
  if (QDateTime::currentSecsSinceEpoch() + kRenewalLead.count() < expiry) return KaResultCode::Success;
  const KaResultCode result = refreshIdToken(idToken);
  return result == KaResultCode::Success ? getCredential(*idToken) : result;
}

void KaDownloadSession::deleteCredential() {
  storageAccess.set({});
  KaLogUtility::writeErrorLog(u"deleteCredential"_s);
}

QString KaDownloadSession::contentURL(const QString &objectKey) const {
  return presignedObjectURL(access().presigning, KaApplicationConstants::awsS3BucketName(),
                            KaApplicationConstants::awsS3AccelerateHostName(), objectKey);
}

QString KaDownloadSession::previewListURL() const {
  return presignedObjectURL(access().presigning, KaApplicationConstants::awsS3PreviewListBucketName(),
                            KaApplicationConstants::awsS3AccelerateHostName(), user.value_or(QString()) + u".json"_s);
}

QString KaDownloadSession::createGetCredentialString(const QString &idToken) {
  return u"https://"_s + KaApplicationConstants::awsStsHostName() + u"/?Action=AssumeRoleWithWebIdentity"_s
         + u"&Version=2011-06-15"_s + u"&RoleSessionName=downloaderpictora"_s + u"&RoleArn="_s
         + KaApplicationConstants::awsStsRoleArn() + u"&WebIdentityToken="_s + idToken;
}
