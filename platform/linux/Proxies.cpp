#include "platform/Proxies.h"

#include "platform/Mutex.h"
#include "platform/NoDestructor.h"
#include "platform/ReleasedBy.h"
#include "platform/ThreadName.h"

#include <QDebug>

#include <proxy.h>

#include <condition_variable>
#include <deque>
#include <exception>
#include <map>
#include <thread>
#include <utility>
#include <vector>

namespace platform {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Ways = QList<QByteArray>;

constexpr auto kHoldsFor = 10s;
/// A look-up that takes longer is not that of a network which answers: news of another leaves it behind.
constexpr auto kSlow = 1s;
/// Longer than the kernel tries to connect (127 s): whoever has answered until then with nothing will not answer.
constexpr auto kHangs = 300s;
/// Each one left behind is a thread in a look-up that may never end.
constexpr int kMostLeftBehind = 4;

struct LookUp {
  const QByteArray url;
  std::optional<Ways> ways{};
  Clock::time_point answered{};
};
using LookUpPointer = std::shared_ptr<LookUp>;

/// What is asked and known, and the one thread that asks.
class Settings {
public:
  [[nodiscard]] LookUpPointer ask(const QByteArray &url, const void *asker, std::function<void()> answered);
  void giveUp(const void *asker);
  [[nodiscard]] std::optional<Ways> answer(const LookUp &lookUp) const;
  [[nodiscard]] Clock::time_point busySince() const;
  void forget();

private:
  struct Listener {
    LookUpPointer lookUp;
    std::function<void()> answered;
  };

  void work(int number);
  [[nodiscard]] pxProxyFactory *takeSpare();
  [[nodiscard]] LookUpPointer next(int number);
  void take(int number, const LookUpPointer &lookUp, Ways ways);
  void startWorker() KA_REQUIRES(lock);
  void leaveBehind(Clock::duration slowness) KA_REQUIRES(lock);

