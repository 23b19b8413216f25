#include "sandbox/Service.h"

#include "sandbox/AccountApi.h"
#include "sandbox/Certificates.h"
#include "sandbox/Credentials.h"
#include "sandbox/DistantLine.h"
#include "sandbox/Faults.h"
#include "sandbox/HttpServer.h"
#include "sandbox/Library.h"
#include "sandbox/Locked.h"
#include "sandbox/LogsApi.h"
#include "sandbox/RequestLog.h"
#include "sandbox/S3Api.h"
#include "sandbox/SignatureCheck.h"
#include "sandbox/SiteApi.h"
#include "sandbox/StsApi.h"
#include "sandbox/Tokens.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QUrl>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <stdexcept>
#include <vector>

using namespace Qt::StringLiterals;

namespace sandbox {

namespace {

// Each host by name: clients refuse a wildcard directly below a top-level name.
QList<QByteArray> namesBelow(const QByteArray &domain) {
  QList<QByteArray> names{"DNS:" + domain, "IP:127.0.0.1"};
  for (const char *const name : {"api", "www", "idp", "sts", "logs", "s3", "*.s3"})
    names << QByteArray("DNS:") + name + '.' + domain;
  return names;
}

void writePrivately(const QString &fileName, const QByteArray &content) {
  QSaveFile file(fileName);
  if (!file.open(QFile::WriteOnly) || !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)
      || file.write(content) != content.size() || !file.commit())
    throw std::runtime_error("cannot write " + fileName.toStdString());
}

QByteArray contentOf(const QString &fileName) {
  QFile file(fileName);
  return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

/// The authority kept in @p folder, made when there is none yet.
CertifiedKey authorityIn(const QDir &folder) {
  const CertifiedKey kept{.certificate = contentOf(folder.filePath(u"ca.pem"_s)),
                          .key = contentOf(folder.filePath(u"ca.key.pem"_s))};
  if (!kept.certificate.isEmpty() && !kept.key.isEmpty()) return kept;
  const CertifiedKey made = makeAuthority("Sandbox authority for this computer");
  writePrivately(folder.filePath(u"ca.pem"_s), made.certificate);
  writePrivately(folder.filePath(u"ca.key.pem"_s), made.key);
  return made;
}

QString madeFolder(const QString &folder) {
  if (folder.isEmpty() || !QDir().mkpath(folder)) throw std::runtime_error("no folder to keep things in");
  return folder;
}

/// What @p make makes on the port asked for, or else on the one used here before, or else on any.
/// @param make  takes a port; throws std::runtime_error when that cannot be had.
template <class Make> auto onPublicPort(const QDir &folder, quint16 wanted, Make make) {
  const QString portFile = folder.filePath(u"port"_s);
  const quint16 before = wanted == 0 ? contentOf(portFile).toUShort() : wanted;
  decltype(make(before)) made;
  try {
    made = make(before);
  } catch (const std::runtime_error &) {
    if (wanted != 0 || before == 0) throw;
    made = make(0);
  }
  writePrivately(portFile, QByteArray::number(made->port()));
  return made;
}

/// What is asked for, by host and path.
Endpoint endpointOf(const ReceivedRequest &request) {
  if (const auto address = storageAddress(request)) return storageEndpoint(request, *address);
  static const QHash<QByteArray, Endpoint> kPaths{{"api/configuration", Endpoint::Configuration},
                                                  {"api/getLogin", Endpoint::GetLogin},
                                                  {"api/logout", Endpoint::Logout},
                                                  {"api/getTokenCode", Endpoint::TokenCode},
                                                  {"api/refreshToken", Endpoint::RefreshToken},
                                                  {"www/st/downloader-login.html", Endpoint::LoginPage},
                                                  {"www/st/sign-in", Endpoint::SignIn},
                                                  {"www/st/downloader-logout.html", Endpoint::LogoutPage},
                                                  {"idp/.well-known/openid-configuration", Endpoint::Discovery},
                                                  {"idp/keys", Endpoint::Keys},
                                                  {"sts/", Endpoint::Sts},
                                                  {"logs/", Endpoint::LogEvents}};
  return kPaths.value(textBefore(request.host(), '.') + request.path(), Endpoint::Other);
}

ServedAnswer plain(int status, const QByteArray &text) {
  return {.status = status, .contentType = "text/plain", .body = text + '\n'};
}

} // namespace

class Service::Private {
public:
  explicit Private(const ServiceOptions &options);

