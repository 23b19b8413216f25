#pragma once

#include "settings/KaLedger.h"

/// The ledgers of the accounts, in the app folder, enciphered. Each has two files, "Ledger_" with a hash of the account
/// and "_0" or "_1", of which the one with the higher generation counts: when it cannot be read, the one before it
/// does. Any thread, but one at a time.

/// The newest readable generation.
[[nodiscard]] KaLoadedLedger loadLedger(const QString &account);

/// Writes the next generation over the older file; @p ledger has its number afterwards. @return false when it cannot be
/// written: then the former generations are there as before.
[[nodiscard]] bool saveLedger(const QString &account, KaLedger &ledger);
