#include "tests/sandbox/Curl.h"

#include <stdexcept>

using namespace Qt::StringLiterals;

CurlAnswer curl(const sandbox::Service &service, const QString &url, const QStringList &options) {
  return finished(*startCurl(service, url, options));
}

std::unique_ptr<QProcess> startCurl(const sandbox::Service &service, const QString &url, const QStringList &options) {
  auto process = std::make_unique<QProcess>();
  process->start(u"curl"_s,
                 QStringList{u"-q"_s, u"-sS"_s, u"--noproxy"_s, u"*"_s, u"--max-time"_s, u"60"_s, u"--cacert"_s,
                             service.trustAnchorsFile(), u"-w"_s, u"\n%{http_code} %header{location}"_s}
                     + options + QStringList{url});
  if (!process->waitForStarted()) throw std::runtime_error("the curl program cannot be started");
  return process;
}

CurlAnswer finished(QProcess &process) {
  if (!process.waitForFinished(90'000)) throw std::runtime_error("the curl program does not end");
  const QByteArray output = process.readAllStandardOutput();
  const auto mark = output.lastIndexOf('\n');
  const QByteArrayList line = output.mid(mark + 1).split(' ');
  return {.exitCode = process.exitCode(),
          .status = line.value(0).toInt(),
          .redirect = QString::fromLatin1(line.value(1)),
          .body = output.left(mark)};
}

QString urlOf(const sandbox::Service &service, const QString &name, const QString &target) {
  return u"https://%1.localhost:%2%3"_s.arg(name).arg(service.port()).arg(target);
}

QStringList posting(const QByteArray &json) {
  return {u"-H"_s, u"Content-Type: application/json"_s, u"--data-binary"_s, QString::fromUtf8(json)};
}
