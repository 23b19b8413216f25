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

/// The object store's side: who may ask, and its answers and refusals. Any thread.
class S3Api {
public:
  S3Api(const Library &objects, const Credentials &issued) : library(objects), credentials(issued) {}

  [[nodiscard]] HttpAnswer answer(const HttpRequest &request, const QDateTime &now) const;
  void setPageSize(int keys);

private:
  [[nodiscard]] HttpAnswer listing(const HttpRequest &request, const QByteArray &bucket, const QString &userId) const;
  [[nodiscard]] HttpAnswer object(const HttpRequest &request, const QByteArray &bucket, const QString &userId) const;

  const Library &library;
  const Credentials &credentials;
  std::atomic<int> pageSize = 1000;
};

/// The bucket that a host names: "BUCKET.s3.localhost".
[[nodiscard]] std::optional<QByteArray> bucketOfHost(const QByteArray &host);
/// What a request to @p bucket is for.
[[nodiscard]] Endpoint storageEndpoint(const HttpRequest &request, const QByteArray &bucket);

} // namespace sandbox
