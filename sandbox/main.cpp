#include "sandbox/BrowserSignIn.h"
#include "sandbox/Library.h"
#include "sandbox/SampleLibrary.h"
#include "sandbox/Service.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QHash>
#include <QSaveFile>
#include <QTextStream>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

constexpr int kUsageError = 2;

class Usage : public std::runtime_error {
public:
  using runtime_error::runtime_error;
};

QTextStream &output() {
  static QTextStream stream(stdout);
  return stream;
}

QString required(const QCommandLineParser &options, const QString &name) {
  if (!options.isSet(name)) throw Usage("--" + name.toStdString() + " is missing");
  return options.value(name);
}

int number(const QCommandLineParser &options, const QString &name) {
  bool valid = false;
  const int value = options.value(name).toInt(&valid);
  if (!valid || value < 0) throw Usage("--" + name.toStdString() + " needs a number");
  return value;
}

void writeDefaults(const QString &fileName, const QHash<QString, QString> &defaults) {
  QStringList names = defaults.keys();
  names.sort();
  QByteArray text = "[General]\n";
  for (const QString &name : names)
    text += name.toUtf8() + '=' + defaults.value(name).toUtf8() + '\n';
  QSaveFile file(fileName);
  if (!file.open(QFile::WriteOnly) || file.write(text) != text.size() || !file.commit())
    throw std::runtime_error("cannot write " + fileName.toStdString());
}

int serve(const QCommandLineParser &options) {
  // Before any thread exists, so that all of them leave the signals to this one.
  sigset_t endings;
  sigemptyset(&endings);
  sigaddset(&endings, SIGTERM);
  sigaddset(&endings, SIGINT);
  if (pthread_sigmask(SIG_BLOCK, &endings, nullptr) != 0) throw std::runtime_error("cannot block signals");

  const QDir profile(QDir(required(options, u"profile"_s)).absolutePath());
  sandbox::Service service({.port = quint16(number(options, u"port"_s)),
                            .folder = profile.path(),
                            .roundTrip = std::chrono::milliseconds(number(options, u"distance"_s)),
                            .bytesPerSecond = number(options, u"rate"_s)});
  if (options.isSet(u"sample"_s)) sandbox::fillSampleLibrary(service.library(), options.value(u"uploaded-before"_s));
  writeDefaults(profile.filePath(u"defaults.conf"_s), service.userDefaults());
  output() << "ready https://www.localhost:" << service.port() << Qt::endl;

  int signal = 0;
  return sigwait(&endings, &signal) == 0 ? 0 : 1;
}

int signIn(const QCommandLineParser &options, const QStringList &arguments) {
  if (arguments.size() != 1) throw Usage("sign-in needs the login URL");
  const QString anchors = QDir(required(options, u"profile"_s)).filePath(u"ca.pem"_s);
  QString problem;
  const auto callback = sandbox::signInLikeABrowser(arguments.first(), anchors, problem);
  if (!callback) throw std::runtime_error(problem.toStdString());
  output() << *callback << Qt::endl;
  return 0;
}

/// What a file found at the place of @p expected lacks; empty when it is as it should be.
QString difference(const QString &fileName, const sandbox::ExpectedFile &expected) {
  QFile file(fileName);
  if (!file.open(QFile::ReadOnly)) return u"unreadable"_s;
  if (file.size() != expected.size) return u"%1 bytes instead of %2"_s.arg(file.size()).arg(expected.size);
  QCryptographicHash hash(QCryptographicHash::Sha256);
  if (!hash.addData(&file) || hash.result().toHex() != expected.sha256) return u"other content"_s;
  const QDateTime modified = QFileInfo(fileName).lastModified().toUTC();
  if (modified.toSecsSinceEpoch() == expected.modificationTime) return {};
  const QDateTime right = QDateTime::fromSecsSinceEpoch(expected.modificationTime, Qt::UTC);
  return u"dated %1 instead of %2"_s.arg(modified.toString(Qt::ISODate), right.toString(Qt::ISODate));
}

