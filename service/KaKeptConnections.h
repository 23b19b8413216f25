#pragma once

#include "platform/Mutex.h"
#include "service/KaHttpTransfer.h"
#include "service/LineMeter.h"

#include <memory>
#include <vector>

/// Exchanges on connections that are kept from one to the next: several at once, each on the one that was used last and
/// is free, else on one more. Any thread.
class KaKeptConnections {
public:
  explicit KaKeptConnections(std::shared_ptr<KaTransport> transport);
  ~KaKeptConnections();
  KaKeptConnections(const KaKeptConnections &) = delete;
  KaKeptConnections &operator=(const KaKeptConnections &) = delete;

  /// Blocks its thread until the exchange has ended.
  [[nodiscard]] HttpAnswer perform(const HttpRequest &request, const KaHttpTransfer::BodySink &sink = {},
                                   const KaHttpTransfer::ShallEnd &shallEnd = {});
  /// Ends all exchanges in flight.
  void cancel();
  /// Nothing is kept of what is open now: what is free closes at once, the rest after its exchange.
  void drop();
  /// How long an exchange may take in all.
  [[nodiscard]] std::chrono::milliseconds wholeLimit() const;
  /// Bytes per second that they have lately carried; absent while nothing is known.
  [[nodiscard]] std::optional<double> bytesPerSecond() const;

private:
  using Transfer = std::unique_ptr<KaHttpTransfer>;

  [[nodiscard]] Transfer borrow();
  void giveBack(Transfer transfer);

  const std::shared_ptr<KaTransport> transport;
  LineMeter meter;
  platform::Mutex lock;
  std::vector<Transfer> free KA_GUARDED_BY(lock); ///< the one used last at the end
  std::vector<KaHttpTransfer *> busy KA_GUARDED_BY(lock);
  std::vector<KaHttpTransfer *> dropped KA_GUARDED_BY(lock); ///< of the busy ones
};
