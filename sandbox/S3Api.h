#pragma once

#include "sandbox/Credentials.h"
#include "sandbox/Endpoint.h"
#include "sandbox/HttpMessage.h"

#include <QByteArray>
#include <QDateTime>

#include <atomic>
#include <optional>

namespace sandbox {

class Library;

/// What a request to the object store names: "BUCKET.s3.localhost/KEY", or in path style "s3.localhost/BUCKET/KEY"
/// and "localhost/BUCKET/KEY", for clients that cannot look such hosts up.
struct StorageAddress {
  QByteArray bucket{};
  QByteArray key{}; ///< empty: the bucket itself
};

/// The object store's side: who may ask, and its answers and refusals. Any thread.
class S3Api {
public:
  S3Api(const Library &objects, const Credentials &issued, QByteArray itsRegion)
      : library(objects), credentials(issued), region(std::move(itsRegion)) {}

  [[nodiscard]] ServedAnswer answer(const ReceivedRequest &request, const QDateTime &now) const;
  void setPageSize(int keys);

private:
  [[nodiscard]] ServedAnswer listing(const ReceivedRequest &request, const QByteArray &bucket,
                                     const QString &userId) const;
  [[nodiscard]] ServedAnswer object(const ReceivedRequest &request, const StorageAddress &address,
                                    const QString &userId) const;

  const Library &library;
  const Credentials &credentials;
  const QByteArray region;
  std::atomic<int> pageSize = 1000;
};

/// Nothing for a host that is not the object store's.
[[nodiscard]] std::optional<StorageAddress> storageAddress(const ReceivedRequest &request);
/// What a request to @p address is for.
[[nodiscard]] Endpoint storageEndpoint(const ReceivedRequest &request, const StorageAddress &address);

} // namespace sandbox
