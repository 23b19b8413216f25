#include "service/HttpStatus.h"

StatusMeaning meaningOf(qint64 statusCode) {
  using enum KaResultCode;
  using enum StatusMeaning::Document;
  switch (statusCode) {
  case 200:
    return {Success, There};
  case 404: // deliberately: a missing object is no error of the request
    return {Success, Missing};
  case 400:
  case 401:
  case 403:
    return {LinkInvalid, Unknown};
  case 500:
  case 503:
    return {RetryLater, Unknown};
  default:
    return {ServerError, Unknown};
  }
}
