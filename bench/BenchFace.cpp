// Measures the whole agent beside a stand-in for a panel, which knows the moment the icon is offered to it.
// usage: bench_face start COUNT        COUNT starts, to the icon and to a second start that hands a URL over
//        bench_face idle SECONDS       linked and waiting for the next run
//        bench_face animate SECONDS    linked and without a network, which animates the icon
// Needs a display and a session bus of its own (scripts/bench gives it both). Prints: NAME VALUE UNIT.

#include "bench/LinkedHome.h"

#include "sandbox/Library.h"
#include "sandbox/Service.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

void print(const char *name, double value, const char *unit) {
  std::printf("%-24s %10.4f %s\n", name, value, unit);
}

void pass(int milliseconds) {
  QEventLoop loop;
  QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
  loop.exec();
}

/// What a panel offers on the bus, as far as an icon asks for it.
class Panel : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
  Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHost)
  Q_PROPERTY(int ProtocolVersion READ version)
  Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)

public:
  Panel() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.registerObject(u"/StatusNotifierWatcher"_s, this, QDBusConnection::ExportAllContents)
        || !bus.registerService(u"org.kde.StatusNotifierWatcher"_s))
      throw std::runtime_error("there is a panel already, or no bus");
  }
  [[nodiscard]] bool isHost() const { return true; }
  [[nodiscard]] int version() const { return 0; }
  [[nodiscard]] QStringList items() const { return {}; }

public Q_SLOTS:
  void RegisterStatusNotifierItem(const QString & /*item*/) { Q_EMIT offered(); }

Q_SIGNALS:
  void offered();
};

class Agent {
public:
  Agent() {
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QEventLoop loop;
    QObject::connect(&panel(), &Panel::offered, &loop, &QEventLoop::quit);
    QTimer::singleShot(10'000, &loop, [&loop] { loop.exit(1); });
    QElapsedTimer timer;
    timer.start();
    process.start(program(), {});
    if (loop.exec() != 0) throw std::runtime_error("no icon");
    toIcon = static_cast<double>(timer.nsecsElapsed()) / 1e6;
  }
  ~Agent() {
    process.terminate();
    process.waitForFinished();
  }

  static QString program() { return QCoreApplication::applicationDirPath() + u"/downloaderpictora"_s; }
  static Panel &panel() {
    static Panel one;
    return one;
  }
  /// CPU time of all threads so far.
  [[nodiscard]] double cpuSeconds() const {
    double nanoseconds = 0;
    const QDir tasks(u"/proc/%1/task"_s.arg(process.processId()));
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
      nanoseconds += fileText(tasks.filePath(task + u"/schedstat"_s)).split(u' ').first().toDouble();
    return nanoseconds / 1e9;
  }
  [[nodiscard]] double residentMiB() const {
    const QString status = fileText(u"/proc/%1/status"_s.arg(process.processId()));
    return status.section(u"VmRSS:"_s, 1).trimmed().section(u' ', 0, 0).toDouble() / 1024;
  }

  double toIcon = 0; ///< milliseconds

private:
  [[nodiscard]] static QString fileText(const QString &path) {
    QFile file(path);
    return file.open(QFile::ReadOnly) ? QString::fromLatin1(file.readAll()) : QString();
  }

  QProcess process;
};

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void benchStart(int count) {
  std::vector<double> toIcon;
  std::vector<double> handOver;
  for (int round = 0; round < count; ++round) {
    const Agent agent;
    toIcon.push_back(agent.toIcon);
    QProcess second;
    QProcessEnvironment noDisplay = QProcessEnvironment::systemEnvironment();
    noDisplay.remove(u"DISPLAY"_s);
    second.setProcessEnvironment(noDisplay);
    QElapsedTimer timer;
    timer.start();
    second.start(Agent::program(), {u"downloaderpictora://bench"_s});
    if (!second.waitForFinished() || second.exitCode() != 0) throw std::runtime_error("the hand-over failed");
    handOver.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
  }
  print("face.start", median(toIcon), "ms");
  print("face.handover", median(handOver), "ms");
}

void benchWhile(const char *name, int seconds) {
  const Agent agent;
  pass(10'000); // the first run, and the animation's first round
  const double cpuBefore = agent.cpuSeconds();
  const double residentBefore = agent.residentMiB();
  pass(seconds * 1000);
  const QByteArray prefix = QByteArray("face.") + name;
  print((prefix + ".cpu").constData(), 100 * (agent.cpuSeconds() - cpuBefore) / seconds, "%");
  print((prefix + ".resident").constData(), agent.residentMiB(), "MiB");
  print((prefix + ".growth").constData(), agent.residentMiB() - residentBefore, "MiB");
}

} // namespace

int main(int argc, char **argv) {
  const QCoreApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments();
  const QString what = arguments.value(1);
  const int number = arguments.value(2).toInt();
  try {
    const QTemporaryDir home;
    sandbox::Service service;
    service.library().setSettingsObject(R"({"isEnableDownload10GStorage":true})");
    makeLinkedHome(home.path(), service);
    if (what == u"start" && number > 0) {
      benchStart(number);
    } else if (what == u"idle" && number > 0) {
      benchWhile("idle", number);
    } else if (what == u"animate" && number > 0) {
      auto defaults = service.userDefaults();
      defaults.insert(u"awsS3AccelerateHostName"_s, u"s3.localhost:1"_s); // nobody listens there
      useDefaults(defaults);
      benchWhile("animate", number);
    } else {
      std::fputs("usage: bench_face start COUNT | idle SECONDS | animate SECONDS\n", stderr);
      return 2;
    }
  } catch (const std::exception &error) {
    std::fprintf(stderr, "bench_face: %s\n", error.what());
    return 1;
  }
  std::fflush(stdout);
  std::_Exit(0); // the panel is static, and Qt leaves the bus before such things end
}

#include "BenchFace.moc"
