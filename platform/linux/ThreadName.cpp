#include "platform/ThreadName.h"

#include <pthread.h>

namespace platform {

void nameThisThread(const char *name) {
  // The name only helps people who look: a refusal changes nothing.
  static_cast<void>(pthread_setname_np(pthread_self(), name));
}

} // namespace platform
