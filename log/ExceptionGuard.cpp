#include "log/ExceptionGuard.h"

#include "log/KaLogUtility.h"

#include <boost/core/demangle.hpp>
#include <boost/stacktrace.hpp>

#include <cxxabi.h>
#include <exception>
#include <typeinfo>

using namespace Qt::StringLiterals;

namespace {

/// @param skippedFrames  how many of the innermost frames tell nothing, this function not counted.
[[gnu::noinline]] QStringList currentFrames(std::size_t skippedFrames) {
  constexpr std::size_t kMostFrames = 64;
  QStringList frames;
  for (const boost::stacktrace::frame &frame : boost::stacktrace::stacktrace(skippedFrames + 1, kMostFrames))
    frames << QString::fromStdString(boost::stacktrace::to_string(frame));
  return frames;
}

QString typeName(const std::type_info *type) {
  return type ? QString::fromStdString(boost::core::demangle(type->name())) : u"foreign exception"_s;
}

QString logged(const QString &name, const QString &reason, const QStringList &frames) {
  const QString message = u"%1 : %2"_s.arg(name, reason);
  KaLogUtility::writeErrorLog(message, frames);
  return message;
}

} // namespace

KaException::KaException(const QString &name, const QString &reason)
    : std::runtime_error(reason.toStdString()), exceptionName(name), frames(currentFrames(1)) {
}

std::optional<QString> failureOf(const std::function<void()> &action) {
  try {
    action();
    return std::nullopt;
  } catch (const KaException &exception) {
    return logged(exception.name(), QString::fromUtf8(exception.what()), exception.stackTrace());
  } catch (const std::exception &exception) {
    return logged(typeName(&typeid(exception)), QString::fromUtf8(exception.what()), currentFrames(1));
  } catch (...) {
    return logged(typeName(abi::__cxa_current_exception_type()), u"not a standard exception"_s, currentFrames(1));
  }
}
