#include "platform/UserDefaults.h"
#include "tests/engine/EngineFixture.h"
#include "tests/log/LogFile.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <csignal>
#include <optional>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using sandbox::Endpoint;
using sandbox::Fault;
using enum sandbox::Fault::Kind;
using Clock = std::chrono::steady_clock;

namespace {

void setRequestsAhead(int count) {
  platform::standardUserDefaults().setString(u"requestsAhead"_s, QString::number(count));
}

/// What a run leaves behind and has told.
struct Made {
  QStringList log{};
  QStringList events{};
  QStringList files{};
  QHash<QString, KaDownloadData> records{};
  QHash<QString, KaLoadedLedger> ledgers{};
};

class AsIf : public ProcessorTest {
protected:
  explicit AsIf(const QHash<QString, QString> &defaults = {})
      : ProcessorTest(defaults, u"user-0001"_s, {.roundTrip = 4ms}) {
    delegate.change([this](auto &answers) {
      answers.option.checkBoxDownloadMetadata = answers.option.checkBoxCreateSubfolder = u"true"_s;
      answers.option.childFolder = 0;
    });
    takeLongTermStorageToo(longTerm());
  }

  [[nodiscard]] QString longTerm() const { return profile.path(u"long-term"_s); }

  /// From nothing on.
  [[nodiscard]] Made makeRun(int requestsAhead) {
    setRequestsAhead(requestsAhead);
    for (const QString &folder : folders()) {
      QDir(folder).removeRecursively();
      QDir().mkpath(folder);
    }
    prepare();
    delegate.forgetTaken();
    delegate.forgetEvents();
    const qsizetype before = loggedLines(profile).size();
    EXPECT_TRUE(run());
    processor.reset();
    Made made{.log = lasting(loggedLines(profile).mid(before)),
              .events = delegate.events(),
              .records = delegate.answers().records,
              .ledgers = delegate.answers().ledgers};
    for (const QString &folder : folders())
      for (const QString &file : filesBelow(folder)) {
        const QString path = folder + u'/' + file;
        made.files << u"%1 %2 %3"_s.arg(file, QString::fromLatin1(contentOf(path).left(20)))
                          .arg(QFileInfo(path).lastModified().toMSecsSinceEpoch());
      }
    return made;
  }
  virtual void prepare() {}
  [[nodiscard]] virtual QStringList folders() const { return {profile.picturesFolder(), longTerm()}; }

  /// What is in both runs the same: not what is made of the time, nor the wait that the end may forestall.
  [[nodiscard]] static QStringList lasting(QStringList lines) {
    lines.removeIf([](const QString &line) {
      static const QRegularExpression passing(
          u"(url|xAmzDate|sessionToken|authorization):|StartAfter=|[pP]olling ?Wait"_s);
      return line.contains(passing);
    });
    return lines;
  }

  void expectTheSame(int requestsAhead = 8) {
    const Made alone = makeRun(0);
    service.resetRequestCounts();
    const Made ahead = makeRun(requestsAhead);
    const auto [one, other] = std::mismatch(ahead.log.begin(), ahead.log.end(), alone.log.begin(), alone.log.end());
    EXPECT_TRUE(one == ahead.log.end() && other == alone.log.end())
        << "with: " << QStringList(one, ahead.log.end()).mid(0, 5).join(u'\n').toStdString()
        << "\nwithout: " << QStringList(other, alone.log.end()).mid(0, 5).join(u'\n').toStdString();
    EXPECT_EQ(ahead.events, alone.events);
    EXPECT_EQ(ahead.files, alone.files);
    EXPECT_EQ(ahead.records, alone.records);
    for (const auto &[account, ledger] : alone.ledgers.asKeyValueRange())
      EXPECT_EQ(ahead.ledgers.value(account).ledger, ledger.ledger);
    EXPECT_FALSE(alone.files.isEmpty());
  }

