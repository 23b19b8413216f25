#pragma once

#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <map>
#include <vector>

/// 128 bits of the digest of an object's listed key.
using KaKeyDigest = std::array<std::uint8_t, 16>;

/// What was taken of one storage of an account.
struct KaTakenObjects {
  /// Taken before there was a ledger: all of earlier upload hours ("yyyyMMdd/HH"; none when empty), and of that hour
  /// the ids. Without an hour the ids alone count.
  QString boundaryDateTime;
  QStringList boundaryContentIds;
  /// Taken since, by upload day "yyyyMMdd"; sorted within a day, each once.
  std::map<QString, std::vector<KaKeyDigest>> days;

  friend bool operator==(const KaTakenObjects &, const KaTakenObjects &) = default;
};

/// Every object that was taken of an account.
struct KaLedger {
  KaTakenObjects ordinary;
  KaTakenObjects longTerm;
  qint64 generation = 0; ///< how often it was saved

  friend bool operator==(const KaLedger &, const KaLedger &) = default;
};

/// What the files of an account's ledger held.
struct KaLoadedLedger {
  enum class Outcome {
    Read,
    Absent,    ///< the account has none yet
    Unreadable ///< it had one, and none of its files can be read
  };
  Outcome outcome = Outcome::Absent;
  KaLedger ledger{};
};