  mutable Mutex lock;
  std::condition_variable_any workCame;
  std::map<QByteArray, LookUpPointer> known KA_GUARDED_BY(lock); ///< and being looked up
  std::deque<LookUpPointer> waiting KA_GUARDED_BY(lock);
  std::map<const void *, Listener> listeners KA_GUARDED_BY(lock); ///< by who asks
  LookUpPointer underWay KA_GUARDED_BY(lock);
  Clock::time_point begun KA_GUARDED_BY(lock){}; ///< what is under way or, with nothing, what waits
  int worker KA_GUARDED_BY(lock) = 0;            ///< the number of the one that counts; 0: none yet
  int leftBehindCount KA_GUARDED_BY(lock) = 0;
  /// Of threads that were left behind and have come back. Never freed: that would unload the library which runs scripts
  /// under its own threads.
  std::vector<pxProxyFactory *> spare KA_GUARDED_BY(lock);
};

/// Outlives its threads: one may hang for as long as the process lives.
Settings &settings() {
  static NoDestructor<Settings> instance;
  return *instance;
}

LookUpPointer Settings::ask(const QByteArray &url, const void *asker, std::function<void()> answered) {
  const MutexLock scope(lock);
  leaveBehind(kHangs);
  LookUpPointer &lookUp = known[url];
  const bool holds = lookUp && (!lookUp->ways || Clock::now() - lookUp->answered < kHoldsFor);
  if (!holds) {
    lookUp = std::make_shared<LookUp>(LookUp{url});
    if (!underWay && waiting.empty()) begun = Clock::now();
    waiting.push_back(lookUp);
    if (worker == 0) startWorker();
    workCame.notify_all();
  }
  if (!lookUp->ways) listeners[asker] = {lookUp, std::move(answered)};
  return lookUp;
}

void Settings::giveUp(const void *asker) {
  const MutexLock scope(lock);
  listeners.erase(asker);
}

std::optional<Ways> Settings::answer(const LookUp &lookUp) const {
  const MutexLock scope(lock);
  return lookUp.ways;
}

Clock::time_point Settings::busySince() const {
  const MutexLock scope(lock);
  return begun;
}

void Settings::forget() {
  const MutexLock scope(lock);
  std::erase_if(known, [](const auto &entry) { return entry.second->ways.has_value(); });
  // What the answer under way says is of before: those who wait may have it, nobody else.
  if (underWay) known.erase(underWay->url);
  leaveBehind(kSlow);
}

/// Has a new thread take up what the present one does not come to an end with.
void Settings::leaveBehind(Clock::duration slowness) {
  const Clock::time_point now = Clock::now();
  if (!underWay || now - begun < slowness || leftBehindCount >= kMostLeftBehind) return;
  ++leftBehindCount;
  known[underWay->url] = underWay;
  waiting.push_front(std::exchange(underWay, nullptr));
  begun = now;
  startWorker();
}

void Settings::startWorker() {
  std::thread([this, number = ++worker] { work(number); }).detach();
}

LookUpPointer Settings::next(int number) {
  const MutexLock scope(lock);
  while (number == worker && waiting.empty())
    workCame.wait(lock);
  if (number != worker) return nullptr;
  underWay = std::move(waiting.front());
  waiting.pop_front();
  begun = Clock::now();
  return underWay;
}

void Settings::take(int number, const LookUpPointer &lookUp, Ways ways) {
  const MutexLock scope(lock);
  if (number != worker) return;
  underWay = nullptr;
  begun = Clock::now();
  lookUp->ways = std::move(ways);
  lookUp->answered = begun;
  for (auto listener = listeners.begin(); listener != listeners.end();) {
    if (listener->second.lookUp == lookUp) {
      listener->second.answered();
      listener = listeners.erase(listener);
    } else {
      ++listener;
    }
  }
}

Ways waysTo(pxProxyFactory *factory, const QByteArray &url) {
  using Told = std::unique_ptr<char *, ReleasedBy<&px_proxy_factory_free_proxies>>;
  Ways ways;
  try {
    const Told told(factory ? px_proxy_factory_get_proxies(factory, url.constData()) : nullptr);
    for (char *const *way = told.get(); way && *way; ++way)
      ways << QByteArray(*way);
  } catch (const std::exception &fault) { // the library is C++ behind its C face
    qWarning("the proxy settings cannot be told: %s", fault.what());
  }
  return ways;
}

void Settings::work(int number) {
  nameThisThread("proxies");
  pxProxyFactory *factory = takeSpare();
  if (!factory) factory = px_proxy_factory_new();
  while (const LookUpPointer lookUp = next(number))
    take(number, lookUp, waysTo(factory, lookUp->url));
  const MutexLock scope(lock);
  --leftBehindCount;
  spare.push_back(factory);
}

pxProxyFactory *Settings::takeSpare() {
  const MutexLock scope(lock);
  if (spare.empty()) return nullptr;
  pxProxyFactory *const factory = spare.back();
  spare.pop_back();
  return factory;
}

} // namespace

class ProxyQuestion::Private {
public:
  Private(const QByteArray &url, std::function<void()> answered)
      : lookUp(settings().ask(url, this, std::move(answered))) {}
  ~Private() { settings().giveUp(this); }
  Private(const Private &) = delete;
  Private &operator=(const Private &) = delete;

  const LookUpPointer lookUp;
};

ProxyQuestion::ProxyQuestion(const QByteArray &url, std::function<void()> answered)
    : d(std::make_unique<Private>(url, std::move(answered))) {
}
ProxyQuestion::~ProxyQuestion() = default;

std::optional<QList<QByteArray>> ProxyQuestion::answer() const {
  return settings().answer(*d->lookUp);
}

std::chrono::steady_clock::time_point ProxyQuestion::busySince() const {
  return settings().busySince();
}

void forgetProxies() {
  settings().forget();
}

} // namespace platform