QStringList unexpectedFiles(const QDir &folder, const QList<sandbox::ExpectedFile> &expected) {
  QStringList found;
  QDirIterator files(folder.path(), QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
  while (files.hasNext())
    found.append(folder.relativeFilePath(files.next()));
  for (const sandbox::ExpectedFile &file : expected)
    found.removeAll(file.relativePath);
  found.sort();
  return found;
}

/// Compares what lies in @p folder with @p expected. @return whether all is there and nothing else.
bool verifyFolder(const QDir &folder, const QList<sandbox::ExpectedFile> &expected) {
  int right = 0;
  for (const sandbox::ExpectedFile &file : expected) {
    const QString path = folder.filePath(file.relativePath);
    const bool present = QFileInfo::exists(path);
    const QString flaw = present ? difference(path, file) : QString();
    output() << (!present         ? "MISSING    "
                 : flaw.isEmpty() ? "OK         "
                                  : "DIFFERENT  ")
             << file.relativePath << (flaw.isEmpty() ? QString() : u" ("_s + flaw + u')') << '\n';
    right += present && flaw.isEmpty();
  }
  const QStringList unexpected = unexpectedFiles(folder, expected);
  for (const QString &path : unexpected)
    output() << "UNEXPECTED " << path << '\n';
  output() << folder.dirName() << ": " << right << " of " << expected.size() << " files as expected, "
           << unexpected.size() << " unexpected" << Qt::endl;
  return right == expected.size() && unexpected.isEmpty();
}

sandbox::ExpectedOptions expectedOptions(const QCommandLineParser &options) {
  return {.childFolder = number(options, u"child-folder"_s),
          .createSubfolder = !options.isSet(u"no-sort-folders"_s),
          .downloadMetadata = !options.isSet(u"no-expand"_s),
          .uploadedBefore = options.value(u"uploaded-before"_s)};
}

int count(const QCommandLineParser &options) {
  const sandbox::ExpectedOptions expected = expectedOptions(options);
  output() << sandbox::expectedSampleFiles(expected).size() + sandbox::expectedLongTermSampleFiles(expected).size()
           << Qt::endl;
  return 0;
}

int verify(const QCommandLineParser &options) {
  const sandbox::ExpectedOptions expected = expectedOptions(options);
  const auto folder = [](const QString &path) { return QDir(QDir(path).absolutePath()); };
  bool right = verifyFolder(folder(required(options, u"folder"_s)), sandbox::expectedSampleFiles(expected));
  if (options.isSet(u"10g-folder"_s))
    right &= verifyFolder(folder(options.value(u"10g-folder"_s)), sandbox::expectedLongTermSampleFiles(expected));
  return right ? 0 : 1;
}

int run(const QStringList &arguments) {
  QCommandLineParser options;
  options.setApplicationDescription(u"The photo service on your own machine."_s);
  options.addHelpOption();
  options.addOptions({{u"profile"_s, u"Folder that keeps the authority, the keys and the links."_s, u"folder"_s},
                      {u"port"_s, u"serve: the port; 0 takes a free one."_s, u"number"_s, u"0"_s},
                      {u"distance"_s, u"serve: the round trip to the service."_s, u"milliseconds"_s, u"0"_s},
                      {u"rate"_s, u"serve: what goes through each way; 0: all."_s, u"bytes per second"_s, u"0"_s},
                      {u"sample"_s, u"serve: fill the account with the sample pictures."_s},
                      {u"uploaded-before"_s, u"serve, verify, count: what the sample held then."_s, u"yyyyMMdd"_s},
                      {u"folder"_s, u"verify: the download folder."_s, u"folder"_s},
                      {u"10g-folder"_s, u"verify: the folder of the 10G storage and the previews."_s, u"folder"_s},
                      {u"child-folder"_s, u"verify, count: the date folder scheme."_s, u"0-4"_s, u"0"_s},
                      {u"no-sort-folders"_s, u"verify, count: the agent makes no sort-rule folders."_s},
                      {u"no-expand"_s, u"verify, count: the agent takes the originals."_s}});
  options.addPositionalArgument(
      u"command"_s, u"serve, verify, count (of the files that verify expects in both folders) or sign-in"_s);
  options.addPositionalArgument(u"url"_s, u"sign-in: the login URL that the agent opened"_s, u"[url]"_s);
  options.process(arguments);
  const QStringList words = options.positionalArguments();
  const QString command = words.value(0);
  if (command == u"serve") return serve(options);
  if (command == u"verify") return verify(options);
  if (command == u"count") return count(options);
  if (command == u"sign-in") return signIn(options, words.mid(1));
  throw Usage("the command is one of serve, verify, count, sign-in");
}

} // namespace

int main(int argc, char **argv) {
  const QCoreApplication application(argc, argv);
  try {
    return run(QCoreApplication::arguments());
  } catch (const Usage &wrong) {
    std::fprintf(stderr, "pictora-sandbox: %s\n", wrong.what());
    return kUsageError;
  } catch (const std::exception &failure) {
    std::fprintf(stderr, "pictora-sandbox: %s\n", failure.what());
    return 1;
  }
}
