#include "app/KaModelFacade.h"

#include "app/KaDownloadDelegate.h"
#include "app/LoginVerification.h"
#include "engine/KaDownloadProcessor.h"
#include "identity/KaIdVerificationUtility.h"
#include "identity/KaLinkageUtility.h"
#include "log/ExceptionGuard.h"
#include "log/KaLogUtility.h"
#include "platform/ThreadBound.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

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
  link.beginLogin([this](const QString &url) {
    dlProc->loginEnded();
    tellNotOpened(u"login"_s, url);
  });
}

void KaModelFacade::tellNotOpened(const QString &page, const QString &url) {
  // Without its address: that of a login is for its user alone.
  KaLogUtility::writeErrorLog(u"the %1 page cannot be opened"_s.arg(page));
  if (KaDownloadDelegate *const delegate = dlDelegate) delegate->onPageNotOpened(url);
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
  tellResult({verdict.result, verdict.cause}, /*userTrigger=*/false);
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
  KaLinkageUtility::closeLinkage(&mailbox, [this](bool opened, const QString &url) {
    if (!opened) tellNotOpened(u"logout"_s, url);
  });
  dlProc->deleteCredential();
  setAppStatus(KaAppStatus::NotLinked);
  tellResult({KaResultCode::Unlinked}, /*userTrigger=*/false);
  if (KaDownloadDelegate *const delegate = dlDelegate) delegate->onChangeLinkage(false);
}
