#include "sandbox/SignatureCheck.h"

#include "sandbox/Tokens.h"

#include <QCryptographicHash>
#include <QMessageAuthenticationCode>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace sandbox {

namespace {

constexpr qint64 kMostSkewSeconds = 15 * 60;

const Refusal kUnsigned{403, "AccessDenied", "Access Denied"};
const Refusal kUnknownKey{403, "InvalidAccessKeyId",
                          "The AWS Access Key Id you provided does not exist in our records."};
const Refusal kWrongToken{400, "InvalidToken", "The provided token is malformed or otherwise invalid."};
const Refusal kExpiredToken{400, "ExpiredToken", "The provided token has expired."};
const Refusal kRequestExpired{403, "AccessDenied", "Request has expired"};
const Refusal kMismatch{403, "SignatureDoesNotMatch",
                        "The request signature we calculated does not match the signature you provided. Check your "
                        "key and signing method."};
const Refusal kSkewed{403, "RequestTimeTooSkewed",
                      "The difference between the request time and the current time is too large."};
const Refusal kHeadersUnsigned{403, "AccessDenied", "There were headers present in the request which were not signed"};
const Refusal kMissingHash{400, "InvalidRequest", "Missing required header for this request: x-amz-content-sha256"};
const Refusal kWrongHash{400, "XAmzContentSHA256Mismatch",
                         "The provided 'x-amz-content-sha256' header does not match what was computed."};

Refusal malformed(const QByteArray &message) {
  return {400, "AuthorizationHeaderMalformed", "The authorization header is malformed; " + message};
}

Refusal wrongRegion(const QByteArray &signedFor, const QByteArray &region) {
  Refusal refusal = malformed("the region '" + signedFor + "' is wrong; expecting '" + region + '\'');
  refusal.region = region;
  return refusal;
}

SignatureVerdict refused(const Refusal &refusal) {
  return {.refusal = refusal};
}

QByteArray hmacSha256(const QByteArray &key, const QByteArray &message) {
  return QMessageAuthenticationCode::hash(message, key, QCryptographicHash::Sha256);
}

/// Percent-encodes everything but the characters that RFC 3986 leaves alone.
QByteArray uriEncoded(const QByteArray &text, const QByteArray &alsoPlain = {}) {
  return text.toPercentEncoding(alsoPlain);
}

QByteArray canonicalQuery(const QueryParameters &query) {
  QByteArrayList pairs;
  for (const auto &[name, value] : query.all())
    pairs.append(uriEncoded(name) + '=' + uriEncoded(value));
  std::sort(pairs.begin(), pairs.end());
  return pairs.join('&');
}

/// The pieces of "AWS4-HMAC-SHA256 Credential=…, SignedHeaders=…, Signature=…".
struct Authorization {
  QByteArray accessKeyId{};
  QByteArray date{};
  QByteArray region{};
  QByteArray service{};
  QByteArrayList signedHeaders{};
  QByteArray signature{};

