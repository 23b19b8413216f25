#pragma once

#include <QString>

#include <array>

/// The storage kinds that an account has.
enum class KaTargetStorage {
  Days30,      ///< "30days", the ordinary one
  LongTerm10G, ///< "10G"
  Preview2K,   ///< "2K", the previews
};

/// All of them, for whoever deals with each.
inline constexpr std::array kTargetStorages = {KaTargetStorage::Days30, KaTargetStorage::LongTerm10G,
                                               KaTargetStorage::Preview2K};

/// The key of a user's bookkeeping record.
[[nodiscard]] QString uuidKey(const QString &userId, KaTargetStorage targetStorage);

/// The name that the record is loaded and saved under.
[[nodiscard]] QString recordName(KaTargetStorage targetStorage);

/// The title of the log entry that tells of its save within a run.
[[nodiscard]] QString savedLogTitle(KaTargetStorage targetStorage);
