#pragma once

#include "service/KaResultCode.h"

/// What an HTTP status means, decided here and nowhere else.
struct StatusMeaning {
  enum class Document {
    There,
    Missing,
    Unknown, ///< the service did not get as far as to say
  };
  KaResultCode result = KaResultCode::ServerError;
  Document document = Document::Unknown;

  friend bool operator==(const StatusMeaning &, const StatusMeaning &) = default;
};

/// @param statusCode  0 when no answer arrived, which is ServerError like every status without a meaning of its own.
[[nodiscard]] StatusMeaning meaningOf(qint64 statusCode);
