#include "sandbox/WakeUp.h"

#include <cstdint>
#include <stdexcept>
#include <sys/eventfd.h>
#include <unistd.h>

namespace sandbox {

WakeUp::WakeUp() : handle(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (handle < 0) throw std::runtime_error("eventfd failed");
}

WakeUp::~WakeUp() {
  ::close(handle);
}

void WakeUp::raise() const {
  const uint64_t one = 1;
  // Fails only when it is raised already.
  [[maybe_unused]] const auto written = ::write(handle, &one, sizeof one);
}

} // namespace sandbox
