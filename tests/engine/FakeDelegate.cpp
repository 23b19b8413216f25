#include "tests/engine/FakeDelegate.h"

// What leaves here shares no data with what stays, since Qt's counting of shares is invisible to thread checkers.
FakeDelegate::Answers FakeDelegate::answers() const {
  const std::lock_guard lock(mutex);
  Answers copy = current;
  for (KaDownloadData &record : copy.records)
    record.ContentIds.detach();
  return copy;
}

QStringList FakeDelegate::events() const {
  const std::lock_guard lock(mutex);
  QStringList copy = told;
  copy.detach();
  return copy;
}

void FakeDelegate::forgetEvents() {
  const std::lock_guard lock(mutex);
  told.clear();
}

bool FakeDelegate::waitForEvent(const QString &event, int times, int seconds) const {
  std::unique_lock lock(mutex);
  return noted.wait_for(lock, std::chrono::seconds(seconds), [&] { return told.count(event) >= times; });
}

bool FakeDelegate::note(const QString &event) {
  std::function<void(const QString &)> hook;
  {
    const std::lock_guard lock(mutex);
    told << event;
    hook = current.onEvent;
    noted.notify_all();
  }
  if (hook) hook(event);
  return true;
}
