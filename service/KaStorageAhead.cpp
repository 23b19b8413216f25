#include "service/KaStorageAhead.h"

#include "log/ExceptionGuard.h"
#include "platform/ThreadName.h"
#include "platform/UserDefaults.h"
#include "service/HttpStatus.h"
#include "service/KaKeptConnections.h"
#include "service/KaServerRequest.h"
#include "service/StorageRequests.h"

#include <algorithm>
#include <atomic>
#include <utility>

using namespace Qt::StringLiterals;
using Kind = StorageQuestion::Kind;

namespace {

constexpr std::chrono::seconds kMissingFor(30); ///< it may come at any time
constexpr std::chrono::milliseconds kLook(50);  ///< how often is looked whether the disk still has room
constexpr int kShareOfLimit = 12;               ///< 5 s of the minute that an exchange may take
constexpr qsizetype kMostBody = 1024 * 1024;    ///< bytes of an answer that waits in memory

int mostRequests() {
  constexpr qint64 kBuiltIn = 8;
  constexpr qint64 kMost = 64;
  const double stored = platform::standardUserDefaults().doubleValue(u"requestsAhead"_s).value_or(kBuiltIn);
  return static_cast<int>(std::clamp(stored, 0.0, static_cast<double>(kMost)));
}

bool isMissing(const HttpAnswer &answer) {
  return meaningOf(answer.status).document == StatusMeaning::Document::Missing;
}

} // namespace

enum class KaStorageAhead::State { Waiting, UnderWay, Answered, Failed };

/// One question.
struct KaStorageAhead::Entry {
  explicit Entry(AheadOrder ordered) : order(std::move(ordered)) {}

  const AheadOrder order;
  // Behind the owner's lock:
  State state = State::Waiting;
  Clock::time_point answered;
  // Of the thread that asks, then of the one that takes:
  ArrivedObject arrived;
  std::atomic<bool> isDropped = false; ///< nobody will take it
};

KaStorageAhead::KaStorageAhead(Parts parts) : with(std::move(parts)), most(mostRequests()) {
}

KaStorageAhead::~KaStorageAhead() {
  end();
}

void KaStorageAhead::begin(Pass next) {
  end();
  pass = std::move(next);
  for (int number = 0; number < most; ++number)
    threads.emplace_back([this] {
      platform::nameThisThread("ahead");
      static_cast<void>(runGuarded([this] { work(); }));
    });
}

void KaStorageAhead::end() {
  if (!isAtWork()) return;
  {
    const platform::MutexLock scope(lock);
    isEnding = true;
    dropAll();
    workCame.notify_all();
  }
  with.connections.cancel();
  for (std::thread &thread : threads)
    thread.join();
  threads.clear();
  const platform::MutexLock scope(lock);
  load = {};
  isEnding = isPaused = leavesContent = false;
}

void KaStorageAhead::offer(const AheadOrder &order) {
  if (!isAtWork()) return;
  const platform::MutexLock scope(lock);
  add(order);
}

void KaStorageAhead::add(const AheadOrder &order) {
  const bool isEmpty = order.question.kind == Kind::Content && order.size <= 0;
  if (isEmpty || entries.contains(order.question)) return;
  const auto entry = std::make_shared<Entry>(order);
  entries.insert(order.question, entry);
  waiting.emplace(order.turn, entry);
  workCame.notify_one();
}

void KaStorageAhead::reach(qsizetype turn) {
  const platform::MutexLock scope(lock);
  std::vector<EntryPointer> old;
  for (const EntryPointer &entry : std::as_const(entries))
    if (entry->order.turn < turn) old.push_back(entry);
  for (const EntryPointer &entry : old)
    drop(entry);
  if (!waiting.empty()) workCame.notify_one();
}

void KaStorageAhead::drop(const EntryPointer &entry) {
  entry->isDropped = true;
  entries.remove(entry->order.question);
  if (entry->state == State::Waiting) std::erase_if(waiting, [&](const auto &item) { return item.second == entry; });
  if (entry->state == State::Answered) load.held -= entry->order.size;
}

void KaStorageAhead::dropAll() {
  const auto all = entries.values();
  for (const EntryPointer &entry : all)
    drop(entry);
}

std::optional<ArrivedObject> KaStorageAhead::take(const StorageQuestion &question) {
  if (!isAtWork()) return std::nullopt;
  const platform::MutexLock scope(lock);
  const EntryPointer entry = entries.value(question);
  if (!entry) return std::nullopt;
  // One that only waits for others to end is the next in line.
  while (entry->state != State::Answered && entry->state != State::Failed
         && (entry->state == State::UnderWay || isAllowed(*entry, /*requests=*/0))) {
    workCame.notify_one();
    answerCame.wait_for(lock, kLook);
  }
  const bool isOld = isMissing(entry->arrived.answer) && Clock::now() - entry->answered >= kMissingFor;
  const bool isAnswer = entry->state == State::Answered && !isOld;
  drop(entry);
  workCame.notify_one();
  if (!isAnswer) return std::nullopt;
  return std::move(entry->arrived);
}

