#include "service/KaApplicationConstants.h"
#include "service/KaServerRequest.h"
#include "service/XmlText.h"

#include <QDateTime>

using namespace Qt::StringLiterals;

namespace {

/// Collects the credential in an answer; what is missing there stays empty.
class CredentialCollector final : public KaXmlTextTaker {
public:
  void foundText(std::string_view element, std::string_view text) override {
    QString *const field = element == "SessionToken"      ? &credential.sessionToken
                           : element == "SecretAccessKey" ? &credential.secretAccessKey
                           : element == "AccessKeyId"     ? &credential.accessKeyId
                           : element == "Expiration"      ? &expiration
                                                          : nullptr;
    if (!field) return;
    const QString told = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    if (!told.trimmed().isEmpty()) *field = told;
  }

  KaCredential credential;
  QString expiration;
};

/// Whole seconds since 1970, cut to 32 bits; 0 for what is no date.
QString unixTime(const QString &expiration) {
  // Not in one piece: that would be read as local time, which lacks the hour that a change to summer time skips.
  constexpr qsizetype kDaySize = 10;
  const QDate day = QDate::fromString(expiration.left(kDaySize), u"yyyy-MM-dd"_s);
  const QTime time = QTime::fromString(expiration.mid(kDaySize), u"'T'HH:mm:ss'Z'"_s);
  if (!day.isValid() || !time.isValid()) return u"0"_s;
  return QString::number(static_cast<qint32>(QDateTime(day, time, Qt::UTC).toSecsSinceEpoch()));
}

std::optional<KaCredential> credentialIn(const QByteArray &document) {
  CredentialCollector collector;
  if (!walkXmlText(document, collector)) return std::nullopt;
  collector.credential.expireUnixTime = unixTime(collector.expiration);
  return std::move(collector.credential);
}

} // namespace

CredentialAnswer KaServerRequest::getAwsTemporaryCredential(const QString &idToken) {
  const ServerAnswer answer = exchange({.url = createGetCredentialString(idToken)});
  CredentialAnswer told = {.result = answer.result, .statusCode = answer.statusCode};
  if (answer.result == KaResultCode::Success) told.credential = credentialIn(answer.data);
  return told;
}

QString KaServerRequest::createGetCredentialString(const QString &idToken) {
  return u"https://"_s + KaApplicationConstants::awsStsHostName() + u"/?Action=AssumeRoleWithWebIdentity"_s
         + u"&Version=2011-06-15"_s + u"&RoleSessionName=downloaderpictora"_s + u"&RoleArn="_s
         + KaApplicationConstants::awsStsRoleArn() + u"&WebIdentityToken="_s + idToken;
}
