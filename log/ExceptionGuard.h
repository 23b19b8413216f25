#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <stdexcept>
#include <type_traits>
#include <utility>

/// An exception of ours: remembers the call stack of the place that threw it.
class KaException : public std::runtime_error {
public:
  KaException(const QString &name, const QString &reason);

  [[nodiscard]] const QString &name() const { return exceptionName; }
  [[nodiscard]] const QStringList &stackTrace() const { return frames; }

private:
  QString exceptionName;
  QStringList frames;
};

/// Runs @p action and lets no exception out: one that arrives is logged as "NAME : REASON" with a call stack (of the
/// throwing place when it is ours, else of the guard).
/// @return the "NAME : REASON"; absent when the action ended without an exception.
[[nodiscard]] std::optional<QString> failureOf(const std::function<void()> &action);
/// @return whether it ended without one.
[[nodiscard]] inline bool runGuarded(const std::function<void()> &action) {
  return !failureOf(action);
}

/// What @p action returns under the same guard; @p fallback when an exception ended it.
template <class T> [[nodiscard]] T guardedOr(T fallback, const std::function<std::type_identity_t<T>()> &action) {
  T result = std::move(fallback);
  static_cast<void>(runGuarded([&] { result = action(); }));
  return result;
}
