#pragma once

#include "sandbox/Service.h"

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <memory>

/// What the curl program made of a request.
struct CurlAnswer {
  int exitCode = -1;
  int status = 0;
  QString redirect{}; ///< where a 302 points
  QByteArray body{};
};

/// Asks with the curl program, which trusts the service's authority and nothing else.
[[nodiscard]] CurlAnswer curl(const sandbox::Service &service, const QString &url, const QStringList &options = {});

/// The same in two steps, for requests that something happens to in between.
[[nodiscard]] std::unique_ptr<QProcess> startCurl(const sandbox::Service &service, const QString &url,
                                                  const QStringList &options = {});
[[nodiscard]] CurlAnswer finished(QProcess &process);

/// "https://NAME.localhost:PORT" + @p target.
[[nodiscard]] QString urlOf(const sandbox::Service &service, const QString &name, const QString &target);
/// Options that post a JSON document.
[[nodiscard]] QStringList posting(const QByteArray &json);
