#pragma once

#include "platform/linux/FileDescriptor.h"

#include <QtGlobal>

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstring>
#include <utility>

inline sockaddr_storage socketAddress(const char *text, quint16 port) {
  sockaddr_storage address{};
  if (std::strchr(text, ':')) {
    auto &ipv6 = reinterpret_cast<sockaddr_in6 &>(address);
    ipv6.sin6_family = AF_INET6;
    ipv6.sin6_port = htons(port);
    ::inet_pton(AF_INET6, text, &ipv6.sin6_addr);
  } else {
    auto &ipv4 = reinterpret_cast<sockaddr_in &>(address);
    ipv4.sin_family = AF_INET;
    ipv4.sin_port = htons(port);
    ::inet_pton(AF_INET, text, &ipv4.sin_addr);
  }
  return address;
}

/// @return none when the address is not this computer's.
inline platform::FileDescriptor boundSocket(const char *text, quint16 port, int type) {
  const sockaddr_storage address = socketAddress(text, port);
  platform::FileDescriptor made(::socket(address.ss_family, type | SOCK_CLOEXEC, 0));
  const int on = 1;
  if (address.ss_family == AF_INET6) ::setsockopt(made.get(), IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof on);
  if (::bind(made.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) return {};
  return made;
}

/// An address that answers to nobody: its queue is full, so that the kernel drops who comes.
struct DeadAddress {
  DeadAddress(const char *address, quint16 port) : listener(boundSocket(address, port, SOCK_STREAM)) {
    const sockaddr_storage towards = socketAddress(address, port);
    EXPECT_EQ(::listen(listener.get(), 0), 0);
    for (int filler = 0; filler < 3; ++filler) {
      platform::FileDescriptor socket(::socket(towards.ss_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
      (void)::connect(socket.get(), reinterpret_cast<const sockaddr *>(&towards), sizeof towards);
      fillers[filler] = std::move(socket);
    }
  }
  platform::FileDescriptor listener;
  platform::FileDescriptor fillers[3];
};
