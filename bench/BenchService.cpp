// The service with many like objects, and a home whose agent is linked to it.
// usage: bench_service FOLDER COUNT SIZE [taken] [--distance MS] [--rate BYTES]
//   taken: all objects lie in one hour, and the home's bookkeeping knows every one of them
//   --distance, --rate: the round trip to the service, and what goes through each way per second
// Leaves in FOLDER: home (HOME, with .config, .local/share and .local/state), ca.pem, urls.conf (the presigned requests
// of a first run, for curl; not for more than 10,000 objects), peer.env (what other clients of the store need).
// Prints "ready". Then takes "ENDPOINT COUNT" per line: forgets what was asked before, prints "armed", and "reached"
// once that many requests for the endpoint have come. Runs until its standard input closes.

#include "bench/LinkedHome.h"

#include "engine/KaTargetStorage.h"
#include "sandbox/Library.h"
#include "sandbox/Service.h"
#include "settings/SettingsFiles.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <string>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int kMostUrls = 10'000;
constexpr auto kLongestRun = 600s;

void writeFile(const QString &path, const QString &text) {
  QFile file(path);
  if (!file.open(QFile::WriteOnly) || file.write(text.toUtf8()) < 0) throw std::runtime_error("cannot write a file");
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

QString peerEnvironment(sandbox::Service &service, const sandbox::TemporaryCredential &credential) {
  return u"AWS_ACCESS_KEY_ID='%1'\nAWS_SECRET_ACCESS_KEY='%2'\nAWS_SESSION_TOKEN='%3'\nTRUST_ANCHORS='%4'\n"
         u"AWS_DEFAULT_REGION=eu-west-1\nSTORE=https://localhost:%5\nBUCKET=%6\nACCOUNT=%7\n"_s
             .arg(credential.accessKeyId, credential.secretAccessKey, credential.sessionToken,
                  service.trustAnchorsFile())
             .arg(service.port())
             .arg(sandbox::contentBucket(), service.library().userId());
}

/// Records every image of the account as taken, in the hour that holds them all.
void recordAsTaken(sandbox::Service &service, int count) {
  KaDownloadData record;
  record.LastDateTime = u"20240501/00"_s;
  for (int number = 0; number < count; ++number)
    record.ContentIds << u"M%1"_s.arg(number, 8, 10, QChar(u'0'));
  const auto storage = KaTargetStorage::Days30;
  if (!saveBookkeeping(recordName(storage), uuidKey(service.library().userId(), storage), record))
    throw std::runtime_error("cannot record what was taken");
}

void fill(sandbox::Service &service, const QString &folder, const QStringList &arguments) {
  const int count = arguments[1].toInt();
  const bool isTaken = arguments.value(3) == u"taken";
  service.library().addMany({.count = count,
                             .size = arguments[2].toLongLong(),
                             .deviceId = u"dev1"_s,
                             .firstDate = u"20240501"_s,
                             .perHour = isTaken ? count : 1000});
  service.library().setSettingsObject("{\"applicationAliasIds\":[],\"isEnableDownload10GStorage\":true}");
  makeLinkedHome(folder + u"/home"_s, service);
  if (isTaken) recordAsTaken(service, count);
  const auto credential = service.issueCredential();
  writeFile(folder + u"/peer.env"_s, peerEnvironment(service, credential));
  if (count <= kMostUrls) writeFile(folder + u"/urls.conf"_s, curlConfig(service, credential, folder));
}

void say(const char *word) {
  std::puts(word);
  std::fflush(stdout);
}

sandbox::Endpoint endpointNamed(const QString &name) {
  const auto all = sandbox::allEndpoints();
  const auto found = std::find_if(all.begin(), all.end(),
                                  [&](const sandbox::Endpoint endpoint) { return endpointName(endpoint) == name; });
  if (found == all.end()) throw std::runtime_error("no such endpoint: " + name.toStdString());
  return *found;
}

void serve(sandbox::Service &service) {
  say("ready");
  for (std::string line; std::getline(std::cin, line);) {
    const QStringList words = QString::fromStdString(line).split(u' ');
    const auto endpoint = endpointNamed(words.first());
    service.resetRequestCounts();
    say("armed");
    if (!service.waitForRequests(endpoint, words.value(1).toInt(), kLongestRun))
      throw std::runtime_error("not reached: " + line);
    say("reached");
  }
}

} // namespace

int main(int argc, char **argv) {
  const QCoreApplication application(argc, argv);
  QCommandLineParser options;
  options.addOptions({{u"distance"_s, {}, u"milliseconds"_s, u"0"_s}, {u"rate"_s, {}, u"bytes per second"_s, u"0"_s}});
  options.process(application);
  const QStringList arguments = options.positionalArguments();
  if (arguments.size() < 3) {
    std::fputs("usage: bench_service FOLDER COUNT SIZE [taken] [--distance MS] [--rate BYTES]\n", stderr);
    return 2;
  }
  int status = 0;
  try {
    const QString folder = QDir(arguments[0]).absolutePath();
    QDir().mkpath(folder + u"/curl"_s);
    sandbox::Service service({.folder = folder,
                              .requestsPerConnection = 1000,
                              .roundTrip = std::chrono::milliseconds(options.value(u"distance"_s).toInt()),
                              .bytesPerSecond = options.value(u"rate"_s).toLongLong()});
    fill(service, folder, arguments);
    serve(service);
  } catch (const std::exception &error) {
    std::fprintf(stderr, "bench_service: %s\n", error.what());
    status = 1;
  }
  return status;
}
