#pragma once

#include "platform/Mutex.h"
#include "platform/ThreadAnnotations.h"

#include <QObject>

#include <deque>
#include <functional>

namespace platform {

/// Runs jobs that any thread posts, in order, on the thread that made it, from that thread's event loop; the loop of a
/// dialog that a job opens goes on with those behind it. Jobs that are left when it is destroyed never run.
class Mailbox : public QObject {
  Q_OBJECT

public:
  explicit Mailbox(QObject *parent = nullptr);

  /// Any thread.
  void post(std::function<void()> job);

private:
  Q_INVOKABLE void drain();

  Mutex lock;
  std::deque<std::function<void()>> jobs KA_GUARDED_BY(lock);
};

} // namespace platform
