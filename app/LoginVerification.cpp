#include "app/LoginVerification.h"

KaModelFacade::LoginVerification::LoginVerification(const QString &idToken, const std::optional<QString> &expectedNonce,
                                                    Report report)
    : token(idToken), request([this] { return endFlag.load(); }),
      thread([this, expectedNonce, report = std::move(report)] { verify(expectedNonce, report); }) {
}

KaModelFacade::LoginVerification::~LoginVerification() {
  drop();
  thread.join();
}

void KaModelFacade::LoginVerification::drop() {
  endFlag = true;
  request.stopServerRequest();
}

void KaModelFacade::LoginVerification::verify(const std::optional<QString> &expectedNonce, const Report &report) {
  report(*this, KaIdVerificationUtility::validateJWT(request, token, /*checkNonce=*/true, expectedNonce));
}
