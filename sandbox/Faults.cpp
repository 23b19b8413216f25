#include "sandbox/Faults.h"

#include <algorithm>

namespace sandbox {

namespace {

/// One use less; the fault goes when none is left.
template <class Fault> Fault useUp(QList<Fault> &faults, qsizetype index) {
  Fault &fault = faults[index];
  if (fault.times > 0 && --fault.times == 0) return faults.takeAt(index);
  return fault;
}

/// Without the rest of the query: signatures and tokens hold any few letters by chance.
QByteArray askedFor(const ReceivedRequest &request) {
  const QueryParameters query = request.query();
  return request.path() + ' ' + query.text("prefix") + ' ' + query.text("start-after");
}

bool speaksJson(Endpoint endpoint) {
  switch (endpoint) {
  case Endpoint::Configuration:
  case Endpoint::GetLogin:
  case Endpoint::LoginPage:
  case Endpoint::SignIn:
  case Endpoint::Logout:
  case Endpoint::LogoutPage:
  case Endpoint::TokenCode:
  case Endpoint::RefreshToken:
  case Endpoint::Discovery:
  case Endpoint::Keys:
  case Endpoint::LogEvents:
  case Endpoint::Other:
    return true;
  case Endpoint::Sts:
  case Endpoint::ListDevices:
  case Endpoint::SettingsObject:
  case Endpoint::ListItems:
  case Endpoint::Metadata:
  case Endpoint::ObjectGet:
  case Endpoint::ObjectHead:
  case Endpoint::ObjectTagging:
  case Endpoint::PreviewList:
  case Endpoint::PreviewObject:
    return false;
  }
  Q_UNREACHABLE();
}

QByteArray errorDocument(Endpoint endpoint) {
  if (speaksJson(endpoint)) return R"({"error":"ordered","errorDescription":"This answer was ordered."})";
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<Error><Code>Ordered</Code><Message>This answer was ordered.</Message></Error>";
}

ServedAnswer replacement(const Fault &fault, Endpoint endpoint) {
  using enum Fault::Kind;
  ServedAnswer answer{.contentType = speaksJson(endpoint) ? "application/json" : "application/xml"};
  if (fault.kind == Status || fault.kind == Body) answer.body = fault.body;
  if (fault.kind == Status && fault.body.isEmpty()) answer.body = errorDocument(endpoint);
  if (fault.kind == Status || fault.kind == Body)
    answer.status = fault.status != 0 ? fault.status : fault.kind == Status ? 500 : 200;
  if (fault.kind == MalformedBody) answer.body = "{\"open\": [<Key>\n";
  if (fault.kind == DroppedConnection) answer.delivery = Delivery::Dropped;
  if (fault.kind == NoAnswer) answer.delivery = Delivery::Held;
  return answer;
}

/// How the answer travels; nullopt where the fault takes the place of the service.
std::optional<Delivery> deliveryOf(Fault::Kind kind) {
  switch (kind) {
  case Fault::Kind::Status:
  case Fault::Kind::EmptyBody:
  case Fault::Kind::MalformedBody:
  case Fault::Kind::Body:
  case Fault::Kind::DroppedConnection:
  case Fault::Kind::NoAnswer:
    return std::nullopt;
  case Fault::Kind::Delay:
    return Delivery::Whole;
  case Fault::Kind::Interim:
    return Delivery::AfterInterim;
  case Fault::Kind::TruncatedBody:
    return Delivery::Truncated;
  case Fault::Kind::SlowBody:
    return Delivery::Slow;
  case Fault::Kind::Uncounted:
    return Delivery::Uncounted;
  case Fault::Kind::UncountedCut:
    return Delivery::UncountedCut;
  case Fault::Kind::Deflated:
    return Delivery::Deflated;
  case Fault::Kind::DeflatedChunks:
    return Delivery::DeflatedChunks;
  }
  Q_UNREACHABLE();
}

} // namespace

void Faults::order(Endpoint endpoint, const Fault &fault) {
  answers.with([&](auto &ordered) { ordered[endpoint].append(fault); });
}

void Faults::orderAt(int number, const Fault &fault) {
  numbered.with([&](auto &waiting) { waiting = {number, fault}; });
}

std::optional<Fault> Faults::takeNumbered() {
  return numbered.with([](auto &waiting) -> std::optional<Fault> {
    if (!waiting || --waiting->number > 0) return std::nullopt;
    const Fault fault = waiting->fault;
    waiting.reset();
    return fault;
  });
}

void Faults::order(TokenFault fault, int times) {
  tokens.with([&](auto &ordered) { ordered.append({fault, times}); });
}

void Faults::clear() {
  answers.with([](auto &ordered) { ordered.clear(); });
  numbered.with([](auto &waiting) { waiting.reset(); });
  tokens.with([](auto &ordered) { ordered.clear(); });
}

std::optional<Fault> Faults::take(Endpoint endpoint, const ReceivedRequest &request) {
  if (auto fault = takeNumbered()) return fault;
  return answers.with([&](auto &ordered) -> std::optional<Fault> {
    const auto faults = ordered.find(endpoint);
    if (faults == ordered.end()) return std::nullopt;
    const QByteArray asked = askedFor(request);
    const auto meets = [&](const Fault &fault) { return asked.contains(fault.pathContains.toUtf8()); };
    const auto found = std::find_if(faults->begin(), faults->end(), meets);
    if (found == faults->end()) return std::nullopt;
    return useUp(*faults, found - faults->begin());
  });
}

std::optional<TokenFault> Faults::take(std::span<const TokenFault> applicable) {
  return tokens.with([&](auto &ordered) -> std::optional<TokenFault> {
    const auto fits = [&](const OrderedTokenFault &waiting) {
      return std::find(applicable.begin(), applicable.end(), waiting.fault) != applicable.end();
    };
    const auto found = std::find_if(ordered.begin(), ordered.end(), fits);
    if (found == ordered.end()) return std::nullopt;
    return useUp(ordered, found - ordered.begin()).fault;
  });
}

bool replacesService(Fault::Kind kind) {
  return !deliveryOf(kind);
}

ServedAnswer spoiled(const Fault &fault, Endpoint endpoint, ServedAnswer right) {
  const auto delivery = deliveryOf(fault.kind);
  if (!delivery) return replacement(fault, endpoint);
  if (fault.kind == Fault::Kind::Delay) right.delay = fault.delay;
  right.delivery = *delivery;
  return right;
}

} // namespace sandbox
