#include "platform/Mailbox.h"

#include <utility>

namespace platform {

Mailbox::Mailbox(QObject *parent) : QObject(parent) {
}

void Mailbox::post(std::function<void()> job) {
  {
    const MutexLock scope(lock);
    jobs.push_back(std::move(job));
  }
  QMetaObject::invokeMethod(this, "drain", Qt::QueuedConnection);
}

// One job a call: while one shows a dialog, its event loop takes the next ones, still in order.
void Mailbox::drain() {
  std::function<void()> job;
  {
    const MutexLock scope(lock);
    if (jobs.empty()) return;
    job = std::move(jobs.front());
    jobs.pop_front();
  }
  job();
}

} // namespace platform