  [[nodiscard]] QString host(const QString &name, quint16 towards) const {
    return u"%1.%2:%3"_s.arg(name, domain).arg(towards);
  }
  [[nodiscard]] quint16 port() const { return line ? line->port() : server->port(); }
  [[nodiscard]] QString url(const QString &name) const { return u"https://"_s + host(name, port()); }
  [[nodiscard]] QString filePath(const QString &name) const { return QDir(folder).filePath(name); }
  [[nodiscard]] CertifiedKey badCertificate(BadCertificate kind) const;
  void open(const ServiceOptions &options);
  [[nodiscard]] ServedAnswer answer(const ReceivedRequest &request);
  [[nodiscard]] QDateTime now() const { return QDateTime::currentDateTimeUtc().addSecs(clockAhead.load().count()); }

  std::atomic<std::chrono::seconds> clockAhead = std::chrono::seconds(0);
  const std::unique_ptr<QTemporaryDir> temporary; ///< only when no folder was given
  const QString folder;
  const QString domain;
  const QList<QByteArray> names = namesBelow(domain.toLatin1()); ///< for its certificate
  const CertifiedKey authority;
  const QString clientId = u"sandbox-client"_s;

  Library library;
  Faults faults;
  RequestLog requests;
  Locked<QHash<quint64, bool>> storageConnections; ///< by number: whether it resumed a session
  Credentials credentials;
  LogsApi logs;
  S3Api storage;
  // Made once the port is known, before the server starts:
  std::unique_ptr<Tokens> tokens;
  std::unique_ptr<AccountApi> account;
  std::unique_ptr<StsApi> sts;
  std::unique_ptr<SiteApi> site;

