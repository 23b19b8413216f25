#include "identity/KaLink.h"

#include "identity/KaLinkageUtility.h"

#include <QUuid>

#include <algorithm>
#include <utility>

KaLink::KaLink(std::chrono::milliseconds loginPatience) : patience(loginPatience) {
}

bool KaLink::load() {
  mainThread.check();
  const platform::MutexLock scope(turn);
  if (number() != 0) return true;
  // Nobody else writes there: no run begins before there is a link, and each profile has one agent.
  KaLinkageUtility::sweepPairingFolder();
  const auto storedToken = KaLinkageUtility::loadLinkageSetting();
  if (!storedToken) return false;
  const auto storedCode = KaLinkageUtility::loadTokenCode();
  const platform::MutexLock copying(lock);
  makeCurrent(KaLinkState::Linked, *storedToken, storedCode);
  // A verifier beside a token code belongs to a login that an earlier process did not complete.
  if (storedCode) values.verifierOf = 0;
  return true;
}

void KaLink::makeCurrent(KaLinkState state, const QString &idToken, const std::optional<QString> &tokenCode) {
  values.state = state;
  values.idToken = idToken;
  values.tokenCode = tokenCode;
  values.verifierOf = ++lastNumber;
  currentNumber = lastNumber;
}

void KaLink::beginLogin(const std::function<void(const QString &url)> &notOpened) {
  mainThread.check();
  const QString nonce = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
  forgetFilesFor(nonce);
  const QString codeVerifier =
      KaLinkageUtility::setupLinkage(nonce, &pages, [this, nonce, notOpened](bool opened, const QString &url) {
        if (opened) return pageHasOpened(nonce);
        if (pageHasNotOpened(nonce) && notOpened) notOpened(url);
      });
  const platform::MutexLock copying(lock);
  values.codeVerifier = codeVerifier;
}

void KaLink::pageHasOpened(const QString &nonce) {
  const platform::MutexLock scope(turn);
  std::optional<QString> codeVerifier;
  {
    const platform::MutexLock copying(lock);
    // A callback that was faster has it written by the login's completion, and another login has one of its own.
    if (values.nonce != nonce) return;
    codeVerifier = std::exchange(values.codeVerifier, std::nullopt);
  }
  if (codeVerifier) KaLinkageUtility::saveCodeVerifier(*codeVerifier);
}

bool KaLink::pageHasNotOpened(const QString &nonce) {
  const platform::MutexLock copying(lock);
  if (values.nonce != nonce) return false;
  values.loginEnds = Clock::now();
  return true;
}

void KaLink::forgetFilesFor(const QString &nonce) {
  const platform::MutexLock scope(turn);
  {
    const platform::MutexLock copying(lock);
    values.nonce = nonce;
    values.codeVerifier.reset();
    values.loginEnds = Clock::now() + patience;
    values.verifierOf = 0;
  }
  KaLinkageUtility::deletePairingInfo();
}

std::optional<QString> KaLink::useNonce() {
  mainThread.check();
  const platform::MutexLock copying(lock);
  return std::exchange(values.nonce, std::nullopt);
}

bool KaLink::isRepeated(const QString &idToken) const {
  mainThread.check();
  const platform::MutexLock copying(lock);
  return values.completedBy == idToken || values.idToken == idToken;
}

bool KaLink::completeLogin(const QString &idToken) {
  mainThread.check();
  const platform::MutexLock scope(turn);
  std::optional<QString> codeVerifier;
  {
    const platform::MutexLock copying(lock);
    makeCurrent(KaLinkState::AwaitsFolders, idToken, std::nullopt);
    codeVerifier = std::exchange(values.codeVerifier, std::nullopt);
    values.nonce.reset();
    values.loginEnds.reset();
    values.completedBy = idToken;
  }
  // First, so that a kill in between never leaves the new token with the code of another link.
  KaLinkageUtility::deleteTokenCode();
  if (codeVerifier) KaLinkageUtility::saveCodeVerifier(*codeVerifier);
  return KaLinkageUtility::saveLinkageSetting(idToken);
}

