#pragma once

#include <QString>

/// The storage kinds that an account has.
enum class KaTargetStorage {
  Days30,      ///< "30days", the ordinary one
  LongTerm10G, ///< "10G"
  Preview2K,   ///< "2K", the previews
};

/// The key of a user's bookkeeping record.
[[nodiscard]] QString uuidKey(const QString &userId, KaTargetStorage targetStorage);

/// The name that the record is loaded and saved under.
[[nodiscard]] QString recordName(KaTargetStorage targetStorage);
