#pragma once

#include "service/KaHttpTransfer.h"

/// How an exchange ended, told from the CURLcode that libcurl gave it.
[[nodiscard]] TransportOutcome transportOutcome(int curlCode);

/// Whether there was no proxy, or without one no host, to talk to. What a proxy refuses is no such case.
/// @param proxyError  libcurl's CURLproxycode.
[[nodiscard]] bool saysUnreachable(int curlCode, long proxyError);
