#pragma once

#include "service/SignatureV4.h"
#include "tests/support/OddKeys.h"

/// Answers that other implementations gave.
inline QJsonObject signingVectors() {
  return QJsonDocument::fromJson(contentOf(QStringLiteral(KA_TEST_DATA "/signing.json"))).object();
}

/// Whose signatures a file of vectors holds.
inline KaCredential credentialOf(const QJsonObject &vectors) {
  const QJsonValue by = vectors[QLatin1StringView("credential")];
  return {by[QLatin1StringView("AccessKeyId")].toString(), by[QLatin1StringView("SecretAccessKey")].toString(),
          by[QLatin1StringView("SessionToken")].toString(), vectors[QLatin1StringView("expires")].toString()};
}

/// What a row of the signatures of version four signs.
inline SignatureV4Request signedBy(const QJsonObject &row) {
  QVariantMap headers = row.value(QLatin1StringView("headers")).toObject().toVariantMap();
  headers[QStringLiteral("host")] = row.value(QLatin1StringView("host")).toString();
  QString lines;
  for (auto header = headers.cbegin(); header != headers.cend(); ++header)
    lines += header.key() + u':' + header->toString() + u'\n';
  const QString path = row.value(QLatin1StringView("path")).toString();
  return {.timestamp = headers[QStringLiteral("x-amz-date")].toString(),
          .region = row.value(QLatin1StringView("region")).toString(),
          .service = row.value(QLatin1StringView("service")).toString(),
          .method = row.value(QLatin1StringView("method")).toString(),
          .canonicalUri = path.section(u'?', 0, 0),
          .canonicalQuery = path.section(u'?', 1),
          .canonicalHeaders = lines,
          .signedHeaders = QStringList(headers.keys()).join(u';'),
          .payload = row.value(QLatin1StringView("body")).toString()};
}

/// Such a row for the keys of odd-keys.json.
inline QJsonObject oddRow(const QJsonObject &vectors, const QString &path) {
  const QByteArray headers = R"({"x-amz-content-sha256":")"
                             + signature_v4::toHex(signature_v4::toSHA256hash({})).toLatin1()
                             + R"(","x-amz-date":"20240501T100000Z","x-amz-security-token":")"
                             + credentialOf(vectors).sessionToken.toLatin1() + R"("})";
  return {{QStringLiteral("region"), QStringLiteral("eu-west-1")},
          {QStringLiteral("service"), QStringLiteral("s3")},
          {QStringLiteral("method"), QStringLiteral("HEAD")},
          {QStringLiteral("host"), vectors[QLatin1StringView("host")]},
          {QStringLiteral("path"), path},
          {QStringLiteral("headers"), QJsonDocument::fromJson(headers).object()}};
}
