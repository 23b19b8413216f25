#include "sandbox/Endpoint.h"

#include "sandbox/HttpMessage.h"

#include <array>

using namespace Qt::StringLiterals;

namespace sandbox {

namespace {

constexpr std::array kAll{
    Endpoint::Configuration,  Endpoint::GetLogin,      Endpoint::LoginPage,   Endpoint::SignIn,
    Endpoint::Logout,         Endpoint::LogoutPage,    Endpoint::TokenCode,   Endpoint::RefreshToken,
    Endpoint::Discovery,      Endpoint::Keys,          Endpoint::Sts,         Endpoint::ListDevices,
    Endpoint::SettingsObject, Endpoint::ListItems,     Endpoint::Metadata,    Endpoint::ObjectGet,
    Endpoint::ObjectHead,     Endpoint::ObjectTagging, Endpoint::PreviewList, Endpoint::PreviewObject,
    Endpoint::LogEvents,      Endpoint::Other};
static_assert(kAll.size() == size_t(Endpoint::Other) + 1);

} // namespace

std::span<const Endpoint> allEndpoints() {
  return kAll;
}

QString endpointName(Endpoint endpoint) {
  switch (endpoint) {
  case Endpoint::Configuration:
    return u"Configuration"_s;
  case Endpoint::GetLogin:
    return u"GetLogin"_s;
  case Endpoint::LoginPage:
    return u"LoginPage"_s;
  case Endpoint::SignIn:
    return u"SignIn"_s;
  case Endpoint::Logout:
    return u"Logout"_s;
  case Endpoint::LogoutPage:
    return u"LogoutPage"_s;
  case Endpoint::TokenCode:
    return u"TokenCode"_s;
  case Endpoint::RefreshToken:
    return u"RefreshToken"_s;
  case Endpoint::Discovery:
    return u"Discovery"_s;
  case Endpoint::Keys:
    return u"Keys"_s;
  case Endpoint::Sts:
    return u"Sts"_s;
  case Endpoint::ListDevices:
    return u"ListDevices"_s;
  case Endpoint::SettingsObject:
    return u"SettingsObject"_s;
  case Endpoint::ListItems:
    return u"ListItems"_s;
  case Endpoint::Metadata:
    return u"Metadata"_s;
  case Endpoint::ObjectGet:
    return u"ObjectGet"_s;
  case Endpoint::ObjectHead:
    return u"ObjectHead"_s;
  case Endpoint::ObjectTagging:
    return u"ObjectTagging"_s;
  case Endpoint::PreviewList:
    return u"PreviewList"_s;
  case Endpoint::PreviewObject:
    return u"PreviewObject"_s;
  case Endpoint::LogEvents:
    return u"LogEvents"_s;
  case Endpoint::Other:
    return u"Other"_s;
  }
  Q_UNREACHABLE();
}

QByteArray RequestRecord::header(const QByteArray &name) const {
  return headerValue(headers, name);
}

} // namespace sandbox
