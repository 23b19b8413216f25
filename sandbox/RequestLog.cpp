#include "sandbox/RequestLog.h"

namespace sandbox {

namespace {

// A record is about 2 KiB; a long measurement must not fill the memory.
constexpr size_t kMostRecords = 20'000;

} // namespace

quint64 RequestLog::arrived(RequestRecord record) {
  const std::lock_guard lock(mutex);
  ++counts[record.endpoint];
  kept.push_back(std::move(record));
  if (kept.size() > kMostRecords) {
    kept.pop_front();
    ++firstKept;
  }
  changed.notify_all();
  return firstKept + kept.size() - 1;
}

void RequestLog::answered(quint64 number, int status) {
  const std::lock_guard lock(mutex);
  // Numbers go on through a reset, so an answer to a forgotten request finds nothing here.
  if (number < firstKept || number - firstKept >= kept.size()) return;
  kept[number - firstKept].status = status;
}

int RequestLog::count(Endpoint endpoint) const {
  const std::lock_guard lock(mutex);
  return counts.value(endpoint);
}

QList<RequestRecord> RequestLog::records() const {
  const std::lock_guard lock(mutex);
  return QList<RequestRecord>(kept.begin(), kept.end());
}

void RequestLog::reset() {
  const std::lock_guard lock(mutex);
  firstKept += kept.size();
  kept.clear();
  counts.clear();
}

bool RequestLog::waitFor(Endpoint endpoint, int count, std::chrono::milliseconds timeout) const {
  std::unique_lock lock(mutex);
  return changed.wait_for(lock, timeout, [&] { return counts.value(endpoint) >= count; });
}

} // namespace sandbox
