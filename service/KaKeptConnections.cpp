#include "service/KaKeptConnections.h"

#include "service/KaTransport.h"

#include <utility>

using Clock = std::chrono::steady_clock;

KaKeptConnections::KaKeptConnections(std::shared_ptr<KaTransport> with) : transport(std::move(with)) {
}
KaKeptConnections::~KaKeptConnections() = default;

HttpAnswer KaKeptConnections::perform(const HttpRequest &request, const KaHttpTransfer::BodySink &sink,
                                      const KaHttpTransfer::ShallEnd &shallEnd) {
  KaHttpTransfer::BodySink measured;
  if (sink)
    measured = [&](const char *bytes, std::size_t count) {
      meter.carry(static_cast<qint64>(count));
      return sink(bytes, count);
    };
  Transfer transfer = borrow();
  meter.begin(Clock::now());
  HttpAnswer answer = transfer->perform(request, measured, shallEnd);
  meter.carry(answer.body.size());
  meter.end(Clock::now());
  giveBack(std::move(transfer));
  return answer;
}

std::chrono::milliseconds KaKeptConnections::wholeLimit() const {
  return transport->wholeLimit;
}

std::optional<double> KaKeptConnections::bytesPerSecond() const {
  return meter.bytesPerSecond(Clock::now());
}

void KaKeptConnections::cancel() {
  const platform::MutexLock scope(lock);
  for (KaHttpTransfer *const transfer : busy)
    transfer->cancel();
}

void KaKeptConnections::drop() {
  std::vector<Transfer> closing; // without the lock: a goodbye takes a moment
  const platform::MutexLock scope(lock);
  closing.swap(free);
  dropped = busy;
}

KaKeptConnections::Transfer KaKeptConnections::borrow() {
  const platform::MutexLock scope(lock);
  Transfer transfer;
  if (free.empty()) {
    transfer = std::make_unique<KaHttpTransfer>(transport, KaHttpTransfer::Connections::Kept);
  } else {
    transfer = std::move(free.back());
    free.pop_back();
  }
  busy.push_back(transfer.get());
  return transfer;
}

void KaKeptConnections::giveBack(Transfer transfer) {
  const platform::MutexLock scope(lock);
  std::erase(busy, transfer.get());
  if (std::erase(dropped, transfer.get()) == 0) free.push_back(std::move(transfer));
}
