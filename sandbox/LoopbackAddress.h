#pragma once

#include <QtGlobal>

#include <netinet/in.h>
#include <sys/socket.h>

namespace sandbox {

/// A port of this computer, as the system's socket functions take it.
inline sockaddr_in loopbackAddress(quint16 port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

/// They want the general kind of address.
inline sockaddr *general(sockaddr_in &address) {
  return reinterpret_cast<sockaddr *>(&address);
}

} // namespace sandbox
