#pragma once

#include "sandbox/Endpoint.h"
#include "sandbox/Fault.h"
#include "sandbox/HttpMessage.h"
#include "sandbox/Locked.h"

#include <QHash>
#include <QList>

#include <optional>
#include <span>

namespace sandbox {

/// The odd answers on order. Any thread.
class Faults {
public:
  void order(Endpoint endpoint, const Fault &fault);
  void orderAt(int number, const Fault &fault);
  void order(TokenFault fault, int times);
  void clear();

  /// The fault that a request meets, which uses it up by one.
  [[nodiscard]] std::optional<Fault> take(Endpoint endpoint, const ReceivedRequest &request);
  /// The first waiting token fault that is among @p applicable.
  [[nodiscard]] std::optional<TokenFault> take(std::span<const TokenFault> applicable);

private:
  struct OrderedTokenFault {
    TokenFault fault{};
    int times = 1;
  };
  struct NumberedFault {
    int number = 0; ///< of the request, from the next one on
    Fault fault{};
  };
  [[nodiscard]] std::optional<Fault> takeNumbered();

  Locked<QHash<Endpoint, QList<Fault>>> answers;
  Locked<std::optional<NumberedFault>> numbered;
  Locked<QList<OrderedTokenFault>> tokens;
};

/// Whether the fault takes the place of the service, so that there is no right answer to ask for.
[[nodiscard]] bool replacesService(Fault::Kind kind);
/// The answer that a fault makes of @p right, which is unused where the fault replaces the service.
[[nodiscard]] ServedAnswer spoiled(const Fault &fault, Endpoint endpoint, ServedAnswer right);

} // namespace sandbox
