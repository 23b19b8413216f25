#include "sandbox/SiteApi.h"

#include <QJsonArray>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace sandbox {

namespace {

constexpr qsizetype kShownRequests = 200;

constexpr char kStyle[] =
    "body{font:16px/1.5 system-ui,sans-serif;color:#1d2733;background:#eef1f4;margin:0;display:grid;"
    "min-height:100vh;place-items:center}"
    "main{background:#fff;border-radius:12px;padding:2rem 2.5rem;margin:2rem;max-width:46rem;"
    "box-shadow:0 2px 16px #0002}"
    "h1{font-size:1.4rem;margin:0 0 1rem}"
    "button{font:inherit;color:#fff;background:#1f5fbf;border:0;border-radius:8px;padding:.7rem 1.6rem;cursor:pointer}"
    "button:focus-visible{outline:3px solid #f5a623}"
    "table{border-collapse:collapse;width:100%}td,th{text-align:left;padding:.2rem .8rem .2rem 0}"
    "td.n{text-align:right}code{font-size:.85em;word-break:break-all}";

ServedAnswer page(const QByteArray &title, const QByteArray &content, int status = 200) {
  return {.status = status,
          .contentType = "text/html; charset=utf-8",
          .body = "<!doctype html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>" + title
                  + "</title><meta name=\"viewport\" content=\"width=device-width\"><style>" + kStyle
                  + "</style></head><body><main><h1>" + title + "</h1>\n" + content + "</main></body></html>\n",
          .headers = {{"Cache-Control", "no-store"}}};
}

ServedAnswer staleLogin() {
  return page("This login is over", "<p>Start it again from the menu of the downloader.</p>\n", 400);
}

QByteArray cell(const QByteArray &text) {
  return "<td>" + text + "</td>";
}

} // namespace

ServedAnswer SiteApi::answer(const ReceivedRequest &request, const QDateTime &now) {
  const QByteArray path = request.path();
  if (path == "/st/sign-in" && request.method == "POST") return signIn(request, now);
  if (path == "/st/downloader-login.html") return loginPage(request);
  if (path == "/st/downloader-logout.html")
    return page("You are logged out", "<p>The downloader no longer fetches pictures from this account.</p>\n");
  if (path == "/requests.json") return requestsJson();
  if (path == "/reports.json") return reportsJson();
  if (path == "/") return frontPage();
  return page("There is no such page", {}, 404);
}

ServedAnswer SiteApi::loginPage(const ReceivedRequest &request) const {
  const QByteArray login = request.query().text("session");
  if (!account.isStarted(QString::fromLatin1(login))) return staleLogin();
  return page("Sign in to your photographs",
              "<p>The downloader on this computer asks to fetch the pictures of this account.</p>\n"
              "<form method=\"post\" action=\"/st/sign-in\"><input type=\"hidden\" name=\"session\" value=\""
                  + escaped(login) + "\"><button type=\"submit\" id=\"sign-in\" autofocus>Sign in</button></form>\n");
}

ServedAnswer SiteApi::signIn(const ReceivedRequest &request, const QDateTime &now) {
  const QByteArray login = QueryParameters(request.body).text("session");
  const auto callback = account.finishLogin(QString::fromLatin1(login), now);
  return callback ? redirectTo(*callback) : staleLogin();
}

ServedAnswer SiteApi::frontPage() const {
  QByteArray rows;
  for (const Endpoint endpoint : allEndpoints())
    if (const int count = requests.count(endpoint))
      rows += "<tr>" + cell(endpointName(endpoint).toLatin1()) + "<td class=\"n\">" + QByteArray::number(count)
              + "</td></tr>\n";
  QByteArray reports;
  for (const LogEvent &event : logs.events())
    reports += "<tr>" + cell(escaped(event.stream.toUtf8()))
               + cell("<code>" + escaped(event.message.toUtf8()) + "</code>") + "</tr>\n";
  return page("What was asked of this service",
              "<table><tr><th>Request</th><th>Count</th></tr>\n" + rows
                  + "</table>\n<h1>Reports received</h1>\n<table><tr><th>Stream</th><th>Message</th></tr>\n" + reports
                  + "</table>\n<p>As JSON: <a href=\"/requests.json\">the latest requests</a>, "
                    "<a href=\"/reports.json\">the reports</a></p>\n");
}

ServedAnswer SiteApi::requestsJson() const {
  QJsonObject counts;
  for (const Endpoint endpoint : allEndpoints())
    counts.insert(endpointName(endpoint), requests.count(endpoint));
  QJsonArray latest;
  const QList<RequestRecord> records = requests.records();
  for (const RequestRecord &record : records.mid(qMax(0, records.size() - kShownRequests)))
    latest.append(QJsonObject{{u"endpoint"_s, endpointName(record.endpoint)},
                              {u"method"_s, QString::fromLatin1(record.method)},
                              {u"host"_s, record.host},
                              {u"target"_s, QString::fromLatin1(record.target)},
                              {u"status"_s, record.status}});
  return jsonAnswer(compactJson({{u"counts"_s, counts}, {u"requests"_s, latest}}) + '\n');
}

ServedAnswer SiteApi::reportsJson() const {
  QByteArrayList lines;
  for (const LogEvent &event : logs.events())
    lines << compactJson({{u"group"_s, event.group},
                          {u"stream"_s, event.stream},
                          {u"timestamp"_s, event.timestamp},
                          {u"message"_s, event.message}});
  return jsonAnswer(lines.isEmpty() ? QByteArray("[]\n") : "[\n" + lines.join(",\n") + "\n]\n");
}

} // namespace sandbox
