#include "engine/KaLedgerKeeper.h"

#include "engine/KaDownloadProcessorDelegate.h"
#include "engine/KaImageKey.h"
#include "log/KaLogUtility.h"
#include "settings/KaDownloadData.h"

#include <QCryptographicHash>
#include <QDateTime>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

KaKeyDigest digestOf(const KaImageKey &key) {
  const QByteArray whole = QCryptographicHash::hash(key.path().toUtf8(), QCryptographicHash::Sha256);
  KaKeyDigest digest;
  std::copy_n(whole.cbegin(), digest.size(), digest.begin());
  return digest;
}

} // namespace

void KaLedgerKeeper::open(const QString &account) {
  thread.check();
  if (account == owner) return;
  if (!owner.isEmpty()) static_cast<void>(save());
  owner = account;
  KaLoadedLedger loaded = delegate.loadLedger(account);
  ledger = std::move(loaded.ledger);
  hasChanged = loaded.outcome != KaLoadedLedger::Outcome::Read;
  if (loaded.outcome == KaLoadedLedger::Outcome::Absent) adoptRecords();
  for (Part *const each : {&ordinary, &longTerm})
    each->boundaryIds = {each->taken->boundaryContentIds.cbegin(), each->taken->boundaryContentIds.cend()};
  if (!save()) KaLogUtility::writeErrorLog(u"Ledger not saved"_s);
}

/// Version 1.0.0 kept records alone.
void KaLedgerKeeper::adoptRecords() {
  const auto recordKey = [this](KaTargetStorage storage) { return uuidKey(owner, storage); };
  const QString last = delegate.downloadDataLastDateTime(recordKey(KaTargetStorage::Days30)).value_or(QString());
  // An hour that is none, or to come, would shut out whatever follows.
  const QDateTime hour = uploadHour(QStringView(last).left(8), QStringView(last).mid(9));
  const bool isPast = hour.isValid() && hour <= QDateTime::currentDateTimeUtc().addDays(1);
  if (isPast && last > KaDownloadData::defaultLastDateTime()) {
    ledger.ordinary.boundaryDateTime = last;
    ledger.ordinary.boundaryContentIds =
        delegate.downloadDataContentIds(recordKey(KaTargetStorage::Days30)).value_or(QStringList());
  }
  ledger.longTerm.boundaryContentIds =
      delegate.downloadDataContentIds(recordKey(KaTargetStorage::LongTerm10G)).value_or(QStringList());
}

bool KaLedgerKeeper::knows(const KaImageKey &listed, KaTargetStorage targetStorage) const {
  thread.check();
  const auto &[taken, boundaryIds] = part(targetStorage);
  const auto day = taken->days.find(listed.date().toString());
  if (day != taken->days.end() && std::binary_search(day->second.begin(), day->second.end(), digestOf(listed)))
    return true;
  if (taken->boundaryDateTime.isEmpty()) return !boundaryIds.isEmpty() && boundaryIds.contains(listed.contentId());
  const QString dateTime = u"%1/%2"_s.arg(listed.date(), listed.hour());
  if (dateTime != taken->boundaryDateTime) return dateTime < taken->boundaryDateTime;
  return boundaryIds.contains(listed.contentId());
}

void KaLedgerKeeper::settle(const KaImageKey &listed, KaTargetStorage targetStorage) {
  thread.check();
  auto &digests = part(targetStorage).taken->days[listed.date().toString()];
  const KaKeyDigest digest = digestOf(listed);
  const auto place = std::lower_bound(digests.begin(), digests.end(), digest);
  if (place != digests.end() && *place == digest) return;
  digests.insert(place, digest);
  hasChanged = true;
}

void KaLedgerKeeper::forgetBefore(const QString &day) {
  thread.check();
  auto &days = ledger.ordinary.days;
  const auto kept = days.lower_bound(day);
  if (kept == days.begin()) return;
  days.erase(days.begin(), kept);
  hasChanged = true;
}

bool KaLedgerKeeper::save() {
  thread.check();
  if (!hasChanged) return !owner.isEmpty();
  if (owner.isEmpty() || !delegate.saveLedger(owner, ledger)) return false;
  hasChanged = false;
  return true;
}

const KaLedgerKeeper::Part &KaLedgerKeeper::part(KaTargetStorage targetStorage) const {
  return targetStorage == KaTargetStorage::LongTerm10G ? longTerm : ordinary;
}
