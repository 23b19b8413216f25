#pragma once

#include "service/KaHttpTransfer.h"

/// How an exchange ended, told from the CURLcode that libcurl gave it.
[[nodiscard]] TransportOutcome transportOutcome(int curlCode);
