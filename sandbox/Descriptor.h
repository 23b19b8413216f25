#pragma once

#include <stdexcept>
#include <string>
#include <unistd.h>

namespace sandbox {

/// Owns a file descriptor. Throws std::runtime_error when it was not to be had.
class Descriptor {
public:
  /// @param call  what made it.
  Descriptor(int made, const char *call) : handle(made) {
    if (handle < 0) throw std::runtime_error(std::string(call) + " failed");
  }
  ~Descriptor() { ::close(handle); }
  Descriptor(const Descriptor &) = delete;
  Descriptor &operator=(const Descriptor &) = delete;

  [[nodiscard]] int get() const { return handle; }

private:
  const int handle;
};

} // namespace sandbox
