#include "service/CurlOutcome.h"

#include <curl/curl.h>
#include <gtest/gtest.h>

namespace {

TEST(CurlOutcome, tellsSecureConnectionsFromOtherFailures) {
  const std::pair<CURLcode, TransportOutcome> table[] = {
      {CURLE_OK, TransportOutcome::Answered},
      {CURLE_SSL_CONNECT_ERROR, TransportOutcome::SecureConnectionFailed},
      {CURLE_PEER_FAILED_VERIFICATION, TransportOutcome::SecureConnectionFailed},
      {CURLE_SSL_CERTPROBLEM, TransportOutcome::SecureConnectionFailed},
      {CURLE_SSL_CIPHER, TransportOutcome::SecureConnectionFailed},
      {CURLE_SSL_CACERT_BADFILE, TransportOutcome::SecureConnectionFailed},
      {CURLE_SSL_ISSUER_ERROR, TransportOutcome::SecureConnectionFailed},
      {CURLE_SSL_INVALIDCERTSTATUS, TransportOutcome::SecureConnectionFailed},
      {CURLE_SSL_CLIENTCERT, TransportOutcome::SecureConnectionFailed},
      {CURLE_UNSUPPORTED_PROTOCOL, TransportOutcome::Failed},
      {CURLE_URL_MALFORMAT, TransportOutcome::Failed},
      {CURLE_COULDNT_RESOLVE_HOST, TransportOutcome::Failed},
      {CURLE_COULDNT_CONNECT, TransportOutcome::Failed},
      {CURLE_PARTIAL_FILE, TransportOutcome::Failed},
      {CURLE_WRITE_ERROR, TransportOutcome::Failed},
      {CURLE_OPERATION_TIMEDOUT, TransportOutcome::Failed},
      {CURLE_GOT_NOTHING, TransportOutcome::Failed},
      {CURLE_SEND_ERROR, TransportOutcome::Failed},
      {CURLE_RECV_ERROR, TransportOutcome::Failed},
  };
  for (const auto &[code, expected] : table)
    EXPECT_EQ(transportOutcome(code), expected) << curl_easy_strerror(code);
}

} // namespace
