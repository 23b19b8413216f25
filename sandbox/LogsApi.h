#pragma once

#include "sandbox/Credentials.h"
#include "sandbox/Guarded.h"
#include "sandbox/HttpMessage.h"
#include "sandbox/Service.h"

#include <QDateTime>
#include <QList>

namespace sandbox {

/// The log service: takes signed PutLogEvents calls and keeps the events. Any thread.
class LogsApi {
public:
  explicit LogsApi(const Credentials &issued) : credentials(issued) {}

  [[nodiscard]] HttpAnswer answer(const HttpRequest &request, const QDateTime &now);
  [[nodiscard]] QList<LogEvent> events() const;

private:
  const Credentials &credentials;
  Guarded<QList<LogEvent>> kept;
};

} // namespace sandbox
