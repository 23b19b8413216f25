#pragma once

#include <QCoreApplication>
#include <QThread>

#include <atomic>
#include <thread>

namespace platform {

/// Holds an object to one thread, the first that calls check(). Looked at in debug builds alone.
class ThreadBound {
public:
  ThreadBound() {} // not defaulted: it is a constant where it stands

  void check() const {
#ifndef QT_NO_DEBUG
    std::thread::id nobody;
    const bool first = owner.compare_exchange_strong(nobody, std::this_thread::get_id());
    Q_ASSERT_X(first || nobody == std::this_thread::get_id(), "ThreadBound", "called on another object's thread");
#endif
  }

private:
#ifndef QT_NO_DEBUG
  mutable std::atomic<std::thread::id> owner{};
#endif
};

/// Asserts, in debug builds, that this is the thread of the event loop. Without an application any thread is.
inline void assertMainThread() {
  Q_ASSERT_X(!QCoreApplication::instance() || QThread::currentThread() == QCoreApplication::instance()->thread(),
             "assertMainThread", "called on another thread than the main one");
}

} // namespace platform
