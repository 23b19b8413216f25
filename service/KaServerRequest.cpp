#include "service/KaServerRequest.h"

#include "service/HttpStatus.h"
#include "service/KaApplicationConstants.h"
#include "service/KaTransport.h"

using namespace Qt::StringLiterals;

KaServerRequest::KaServerRequest(KaHttpTransfer::ShallEnd end)
    : shallEnd(std::move(end)), transport(std::make_shared<KaTransport>()), transfer(transport),
      storageConnections(transport) {
}

void KaServerRequest::stopServerRequest() {
  transfer.cancel();
  storageConnections.cancel();
}

void KaServerRequest::dropConnections() {
  storageConnections.drop();
}

void KaServerRequest::networkChanged() {
  dropConnections();
  transport->forgetNetwork();
}

KaResultCode KaServerRequest::checkHTTPResponse(qint64 statusCode) {
  return meaningOf(statusCode).result;
}

KaResultCode KaServerRequest::resultOf(const HttpAnswer &answer) {
  switch (answer.outcome) {
  case TransportOutcome::Answered:
    return checkHTTPResponse(answer.status);
  case TransportOutcome::SecureConnectionFailed:
    return KaResultCode::SecureConnectionFailed;
  case TransportOutcome::Failed:
    return KaResultCode::Offline;
  case TransportOutcome::WaitRanOut:
    return KaResultCode::RetryLater;
  }
  return KaResultCode::Unexpected;
}

ServerAnswer KaServerRequest::getKaAppId() {
  return exchange({.url = u"https://%1/configuration"_s.arg(KaApplicationConstants::strataHostName())});
}

ServerAnswer KaServerRequest::exchange(const HttpRequest &request, EmptyBody emptyBody) {
  return answerOf(transfer.perform(request, {}, shallEnd), emptyBody);
}

ServerAnswer KaServerRequest::answerOf(HttpAnswer answer, EmptyBody emptyBody) {
  KaResultCode result = resultOf(answer);
  if (result == KaResultCode::Success && answer.bodySize == 0 && emptyBody == EmptyBody::IsNoBody)
    result = KaResultCode::NoBody;
  return {.result = result, .statusCode = answer.status, .data = std::move(answer.body)};
}
