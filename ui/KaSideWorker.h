#pragma once

#include <functional>
#include <memory>

/// One thread beside the main one, for what may take its time or hang, such as a disk that has gone away. It is begun
/// by the first job and ends with this object, which does not wait for it. Made, used and destroyed on the main thread.
class KaSideWorker {
public:
  using Report = std::function<void()>;

  KaSideWorker();
  ~KaSideWorker();
  KaSideWorker(const KaSideWorker &) = delete;
  KaSideWorker &operator=(const KaSideWorker &) = delete;

  /// Jobs run in their order. @param job  runs on the thread; what it returns runs on the main thread, unless this
  /// object is gone by then.
  void post(std::function<Report()> job);

private:
  struct State;

  const std::shared_ptr<State> state;
  bool hasThread = false;
};
