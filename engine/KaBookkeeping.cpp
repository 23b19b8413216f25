#include "engine/KaBookkeeping.h"

#include "engine/KaDownloadProcessorDelegate.h"
#include "engine/KaDownloadSession.h"
#include "engine/KaFilledFolders.h"
#include "engine/KaImageKey.h"
#include "settings/KaDownloadData.h"

#include <QDate>

#include <algorithm>
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Longer than any listing looks back from where it may begin.
constexpr int kDaysKept = 40;
constexpr auto kSaveInterval = std::chrono::seconds(30);

} // namespace

bool KaBookkeeping::load() {
  thread.check();
  bool loaded = true;
  for (const KaTargetStorage storage : kTargetStorages)
    if (!with.delegate.loadGetImageInfo(recordName(storage))) loaded = false;
  return loaded;
}

bool KaBookkeeping::save(KaTargetStorage targetStorage) {
  thread.check();
  if (!hasUser()) return false;
  // Else a power cut could leave a record that counts on pictures that have no name.
  with.filledFolders.sync();
  if (!ledger.save()) return false;
  return with.delegate.saveGetImageInfo(recordName(targetStorage), recordKey(targetStorage));
}

void KaBookkeeping::saveNowAndThen(KaTargetStorage targetStorage) {
  thread.check();
  const auto begin = with.clock.now();
  if (!nextSave) nextSave = begin + kSaveInterval;
  if (begin < *nextSave) return;
  static_cast<void>(save(targetStorage));
  // A large ledger takes its time: no more than a twentieth of the pass.
  const auto now = with.clock.now();
  nextSave = now + std::max<platform::BootClock::duration>(kSaveInterval, 20 * (now - begin));
}

void KaBookkeeping::openLedger() {
  thread.check();
  if (std::exchange(accountBefore, account()) != account())
    knewAccountBefore = lastDateTime(KaTargetStorage::Days30) > KaDownloadData::defaultLastDateTime();
  ledger.open(account());
}

bool KaBookkeeping::isTaken(const KaImageKey &listed, KaTargetStorage targetStorage) const {
  return ledger.knows(listed, targetStorage);
}

void KaBookkeeping::settle(const KaImageKey &listed, KaTargetStorage targetStorage) {
  ledger.settle(listed, targetStorage);
}

void KaBookkeeping::forgetBefore(const QString &dateTime) {
  const QDate day = QDate::fromString(dateTime.left(8), u"yyyyMMdd"_s);
  if (day.isValid()) ledger.forgetBefore(day.addDays(-kDaysKept).toString(u"yyyyMMdd"_s));
}

bool KaBookkeeping::hasUser() const {
  return with.session.userUUID().has_value();
}

QString KaBookkeeping::account() const {
  return with.session.userUUID().value_or(QString());
}

QString KaBookkeeping::lastDateTime(KaTargetStorage targetStorage) const {
  if (targetStorage == KaTargetStorage::LongTerm10G) return KaDownloadData::defaultLastDateTime();
  return with.delegate.downloadDataLastDateTime(recordKey(targetStorage)).value_or(QString());
}

qint64 KaBookkeeping::lastPreview() const {
  const auto ids = with.delegate.downloadDataContentIds(recordKey(KaTargetStorage::Preview2K));
  return ids.value_or(QStringList()).value(0).toLongLong();
}

void KaBookkeeping::saveImageInfo(const KaImageKey &image, KaTargetStorage targetStorage) {
  thread.check();
  const QString key = recordKey(targetStorage);
  // The 10G storage has no order by time: an object may come to it late, so all its ids stay.
  if (targetStorage == KaTargetStorage::LongTerm10G)
    return with.delegate.setDownloadDataAddContent(key, image.contentId());

  const auto last = with.delegate.downloadDataLastDateTime(key);
  if (!last) return;
  const QString dateTime = u"%1/%2"_s.arg(image.date(), image.hour());
  if (*last == dateTime) with.delegate.setDownloadDataAddContent(key, image.contentId());
  if (*last < dateTime) with.delegate.setDownloadDataNewDate(key, dateTime, image.contentId());
}

void KaBookkeeping::savePreviewInfo(qint64 index) {
  thread.check();
  with.delegate.setDownloadDataNewDate(recordKey(KaTargetStorage::Preview2K), QString(), QString::number(index));
}

QString KaBookkeeping::recordKey(KaTargetStorage targetStorage) const {
  return uuidKey(account(), targetStorage);
}
