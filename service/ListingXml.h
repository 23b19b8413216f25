#pragma once

#include "service/ServerAnswer.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// One answer to a listing request.
struct ListingAnswer {
  ListingPage page{};
  std::optional<QString> nextContinuationToken{}; ///< absent on the last page
};

/// @return nothing when @p document cannot be parsed (see walkXmlText), or lists more than any page does.
[[nodiscard]] std::optional<ListingAnswer> listingPageIn(const QByteArray &document);
