#pragma once

#include "sandbox/AccountApi.h"
#include "sandbox/HttpMessage.h"
#include "sandbox/LogsApi.h"
#include "sandbox/RequestLog.h"

#include <QDateTime>

namespace sandbox {

/// The web site that a person sees: login and logout pages, and a front page that shows what was asked of the service.
class SiteApi {
public:
  SiteApi(AccountApi &accounts, const RequestLog &log, const LogsApi &reports)
      : account(accounts), requests(log), logs(reports) {}

  [[nodiscard]] ServedAnswer answer(const ReceivedRequest &request, const QDateTime &now);

private:
  [[nodiscard]] ServedAnswer loginPage(const ReceivedRequest &request) const;
  [[nodiscard]] ServedAnswer signIn(const ReceivedRequest &request, const QDateTime &now);
  [[nodiscard]] ServedAnswer frontPage() const;
  [[nodiscard]] ServedAnswer requestsJson() const;
  [[nodiscard]] ServedAnswer reportsJson() const; ///< a line per report

  AccountApi &account;
  const RequestLog &requests;
  const LogsApi &logs;
};

} // namespace sandbox
