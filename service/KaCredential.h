#pragma once

#include <QString>

/// Temporary storage credentials, as STS hands them out.
struct KaCredential {
  QString accessKeyId{};
  QString secretAccessKey{};
  QString sessionToken{};
  QString expireUnixTime{}; ///< whole seconds since 1970, decimal, cut to 32 bits; "0" when the answer held no date

  friend bool operator==(const KaCredential &, const KaCredential &) = default;
};
