#include "app/KaModelFacade.h"

#include "app/KaDownloadDelegate.h"
#include "app/LoginVerification.h"
#include "engine/KaDownloadProcessor.h"
#include "identity/KaIdVerificationUtility.h"
#include "identity/KaLinkageUtility.h"
#include "log/ExceptionGuard.h"
#include "log/KaLogUtility.h"
#include "platform/ThreadBound.h"
#include "service/ServiceClock.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Why a login's token was not taken.
KaFaultCause causeOf(const KaTokenVerdict &verdict) {
  if (verdict.isOutOfTime && ServiceClock::isFarOff()) return KaFaultCause::WrongClock;
  return verdict.mayPass && !verdict.isOutOfTime ? KaFaultCause::NoAnswer : KaFaultCause::NotAccepted;
}

bool isSameAccount(const QString &idToken, const QString &other) {
  return KaIdVerificationUtility::parseUserUUID(idToken) == KaIdVerificationUtility::parseUserUUID(other);
}

} // namespace

void KaModelFacade::initializeLinkageSetting() {
  platform::assertMainThread();
  takeUpLinkage();
  // Behind the rest, which would put the icon back to normal.
  if (!canKeepFiles) tellResult({KaResultCode::Unexpected}, /*userTrigger=*/false);
}

void KaModelFacade::takeUpLinkage() {
  // Before the thread is woken, which looks at the link first and would go back to sleep.
  if (!link.load()) return tellResult({KaResultCode::NotLinked}, /*userTrigger=*/false);

  setAppStatus(KaAppStatus::Normal);
  dlProc->startReceiving(/*initialAccess=*/false);
  if (KaDownloadDelegate *const delegate = dlDelegate) delegate->onChangeLinkage(true);
}

void KaModelFacade::setupLinkage() {
  platform::assertMainThread();
  dropLogins();
  if (link.beginLogin()) return;
  KaLogUtility::writeErrorLog(u"the login page cannot be opened"_s);
  dlProc->loginEnded();
}

void KaModelFacade::setIdCode(const QString &token) {
  platform::assertMainThread();
  // The second call of a browser finds the nonce used, which is no fault of the login.
  if (link.isRepeated(token) || isBeingVerified(token)) return;
  logins.push_back(std::make_unique<LoginVerification>(
      token, link.useNonce(), [this](LoginVerification &ended, const KaTokenVerdict &verdict) {
        mailbox.post([this, &ended, verdict] {
          if (!runGuarded([&] { endLogin(ended, verdict); }))
            tellResult({KaResultCode::Unexpected}, /*userTrigger=*/false);
        });
      }));
}

bool KaModelFacade::isBeingVerified(const QString &token) const {
  return std::any_of(logins.begin(), logins.end(), [&token](const auto &login) { return login->idToken() == token; });
}

void KaModelFacade::dropLogins() {
  for (const auto &login : logins)
    login->drop();
}

void KaModelFacade::endLogin(LoginVerification &ended, const KaTokenVerdict &verdict) {
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

void KaModelFacade::finishLogin(const QString &token, const KaTokenVerdict &verdict) {
  if (verdict.result == KaResultCode::Success) return takeLogin(token);
  if (link.giveUpLogin()) dlProc->loginEnded();
  tellResult({verdict.result, causeOf(verdict)}, /*userTrigger=*/false);
}

void KaModelFacade::takeLogin(const QString &token) {
  const QString before = link.idToken().value_or(QString());
  const bool stored = link.completeLogin(token);
  if (!stored) KaLogUtility::writeErrorLog(u"the linkage cannot be saved"_s);
  // From here on nothing is told in the name of the link before it.
  isSameAccount(before, token) ? keeper.forgetLink() : keeper.forgetAccount();
  // A request in that name would only be waited for.
  dlProc->deleteCredential();
  KaDownloadDelegate *const delegate = dlDelegate;
  if (!delegate) return;
  delegate->onCompleteLinkageSetting();
  delegate->onChangeLinkage(true);
  if (!stored && !std::exchange(hasToldUnsaved, true)) tellResult({KaResultCode::Unexpected}, /*userTrigger=*/false);
}

void KaModelFacade::closeLinkage() {
  platform::assertMainThread();
  // First of all: a browser takes its time, and nothing of the old link must come back meanwhile.
  link.close();
  keeper.forgetAccount();
  dropLogins();
  if (!KaLinkageUtility::closeLinkage()) KaLogUtility::writeErrorLog(u"the logout page cannot be opened"_s);
  dlProc->deleteCredential();
  setAppStatus(KaAppStatus::NotLinked);
  tellResult({KaResultCode::Unlinked}, /*userTrigger=*/false);
}
