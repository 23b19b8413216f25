#pragma once

#include "engine/KaTargetStorage.h"
#include "platform/ThreadBound.h"
#include "settings/KaLedger.h"

#include <QSet>
#include <QString>

class KaDownloadProcessorDelegate;
class KaImageKey;
struct KaDownloadData;

/// Knows every object of an account that was taken, by its listed key. Of the images' storages. Download thread.
class KaLedgerKeeper {
public:
  /// It outlives this object.
  explicit KaLedgerKeeper(KaDownloadProcessorDelegate &serving) : delegate(serving) {}
  KaLedgerKeeper(const KaLedgerKeeper &) = delete;
  KaLedgerKeeper &operator=(const KaLedgerKeeper &) = delete;

  /// Takes up an account's ledger, unless it is at work with that one. An account that has none begins one with what
  /// its records know, and saves it at once: so that no later start takes a young account for one of the time before
  /// there were ledgers.
  void open(const QString &account);

  [[nodiscard]] bool knows(const KaImageKey &listed, KaTargetStorage targetStorage) const;
  void settle(const KaImageKey &listed, KaTargetStorage targetStorage);
  /// Days of the ordinary storage before @p day ("yyyyMMdd") are needed no longer.
  void forgetBefore(const QString &day);
  /// Unless nothing has changed. @return false when it cannot be saved, and before the first account.
  [[nodiscard]] bool save();

private:
  /// One storage's part, and what is looked up in it often.
  struct Part {
    KaTakenObjects *taken;
    QSet<QString> boundaryIds{};
  };
  void adoptRecords();
  [[nodiscard]] const Part &part(KaTargetStorage targetStorage) const;

  KaDownloadProcessorDelegate &delegate;
  const platform::ThreadBound thread;
  QString owner; ///< whose ledger it is; empty before the first
  KaLedger ledger;
  Part ordinary{&ledger.ordinary};
  Part longTerm{&ledger.longTerm};
  bool hasChanged = false;
};
