#include "ui/KaSideWorker.h"

#include "log/ExceptionGuard.h"
#include "platform/Mailbox.h"
#include "platform/Mutex.h"
#include "platform/ThreadBound.h"
#include "platform/ThreadName.h"

#include <condition_variable>
#include <deque>
#include <optional>
#include <thread>
#include <utility>

/// What both sides share, for as long as either needs it.
struct KaSideWorker::State {
  using Job = std::function<Report()>;

  /// Waits. @return nothing once the other side is gone.
  std::optional<Job> next() {
    const platform::MutexLock scope(lock);
    while (mailbox && jobs.empty())
      news.wait(lock);
    if (!mailbox) return std::nullopt;
    Job job = std::move(jobs.front());
    jobs.pop_front();
    return job;
  }
  void deliver(Report report) {
    const platform::MutexLock scope(lock);
    if (mailbox) mailbox->post(std::move(report));
  }
  void run() {
    platform::nameThisThread("side");
    while (const auto job = next()) {
      Report report;
      if (runGuarded([&] { report = (*job)(); }) && report) deliver(std::move(report));
    }
  }

  platform::Mutex lock;
  std::condition_variable_any news;
  std::deque<Job> jobs KA_GUARDED_BY(lock);
  std::unique_ptr<platform::Mailbox> mailbox KA_GUARDED_BY(lock) = std::make_unique<platform::Mailbox>();
};

KaSideWorker::KaSideWorker() : state(std::make_shared<State>()) {
  platform::assertMainThread();
}

KaSideWorker::~KaSideWorker() {
  const platform::MutexLock scope(state->lock);
  state->mailbox.reset();
  state->jobs.clear();
  state->news.notify_all();
}

void KaSideWorker::post(std::function<Report()> job) {
  const platform::MutexLock scope(state->lock);
  state->jobs.push_back(std::move(job));
  state->news.notify_all();
  // Detached: a thread that hangs in a disk must not hold up whoever closes a window.
  if (!std::exchange(hasThread, true)) std::thread([shared = state] { shared->run(); }).detach();
}