bool KaLink::giveUpLogin() {
  mainThread.check();
  const platform::MutexLock copying(lock);
  if (values.nonce || restOfLogin() == Clock::duration::zero()) return false;
  values.loginEnds = Clock::now();
  return true;
}

void KaLink::confirmFolders() {
  mainThread.check();
  const platform::MutexLock copying(lock);
  if (values.state == KaLinkState::AwaitsFolders) values.state = KaLinkState::Linked;
}

void KaLink::close() {
  mainThread.check();
  const platform::MutexLock scope(turn);
  {
    const platform::MutexLock copying(lock);
    currentNumber = 0;
    // What a browser still calls back with is known, and the last token can be read, beyond the link's end.
    values = {.idToken = values.idToken, .completedBy = values.completedBy};
  }
  KaLinkageUtility::deletePairingInfo();
}

KaLinkState KaLink::state() const {
  const platform::MutexLock copying(lock);
  return values.state;
}

bool KaLink::isLinkedOrBeingSetUp() const {
  const platform::MutexLock copying(lock);
  return values.state != KaLinkState::Unlinked || values.loginEnds;
}

std::optional<QString> KaLink::idToken() const {
  {
    const platform::MutexLock copying(lock);
    if (values.idToken) return values.idToken;
  }
  return KaLinkageUtility::loadLinkageSetting();
}

std::optional<KaLinkSnapshot> KaLink::forRun() const {
  const platform::MutexLock copying(lock);
  if (values.state != KaLinkState::Linked || restOfLogin() > Clock::duration::zero()) return std::nullopt;
  return KaLinkSnapshot{.number = currentNumber, .idToken = values.idToken.value_or(QString())};
}

std::chrono::milliseconds KaLink::loginRest() const {
  const platform::MutexLock copying(lock);
  // Rounded up: who waits so long finds it over.
  return std::chrono::ceil<std::chrono::milliseconds>(restOfLogin());
}

KaLink::Clock::duration KaLink::restOfLogin() const {
  if (!values.loginEnds) return Clock::duration::zero();
  return std::max(*values.loginEnds - Clock::now(), Clock::duration::zero());
}

std::optional<QString> KaLink::tokenCode(KaLinkNumber of) const {
  const platform::MutexLock copying(lock);
  return isCurrent(of) ? values.tokenCode : std::nullopt;
}

std::optional<QString> KaLink::takeCodeVerifier(KaLinkNumber by) {
  const platform::MutexLock scope(turn);
  {
    const platform::MutexLock copying(lock);
    if (!isCurrent(by) || values.verifierOf != by) return std::nullopt;
    values.verifierOf = 0;
  }
  return KaLinkageUtility::existCodeVerifier() ? KaLinkageUtility::loadCodeVerifier() : std::nullopt;
}

void KaLink::returnCodeVerifier(KaLinkNumber of, const QString &codeVerifier) {
  const platform::MutexLock scope(turn);
  {
    const platform::MutexLock copying(lock);
    if (!isCurrent(of) || values.loginEnds) return; // a login under way has one of its own
    values.verifierOf = of;
  }
  KaLinkageUtility::saveCodeVerifier(codeVerifier);
}

bool KaLink::storeIdToken(KaLinkNumber of, const QString &idToken) {
  const platform::MutexLock scope(turn);
  {
    const platform::MutexLock copying(lock);
    if (!isCurrent(of)) return false;
    values.idToken = idToken;
  }
  return KaLinkageUtility::saveLinkageSetting(idToken);
}

bool KaLink::storeTokenCode(KaLinkNumber of, const QString &tokenCode) {
  const platform::MutexLock scope(turn);
  {
    const platform::MutexLock copying(lock);
    if (!isCurrent(of)) return false;
    values.tokenCode = tokenCode;
  }
  return KaLinkageUtility::saveTokenCode(tokenCode);
}

void KaLink::whileCurrent(KaLinkNumber of, const std::function<void()> &tell) {
  const platform::MutexLock scope(turn);
  if (isCurrent(of)) tell();
}
