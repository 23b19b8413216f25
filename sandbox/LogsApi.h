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
  LogsApi(const Credentials &issued, QByteArray itsRegion) : credentials(issued), region(std::move(itsRegion)) {}

  [[nodiscard]] ServedAnswer answer(const ReceivedRequest &request, const QDateTime &now);
  [[nodiscard]] QList<LogEvent> events() const;

private:
  const Credentials &credentials;
  const QByteArray region;
  Locked<QList<LogEvent>> kept;
};

} // namespace sandbox
