#include "service/KaServerRequest.h"

ServerAnswer KaServerRequest::getAwsTemporaryCredential(const QString &url) {
  return exchange({.url = url});
}
