// The service with many like objects, and homes whose agents are linked to it.
// usage: bench_service FOLDER COUNT SIZE [taken] [--distance MS] [--rate BYTES]
//   taken: all objects lie in one hour, and the bookkeeping of every home knows each of them
//   --distance, --rate: the round trip to the service, and what goes through each way per second
// Leaves in FOLDER: ca.pem, peer.env (what other clients of the store need). Prints "ready". Then takes, a line each:
//   home NAME [plain] [KEY=VALUE]...
//     Makes in FOLDER the home NAME (HOME, with .config, .local/share and .local/state) of an agent by default
//     settings, or by plain ones, with these user defaults besides; and NAME.conf, what it asks in its first run, for
//     curl (not for more than 10,000 objects), which leaves the pictures in NAME.curl. Prints "made".
//   ENDPOINT COUNT
//     Forgets what was asked before, prints "armed", and "reached" once that many requests for the endpoint have come.
// Runs until its standard input closes.

#include "bench/CurlRequests.h"
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
constexpr auto kLongestRun = 1800s;

struct Order {
  QString folder;
  int count = 0;
  qint64 size = 0;
  bool isTaken = false;
};

void writeFile(const QString &path, const QString &text) {
  QFile file(path);
  if (!file.open(QFile::WriteOnly) || file.write(text.toUtf8()) < 0) throw std::runtime_error("cannot write a file");
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

void fill(sandbox::Service &service, const Order &order) {
  service.library().addMany({.count = order.count,
                             .size = order.size,
                             .deviceId = u"dev1"_s,
                             .firstDate = u"20240501"_s,
                             .perHour = order.isTaken ? order.count : 1000});
  service.library().setSettingsObject("{\"applicationAliasIds\":[],\"isEnableDownload10GStorage\":true}");
  writeFile(order.folder + u"/peer.env"_s, peerEnvironment(service, service.issueCredential()));
}

/// @param words  the home's name, and what it is to be like.
void makeHome(sandbox::Service &service, const Order &order, QStringList words) {
  const QString home = order.folder + u'/' + words.takeFirst();
  const auto settings = words.removeAll(u"plain"_s) > 0 ? HomeSettings::Plain : HomeSettings::Default;
  QHash<QString, QString> besides;
  for (const QString &word : words)
    besides.insert(word.section(u'=', 0, 0), word.section(u'=', 1));
  makeLinkedHome(home, service, settings, besides);
  if (order.isTaken) recordAsTaken(service, order.count);
  if (order.count > kMostUrls) return;
  const auto issued = service.issueCredential();
  const KaCredential credential{issued.accessKeyId, issued.secretAccessKey, issued.sessionToken,
                                QString::number(issued.expiration)};
  const QString received = home + u".curl"_s;
  QDir().mkpath(received);
  writeFile(home + u".conf"_s, curlRequests(service, credential, settings, received));
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

void awaitRequests(sandbox::Service &service, const QString &name, int count) {
  const auto endpoint = endpointNamed(name);
  service.resetRequestCounts();
  say("armed");
  if (!service.waitForRequests(endpoint, count, kLongestRun))
    throw std::runtime_error("not reached: " + name.toStdString());
  say("reached");
}

void serve(sandbox::Service &service, const Order &order) {
  say("ready");
  for (std::string line; std::getline(std::cin, line);) {
    const QStringList words = QString::fromStdString(line).split(u' ', Qt::SkipEmptyParts);
    if (words.size() < 2) throw std::runtime_error("not understood: " + line);
    if (words.first() == u"home") {
      makeHome(service, order, words.mid(1));
      say("made");
    } else {
      awaitRequests(service, words[0], words[1].toInt());
    }
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
    const Order order = {.folder = QDir(arguments[0]).absolutePath(),
                         .count = arguments[1].toInt(),
                         .size = arguments[2].toLongLong(),
                         .isTaken = arguments.value(3) == u"taken"};
    QDir().mkpath(order.folder);
    sandbox::Service service({.folder = order.folder,
                              .requestsPerConnection = 1000,
                              .roundTrip = std::chrono::milliseconds(options.value(u"distance"_s).toInt()),
                              .bytesPerSecond = options.value(u"rate"_s).toLongLong()});
    fill(service, order);
    serve(service, order);
  } catch (const std::exception &error) {
    std::fprintf(stderr, "bench_service: %s\n", error.what());
    status = 1;
  }
  return status;
}