  /// Images 00 to 15 with a kind of outcome each, and a few plain ones between.
  void addEachKindOfImage() {
    for (int number = 0; number < 24; ++number) {
      sandbox::LibraryObject object = image(u"%1"_s.arg(number / 3 + 10), u"P%1.JPG"_s.arg(number, 2, 10, QChar(u'0')));
      object.body = QByteArray(20'000 + number, char('a' + number));
      object.metadataDocument =
          R"({"captureTime":"2024-05-%1T10:00:00.000Z"})"_ba.replace("%1", QByteArray::number(10 + number % 5));
      spoil(object, number);
      add(object);
    }
  }

  void spoil(sandbox::LibraryObject &object, int number) {
    switch (number) {
    case 1: // a variant of its own, sorted by a rule
      object.expandBody = QByteArray(7000, 'e');
      object.expandMetadataDocument =
          R"({"captureTime":"2024-06-01T10:00:00.000Z","sortation":{"matchedRules":["Birds"]}})";
      break;
    case 3: // no metadata at all
      object.metadataDocument.reset();
      break;
    case 5: // another size than listed
      object.listedSize = object.body.size() + 1;
      break;
    case 7: // no name
      object.fileNameMetadata.reset();
      break;
    case 9: // an equal name
      object.fileNameMetadata = sandbox::fileNameHeader(u"P08.JPG"_s);
      break;
    case 11: // of the ordinary storage alone
      object.tags.insert(u"x-strata-storage-period"_s, u"30"_s);
      break;
    case 13:
      service.order(Endpoint::ObjectGet, {.status = 404, .times = -1, .pathContains = object.fileName});
      break;
    case 15:
      service.order(Endpoint::ObjectGet, {.status = 500, .times = -1, .pathContains = object.fileName});
      break;
    case 17:
      service.order(Endpoint::Metadata, {.status = 503, .times = -1, .pathContains = u"P17"_s});
      break;
    case 19:
      service.order(Endpoint::ObjectHead, {.status = 500, .times = -1, .pathContains = object.fileName});
      break;
    case 20:
      service.order(Endpoint::ObjectGet, {.kind = TruncatedBody, .times = -1, .pathContains = object.fileName});
      break;
    case 21:
      service.order(Endpoint::ObjectTagging, {.kind = MalformedBody, .times = -1, .pathContains = object.fileName});
      break;
    default:
      break;
    }
  }
};

TEST_F(AsIf, eachKindOfOutcomeIsTheSameWithAndWithoutAsking) {
  addEachKindOfImage();
  expectTheSame();
  EXPECT_GT(service.requestCount(Endpoint::ObjectGet), 24);
}

/// A picture that the disk takes no more, and one whose folder cannot be made.
struct AsIfOnABadDisk : AsIf {
  void prepare() override {
    ASSERT_TRUE(QFile::link(u"nowhere"_s, profile.picturesFolder() + u"/2024_05_12"_s)); // in the way
  }
};

TEST_F(AsIfOnABadDisk, whatCannotBeSavedIsTheSame) {
  addEachKindOfImage();
  sandbox::LibraryObject large = image(u"09"_s, u"LARGE.JPG"_s);
  large.body = QByteArray(400'000, 'l');
  add(large);
  ::signal(SIGXFSZ, SIG_IGN);
  rlimit before = {};
  ::getrlimit(RLIMIT_FSIZE, &before);
  const rlimit small = {300'000, before.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &small);
  expectTheSame();
  ::setrlimit(RLIMIT_FSIZE, &before);
}

/// The folder goes while a picture is before its turn, and others are under way.
struct AsIfTheFolderGoes : AsIf {
  void prepare() override {
    QDir().rmdir(gone());
    judged = 0;
    delegate.change([this](auto &answers) { answers.judgeFolder = [this] { return judge(); }; });
  }
  /// Download thread.
  [[nodiscard]] KaResultCode judge() {
    ++judged;
    if (judged < 4) return KaResultCode::Success;
    if (judged == 4) QDir().rename(profile.picturesFolder(), gone());
    return KaResultCode::FolderNotAccessible;
  }
  [[nodiscard]] QStringList folders() const override { return {profile.picturesFolder(), gone()}; }
  [[nodiscard]] QString gone() const { return profile.path(u"gone"_s); }
  int judged = 0;
};

TEST_F(AsIfTheFolderGoes, isTheSameAndNothingIsLeftInIt) {
  addImages("10/A.JPG 10/B.JPG 10/C.JPG 10/D.JPG 10/E.JPG 10/F.JPG");
  expectTheSame();
  EXPECT_EQ(filesBelow(gone()).size(), 3);
}

TEST_F(AsIf, renewingBeforeEachImageIsTheSameAndNothingIsAskedAhead) {
  service.setCredentialLifetime(300s);
  addImages("10/A.JPG 11/B.JPG 12/C.JPG");
  expectTheSame();
}

/// Part of the pictures folder lies on another disk.
struct AsIfElsewhere : AsIf {
  AsIfElsewhere() : shared(u"/dev/shm/ahead-XXXXXX"_s) {}
  void prepare() override {
    QDir(shared.path()).removeRecursively();
    QDir().mkpath(shared.path());
    ASSERT_TRUE(QFile::link(shared.path(), profile.picturesFolder() + u"/2024_04_30"_s));
  }
  QTemporaryDir shared;
};

TEST_F(AsIfElsewhere, isTheSameAndFetchesFewTwice) {
  struct stat here = {};
  struct stat there = {};
  ASSERT_EQ(::stat(profile.picturesFolder().toUtf8().constData(), &here), 0);
  if (::stat(shared.path().toUtf8().constData(), &there) != 0 || here.st_dev == there.st_dev)
    GTEST_SKIP() << "no second file system";
  addImages("10/A.JPG 10/B.JPG 10/C.JPG 10/D.JPG 10/E.JPG 10/F.JPG");
  expectTheSame(1);
  EXPECT_GT(service.requestCount(Endpoint::ObjectGet), 2 * 6);
  EXPECT_LE(service.requestCount(Endpoint::ObjectGet), 2 * 6 + 2);
}

/// One pass with the engine's pieces.
class LookAhead : public EngineTest {
protected:
  explicit LookAhead(const QHash<QString, QString> &defaults = {},
                     const sandbox::ServiceOptions &options = {.roundTrip = 2ms})
      : EngineTest(withDefault(defaults), u"user-0001"_s, options) {}

  [[nodiscard]] KaPassOutcome pass() {
    parts.emplace(delegate, link);
    return parts->pass(target());
  }
  void addMany(int from, int count, qsizetype size = 20'000) {
    for (int number = from; number < from + count; ++number)
      add(image(u"10"_s, u"P%1.JPG"_s.arg(number, 3, 10, QChar(u'0')), QByteArray(size, 'm')));
  }

  std::optional<EngineParts> parts;

private:
  static QHash<QString, QString> withDefault(QHash<QString, QString> defaults) {
    if (!defaults.contains(u"requestsAhead"_s)) defaults.insert(u"requestsAhead"_s, u"8"_s);
    return defaults;
  }
};

TEST_F(LookAhead, keepsAsManyConnectionsAsRequestsAtOnceAndMakesNewOnesForThoseThatTheServiceCloses) {
  addMany(0, 100);
  EXPECT_EQ(pass().savedCount, 100);
  const int first = service.connectionCount();
  EXPECT_GT(first, 1);
  EXPECT_LE(first, 8);

  setRequestsAhead(0);
  service.resetRequestCounts();
  addMany(100, 20);
  parts.reset();
  delegate.forgetTaken();
  QDir(profile.picturesFolder()).removeRecursively();
  QDir().mkpath(profile.picturesFolder());
  EXPECT_EQ(pass().savedCount, 120);
  EXPECT_EQ(service.connectionCount(), 1 + 120 * 2 / 100) << "each ends after 100 requests";
  // One after the other: of those that begin at once, one may find the session just taken up and not yet replaced.
  EXPECT_EQ(service.resumedConnectionCount(), service.connectionCount() - 1);
}

struct SlowLine : LookAhead {
  SlowLine() : LookAhead({{u"timeoutIntervalForResource"_s, QString::number(1.5)}}, {.bytesPerSecond = 100'000}) {}
};

TEST_F(SlowLine, isNotSharedIntoItsOwnLimits) {
  addMany(0, 5, 100'000); // a second each
  EXPECT_EQ(pass().savedCount, 5);
  EXPECT_EQ(service.requestCount(Endpoint::ObjectGet), 5);
}

struct Quitting : ProcessorTest {
  Quitting() : ProcessorTest({{u"requestsAhead"_s, u"8"_s}}, u"user-0001"_s, {}) {}
};

TEST_F(Quitting, endsEightTransfersAtOnceAndLeavesNothing) {
  add(image(u"09"_s, u"A.JPG"_s, QByteArray(200'000, 'a')));
  addImages("10/S0 10/S1 10/S2 10/S3 10/S4 10/S5 10/S6 10/S7 10/S8 10/S9");
  service.order(Endpoint::ObjectGet, {.kind = SlowBody, .times = -1, .pathContains = u"/10/S"_s});
  start();
  ASSERT_TRUE(service.waitForRequests(Endpoint::ObjectGet, 1 + 8, 20s));
  const auto begun = Clock::now();
  processor.reset();
  EXPECT_LT(Clock::now() - begun, 1s * kSlowness);
  EXPECT_EQ(files(), names("2024_04_30/A.JPG"));
  EXPECT_EQ(service.requestCount(Endpoint::ObjectGet), 1 + 8);
}

} // namespace
