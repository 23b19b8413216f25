#pragma once

#include "sandbox/Credentials.h"
#include "sandbox/HttpMessage.h"
#include "sandbox/Locked.h"
#include "sandbox/Service.h"

#include <QDateTime>
#include <QList>

namespace sandbox {

/// The log service: takes signed PutLogEvents calls and keeps the events. Any thread.
class LogsApi {
public:
  explicit LogsApi(const Credentials &issued) : credentials(issued) {}

  [[nodiscard]] ServedAnswer answer(const ReceivedRequest &request, const QDateTime &now);
  [[nodiscard]] QList<LogEvent> events() const;

private:
  const Credentials &credentials;
  Locked<QList<LogEvent>> kept;
};

} // namespace sandbox
