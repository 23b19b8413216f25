#pragma once

#include <cstdint>
#include <functional>
#include <vector>

/// A system call that the kernel refuses.
struct RefusedCall {
  long number;
  int error;
  unsigned argument = 0;  ///< which of its arguments decides
  std::uint32_t bits = 0; ///< it is refused where the argument has all of these
};

/// Runs @p body on a thread for which the kernel refuses these calls: as a file system does that lacks something, or a
/// disk that is full. @return whether the kernel lets itself be told so.
[[nodiscard]] bool withRefusedCalls(const std::vector<RefusedCall> &calls, const std::function<void()> &body);
/// The same for this thread and those that it begins, for good.
[[nodiscard]] bool refuseCalls(const std::vector<RefusedCall> &calls);
