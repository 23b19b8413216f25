#pragma once

#include <QString>

/// Whether a host means this computer by its very name, without a look-up.
/// @param host  "host" or "host:port"; an IPv6 address with a port stands in brackets.
[[nodiscard]] bool isLoopbackHost(const QString &host);

/// Whether some of the service is on this computer, so that it needs no network. Any thread.
[[nodiscard]] bool isServiceOnLoopback();
