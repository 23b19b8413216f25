#include "fuzz/FixedAnswers.h"

#include "fuzz/Fuzz.h"

namespace {

Answering &current() {
  static Answering answering;
  return answering;
}

} // namespace

void answerWith(const Answering &answering) {
  current() = answering;
}

// The class once more, in the place of service/KaHttpTransfer.cpp, which the linker then leaves out.

class KaHttpTransfer::Private {};

KaHttpTransfer::KaHttpTransfer(std::shared_ptr<KaTransport>, Connections) {
}

KaHttpTransfer::~KaHttpTransfer() = default;

HttpAnswer KaHttpTransfer::perform(const HttpRequest &request, const BodySink &sink, const ShallEnd &) {
  require(bool(current()), "a target that asks for something has an answer");
  HttpAnswer answer = current()(request);
  answer.bodySize = answer.body.size();
  if (!sink || answer.status != 200 || answer.body.isEmpty()) return answer;
  answer.sinkRefused = !sink(answer.body.constData(), static_cast<std::size_t>(answer.body.size()));
  if (answer.sinkRefused) answer.outcome = TransportOutcome::Failed;
  answer.body.clear();
  return answer;
}

void KaHttpTransfer::cancel() {
}
