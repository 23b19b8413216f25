#pragma once

#include "bench/LinkedHome.h"
#include "service/KaCredential.h"

#include <QString>

namespace sandbox {
class Service;
}

/// A configuration file for curl: all that an agent with these settings asks of the storage in its first run, picture
/// after picture, as the agent itself words and signs it. What has a content goes into files below @p folder, the rest
/// nowhere. To be used within the minutes that a signature holds, and made in a linked home.
[[nodiscard]] QString curlRequests(sandbox::Service &service, const KaCredential &credential, HomeSettings settings,
                                   const QString &folder);