  [[nodiscard]] QByteArray scope() const { return date + '/' + region + '/' + service + "/aws4_request"; }
};

std::optional<Authorization> parsedAuthorization(const QByteArray &header) {
  const QByteArray algorithm = "AWS4-HMAC-SHA256 ";
  if (!header.startsWith(algorithm)) return std::nullopt;
  HeaderList fields;
  for (const QByteArray &field : header.mid(algorithm.size()).split(',')) {
    const auto equals = field.indexOf('=');
    if (equals < 0) return std::nullopt;
    fields.append({field.left(equals).trimmed(), field.mid(equals + 1).trimmed()});
  }
  const QByteArrayList scope = headerValue(fields, "Credential").split('/');
  if (scope.size() != 5 || scope[4] != "aws4_request") return std::nullopt;
  return Authorization{.accessKeyId = scope[0],
                       .date = scope[1],
                       .region = scope[2],
                       .service = scope[3],
                       .signedHeaders = headerValue(fields, "SignedHeaders").split(';'),
                       .signature = headerValue(fields, "Signature")};
}

QByteArray canonicalHeaders(const ReceivedRequest &request, const QByteArrayList &names) {
  QByteArray block;
  for (const QByteArray &name : names)
    block += name + ':' + request.header(name).simplified() + '\n';
  return block;
}

/// The host and everything of the service's own must be under the signature, in order and small letters.
bool signsWhatItMust(const ReceivedRequest &request, const QByteArrayList &signedHeaders) {
  if (!signedHeaders.contains("host") || !std::is_sorted(signedHeaders.begin(), signedHeaders.end())) return false;
  const auto isThere = [&](const QByteArray &name) {
    return name == name.toLower() && !request.header(name).isEmpty();
  };
  if (!std::all_of(signedHeaders.begin(), signedHeaders.end(), isThere)) return false;
  return std::all_of(request.headers.begin(), request.headers.end(), [&](const auto &header) {
    const QByteArray name = header.first.toLower();
    return !name.startsWith("x-amz-") || signedHeaders.contains(name);
  });
}

QByteArray signatureV4(const ReceivedRequest &request, const Authorization &authorization, const QByteArray &uri,
                       const QByteArray &payloadHash, const QByteArray &secret) {
  const QByteArray canonical = QByteArrayList{request.method,
                                              uri,
                                              canonicalQuery(request.query()),
                                              canonicalHeaders(request, authorization.signedHeaders),
                                              authorization.signedHeaders.join(';'),
                                              payloadHash}
                                   .join('\n');
  const QByteArray stringToSign =
      QByteArrayList{"AWS4-HMAC-SHA256", request.header("x-amz-date"), authorization.scope(), sha256(canonical).toHex()}
          .join('\n');
  QByteArray key = "AWS4" + secret;
  for (const QByteArray &step :
       {authorization.date, authorization.region, authorization.service, QByteArray("aws4_request")})
    key = hmacSha256(key, step);
  return hmacSha256(key, stringToSign).toHex();
}

/// Whether the path travels as it is signed: percent-encoded once, with nothing more or less left plain.
bool hasSignablePath(const ReceivedRequest &request) {
  return request.rawPath() == uriEncoded(request.path(), "/");
}

/// What a presigned GET signs: "/BUCKET/KEY", wherever the bucket stands in the URL.
QByteArray presignedResource(const ReceivedRequest &request, const QByteArray &bucket) {
  const QByteArray path = namesBucketInPath(request) ? request.rawPath() : '/' + bucket + request.rawPath();
  return path + (request.query().contains("tagging") ? "?tagging" : "");
}

std::optional<Refusal> datingFlaw(const ReceivedRequest &request, const Authorization &authorization,
                                  const QDateTime &now) {
  const QByteArray stamp = request.header("x-amz-date");
  QDateTime signedAt = QDateTime::fromString(QString::fromLatin1(stamp), u"yyyyMMdd'T'HHmmss'Z'"_s);
  signedAt.setTimeSpec(Qt::UTC);
  if (!signedAt.isValid()) return Refusal{403, "AccessDenied", "AWS authentication requires a valid Date header"};
  if (authorization.date != stamp.left(8)) return malformed("Invalid credential date.");
  if (qAbs(signedAt.secsTo(now)) > kMostSkewSeconds) return kSkewed;
  return std::nullopt;
}

std::optional<Refusal> tokenFlaw(const QByteArray &sessionToken, const TemporaryCredential &credential) {
  if (sessionToken.isEmpty()) return kUnknownKey;
  if (sessionToken != credential.sessionToken.toLatin1()) return kWrongToken;
  return std::nullopt;
}

/// Whether the string to sign below is all that a client has to sign of @p request: what else belongs into it makes
/// another string, which these clients have no use for.
bool signsAllThatItMust(const ReceivedRequest &request, const QueryParameters &query) {
  const auto isOdd = [](const auto &header) {
    const QByteArray name = header.first.toLower();
    return name == "content-md5" || name == "content-type"
           || (name.startsWith("x-amz-") && name != "x-amz-security-token");
  };
  static constexpr std::array kKnown{
      "AWSAccessKeyId", "Expires",     "Signature", "x-amz-security-token", "list-type", "prefix",
      "delimiter",      "start-after", "max-keys",  "continuation-token",   "tagging"};
  const auto isKnown = [](const auto &parameter) {
    return std::find(kKnown.begin(), kKnown.end(), parameter.first) != kKnown.end();
  };
  return std::none_of(request.headers.begin(), request.headers.end(), isOdd)
         && std::all_of(query.all().begin(), query.all().end(), isKnown);
}

} // namespace

