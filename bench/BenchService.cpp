// The service with many like objects, in a process of its own so that its work does not count as the agent's.
// usage: bench_service FOLDER COUNT SIZE
// Leaves in FOLDER: ca.pem, defaults.conf (user defaults), token (ID token), tokenCode, urls.conf (the presigned
// requests of a pass, for curl). Prints "ready" and runs until its standard input closes.

#include "sandbox/Library.h"
#include "sandbox/Service.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTextStream>

#include <cstdio>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

void writeFile(const QString &path, const QString &text) {
  QFile file(path);
  if (!file.open(QFile::WriteOnly) || file.write(text.toUtf8()) < 0) throw std::runtime_error("cannot write a file");
}

QString defaultsText(const sandbox::Service &service) {
  QString text = u"[General]\n"_s;
  const auto defaults = service.userDefaults();
  for (auto it = defaults.begin(); it != defaults.end(); ++it)
    text += it.key() + u'=' + it.value() + u'\n';
  return text;
}

/// What the agent asks for per object: its metadata, then the object itself.
QString curlConfig(sandbox::Service &service, const sandbox::TemporaryCredential &credential, const QString &folder) {
  const auto bucket = sandbox::contentBucket();
  QString text =
      u"silent\nfail\ncacert = \"%1\"\nheader = \"x-amz-security-token: %2\"\nheader = \"Connection: close\"\n"_s.arg(
          service.trustAnchorsFile(), credential.sessionToken);
  int number = 0;
  QByteArray after;
  for (;;) {
    const auto page = service.library().list(bucket, {.prefix = "images/original/", .after = after});
    for (const auto &object : page.objects) {
      const QString key = QString::fromUtf8(object.key);
      for (const QString &wanted : {sandbox::metadataKey(key, false), key}) {
        text += u"url = \""_s + service.presignedUrl(credential, bucket, wanted) + u"\"\noutput = \""_s + folder
                + u"/curl/"_s + QString::number(number++) + u"\"\n"_s;
      }
    }
    if (!page.truncated) return text;
    after = page.resumeAfter;
  }
}

} // namespace

int main(int argc, char **argv) {
  QCoreApplication application(argc, argv);
  if (argc != 4) {
    std::fputs("usage: bench_service FOLDER COUNT SIZE\n", stderr);
    return 2;
  }
  const QString folder = QString::fromLocal8Bit(argv[1]);
  QDir().mkpath(folder + u"/curl"_s);
  sandbox::Service service({.folder = folder});
  service.library().addMany({.count = QByteArray(argv[2]).toInt(),
                             .size = QByteArray(argv[3]).toLongLong(),
                             .deviceId = u"dev1"_s,
                             .firstDate = u"20240501"_s});
  service.library().setSettingsObject("{\"applicationAliasIds\":[],\"isEnableDownload10GStorage\":true}");

  const auto token = service.issueLinkedToken();
  writeFile(folder + u"/token"_s, token.idToken);
  writeFile(folder + u"/tokenCode"_s, token.tokenCode);
  writeFile(folder + u"/defaults.conf"_s, defaultsText(service));
  if (QByteArray(argv[2]).toInt() <= 10'000) {
    writeFile(folder + u"/urls.conf"_s, curlConfig(service, service.issueCredential(), folder));
  }
  std::puts("ready");
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
  return 0;
}
