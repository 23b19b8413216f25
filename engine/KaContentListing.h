#pragma once

#include "engine/KaTargetStorage.h"
#include "log/KaLogUtility.h"
#include "service/KaResultCode.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>

class KaDownloadProcessorDelegate;
class KaDownloadSession;
class KaServerRequest;
struct KaDownloadState;
struct ListParameters;
struct ListingPage;

/// Object key to listed size in bytes.
using KaContentsDictionary = QHash<QString, qint64>;

/// Finds out which objects are new, and records those that were taken. Download thread.
class KaContentListing {
public:
  KaContentListing(KaDownloadProcessorDelegate &toAsk, KaServerRequest &toSend, const KaDownloadSession &current,
                   const KaDownloadState &shared)
      : delegate(toAsk), request(toSend), session(current), state(shared) {}
  KaContentListing(const KaContentListing &) = delete;
  KaContentListing &operator=(const KaContentListing &) = delete;

  /// Fills contentsDictionary() with what a storage holds and the bookkeeping does not.
  /// @return NoBody, too, for an answer that cannot be parsed or pages that go round in circles.
  [[nodiscard]] KaResultCode getContentsList(KaTargetStorage targetStorage, bool notifyUserOfUpdate);
  [[nodiscard]] const KaContentsDictionary &contentsDictionary() const { return contents; }
  /// Takes @p keys out of the last listing.
  void withhold(const QSet<QString> &keys);

  /// Records one saved file. A date and hour older than the record's changes nothing.
  void saveImageInfo(const QString &contentId, const QString &date, const QString &hour, KaTargetStorage targetStorage);

private:
  /// Takes a page in; returns what the log shall say of it.
  using PageTaker = std::function<QStringList(const ListingPage &page)>;

  [[nodiscard]] KaResultCode readPages(KaLogStep step, const QStringList &subject, ListParameters parameters,
                                       const PageTaker &take);
  [[nodiscard]] KaResultCode listDevices();
  [[nodiscard]] KaResultCode readSettings(bool notifyUserOfUpdate, QStringList &devices);
  [[nodiscard]] KaResultCode listItems(const QStringList &devices, KaTargetStorage targetStorage);
  [[nodiscard]] KaResultCode listDevice(const QString &device, const QString &lastDateTime);
  void excludeDownloaded(KaTargetStorage targetStorage);
  [[nodiscard]] QString recordKey(KaTargetStorage targetStorage) const;
  [[nodiscard]] QString deviceListPrefix() const;

  KaDownloadProcessorDelegate &delegate;
  KaServerRequest &request;
  const KaDownloadSession &session;
  const KaDownloadState &state;
  KaContentsDictionary contents;
  QStringList deviceArray;
};

/// The keys in download order: by upload date, hour and file name, over all devices.
[[nodiscard]] QStringList sortImageList(QStringList keys);
