#pragma once

#include "service/KaHttpTransfer.h"

/// How an exchange ended, told from the CURLcode that libcurl gave it.
[[nodiscard]] TransportOutcome transportOutcome(int curlCode);

/// Whether it ended before anything was heard from the proxy, or from the host where there was none.
[[nodiscard]] bool saysUnreachable(int curlCode);
