#include "tests/support/RefusedCalls.h"

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstddef>
#include <thread>

namespace {

/// The lower half of an argument, as both architectures that we build for order its bytes.
std::uint32_t offsetOfArgument(unsigned index) {
  return static_cast<std::uint32_t>(offsetof(seccomp_data, args) + index * sizeof(__u64));
}

} // namespace

bool refuseCalls(const std::vector<RefusedCall> &calls) {
  std::vector<sock_filter> program;
  for (const auto &[number, error, argument, bits] : calls) {
    program.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)));
    program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(number), 0, 4));
    program.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetOfArgument(argument)));
    program.push_back(BPF_STMT(BPF_ALU | BPF_AND | BPF_K, bits));
    program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, bits, 0, 1));
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<std::uint32_t>(error)));
  }
  program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
  const sock_fprog whole{static_cast<unsigned short>(program.size()), program.data()};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0
         && ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &whole) == 0;
}

bool withRefusedCalls(const std::vector<RefusedCall> &calls, const std::function<void()> &body) {
  bool isInstalled = false;
  std::thread([&] {
    isInstalled = refuseCalls(calls);
    if (isInstalled) body();
  }).join();
  return isInstalled;
}
