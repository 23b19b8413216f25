#include "service/CurlOutcome.h"

#include <curl/curl.h>

TransportOutcome transportOutcome(int curlCode) {
  switch (curlCode) {
  case CURLE_OK:
    return TransportOutcome::Answered;
  case CURLE_SSL_CONNECT_ERROR:
  case CURLE_SSL_ENGINE_NOTFOUND:
  case CURLE_SSL_ENGINE_SETFAILED:
  case CURLE_SSL_ENGINE_INITFAILED:
  case CURLE_SSL_CERTPROBLEM:
  case CURLE_SSL_CIPHER:
  case CURLE_PEER_FAILED_VERIFICATION:
  case CURLE_USE_SSL_FAILED:
  case CURLE_SSL_CACERT_BADFILE:
  case CURLE_SSL_CRL_BADFILE:
  case CURLE_SSL_ISSUER_ERROR:
  case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
  case CURLE_SSL_INVALIDCERTSTATUS:
  case CURLE_SSL_CLIENTCERT:
    return TransportOutcome::SecureConnectionFailed;
  default:
    return TransportOutcome::Failed;
  }
}

bool saysUnreachable(int curlCode, long proxyError) {
  switch (curlCode) {
  case CURLE_COULDNT_RESOLVE_PROXY:
  case CURLE_COULDNT_RESOLVE_HOST:
  case CURLE_COULDNT_CONNECT:
    return true;
  case CURLE_PROXY: // what answers does not speak the kind of SOCKS that is asked for
    return proxyError == CURLPX_BAD_VERSION || proxyError == CURLPX_CLOSED;
  default:
    return false;
  }
}
