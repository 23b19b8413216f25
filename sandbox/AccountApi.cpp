#include "sandbox/AccountApi.h"

#include "sandbox/Library.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSaveFile>
#include <QUuid>

#include <array>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace sandbox {

namespace {

constexpr char kCallback[] = "downloaderpictora://authenticate";
constexpr char kClientVersion[] = "pc_2.0";

constexpr std::array kLoginFaults{TokenFault::WrongAudience,  TokenFault::AudienceArray,
                                  TokenFault::WrongIssuer,    TokenFault::Expired,
                                  TokenFault::AlgorithmHs256, TokenFault::AlgorithmNone,
                                  TokenFault::UnknownKeyId,   TokenFault::BadSignature,
                                  TokenFault::NoSubject,      TokenFault::PartLengthThreeModuloFour,
                                  TokenFault::WrongNonce};
constexpr std::array kRefreshFaults{TokenFault::WrongAudience,
                                    TokenFault::AudienceArray,
                                    TokenFault::WrongIssuer,
                                    TokenFault::Expired,
                                    TokenFault::AlgorithmHs256,
                                    TokenFault::AlgorithmNone,
                                    TokenFault::UnknownKeyId,
                                    TokenFault::BadSignature,
                                    TokenFault::NoSubject,
                                    TokenFault::PartLengthThreeModuloFour,
                                    TokenFault::WrongNonce,
                                    TokenFault::MissingNonce,
                                    TokenFault::NonceOfWrongType,
                                    TokenFault::MissingIdToken,
                                    TokenFault::IdTokenOfWrongType,
                                    TokenFault::MissingTokenCode,
                                    TokenFault::TokenCodeOfWrongType,
                                    TokenFault::AnswerIsArray};
constexpr std::array kExchangeFaults{TokenFault::MissingTokenCode, TokenFault::TokenCodeOfWrongType,
                                     TokenFault::AnswerIsArray};

QString randomText() {
  return QString::fromLatin1(base64Url(randomBytes(32)));
}

ServedAnswer refusal(int status, const QString &error, const QString &description) {
  ServedAnswer answer = jsonAnswer(compactJson({{u"error"_s, error}, {u"errorDescription"_s, description}}));
  answer.status = status;
  return answer;
}

ServedAnswer invalidRequest(const QString &description) {
  return refusal(400, u"invalid_request"_s, description);
}

bool isBase64Url(const QString &text, qsizetype length) {
  static const QRegularExpression allowed(u"^[A-Za-z0-9_-]*$"_s);
  return text.size() == length && allowed.match(text).hasMatch();
}

QString challengeOf(const QString &verifier) {
  return QString::fromLatin1(base64Url(sha256(verifier.toUtf8())));
}

ServedAnswer spoiledMembers(QJsonObject members, std::optional<TokenFault> fault) {
  if (fault == TokenFault::WrongNonce) members[u"nonce"_s] = u"not the nonce"_s;
  if (fault == TokenFault::MissingNonce) members.remove(u"nonce"_s);
  if (fault == TokenFault::NonceOfWrongType) members[u"nonce"_s] = 7;
  if (fault == TokenFault::MissingIdToken) members.remove(u"idToken"_s);
  if (fault == TokenFault::IdTokenOfWrongType) members[u"idToken"_s] = QJsonArray{members[u"idToken"_s]};
  if (fault == TokenFault::MissingTokenCode) members.remove(u"tokenCode"_s);
  if (fault == TokenFault::TokenCodeOfWrongType) members[u"tokenCode"_s] = QJsonObject{{u"value"_s, 1}};
  ServedAnswer answer = jsonAnswer(compactJson(members));
  if (fault == TokenFault::AnswerIsArray) answer.body = '[' + answer.body + ']';
  return answer;
}

} // namespace

AccountApi::AccountApi(const Tokens &idTokens, Faults &orderedFaults, const Library &objects,
                       const Settings &itsSettings)
    : tokens(idTokens), faults(orderedFaults), library(objects), settings(itsSettings) {
  loadLinks();
}

ServedAnswer AccountApi::configuration() const {
  return jsonAnswer(compactJson({{u"clientId"_s, settings.clientId}}));
}

