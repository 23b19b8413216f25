#include "engine/VersionOrder.h"

#include <algorithm>

namespace {

bool isDigit(QChar character) {
  return character >= u'0' && character <= u'9';
}

/// Takes the digits that @p text begins with off it; leading zeros are dropped.
QStringView takeNumber(QStringView &text) {
  const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
  QStringView number = text.first(end - text.begin());
  text = text.sliced(number.size());
  while (number.size() > 1 && number.front() == u'0')
    number = number.sliced(1);
  return number;
}

/// Without converting, so that no length overflows.
int compareNumbers(QStringView left, QStringView right) {
  if (left.size() != right.size()) return left.size() < right.size() ? -1 : 1;
  return left.compare(right);
}

} // namespace

bool isLaterVersion(QStringView candidate, QStringView current) {
  while (!candidate.isEmpty() && !current.isEmpty()) {
    if (isDigit(candidate.front()) && isDigit(current.front())) {
      const int order = compareNumbers(takeNumber(candidate), takeNumber(current));
      if (order != 0) return order > 0;
      continue;
    }
    if (candidate.front() != current.front()) return candidate.front() > current.front();
    candidate = candidate.sliced(1);
    current = current.sliced(1);
  }
  return !candidate.isEmpty();
}
