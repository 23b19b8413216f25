#pragma once

#include <QString>

/// Temporary storage credentials, as STS hands them out.
struct KaCredential {
  QString accessKeyId{};
  QString secretAccessKey{};
  QString sessionToken{};
  QString expiration{}; ///< "yyyy-MM-dd'T'HH:mm:ss'Z'", UTC; empty when the answer held none

  friend bool operator==(const KaCredential &, const KaCredential &) = default;
};