bool KaStorageAhead::giveUp() {
  if (!isAtWork()) return false;
  const platform::MutexLock scope(lock);
  if (load.held + load.underWay == 0) return false;
  dropAll();
  with.connections.cancel();
  while (load.underWay > 0)
    answerCame.wait(lock);
  return true;
}

void KaStorageAhead::leaveContent() {
  const platform::MutexLock scope(lock);
  leavesContent = true;
  const auto all = entries.values();
  for (const EntryPointer &entry : all)
    if (entry->order.question.kind == Kind::Content) drop(entry);
}

void KaStorageAhead::work() {
  for (;;) {
    EntryPointer entry;
    {
      const platform::MutexLock scope(lock);
      while (!isEnding && !(entry = nextAllowed()))
        workCame.wait(lock);
      if (isEnding) return;
    }
    const bool isAnswered = guardedOr(false, [&] { return ask(*entry); });
    const platform::MutexLock scope(lock);
    finish(entry, isAnswered);
  }
}

KaStorageAhead::EntryPointer KaStorageAhead::nextAllowed() {
  bool isContentHeldUp = false;
  for (auto item = waiting.begin(); item != waiting.end(); ++item) {
    EntryPointer entry = item->second;
    const bool isContent = entry->order.question.kind == Kind::Content;
    if (isContent && isContentHeldUp) continue;
    if (isAllowed(*entry, load.requests)) {
      waiting.erase(item);
      entry->state = State::UnderWay;
      ++load.requests;
      load.underWay += entry->order.size;
      if (!waiting.empty()) workCame.notify_one();
      return entry;
    }
    if (!isContent) break; // nor are the others
    isContentHeldUp = true;
  }
  return nullptr;
}

bool KaStorageAhead::isAllowed(const Entry &entry, int requests) const {
  const bool isContent = entry.order.question.kind == Kind::Content;
  if (isEnding || isPaused || with.credential().accessKeyId.isEmpty()) return false;
  if (isContent && (leavesContent || !pass.hasRoom(entry.order.size + load.underWay))) return false;
  AheadLoad now = load;
  now.requests = requests;
  return mayBeginAhead(now, entry.order.size,
                       {.most = most,
                        .longest = with.connections.wholeLimit() / kShareOfLimit,
                        .bytesPerSecond = with.connections.bytesPerSecond()});
}

/// Without a word in the log: that is for its turn.
bool KaStorageAhead::ask(Entry &entry) const {
  const bool isContent = entry.order.question.kind == Kind::Content;
  const auto shallEnd = [&] { return entry.isDropped || pass.shallEnd(); };
  ArrivedObject &arrived = entry.arrived;
  if (isContent) arrived.content = std::make_unique<ArrivingObject>(pass.folder);
  qint64 came = 0;
  QByteArray body;
  const auto takeContent = [&](const char *bytes, std::size_t count) {
    came += static_cast<qint64>(count);
    return came <= entry.order.size && arrived.content->take(bytes, count);
  };
  const auto takeBody = [&](const char *bytes, std::size_t count) {
    body.append(bytes, static_cast<qsizetype>(count));
    return body.size() <= kMostBody;
  };
  HttpAnswer &answer = arrived.answer;
  answer = with.connections.perform(requestFor(entry.order.question, with.credential()),
                                    isContent ? KaHttpTransfer::BodySink(takeContent) : takeBody, shallEnd);
  if (!body.isEmpty()) answer.body = std::move(body);
  const StatusMeaning meaning = meaningOf(answer.status);
  if (answer.outcome != TransportOutcome::Answered || meaning.result != KaResultCode::Success) return false;
  if (answer.body.size() > kMostBody) return false;
  if (isMissing(answer)) return true;
  if (entry.order.question.kind == Kind::Document) return answer.bodySize > 0;
  return !isContent || (came == entry.order.size && !shallEnd() && arrived.content->sync());
}

void KaStorageAhead::finish(const EntryPointer &entry, bool isAnswered) {
  --load.requests;
  load.underWay -= entry->order.size;
  entry->state = isAnswered ? State::Answered : State::Failed;
  entry->answered = Clock::now();
  if (entry->isDropped) {
    entry->arrived = {};
  } else if (!isAnswered) {
    isPaused = true;
    entry->arrived = {};
  } else {
    load.held += entry->order.size;
    const HttpAnswer &answer = entry->arrived.answer;
    const bool isTags = entry->order.question.kind == Kind::Tags;
    const AheadFinding finding = {.isThere = !isMissing(answer),
                                  .contentLength = answer.contentLength,
                                  .is10GStorage = isTags && KaServerRequest::is10GStorageByTags(answer.body)};
    for (const AheadOrder &next : pass.then(entry->order, finding))
      add(next);
  }
  answerCame.notify_one();
}

KaStorageAhead::Own::Own(KaStorageAhead &counting, qint64 bytes) : ahead(counting), size(bytes) {
  const platform::MutexLock scope(ahead.lock);
  ++ahead.load.requests;
  ahead.load.underWay += size;
}

KaStorageAhead::Own::~Own() {
  const platform::MutexLock scope(ahead.lock);
  --ahead.load.requests;
  ahead.load.underWay -= size;
  if (hasSucceeded) ahead.isPaused = false;
  ahead.workCame.notify_one();
}
