#include "sandbox/HttpMessage.h"

namespace sandbox {

QByteArray headerValue(const HeaderList &headers, const QByteArray &name) {
  for (const auto &[key, value] : headers)
    if (key.compare(name, Qt::CaseInsensitive) == 0) return value;
  return {};
}

QByteArray textBefore(const QByteArray &text, char mark) {
  const auto position = text.indexOf(mark);
  return position < 0 ? text : text.left(position);
}

namespace {

QByteArray formDecoded(QByteArray text) {
  return QByteArray::fromPercentEncoding(text.replace('+', ' '));
}

} // namespace

QueryParameters::QueryParameters(const QByteArray &encoded) {
  for (const QByteArray &part : encoded.split('&')) {
    if (part.isEmpty()) continue;
    const auto equals = part.indexOf('=');
    const QByteArray name = equals < 0 ? part : part.left(equals);
    const QByteArray value = equals < 0 ? QByteArray() : part.mid(equals + 1);
    pairs.append({formDecoded(name), formDecoded(value)});
  }
}

std::optional<QByteArray> QueryParameters::value(const QByteArray &name) const {
  for (const auto &[key, value] : pairs)
    if (key == name) return value;
  return std::nullopt;
}

QByteArray ReceivedRequest::host() const {
  return textBefore(hostHeader, ':').toLower();
}

QByteArray ReceivedRequest::rawPath() const {
  return textBefore(target, '?');
}

QByteArray ReceivedRequest::path() const {
  return QByteArray::fromPercentEncoding(rawPath());
}

QueryParameters ReceivedRequest::query() const {
  const auto mark = target.indexOf('?');
  return QueryParameters(mark < 0 ? QByteArray() : target.mid(mark + 1));
}

bool namesBucketInPath(const ReceivedRequest &request) {
  return request.host() == "localhost" || request.host() == "s3.localhost";
}

ServedAnswer redirectTo(const QByteArray &location) {
  return {.status = 302,
          .contentType = "text/html; charset=utf-8",
          .body = "<a href=\"" + escaped(location) + "\">Continue</a>\n",
          .headers = {{"Location", location}, {"Cache-Control", "no-store"}}};
}

ServedAnswer jsonAnswer(const QByteArray &document) {
  return {.contentType = "application/json", .body = document};
}

QByteArray escaped(const QByteArray &text) {
  QByteArray result;
  result.reserve(text.size());
  for (const char c : text) {
    switch (c) {
    case '&':
      result += "&amp;";
      break;
    case '<':
      result += "&lt;";
      break;
    case '>':
      result += "&gt;";
      break;
    case '"':
      result += "&quot;";
      break;
    default:
      result += c;
    }
  }
  return result;
}

} // namespace sandbox