ServedAnswer AccountApi::getLogin(const ReceivedRequest &request) {
  const QueryParameters query = request.query();
  const auto login = startLogin(query);
  if (!login) return invalidRequest(u"A parameter of the login is missing or wrong."_s);
  return redirectTo(query.text("appRedirectUrl") + "?session=" + login->toLatin1());
}

ServedAnswer AccountApi::logout(const ReceivedRequest &request) const {
  const QByteArray page = request.query().text("appRedirectUrl");
  if (page != settings.siteUrl.toUtf8() + "/st/downloader-logout.html")
    return invalidRequest(u"appRedirectUrl is not the logout page."_s);
  return redirectTo(page);
}

ServedAnswer AccountApi::exchangeVerifier(const ReceivedRequest &request, const QDateTime &now) {
  if (request.header("strataclient") != kClientVersion) return invalidRequest(u"Unknown strataclient."_s);
  const QString verifier = QJsonDocument::fromJson(request.body).object()[u"codeVerifier"_s].toString();
  if (verifier.isEmpty()) return invalidRequest(u"codeVerifier is missing."_s);
  const Tokens::Checked shown = tokens.check(request.header("userid"), now);
  if (shown.flaw && shown.flaw != TokenFlaw::Expired)
    return refusal(401, u"invalid_token"_s, u"userid is no ID token of this service."_s);
  const auto code = firstTokenCode(shown.payload[u"sid"_s].toString(), verifier);
  if (!code) return refusal(400, u"invalid_grant"_s, u"The code verifier does not belong to this login."_s);
  return spoiledMembers({{u"tokenCode"_s, *code}}, faults.take(kExchangeFaults));
}

ServedAnswer AccountApi::refresh(const ReceivedRequest &request, const QDateTime &now) {
  const QJsonObject asked = QJsonDocument::fromJson(request.body).object();
  const QString nonce = asked[u"nonce"_s].toString();
  if (nonce.isEmpty() || !asked[u"idToken"_s].isString() || !asked[u"tokenCode"_s].isString())
    return invalidRequest(u"idToken, nonce and tokenCode are needed."_s);
  const Tokens::Checked shown = tokens.check(asked[u"idToken"_s].toString().toUtf8(), now);
  if (shown.flaw && shown.flaw != TokenFlaw::Expired)
    return refusal(401, u"invalid_token"_s, u"idToken is no ID token of this service."_s);
  const QString login = shown.payload[u"sid"_s].toString();
  const auto code = renewTokenCode(login, asked[u"tokenCode"_s].toString());
  if (!code) return refusal(401, u"invalid_token_code"_s, u"The token code is not the one last handed out."_s);
  const auto fault = faults.take(kRefreshFaults);
  // A wrong nonce belongs into the answer alone: the token is not compared with it here.
  const auto inToken = fault == TokenFault::WrongNonce ? std::nullopt : fault;
  const QByteArray renewed = token(shown.payload[u"sub"_s].toString(), nonce, login, now, inToken);
  return spoiledMembers({{u"idToken"_s, QString::fromLatin1(renewed)}, {u"nonce"_s, nonce}, {u"tokenCode"_s, *code}},
                        fault);
}

std::optional<QString> AccountApi::startLogin(const QueryParameters &query) {
  const QString nonce = QString::fromUtf8(query.text("nonce"));
  const QString challenge = QString::fromUtf8(query.text("codeChallenge"));
  const bool right = query.text("appRedirectUrl") == settings.siteUrl.toUtf8() + "/st/downloader-login.html"
                     && query.text("downloaderRedirectUrl") == kCallback && query.text("strataClient") == kClientVersion
                     && query.text("view") == "login" && !nonce.isEmpty() && isBase64Url(challenge, 43);
  if (!right) return std::nullopt;
  const QString login = randomText();
  logins.with([&](Logins &all) { all.insert(login, {.nonce = nonce, .codeChallenge = challenge}); });
  return login;
}

bool AccountApi::isStarted(const QString &login) const {
  return logins.with([&](const Logins &all) { return all.contains(login) && !all.value(login).signedIn; });
}

