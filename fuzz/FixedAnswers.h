#pragma once

#include "service/KaHttpTransfer.h"

/// In these programs KaHttpTransfer meets no network: this decides what comes back.
using Answering = std::function<HttpAnswer(const HttpRequest &request)>;
void answerWith(const Answering &answering);

/// A whole answer with status 200.
[[nodiscard]] inline HttpAnswer answered(const QByteArray &body) {
  return {.outcome = TransportOutcome::Answered, .status = 200, .headers = {}, .body = body};
}
