#include "sandbox/BrowserSignIn.h"

#include <QRegularExpression>
#include <QUrl>

#include <httplib.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace sandbox {

namespace {

std::unique_ptr<httplib::SSLClient> clientFor(const QUrl &url, const QString &trustAnchorsFile) {
  const std::string host = url.host().toStdString();
  auto client = std::make_unique<httplib::SSLClient>(host, url.port(443));
  client->set_ca_cert_path(trustAnchorsFile.toStdString());
  // Not every resolver knows that names below localhost are loopback.
  client->set_hostname_addr_map({{host, "127.0.0.1"}});
  return client;
}

std::string targetOf(const QUrl &url) {
  return url.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority).toStdString();
}

QString described(const httplib::Result &result) {
  if (!result) return QString::fromStdString(httplib::to_string(result.error()));
  return u"HTTP %1: %2"_s.arg(result->status).arg(QString::fromStdString(result->body).left(300));
}

} // namespace

std::optional<QString> signInLikeABrowser(const QString &loginUrl, const QString &trustAnchorsFile, QString &problem) {
  const QUrl start(loginUrl);
  const auto redirected = clientFor(start, trustAnchorsFile)->Get(targetOf(start));
  if (!redirected || redirected->status != 302) {
    problem = u"The login URL was not accepted. "_s + described(redirected);
    return std::nullopt;
  }
  const QUrl loginPage(QString::fromStdString(redirected->get_header_value("Location")));
  const auto page = clientFor(loginPage, trustAnchorsFile)->Get(targetOf(loginPage));
  static const QRegularExpression form(uR"re(action="([^"]+)".*name="session" value="([^"]+)")re"_s,
                                       QRegularExpression::DotMatchesEverythingOption);
  const auto found = page ? form.match(QString::fromStdString(page->body)) : QRegularExpressionMatch();
  if (!found.hasMatch()) {
    problem = u"The login page has no sign-in button. "_s + described(page);
    return std::nullopt;
  }
  const QUrl button = loginPage.resolved(QUrl(found.captured(1)));
  const auto signedIn = clientFor(button, trustAnchorsFile)
                            ->Post(targetOf(button), httplib::Params{{"session", found.captured(2).toStdString()}});
  const QString callback = signedIn ? QString::fromStdString(signedIn->get_header_value("Location")) : QString();
  if (!callback.startsWith(u"downloaderpictora:")) {
    problem = u"Signing in did not lead back to the agent. "_s + described(signedIn);
    return std::nullopt;
  }
  return callback;
}

} // namespace sandbox
