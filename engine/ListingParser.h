#pragma once

#include "service/KaCredential.h"
#include "service/KaResultCode.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// What the engine reads out of the service's XML answers.

struct ListedObject {
  QString key{};
  qint64 size = 0;

  friend bool operator==(const ListedObject &, const ListedObject &) = default;
};

struct ListingPage {
  std::vector<ListedObject> contents{}; ///< those of size "0", which mark folders, are left out
  QStringList devices{};                ///< the last components of the common prefixes
  bool isTruncated = false;
  std::optional<QString> nextContinuationToken{}; ///< absent on the last page
};

/// An object listing. @return Success, or NoBody when the document is malformed.
[[nodiscard]] KaResultCode parseXML(const QByteArray &document, ListingPage &page);

/// An STS answer; what it lacks stays as it was in @p credential. Results as above.
[[nodiscard]] KaResultCode parseXML(const QByteArray &document, KaCredential &credential);
