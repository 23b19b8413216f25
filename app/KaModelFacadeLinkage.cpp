#include "app/KaModelFacade.h"

#include "app/KaDownloadDelegate.h"
#include "app/LoginVerification.h"
#include "engine/KaDownloadProcessor.h"
#include "identity/KaLinkageUtility.h"
#include "log/ExceptionGuard.h"
#include "log/KaLogUtility.h"

#include <QUuid>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

bool KaModelFacade::saveLinkageSetting(const QString &idToken) {
  dIdToken.set(idToken);
  return KaLinkageUtility::saveLinkageSetting(idToken);
}

std::optional<QString> KaModelFacade::loadLinkageSetting() const {
  const auto cached = dIdToken.get();
  return cached ? cached : KaLinkageUtility::loadLinkageSetting();
}

void KaModelFacade::initializeLinkageSetting() {
  const bool linked = loadLinkageSetting().has_value();
  // Before the thread is woken, which looks at this first and would go back to sleep.
  loggedIn = linked;
  if (!linked) return setProcessingResult(KaResultCode::NotLinked, /*userTrigger=*/false);

  setAppStatus(KaAppStatus::Normal);
  dlProc->startReceiving(/*initialAccess=*/false);
  if (KaDownloadDelegate *const delegate = dlDelegate) delegate->onChangeLinkage(true);
}

void KaModelFacade::setupLinkage() {
  dropLogins();
  KaLinkageUtility::deletePairingInfo();
  nonce = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
  if (!KaLinkageUtility::setupLinkage(*nonce)) KaLogUtility::writeErrorLog(u"the login page cannot be opened"_s);
  loggedIn = true;
}

void KaModelFacade::setIdCode(const QString &token) {
  // One that is still being verified goes on: browsers may call twice for a login, and the second finds no nonce.
  const auto expectedNonce = std::exchange(nonce, std::nullopt);
  logins.push_back(
      std::make_unique<LoginVerification>(token, expectedNonce, [this](LoginVerification &ended, KaResultCode verdict) {
        mailbox.post([this, &ended, verdict] {
          if (!runGuarded([&] { endLogin(ended, verdict); }))
            setProcessingResult(KaResultCode::Unexpected, /*userTrigger=*/false);
        });
      }));
}

void KaModelFacade::dropLogins() {
  for (const auto &login : logins)
    login->drop();
}

void KaModelFacade::endLogin(LoginVerification &ended, KaResultCode verdict) {
  const bool isAwaited =
      std::any_of(logins.begin(), logins.end(), [&ended](const auto &login) { return login.get() == &ended; });
  if (!isAwaited) return;
  ended.setVerdict(verdict);
  // The effects keep the order of the callbacks, whichever verdict came first.
  while (!logins.empty() && logins.front()->verdict()) {
    const std::unique_ptr<LoginVerification> login = std::move(logins.front());
    logins.erase(logins.begin());
    if (!login->isDropped()) finishLogin(login->idToken(), *login->verdict());
  }
}

void KaModelFacade::finishLogin(const QString &token, KaResultCode verdict) {
  if (verdict != KaResultCode::Success) return setProcessingResult(verdict, /*userTrigger=*/false);

  if (!saveLinkageSetting(token)) KaLogUtility::writeErrorLog(u"the linkage cannot be saved"_s);
  loggedIn = true;
  KaDownloadDelegate *const delegate = dlDelegate;
  if (!delegate) return;
  delegate->onCompleteLinkageSetting();
  delegate->onChangeLinkage(true);
}

void KaModelFacade::closeLinkage() {
  dropLogins();
  if (!KaLinkageUtility::closeLinkage()) KaLogUtility::writeErrorLog(u"the logout page cannot be opened"_s);
  dlProc->deleteCredential();
  setAppStatus(KaAppStatus::NotLinked);
  setProcessingResult(KaResultCode::Unlinked, /*userTrigger=*/false);
  // First the flag: a run that is just storing a refreshed token looks at it.
  loggedIn = false;
  KaLinkageUtility::deletePairingInfo();
}