QByteArray presignedSignature(const QByteArray &stringToSign, const QByteArray &secretAccessKey) {
  return QMessageAuthenticationCode::hash(stringToSign, secretAccessKey, QCryptographicHash::Sha1).toBase64();
}

QByteArray presignedStringToSign(const QByteArray &expires, const QByteArray &sessionToken,
                                 const QByteArray &resource) {
  return "GET\n\n\n" + expires + "\nx-amz-security-token:" + sessionToken + '\n' + resource;
}

bool isPresigned(const ReceivedRequest &request) {
  return request.query().contains("Signature");
}

SignatureVerdict checkPresigned(const ReceivedRequest &request, const QByteArray &bucket,
                                const Credentials &credentials, const QDateTime &now) {
  const QueryParameters query = request.query();
  const auto known = credentials.find(QString::fromLatin1(query.text("AWSAccessKeyId")));
  if (!known) return refused(kUnknownKey);
  const QByteArray header = request.header("x-amz-security-token");
  const QByteArray sessionToken = header.isEmpty() ? query.text("x-amz-security-token") : header;
  if (const auto flaw = tokenFlaw(sessionToken, known->credential)) return refused(*flaw);
  const QByteArray expires = query.text("Expires");
  if (now.toSecsSinceEpoch() > expires.toLongLong()) return refused(kRequestExpired);
  const QByteArray secret = known->credential.secretAccessKey.toLatin1();
  const QByteArray signature =
      presignedSignature(presignedStringToSign(expires, sessionToken, presignedResource(request, bucket)), secret);
  const bool isWhole = hasSignablePath(request) && signsAllThatItMust(request, query) && request.method == "GET";
  if (!isWhole || signature != query.text("Signature")) return refused(kMismatch);
  if (now.toSecsSinceEpoch() > known->credential.expiration) return refused(kExpiredToken);
  return {.userId = known->userId};
}

SignatureVerdict checkSignatureV4(const ReceivedRequest &request, const QByteArray &region, const QByteArray &service,
                                  const Credentials &credentials, const QDateTime &now) {
  if (request.header("Authorization").isEmpty()) return refused(kUnsigned);
  const auto authorization = parsedAuthorization(request.header("Authorization"));
  if (!authorization) return refused(malformed("its parts cannot be told apart."));
  if (authorization->region != region) return refused(wrongRegion(authorization->region, region));
  if (authorization->service != service) return refused(malformed("expecting service '" + service + "'"));
  const auto known = credentials.find(QString::fromLatin1(authorization->accessKeyId));
  if (!known) return refused(kUnknownKey);
  if (const auto flaw = tokenFlaw(request.header("x-amz-security-token"), known->credential)) return refused(*flaw);
  if (const auto flaw = datingFlaw(request, *authorization, now)) return refused(*flaw);
  if (!signsWhatItMust(request, authorization->signedHeaders)) return refused(kHeadersUnsigned);

  const QByteArray bodyHash = sha256(request.body).toHex();
  const QByteArray saidHash = request.header("x-amz-content-sha256");
  if (service == "s3" && saidHash.isEmpty()) return refused(kMissingHash);
  const QByteArray payloadHash = service == "s3" ? saidHash : bodyHash;
  if (service == "s3" && saidHash != bodyHash && saidHash != "UNSIGNED-PAYLOAD") return refused(kWrongHash);
  const QByteArray secret = known->credential.secretAccessKey.toLatin1();
  if (!hasSignablePath(request)
      || signatureV4(request, *authorization, request.rawPath(), payloadHash, secret) != authorization->signature)
    return refused(kMismatch);
  if (now.toSecsSinceEpoch() > known->credential.expiration) return refused(kExpiredToken);
  return {.userId = known->userId};
}

} // namespace sandbox
