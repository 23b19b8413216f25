#include "service/ServiceClock.h"

#include "platform/BootClock.h"

#include <curl/curl.h>

#include <atomic>
#include <limits>

using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr qint64 kUnknown = std::numeric_limits<qint64>::min();

/// What the service's clock showed when this computer was started, in milliseconds since 1970. So it goes on whatever
/// becomes of the computer's own clock, which may be set right at any time.
std::atomic<qint64> serviceTimeAtBoot = kUnknown;

milliseconds sinceBoot() {
  return duration_cast<milliseconds>(platform::BootClock::now().time_since_epoch());
}

} // namespace

void ServiceClock::noteAnswer(const std::vector<std::pair<QByteArray, QByteArray>> &headers) {
  time_t shown = -1;
  for (const auto &[name, value] : headers) {
    if (name.compare("Age", Qt::CaseInsensitive) == 0) return;
    // The parser takes much for a date that is none of HTTP's.
    if (name.compare("Date", Qt::CaseInsensitive) == 0 && value.endsWith(" GMT"))
      shown = curl_getdate(value.constData(), nullptr);
  }
  if (shown != -1) serviceTimeAtBoot = (milliseconds(seconds(shown)) - sinceBoot()).count();
}

seconds ServiceClock::computerAhead() {
  const qint64 atBoot = serviceTimeAtBoot;
  if (atBoot == kUnknown) return seconds(0);
  const auto here = duration_cast<milliseconds>(std::chrono::system_clock::now().time_since_epoch());
  const auto ahead = duration_cast<seconds>(here - (milliseconds(atBoot) + sinceBoot()));
  return abs(ahead) < std::chrono::minutes(1) ? seconds(0) : ahead;
}

bool ServiceClock::isFarOff() {
  return abs(computerAhead()) > kTolerance;
}
