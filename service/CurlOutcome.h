#pragma once

#include "service/HttpTransfer.h"

/// How an exchange ended, told from the CURLcode that libcurl gave it.
[[nodiscard]] TransportOutcome transportOutcome(int curlCode);
