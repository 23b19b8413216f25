#pragma once

#include "sandbox/Certificates.h"
#include "sandbox/HttpMessage.h"

#include <QtGlobal>

#include <functional>
#include <memory>

namespace sandbox {

/// An HTTPS server on 127.0.0.1. It delivers answers whole or in the odd ways of Delivery.
class HttpServer {
public:
  /// Called on the server's threads, many at a time.
  using Handler = std::function<ServedAnswer(const ReceivedRequest &)>;

  struct Place {
    quint16 port = 0; ///< 0: any free one
    const char *address = "127.0.0.1";
  };

  /// Has its port once constructed. Throws std::runtime_error when that cannot be had.
  HttpServer(const CertifiedKey &certificate, const Place &place, Handler handler, int requestsPerConnection);
  /// Cuts every connection and returns when the last handler has.
  ~HttpServer();
  HttpServer(const HttpServer &) = delete;
  HttpServer &operator=(const HttpServer &) = delete;

  /// Begins to answer; once.
  void start();
  [[nodiscard]] quint16 port() const;
  /// Lets go of delayed, held and slow answers that wait now.
  void releaseWaiting();
  /// Cuts the connections that have had an answer and are given no other now; one in mid-answer once that is out.
  void closeIdleConnections();

private:
  class Private;
  std::unique_ptr<Private> d;
};

} // namespace sandbox
