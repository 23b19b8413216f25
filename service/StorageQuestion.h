#pragma once

#include <QHashFunctions>
#include <QString>

#include <vector>

/// A question to the storage about one object of the content bucket.
struct StorageQuestion {
  enum class Kind { Head, Tags, Document, Content };
  Kind kind = Kind::Head;
  QString key{};

  friend bool operator==(const StorageQuestion &, const StorageQuestion &) = default;
  friend size_t qHash(const StorageQuestion &question, size_t seed) {
    return qHashMulti(seed, static_cast<int>(question.kind), question.key);
  }
};

/// A question that may be asked before its turn.
struct AheadOrder {
  qsizetype turn = 0; ///< of the item that it is for: the earlier ones come first
  StorageQuestion question{};
  qint64 size = 0; ///< bytes that Content has to have; without any it is not asked
};

using AheadOrders = std::vector<AheadOrder>;

/// What came back, as far as it decides what is asked next.
struct AheadFinding {
  bool isThere = false;
  qint64 contentLength = 0;  ///< of a Head
  bool is10GStorage = false; ///< by Tags
};