std::optional<QByteArray> AccountApi::finishLogin(const QString &login, const QDateTime &now) {
  const auto nonce = logins.with([&](Logins &all) -> std::optional<QString> {
    const auto found = all.find(login);
    if (found == all.end() || found->signedIn) return std::nullopt;
    found->signedIn = true;
    return found->nonce;
  });
  if (!nonce) return std::nullopt;
  saveLinks();
  return QByteArray(kCallback) + "?idToken=" + token(library.userId(), *nonce, login, now, faults.take(kLoginFaults));
}

QByteArray AccountApi::loginToken(const QString &nonce, const QDateTime &now) {
  return token(library.userId(), nonce, randomText(), now, faults.take(kLoginFaults));
}

LinkedToken AccountApi::issue(bool linked, const QDateTime &now) {
  LinkedToken issued{.nonce = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper(),
                     .codeVerifier = QString::fromLatin1(base64Url(randomBytes(64)))};
  const QString login = randomText();
  logins.with([&](Logins &all) {
    all.insert(login, {.nonce = issued.nonce, .codeChallenge = challengeOf(issued.codeVerifier), .signedIn = true});
  });
  issued.idToken = QString::fromLatin1(token(library.userId(), issued.nonce, login, now, std::nullopt));
  if (linked) issued.tokenCode = firstTokenCode(login, issued.codeVerifier).value_or(QString());
  return issued;
}

QByteArray AccountApi::token(const QString &subject, const QString &nonce, const QString &login, const QDateTime &now,
                             std::optional<TokenFault> fault) const {
  return tokens.issue(
      {.subject = subject, .nonce = nonce, .session = login, .expiry = now.addSecs(lifetime.load().count())}, fault);
}

std::optional<QString> AccountApi::firstTokenCode(const QString &login, const QString &verifier) {
  const QString code = randomText();
  const bool exchanged = logins.with([&](Logins &all) {
    const auto found = all.find(login);
    if (found == all.end() || !found->signedIn || found->codeChallenge != challengeOf(verifier)) return false;
    found->codeChallenge.clear();
    found->tokenCode = code;
    return true;
  });
  if (!exchanged) return std::nullopt;
  saveLinks();
  return code;
}

std::optional<QString> AccountApi::renewTokenCode(const QString &login, const QString &shownCode) {
  const QString code = randomText();
  const bool renewed = logins.with([&](Logins &all) {
    const auto found = all.find(login);
    if (found == all.end() || shownCode.isEmpty()) return false;
    if (shownCode != found->tokenCode && shownCode != found->previousTokenCode) return false;
    found->previousTokenCode = shownCode;
    found->tokenCode = code;
    return true;
  });
  if (!renewed) return std::nullopt;
  saveLinks();
  return code;
}

void AccountApi::loadLinks() {
  QFile file(settings.linksFile);
  if (settings.linksFile.isEmpty() || !file.open(QFile::ReadOnly)) return;
  const QJsonObject kept = QJsonDocument::fromJson(file.readAll()).object();
  logins.with([&](Logins &all) {
    for (auto it = kept.begin(); it != kept.end(); ++it) {
      const QJsonObject link = it->toObject();
      all.insert(it.key(), {.nonce = link[u"nonce"_s].toString(),
                            .codeChallenge = link[u"codeChallenge"_s].toString(),
                            .signedIn = true,
                            .tokenCode = link[u"tokenCode"_s].toString(),
                            .previousTokenCode = link[u"previousTokenCode"_s].toString()});
    }
  });
}

void AccountApi::saveLinks() {
  if (settings.linksFile.isEmpty()) return;
  const std::lock_guard oneWriter(saving);
  const QJsonObject links = logins.with([](const Logins &all) {
    QJsonObject result;
    for (auto it = all.begin(); it != all.end(); ++it)
      if (it->signedIn)
        result.insert(it.key(), QJsonObject{{u"nonce"_s, it->nonce},
                                            {u"codeChallenge"_s, it->codeChallenge},
                                            {u"tokenCode"_s, it->tokenCode},
                                            {u"previousTokenCode"_s, it->previousTokenCode}});
    return result;
  });
  QSaveFile file(settings.linksFile);
  const QByteArray document = compactJson(links);
  if (!file.open(QFile::WriteOnly) || !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)
      || file.write(document) != document.size() || !file.commit())
    throw std::runtime_error("cannot keep the links");
}

} // namespace sandbox
