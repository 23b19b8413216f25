#include "platform/Proxies.h"

#include "platform/Mutex.h"
#include "platform/NoDestructor.h"
#include "platform/ReleasedBy.h"
#include "platform/ThreadName.h"

#include <QByteArrayList>
#include <QDebug>

#include <proxy.h>

#include <condition_variable>
#include <deque>
#include <dlfcn.h>
#include <exception>
#include <link.h>
#include <map>
#include <system_error>
#include <thread>
#include <utility>

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
/// Each one left behind is a thread in a look-up that may never end. Trying again in vain takes none of the places that
/// the next networks need.
constexpr int kMostAfterTrying = 2;
constexpr int kMostAfterNews = 32;

using Factory = std::unique_ptr<pxProxyFactory, ReleasedBy<&px_proxy_factory_free>>;

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

  struct Task {
    LookUpPointer lookUp;
    int network = 0; ///< which one it is asked in
  };

  void work(int number);
  [[nodiscard]] std::optional<Task> next(int number);
  void take(int number, const LookUpPointer &lookUp, Ways ways);
  [[nodiscard]] bool startWorker() KA_REQUIRES(lock);
  void leaveBehind(Clock::duration slowness, int most) KA_REQUIRES(lock);

  mutable Mutex lock;
  std::condition_variable_any workCame;
  std::map<QByteArray, LookUpPointer> known KA_GUARDED_BY(lock); ///< and being looked up
  std::deque<LookUpPointer> waiting KA_GUARDED_BY(lock);
  std::map<const void *, Listener> listeners KA_GUARDED_BY(lock); ///< by who asks
  LookUpPointer underWay KA_GUARDED_BY(lock);
  Clock::time_point begun KA_GUARDED_BY(lock){}; ///< what is under way or, with nothing, what waits
  int worker KA_GUARDED_BY(lock) = 0;            ///< the number of the one that counts; 0: none yet
  int leftBehindCount KA_GUARDED_BY(lock) = 0;
  int network KA_GUARDED_BY(lock) = 0; ///< counts the news
  Clock::time_point forgotten KA_GUARDED_BY(lock){};
};

/// Outlives its threads: one may hang for as long as the process lives.
Settings &settings() {
  static NoDestructor<Settings> instance;
  return *instance;
}

LookUpPointer Settings::ask(const QByteArray &url, const void *asker, std::function<void()> answered) {
  const MutexLock scope(lock);
  // One that was quick to be begun before the last news could not be told from one that hangs then.
  if (begun < forgotten)
    leaveBehind(kSlow, kMostAfterNews);
  else
    leaveBehind(kHangs, kMostAfterTrying);
  LookUpPointer &lookUp = known[url];
  const bool holds = lookUp && (!lookUp->ways || Clock::now() - lookUp->answered < kHoldsFor);
  if (!holds) {
    lookUp = std::make_shared<LookUp>(LookUp{url});
    if (!underWay && waiting.empty()) begun = Clock::now();
    waiting.push_back(lookUp);
    if (worker == 0) static_cast<void>(startWorker());
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
  ++network;
  forgotten = Clock::now();
  leaveBehind(kSlow, kMostAfterNews);
}

/// Has a new thread take up what the present one does not come to an end with.
void Settings::leaveBehind(Clock::duration slowness, int most) {
  const Clock::time_point now = Clock::now();
  if (!underWay || now - begun < slowness || leftBehindCount >= most || !startWorker()) return;
  ++leftBehindCount;
  known[underWay->url] = underWay;
  waiting.push_front(std::exchange(underWay, nullptr));
  begun = now;
}

/// @return false when the system has no thread to give: the next question tries again.
bool Settings::startWorker() {
  try {
    std::thread([this, number = worker + 1] { work(number); }).detach();
  } catch (const std::system_error &) {
    return false;
  }
  ++worker;
  return true;
}

std::optional<Settings::Task> Settings::next(int number) {
  const MutexLock scope(lock);
  while (number == worker && waiting.empty())
    workCame.wait(lock);
  if (number != worker) {
    --leftBehindCount;
    return std::nullopt;
  }
  underWay = std::move(waiting.front());
  waiting.pop_front();
  begun = Clock::now();
  return Task{underWay, network};
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

/// Keeps the library's plug-ins in memory for good: the one that runs scripts has threads of its own, and would be
/// unloaded below them with the factory that it came with.
void keepPlugins() {
  QByteArrayList plugins;
  const auto note = [](dl_phdr_info *object, std::size_t, void *list) {
    const auto path = QByteArray(object->dlpi_name);
    if (path.contains("/libproxy/")) *static_cast<QByteArrayList *>(list) << path;
    return 0;
  };
  ::dl_iterate_phdr(note, &plugins);
  for (const QByteArray &path : plugins)
    static_cast<void>(::dlopen(path.constData(), RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE));
}

Ways waysTo(Factory &factory, const QByteArray &url) {
  using Told = std::unique_ptr<char *, ReleasedBy<&px_proxy_factory_free_proxies>>;
  Ways ways;
  try {
    if (!factory) factory.reset(px_proxy_factory_new());
    const Told told(factory ? px_proxy_factory_get_proxies(factory.get(), url.constData()) : nullptr);
    for (char *const *way = told.get(); way && *way; ++way)
      ways << QByteArray(*way);
  } catch (const std::exception &) { // the library is C++ behind its C face; its words may hold a password
    qWarning("the proxy settings cannot be told");
  }
  keepPlugins();
  return ways;
}

void Settings::work(int number) {
  nameThisThread("proxies");
  Factory factory;
  int asked = 0;
  while (const auto task = next(number)) {
    // It never fetches a script again that it has.
    if (std::exchange(asked, task->network) != task->network) factory = nullptr;
    take(number, task->lookUp, waysTo(factory, task->lookUp->url));
  }
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
