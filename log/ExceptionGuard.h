#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <stdexcept>

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
/// @return whether the action ended without an exception.
[[nodiscard]] bool runGuarded(const std::function<void()> &action);
