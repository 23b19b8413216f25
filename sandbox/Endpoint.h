#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <span>
#include <utility>

namespace sandbox {

/// What a request was for, told from its host, path and query.
enum class Endpoint {
  Configuration,  ///< GET api/configuration
  GetLogin,       ///< GET api/getLogin
  LoginPage,      ///< GET www/st/downloader-login.html
  SignIn,         ///< POST www/st/sign-in, the login page's button
  Logout,         ///< GET api/logout
  LogoutPage,     ///< GET www/st/downloader-logout.html
  TokenCode,      ///< POST api/getTokenCode
  RefreshToken,   ///< POST api/refreshToken
  Discovery,      ///< GET idp/.well-known/openid-configuration
  Keys,           ///< GET idp: the key set
  Sts,            ///< GET sts/
  ListDevices,    ///< a listing with a delimiter
  SettingsObject, ///< conf/settings.json
  ListItems,      ///< a listing without delimiter
  Metadata,       ///< an object below metadata/
  ObjectGet,      ///< any other object of the content bucket
  ObjectHead,
  ObjectTagging,
  PreviewList,   ///< an object of the preview list bucket
  PreviewObject, ///< an object below images/preview…
  LogEvents,     ///< POST logs/
  Other,         ///< the front page and everything unknown
};

/// Every endpoint, in the order of the enumeration.
[[nodiscard]] std::span<const Endpoint> allEndpoints();
/// The name as it stands in the enumeration.
[[nodiscard]] QString endpointName(Endpoint endpoint);

/// One request as it arrived.
struct RequestRecord {
  Endpoint endpoint = Endpoint::Other;
  QByteArray method;
  QString host;      ///< without port
  QByteArray target; ///< path and query as on the wire
  QList<std::pair<QByteArray, QByteArray>> headers;
  QByteArray body;
  int status = 0; ///< 0 until answered, and for good when the connection was dropped instead

  /// The first header of that name in any case; empty when there is none.
  [[nodiscard]] QByteArray header(const QByteArray &name) const;
};

} // namespace sandbox
