// A ledger's file: as it lies on disk, and what is enciphered in it.
#include "fuzz/Fuzz.h"
#include "identity/KaCryptionUtility.h"
#include "settings/LedgerFiles.h"
#include "settings/SettingsFiles.h"
#include "tests/support/TestProfile.h"

using namespace Qt::StringLiterals;

void tryInput(const QByteArray &input) {
  const QString account = u"user"_s;
  const QString path = u"%1/Ledger_%2_"_s.arg(appFolder(), KaCryptionUtility::toSHA256hash(account).left(32));
  const auto enciphered = KaCryptionUtility::encrypt(QString::fromUtf8(input));
  require(enciphered.has_value(), "any text can be enciphered");
  for (const QByteArray &content : {input, enciphered->toUtf8()}) {
    writeFile(path + u'0', content);
    writeFile(path + u'1', content);
    const KaLoadedLedger loaded = loadLedger(account);
    require(loaded.outcome != KaLoadedLedger::Outcome::Absent, "what is there is not absent");
    KaLedger ledger = loaded.ledger;
    require(saveLedger(account, ledger), "a ledger can be saved");
    const KaLoadedLedger again = loadLedger(account);
    require(again.outcome == KaLoadedLedger::Outcome::Read && again.ledger == ledger, "it is read as it was saved");
  }
}
