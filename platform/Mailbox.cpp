#include "platform/Mailbox.h"

#include <utility>

namespace platform {

Mailbox::Mailbox(QObject *parent) : QObject(parent) {
}

void Mailbox::post(std::function<void()> job) {
  bool first = false;
  {
    const MutexLock scope(lock);
    first = jobs.empty();
    jobs.push_back(std::move(job));
  }
  if (first) QMetaObject::invokeMethod(this, "drain", Qt::QueuedConnection);
}

void Mailbox::drain() {
  std::deque<std::function<void()>> batch;
  {
    const MutexLock scope(lock);
    batch.swap(jobs);
  }
  for (const auto &job : batch)
    job();
}

} // namespace platform
