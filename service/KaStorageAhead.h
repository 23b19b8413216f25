#pragma once

#include "platform/Mutex.h"
#include "service/AheadWindow.h"
#include "service/KaCredential.h"
#include "service/StorageQuestion.h"

#include <QHash>
#include <QString>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

class KaKeptConnections;
struct ArrivedObject;

/// Asks the storage for what a pass will ask it later, on threads of its own, so that the answer is there earlier; it
/// changes nothing else. An answer is "there" or "missing"; whatever failed, or came with a wrong size, was never
/// asked. How much at once, see mayBeginAhead; the user default "requestsAhead" (8) sets the number, and 0 asks for
/// nothing. After a failure it waits until its owner's own request has succeeded. begin, then the rest, then end; one
/// thread.
class KaStorageAhead {
public:
  struct Parts {
    KaKeptConnections &connections;           ///< outlives this object
    std::function<KaCredential()> credential; ///< to ask with; empty where none lasts long enough. Any thread
  };
  /// What one pass is about. Everything here is called on any thread.
  struct Pass {
    QString folder{}; ///< where content waits for its turn, without a name
    /// What to ask for after an answer.
    std::function<AheadOrders(const AheadOrder &order, const AheadFinding &finding)> then;
    std::function<bool(qint64 bytes)> hasRoom;
    std::function<bool()> shallEnd; ///< the pass is to end
  };

  explicit KaStorageAhead(Parts parts);
  ~KaStorageAhead();
  KaStorageAhead(const KaStorageAhead &) = delete;
  KaStorageAhead &operator=(const KaStorageAhead &) = delete;

  void begin(Pass pass);
  /// Ends what is under way, at once, and drops what has come.
  void end();
  /// Requests; 0 when it is switched off.
  [[nodiscard]] int mostAtATime() const { return most; }
  /// Between begin and end, and not switched off.
  [[nodiscard]] bool isAtWork() const { return !threads.empty(); }
  void offer(const AheadOrder &order);
  /// It is the turn of @p turn: what was for earlier ones is dropped.
  void reach(qsizetype turn);

  /// The answer to a question, once: one that is under way, or about to be, is waited for. Absent when it was never
  /// asked.
  [[nodiscard]] std::optional<ArrivedObject> take(const StorageQuestion &question);
  /// Drops what takes room on the disk. @return whether there was anything.
  [[nodiscard]] bool giveUp();
  /// From now on no content is asked for in this pass: it has to land on another file system.
  void leaveContent();

  /// A request of the owner's own, which counts among those under way.
  class Own {
  public:
    explicit Own(KaStorageAhead &counting, qint64 size = 0);
    ~Own();
    Own(const Own &) = delete;
    Own &operator=(const Own &) = delete;
    void succeed() { hasSucceeded = true; }

  private:
    KaStorageAhead &ahead;
    const qint64 size;
    bool hasSucceeded = false;
  };

private:
  enum class State;
  struct Entry;
  using EntryPointer = std::shared_ptr<Entry>;
  using Clock = std::chrono::steady_clock;

  void work();
  [[nodiscard]] EntryPointer nextAllowed() KA_REQUIRES(lock);
  [[nodiscard]] bool isAllowed(const Entry &entry, int requests) const KA_REQUIRES(lock);
  [[nodiscard]] bool ask(Entry &entry) const;
  void finish(const EntryPointer &entry, bool isAnswered) KA_REQUIRES(lock);
  void add(const AheadOrder &order) KA_REQUIRES(lock);
  void drop(const EntryPointer &entry) KA_REQUIRES(lock);
  void dropAll() KA_REQUIRES(lock);

  const Parts with;
  const int most;
  Pass pass; ///< fixed while the threads live
  std::vector<std::thread> threads;

  platform::Mutex lock;
  std::condition_variable_any workCame;
  std::condition_variable_any answerCame;
  QHash<StorageQuestion, EntryPointer> entries KA_GUARDED_BY(lock);
  std::multimap<qsizetype, EntryPointer> waiting KA_GUARDED_BY(lock); ///< by turn
  AheadLoad load KA_GUARDED_BY(lock);
  bool isEnding KA_GUARDED_BY(lock) = false;
  bool isPaused KA_GUARDED_BY(lock) = false;
  bool leavesContent KA_GUARDED_BY(lock) = false;
};
