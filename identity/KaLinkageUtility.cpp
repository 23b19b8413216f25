#include "identity/KaLinkageUtility.h"

#include "identity/KaCryptionUtility.h"
#include "log/ExceptionGuard.h"
#include "log/UnreadableFile.h"
#include "platform/Folders.h"
#include "platform/Opening.h"
#include "platform/PrivateFile.h"
#include "service/KaApplicationConstants.h"

#include <QFile>
#include <QFileInfo>

#include <openssl/rand.h>

#include <initializer_list>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kLinkageFile = "PairingInfo"_L1;
constexpr auto kCodeVerifierFile = "tmpFile"_L1;
constexpr auto kTokenCodeFile = "PairingCode"_L1;

constexpr int kNonceBytes = 64;

QString pairingFolder() {
  return platform::applicationSupportFolder() + u"/NORVALE INC/Downloaderpictora Shared/PairingInfo"_s;
}

QString pairingFile(QLatin1StringView name) {
  return pairingFolder() + u'/' + name;
}

bool save(QLatin1StringView name, const QString &text) {
  return guardedOr(false, [&] {
    if (!platform::makePrivateFolder(pairingFolder())) return false;
    const auto enciphered = KaCryptionUtility::encrypt(text);
    return enciphered && platform::writePrivateFile(pairingFile(name), enciphered->toUtf8());
  });
}

std::optional<QString> load(QLatin1StringView name) {
  return guardedOr(std::optional<QString>(), [&] {
    const auto content = platform::readPrivateFile(pairingFile(name));
    const auto text = content ? KaCryptionUtility::decrypt(QString::fromUtf8(*content)) : std::nullopt;
    if (!text) writeUnreadableFileLog(pairingFile(name));
    return text;
  });
}

/// On disk when it returns: a power cut brings nothing back.
void remove(std::initializer_list<QLatin1StringView> names) {
  for (const auto name : names)
    QFile::remove(pairingFile(name));
  platform::syncFolder(pairingFolder());
}

QString sitePage(const QString &path) {
  return u"https://"_s + KaApplicationConstants::strataSiteTopHostName() + path;
}

// The service's login takes the values as they stand: percent-encoding them breaks its redirects.
QString loginUrl(const QString &nonce, const QString &codeChallenge) {
  return u"https://"_s + KaApplicationConstants::strataHostName() + u"/getLogin?appRedirectUrl="_s
         + sitePage(u"/st/downloader-login.html"_s) + u"&nonce="_s + nonce + u"&codeChallenge="_s + codeChallenge
         + u"&downloaderRedirectUrl=downloaderpictora://authenticate&strataClient=pc_2.0&view=login"_s;
}

QString logoutUrl() {
  return u"https://"_s + KaApplicationConstants::strataHostName() + u"/logout?appRedirectUrl="_s
         + sitePage(u"/st/downloader-logout.html"_s);
}

void open(const QString &url, const QObject *receiver, const KaLinkageUtility::PageVerdict &verdict) {
  platform::openUrl(url, receiver, [url, verdict](bool opened) { verdict(opened, url); });
}

} // namespace

QString KaLinkageUtility::setupLinkage(const QString &nonce, const QObject *receiver, const PageVerdict &verdict) {
  QString url;
  const QString codeVerifier = guardedOr(QString(), [&] {
    const QString made = GenerateNonce();
    if (!made.isEmpty()) url = loginUrl(nonce, KaCryptionUtility::GenerateCodeS256Challenge(made));
    return made;
  });
  open(url, receiver, verdict);
  return codeVerifier;
}

void KaLinkageUtility::closeLinkage(const QObject *receiver, const PageVerdict &verdict) {
  open(logoutUrl(), receiver, verdict);
}

QString KaLinkageUtility::GenerateNonce() {
  return guardedOr(QString(), [] {
    QByteArray bytes(kNonceBytes, Qt::Uninitialized);
    if (RAND_bytes(reinterpret_cast<unsigned char *>(bytes.data()), kNonceBytes) != 1)
      throw KaException(u"GenerateNonce"_s, u"no random bytes"_s);
    return QString::fromLatin1(bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
  });
}

bool KaLinkageUtility::saveLinkageSetting(const QString &idToken) {
  return save(kLinkageFile, idToken);
}

std::optional<QString> KaLinkageUtility::loadLinkageSetting() {
  return load(kLinkageFile);
}

bool KaLinkageUtility::saveCodeVerifier(const QString &codeVerifier) {
  return save(kCodeVerifierFile, codeVerifier);
}

bool KaLinkageUtility::existCodeVerifier() {
  return QFileInfo::exists(pairingFile(kCodeVerifierFile));
}

std::optional<QString> KaLinkageUtility::loadCodeVerifier() {
  const auto codeVerifier = load(kCodeVerifierFile);
  // A verifier that cannot be read goes too, else every pass would find it again.
  remove({kCodeVerifierFile});
  return codeVerifier;
}

bool KaLinkageUtility::saveTokenCode(const QString &tokenCode) {
  return save(kTokenCodeFile, tokenCode);
}

std::optional<QString> KaLinkageUtility::loadTokenCode() {
  return load(kTokenCodeFile);
}

void KaLinkageUtility::deleteTokenCode() {
  remove({kTokenCodeFile});
}

void KaLinkageUtility::deletePairingInfo() {
  sweepPairingFolder();
  // The ID token first: a kill in between leaves no link that has lost the rest.
  remove({kLinkageFile, kCodeVerifierFile, kTokenCodeFile});
}

void KaLinkageUtility::sweepPairingFolder() {
  platform::sweepReplacements(pairingFolder(), {kLinkageFile, kCodeVerifierFile, kTokenCodeFile});
}
