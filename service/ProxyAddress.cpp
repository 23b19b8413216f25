#include "service/ProxyAddress.h"

#include <algorithm>

namespace {

/// What a word of the settings means.
struct Kind {
  const char *told;
  const char *scheme; ///< names are the proxy's to look up: here they may not be known
  const char *port;   ///< where none is told
};

// "socks" may be either; the newer one is tried first.
constexpr Kind kKinds[] = {{"http", "http", "80"},        {"https", "https", "443"},     {"socks", "socks5h", "1080"},
                           {"socks", "socks4a", "1080"},  {"socks5", "socks5h", "1080"}, {"socks5h", "socks5h", "1080"},
                           {"socks4", "socks4a", "1080"}, {"socks4a", "socks4a", "1080"}};

bool namesPort(const QByteArray &host) {
  return host.lastIndexOf(':') > host.lastIndexOf(']') && (host.startsWith('[') || host.count(':') == 1);
}

/// @param text  all behind the scheme; a password may hold any character, unencoded.
ProxyAddress addressOf(const Kind &kind, const QByteArray &text) {
  const qsizetype at = text.lastIndexOf('@');
  const QByteArray credentials = text.left(std::max<qsizetype>(at, 0));
  QByteArray host = text.mid(at + 1);
  if (const qsizetype path = host.indexOf('/'); path >= 0) host.truncate(path);
  if (host.isEmpty()) return {};
  if (!namesPort(host)) host.append(':').append(kind.port);
  const qsizetype colon = credentials.indexOf(':');
  return {.url = QByteArray(kind.scheme) + "://" + host,
          .user = QByteArray::fromPercentEncoding(colon < 0 ? credentials : credentials.left(colon)),
          .password = colon < 0 ? QByteArray() : QByteArray::fromPercentEncoding(credentials.mid(colon + 1))};
}

void append(const QByteArray &way, std::vector<ProxyAddress> &addresses) {
  const qsizetype end = way.indexOf("://");
  const QByteArray told = end < 0 ? "http" : way.left(end).toLower(); // "host:port" is what many write
  if (told == "direct") addresses.emplace_back();
  for (const Kind &kind : kKinds) {
    if (told != kind.told) continue;
    if (ProxyAddress address = addressOf(kind, end < 0 ? way : way.mid(end + 3)); !address.isDirect())
      addresses.push_back(std::move(address));
  }
}

} // namespace

std::vector<ProxyAddress> proxyAddresses(const QList<QByteArray> &told) {
  std::vector<ProxyAddress> addresses;
  for (const QByteArray &way : told)
    append(way, addresses);
  if (addresses.empty()) addresses.emplace_back();
  return addresses;
}

QByteArray proxyHost(const QByteArray &url) {
  return url.mid(url.indexOf("://") + 3);
}