  std::unique_ptr<DistantLine> line; ///< only at a distance
  std::mutex opening;
  // Last, so that no handler runs while the rest goes away.
  std::vector<std::unique_ptr<HttpServer>> badlyCertified; ///< behind `opening`
  std::unique_ptr<HttpServer> ipv6Server;                  ///< only where it is wanted
  std::unique_ptr<HttpServer> server;

private:
  [[nodiscard]] ServedAnswer rightAnswer(const ReceivedRequest &request, Endpoint endpoint);
};

Service::Private::Private(const ServiceOptions &options)
    : temporary(options.folder.isEmpty() ? std::make_unique<QTemporaryDir>() : nullptr),
      folder(madeFolder(temporary ? temporary->path() : options.folder)), domain(options.domain),
      authority(authorityIn(QDir(folder))), logs(credentials, options.region),
      storage(library, credentials, options.region) {
}

/// Gets the ports.
void Service::Private::open(const ServiceOptions &options) {
  const auto serverAt = [&](const HttpServer::Place &place) {
    return std::make_unique<HttpServer>(
        makeServerCertificate(authority, names), place,
        [this](const ReceivedRequest &request) { return answer(request); }, options.requestsPerConnection);
  };
  const auto serverOn = [&](quint16 port) { return serverAt({port}); };
  const Distance distance{.roundTrip = options.roundTrip, .bytesPerSecond = options.bytesPerSecond};
  if (!distance.isSome()) {
    server = onPublicPort(QDir(folder), options.port, serverOn);
    if (options.onIPv6) ipv6Server = serverAt({server->port(), "::1"});
    return;
  }
  line = onPublicPort(QDir(folder), options.port,
                      [&](quint16 port) { return std::make_unique<DistantLine>(port, distance); });
  server = serverOn(0);
}

ServedAnswer Service::Private::answer(const ReceivedRequest &request) {
  const Endpoint endpoint = endpointOf(request);
  if (storageAddress(request))
    storageConnections.with([&](auto &seen) { seen.insert(request.connection, request.isResumed); });
  const quint64 number = requests.arrived({.endpoint = endpoint,
                                           .method = request.method,
                                           .host = QString::fromLatin1(request.host()),
                                           .target = request.target,
                                           .headers = request.headers,
                                           .body = request.body});
  const auto fault = faults.take(endpoint, request);
  ServedAnswer answer;
  if (!fault || !replacesService(fault->kind)) answer = rightAnswer(request, endpoint);
  if (fault) answer = spoiled(*fault, endpoint, std::move(answer));
  answer.headers.append({"Date", QLocale::c().toString(now(), u"ddd, dd MMM yyyy hh:mm:ss 'GMT'"_s).toLatin1()});
  if (answer.delivery != Delivery::Dropped && answer.delivery != Delivery::Held)
    requests.answered(number, answer.status);
  return answer;
}

ServedAnswer Service::Private::rightAnswer(const ReceivedRequest &request, Endpoint endpoint) {
  const QDateTime now = this->now();
  switch (endpoint) {
  case Endpoint::Configuration:
    return account->configuration();
  case Endpoint::GetLogin:
    return account->getLogin(request);
  case Endpoint::Logout:
    return account->logout(request);
  case Endpoint::TokenCode:
    return request.method == "POST" ? account->exchangeVerifier(request, now) : plain(405, "POST only");
  case Endpoint::RefreshToken:
    return request.method == "POST" ? account->refresh(request, now) : plain(405, "POST only");
  case Endpoint::Discovery:
    return jsonAnswer(compactJson({{u"issuer"_s, url(u"idp"_s)}, {u"jwks_uri"_s, url(u"idp"_s) + u"/keys"_s}}));
  case Endpoint::Keys:
    return jsonAnswer(tokens->keySet());
  case Endpoint::Sts:
    return sts->answer(request, now);
  case Endpoint::LogEvents:
    return logs.answer(request, now);
  case Endpoint::ListDevices:
  case Endpoint::SettingsObject:
  case Endpoint::ListItems:
  case Endpoint::Metadata:
  case Endpoint::ObjectGet:
  case Endpoint::ObjectHead:
  case Endpoint::ObjectTagging:
  case Endpoint::PreviewList:
  case Endpoint::PreviewObject:
    return storage.answer(request, now);
  case Endpoint::LoginPage:
  case Endpoint::SignIn:
  case Endpoint::LogoutPage:
  case Endpoint::Other:
    return request.host().startsWith("www.") ? site->answer(request, now) : plain(404, "nothing here");
  }
  Q_UNREACHABLE();
}

CertifiedKey Service::Private::badCertificate(BadCertificate kind) const {
  switch (kind) {
  case BadCertificate::UnknownAuthority:
    return makeServerCertificate(makeAuthority("Somebody else"), names);
  case BadCertificate::WrongName:
    return makeServerCertificate(authority, {"DNS:elsewhere.localhost"});
  case BadCertificate::Expired: {
    const QDateTime now = QDateTime::currentDateTimeUtc();
    return makeServerCertificate(authority, names, {.from = now.addDays(-3), .until = now.addDays(-1)});
  }
  }
  Q_UNREACHABLE();
}

Service::Service(const ServiceOptions &options) : d(std::make_unique<Private>(options)) {
  d->open(options);
  const bool kept = d->temporary == nullptr;
  d->tokens = std::make_unique<Tokens>(kept ? d->filePath(u"token.key.pem"_s) : QString(), issuer(), d->clientId);
  d->account =
      std::make_unique<AccountApi>(*d->tokens, d->faults, d->library,
                                   AccountApi::Settings{.clientId = d->clientId,
                                                        .siteUrl = d->url(u"www"_s),
                                                        .linksFile = kept ? d->filePath(u"links.json"_s) : QString()});
  d->sts = std::make_unique<StsApi>(*d->tokens, d->credentials);
  d->site = std::make_unique<SiteApi>(*d->account, d->requests, d->logs);
  d->server->start();
  if (d->ipv6Server) d->ipv6Server->start();
  if (d->line) d->line->start(d->server->port());
}

Service::~Service() = default;

quint16 Service::port() const {
  return d->port();
}

QString Service::trustAnchorsFile() const {
  return d->filePath(u"ca.pem"_s);
}

QString Service::issuer() const {
  return d->url(u"idp"_s);
}

QString Service::clientId() const {
  return d->clientId;
}

QHash<QString, QString> Service::userDefaults() const {
  return userDefaults(port());
}

QHash<QString, QString> Service::userDefaults(quint16 towards) const {
  return {{u"strataHostName"_s, d->host(u"api"_s, towards)},  {u"strataSiteTopHostName"_s, d->host(u"www"_s, towards)},
          {u"idTokenHostName"_s, d->host(u"idp"_s, towards)}, {u"awsS3AccelerateHostName"_s, d->host(u"s3"_s, towards)},
          {u"awsStsHostName"_s, d->host(u"sts"_s, towards)},  {u"awsLogsHostName"_s, d->host(u"logs"_s, towards)},
          {u"trustedCertificatesFile"_s, trustAnchorsFile()}};
}

quint16 Service::badlyCertifiedPort(BadCertificate kind) {
  auto another = std::make_unique<HttpServer>(
      d->badCertificate(kind), HttpServer::Place(),
      [this](const ReceivedRequest &request) { return d->answer(request); },
      /*requestsPerConnection=*/1);
  another->start();
  const std::lock_guard lock(d->opening);
  return d->badlyCertified.emplace_back(std::move(another))->port();
}

Library &Service::library() {
  return d->library;
}

void Service::order(Endpoint endpoint, const Fault &fault) {
  d->faults.order(endpoint, fault);
}

void Service::orderAt(int number, const Fault &fault) {
  d->faults.orderAt(number, fault);
}

void Service::setTokenFault(TokenFault fault, int times) {
  d->faults.order(fault, times);
}

void Service::clearFaults() {
  d->faults.clear();
  d->server->releaseWaiting();
  const std::lock_guard lock(d->opening);
  for (const auto &each : d->badlyCertified)
    each->releaseWaiting();
}

void Service::setIdTokenLifetime(std::chrono::seconds lifetime) {
  d->account->setTokenLifetime(lifetime);
}

void Service::setCredentialLifetime(std::chrono::seconds lifetime) {
  d->sts->setLifetime(lifetime);
}

void Service::setClockAhead(std::chrono::seconds ahead) {
  d->clockAhead = ahead;
}

void Service::setListPageSize(int keys) {
  d->storage.setPageSize(keys);
}

void Service::revokeCredentials() {
  d->credentials.revokeAll();
}

int Service::requestCount(Endpoint endpoint) const {
  return d->requests.count(endpoint);
}

void Service::resetRequestCounts() {
  d->requests.reset();
  d->storageConnections.with([](auto &seen) { seen.clear(); });
}

QList<RequestRecord> Service::requests() const {
  return d->requests.records();
}

bool Service::waitForRequests(Endpoint endpoint, int count, std::chrono::milliseconds timeout) const {
  return d->requests.waitFor(endpoint, count, timeout);
}

int Service::connectionCount() const {
  return d->storageConnections.with([](const auto &seen) { return int(seen.size()); });
}

int Service::resumedConnectionCount() const {
  return d->storageConnections.with([](const auto &seen) { return int(std::count(seen.begin(), seen.end(), true)); });
}

void Service::closeIdleConnections() {
  d->server->closeIdleConnections();
}

QList<LogEvent> Service::logEvents() const {
  return d->logs.events();
}

QString Service::signIn(const QString &getLoginUrl) {
  if (!getLoginUrl.startsWith(d->url(u"api"_s) + u"/getLogin?"_s)) return {};
  const ReceivedRequest request{.method = "GET", .target = getLoginUrl.section(u'/', 3).toUtf8()};
  const auto login = d->account->startLogin(request.query());
  if (!login) return {};
  const auto callback = d->account->finishLogin(*login, d->now());
  return QString::fromLatin1(callback.value_or(QByteArray()));
}

LinkedToken Service::issueLinkedToken() {
  return d->account->issue(/*linked:*/ true, d->now());
}

LinkedToken Service::issueUnlinkedToken() {
  return d->account->issue(/*linked:*/ false, d->now());
}

QString Service::issueIdToken(const QString &nonce) {
  return QString::fromLatin1(d->account->loginToken(nonce, d->now()));
}

TemporaryCredential Service::issueCredential() {
  return d->sts->issue(d->library.userId(), d->now());
}

QString Service::presignedUrl(const TemporaryCredential &credential, const QString &bucket, const QString &key) const {
  const QByteArray expires = QByteArray::number(credential.expiration);
  const QByteArray path = '/' + key.toUtf8().toPercentEncoding("/");
  const QByteArray stringToSign =
      presignedStringToSign(expires, credential.sessionToken.toLatin1(), '/' + bucket.toUtf8() + path);
  const QByteArray signature = presignedSignature(stringToSign, credential.secretAccessKey.toLatin1());
  return d->url(bucket + u".s3"_s)
         + QString::fromLatin1(path + "?AWSAccessKeyId=" + credential.accessKeyId.toLatin1() + "&Expires=" + expires
                               + "&Signature=" + signature.toPercentEncoding());
}

} // namespace sandbox
