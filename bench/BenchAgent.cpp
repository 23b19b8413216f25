// Measures the download engine beside the curl program, against the same service in a process of its own.
// usage: bench_agent pass COUNT SIZE     a first run over COUNT objects; curl fetches the same after it
//        bench_agent listing COUNT       a listing of COUNT objects, all of them taken already
// Prints one line per figure: NAME VALUE UNIT.

#include "bench/BenchDelegate.h"
#include "engine/KaDownloadProcessor.h"
#include "identity/KaLinkageUtility.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <cstdio>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

QByteArray readFile(const QString &path) {
  QFile file(path);
  if (!file.open(QFile::ReadOnly)) throw std::runtime_error("cannot read " + path.toStdString());
  return file.readAll();
}

double cpuSeconds(__rusage_who who) {
  rusage usage{};
  getrusage(who, &usage);
  const auto seconds = [](const timeval &time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double peakMiB() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

void print(const char *name, double value, const char *unit) {
  std::printf("%-24s %10.3f %s\n", name, value, unit);
}

/// The service with its objects, and this process's home pointed at it.
class Bench {
public:
  Bench(int count, qint64 size) {
    qputenv("HOME", QFile::encodeName(home.path()));
    for (const char *variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"}) {
      qputenv(variable, QFile::encodeName(home.filePath(QString::fromLatin1(variable))));
    }
    service.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    service.start(QCoreApplication::applicationDirPath() + u"/bench_service"_s,
                  {path(u"service"_s), QString::number(count), QString::number(size)});
    if (!service.waitForReadyRead(120'000)) throw std::runtime_error("the service does not start");
    const QString config = home.filePath(u"XDG_CONFIG_HOME/NORVALE INC"_s);
    QDir().mkpath(config);
    QFile::copy(path(u"service/defaults.conf"_s), config + u"/Downloaderpictora.conf"_s);
    KaLinkageUtility::saveTokenCode(QString::fromUtf8(readFile(path(u"service/tokenCode"_s))));
    QDir().mkpath(path(u"pictures"_s));
  }
  ~Bench() {
    service.closeWriteChannel();
    service.waitForFinished();
  }

  [[nodiscard]] QString path(const QString &relative) const { return home.filePath(relative); }
  [[nodiscard]] QString token() const { return QString::fromUtf8(readFile(path(u"service/token"_s))); }

private:
  QTemporaryDir home;
  QProcess service;
};

struct Cost {
  double wall = 0;
  double cpu = 0;
};

Cost measureRun(BenchDelegate &delegate) {
  QElapsedTimer timer;
  timer.start();
  const double before = cpuSeconds(RUSAGE_SELF);
  KaDownloadProcessor processor(delegate);
  processor.startReceiving(/*initialAccess=*/false);
  const KaResultCode result = delegate.waitForRunEnd();
  const Cost cost{static_cast<double>(timer.elapsed()) / 1000, cpuSeconds(RUSAGE_SELF) - before};
  if (result != KaResultCode::Success && result != KaResultCode::DownloadComplete) {
    throw std::runtime_error("the run ended with " + std::to_string(static_cast<int>(result)));
  }
  return cost;
}

Cost measureCurl(const Bench &bench) {
  QElapsedTimer timer;
  timer.start();
  const double before = cpuSeconds(RUSAGE_CHILDREN);
  if (QProcess::execute(u"curl"_s, {u"-K"_s, bench.path(u"service/urls.conf"_s)}) != 0) {
    throw std::runtime_error("curl failed");
  }
  return {static_cast<double>(timer.elapsed()) / 1000, cpuSeconds(RUSAGE_CHILDREN) - before};
}

int filesBelow(const QString &folder) {
  int count = 0;
  for (QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories); it.hasNext(); it.next())
    ++count;
  return count;
}

void benchPass(int count, qint64 size) {
  const Bench bench(count, size);
  BenchDelegate delegate(bench.path(u"pictures"_s), bench.token());
  const Cost agent = measureRun(delegate);
  if (filesBelow(bench.path(u"pictures"_s)) != count) throw std::runtime_error("not every object arrived");
  const Cost curl = measureCurl(bench);
  print("pass.agent.wall", agent.wall, "s");
  print("pass.curl.wall", curl.wall, "s");
  print("pass.wall.ratio", agent.wall / curl.wall, "x");
  print("pass.agent.cpu", agent.cpu, "s");
  print("pass.curl.cpu", curl.cpu, "s");
  print("pass.cpu.ratio", agent.cpu / curl.cpu, "x");
  print("pass.agent.peak", peakMiB(), "MiB");
}

/// The ids that the service's objects have, in its own naming.
QStringList takenIds(int count) {
  QStringList ids;
  for (int number = 0; number < count; ++number)
    ids << u"M%1"_s.arg(number, 8, 10, QChar(u'0'));
  return ids;
}

void benchListing(int count) {
  const Bench bench(count, 1);
  const double empty = peakMiB();
  BenchDelegate delegate(bench.path(u"pictures"_s), bench.token());
  delegate.markTaken(takenIds(count));
  const Cost cost = measureRun(delegate);
  if (filesBelow(bench.path(u"pictures"_s)) != 0) throw std::runtime_error("something was fetched");
  print("listing.wall", cost.wall, "s");
  print("listing.cpu", cost.cpu, "s");
  print("listing.peak", peakMiB(), "MiB");
  print("listing.before", empty, "MiB");
}

} // namespace

int main(int argc, char **argv) {
  QCoreApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments();
  try {
    if (argc == 4 && arguments[1] == u"pass") {
      benchPass(arguments[2].toInt(), arguments[3].toLongLong());
    } else if (argc == 3 && arguments[1] == u"listing") {
      benchListing(arguments[2].toInt());
    } else {
      std::fputs("usage: bench_agent pass COUNT SIZE | bench_agent listing COUNT\n", stderr);
      return 2;
    }
  } catch (const std::exception &error) {
    std::fprintf(stderr, "bench_agent: %s\n", error.what());
    return 1;
  }
  return 0;
}
