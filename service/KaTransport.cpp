#include "service/KaTransport.h"

#include "platform/ReleasedBy.h"
#include "platform/UserDefaults.h"

#include <QString>

#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <mutex>

using namespace Qt::StringLiterals;

namespace {

bool isLibraryReady() {
  static const CURLcode initialized = curl_global_init(CURL_GLOBAL_DEFAULT);
  return initialized == CURLE_OK;
}

std::chrono::milliseconds secondsFromUserDefaults(const QString &key, double builtIn) {
  constexpr double kLongest = 1e6;
  const double stored = platform::standardUserDefaults().doubleValue(key).value_or(builtIn);
  const double seconds = stored > 0 ? std::min(stored, kLongest) : builtIn;
  return std::chrono::milliseconds(static_cast<qint64>(seconds * 1000));
}

} // namespace

/// libcurl's share, with the locks that it asks for.
class KaTransport::Sessions {
public:
  Sessions() : share(curl_share_init()) {
    const bool isSet = share && curl_share_setopt(share.get(), CURLSHOPT_USERDATA, &locks) == CURLSHE_OK
                       && curl_share_setopt(share.get(), CURLSHOPT_LOCKFUNC, &lock) == CURLSHE_OK
                       && curl_share_setopt(share.get(), CURLSHOPT_UNLOCKFUNC, &unlock) == CURLSHE_OK
                       && curl_share_setopt(share.get(), CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION) == CURLSHE_OK;
    if (!isSet) share.reset();
  }
  [[nodiscard]] CURLSH *get() const { return share.get(); }

private:
  /// One for each kind of data: the share's own count of its users is one.
  using Locks = std::array<std::mutex, CURL_LOCK_DATA_LAST>;
  static void lock(CURL *, curl_lock_data data, curl_lock_access, void *locks) {
    (*static_cast<Locks *>(locks))[data].lock();
  }
  static void unlock(CURL *, curl_lock_data data, void *locks) { (*static_cast<Locks *>(locks))[data].unlock(); }

  Locks locks;
  std::unique_ptr<CURLSH, platform::ReleasedBy<&curl_share_cleanup>> share;
};

KaTransport::KaTransport()
    : idleLimit(secondsFromUserDefaults(u"timeoutIntervalForRequest"_s, 10)),
      wholeLimit(secondsFromUserDefaults(u"timeoutIntervalForResource"_s, 60)),
      anchors(platform::standardUserDefaults().string(u"trustedCertificatesFile"_s).value_or(QString())),
      ready(isLibraryReady()), kept(std::make_unique<Sessions>()) {
}
KaTransport::~KaTransport() = default;

void KaTransport::forgetNetwork() {
  proxies.forget();
  families.forget();
}

void *KaTransport::sessions() const {
  return kept->get();
}
