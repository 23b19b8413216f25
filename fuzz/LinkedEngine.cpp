#include "fuzz/LinkedEngine.h"

#include "fuzz/Fuzz.h"
#include "identity/KaLinkageUtility.h"

QByteArray LinkedEngine::accountAnswer(const QString &url) {
  static const QByteArray keys = sampleToken("jwks");
  if (url.endsWith(u"/configuration")) return R"({"clientId":"client-1"})";
  if (url.endsWith(u"/openid-configuration")) return R"({"jwks_uri":"https://idp.example.test/keys"})";
  if (url.endsWith(u"/keys")) return keys;
  if (url.contains(u"AssumeRoleWithWebIdentity"))
    return "<R><AccessKeyId>id</AccessKeyId><Expiration>2037-01-01T00:00:00Z</Expiration></R>";
  return {};
}

LinkedEngine::LinkedEngine() {
  KaLinkageUtility::deleteTokenCode();
  require(KaLinkageUtility::saveLinkageSetting(QString::fromUtf8(sampleToken("valid"))) && link.load(), "linked");
  pieces.state.waitTimes = delegate.loadWaitTimeInfo({});
  pieces.session.begin(link.forRun().value());
}
