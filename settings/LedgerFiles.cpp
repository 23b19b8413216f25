#include "settings/LedgerFiles.h"

#include "identity/KaCryptionUtility.h"
#include "log/ExceptionGuard.h"
#include "log/UnreadableFile.h"
#include "platform/JsonValue.h"
#include "platform/PrivateFile.h"
#include "settings/SettingsFiles.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// Bytes. A million objects take a tenth of it.
constexpr qint64 kLedgerLimit = 512LL << 20;
/// More than a million years of saving every second: no file of ours has more.
constexpr qint64 kMostGenerations = 1LL << 45;

constexpr auto kAccount = "Account"_L1;
constexpr auto kGeneration = "Generation"_L1;
constexpr auto kOrdinary = "30days"_L1;
constexpr auto kLongTerm = "10G"_L1;
constexpr auto kBoundary = "Boundary"_L1;
constexpr auto kBoundaryIds = "BoundaryContentIDs"_L1;
constexpr auto kDays = "Days"_L1;

QString pathOf(const QString &account, qint64 generation) {
  const QString hash = KaCryptionUtility::toSHA256hash(account).left(32);
  return u"%1/Ledger_%2_%3"_s.arg(appFolder(), hash).arg(generation % 2);
}

QString textOf(const std::vector<KaKeyDigest> &digests) {
  const auto *const bytes = reinterpret_cast<const char *>(digests.data());
  const auto size = static_cast<qsizetype>(digests.size() * sizeof(KaKeyDigest));
  return QString::fromLatin1(QByteArray::fromRawData(bytes, size).toBase64());
}

/// Absent when it is no such text. Sorted, whatever the file holds.
std::optional<std::vector<KaKeyDigest>> digestsIn(const QJsonValue &value) {
  const auto decoded =
      QByteArray::fromBase64Encoding(value.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
  constexpr auto kSize = static_cast<qsizetype>(sizeof(KaKeyDigest));
  const QByteArray bytes = decoded.decoded;
  if (!decoded || bytes.isEmpty() || bytes.size() % kSize != 0) return std::nullopt;
  std::vector<KaKeyDigest> digests(static_cast<std::size_t>(bytes.size() / kSize));
  std::copy(bytes.cbegin(), bytes.cend(), reinterpret_cast<char *>(digests.data()));
  std::sort(digests.begin(), digests.end());
  return digests;
}

QJsonObject toJson(const KaTakenObjects &taken) {
  QJsonObject days;
  for (const auto &[day, digests] : taken.days)
    days.insert(day, textOf(digests));
  return {{kBoundary, taken.boundaryDateTime},
          {kBoundaryIds, QJsonArray::fromStringList(taken.boundaryContentIds)},
          {kDays, days}};
}

std::optional<KaTakenObjects> takenIn(const QJsonObject &object) {
  const auto boundary = platform::jsonString(object, kBoundary);
  if (!boundary || !object.value(kBoundaryIds).isArray() || !object.value(kDays).isObject()) return std::nullopt;
  KaTakenObjects taken{.boundaryDateTime = *boundary, .boundaryContentIds = {}, .days = {}};
  const QJsonArray ids = object.value(kBoundaryIds).toArray();
  for (const auto &id : ids)
    taken.boundaryContentIds << id.toString();
  const QJsonObject days = object.value(kDays).toObject();
  for (auto day = days.begin(); day != days.end(); ++day) {
    auto digests = digestsIn(day.value());
    if (!digests) return std::nullopt;
    taken.days.emplace(day.key(), std::move(*digests));
  }
  return taken;
}

QByteArray toJson(const QString &account, const KaLedger &ledger) {
  return platform::toCompactJson({{kAccount, account},
                                  {kGeneration, ledger.generation},
                                  {kOrdinary, toJson(ledger.ordinary)},
                                  {kLongTerm, toJson(ledger.longTerm)}});
}

std::optional<KaLedger> ledgerIn(const QByteArray &json, const QString &account) {
  const auto document = platform::parseJsonObject(json);
  if (!document || platform::jsonString(*document, kAccount) != account) return std::nullopt;
  auto ordinary = takenIn(document->value(kOrdinary).toObject());
  auto longTerm = takenIn(document->value(kLongTerm).toObject());
  const qint64 generation = document->value(kGeneration).toInteger();
  if (!ordinary || !longTerm || generation <= 0 || generation > kMostGenerations) return std::nullopt;
  return KaLedger{std::move(*ordinary), std::move(*longTerm), generation};
}

std::optional<KaLedger> read(const QString &path, const QString &account) {
  const auto content = platform::readPrivateFile(path, kLedgerLimit);
  const auto json = content ? KaCryptionUtility::decrypt(QString::fromLatin1(*content)) : std::nullopt;
  auto ledger = json ? ledgerIn(json->toUtf8(), account) : std::nullopt;
  if (!ledger) writeUnreadableFileLog(path);
  return ledger;
}

} // namespace

KaLoadedLedger loadLedger(const QString &account) {
  return guardedOr(KaLoadedLedger{.outcome = KaLoadedLedger::Outcome::Unreadable}, [&] {
    KaLoadedLedger loaded;
    for (const qint64 slot : {0, 1}) {
      const QString path = pathOf(account, slot);
      if (const QFileInfo file(path); !file.exists() && !file.isSymLink()) continue;
      const auto found = read(path, account);
      if (found && found->generation > loaded.ledger.generation)
        loaded = {.outcome = KaLoadedLedger::Outcome::Read, .ledger = *found};
      if (!found && loaded.outcome == KaLoadedLedger::Outcome::Absent)
        loaded.outcome = KaLoadedLedger::Outcome::Unreadable;
    }
    return loaded;
  });
}

bool saveLedger(const QString &account, KaLedger &ledger) {
  return guardedOr(false, [&] {
    if (!ensureAppFolder()) return false;
    KaLedger next = ledger;
    ++next.generation;
    const auto enciphered = KaCryptionUtility::encrypt(QString::fromUtf8(toJson(account, next)));
    if (!enciphered || !platform::writePrivateFile(pathOf(account, next.generation), enciphered->toLatin1()))
      return false;
    ledger.generation = next.generation;
    return true;
  });
}
