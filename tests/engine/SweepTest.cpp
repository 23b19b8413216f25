#include "sandbox/SampleLibrary.h"
#include "tests/engine/EngineFixture.h"

#include <QCryptographicHash>
#include <QDir>
#include <QRegularExpression>

#include <filesystem>
#include <iostream>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using sandbox::Endpoint;
using sandbox::Fault;
using enum sandbox::Fault::Kind;

namespace {

struct Kind {
  const char *name;
  Fault fault;
};

/// Each single request of an account's runs fails in one way; from then on the service is well again. What the user has
/// afterwards must be all that there is, each once. Every request with KA_SWEEP in the environment, else some. Once one
/// request after the other, and once with what is asked ahead, on kept connections.
class FaultSweep : public ProcessorTest, public testing::WithParamInterface<std::tuple<bool, Kind>> {
protected:
  FaultSweep()
      : ProcessorTest({{u"timeoutIntervalForRequest"_s, QString::number(0.3 * kSlowness)},
                       {u"requestsAhead"_s, asksAhead() ? u"8"_s : u"0"_s}},
                      u"user-0001"_s, {.requestsPerConnection = asksAhead() ? 100 : 1}) {
    takeLongTermStorageToo(path(u"long-term"_s));
    delegate.change([](auto &answers) {
      answers.option.checkBoxDownloadMetadata = answers.option.checkBoxCreateSubfolder = u"true"_s;
      answers.waits.pollingError = 1ms;
    });
    beginWithWhatIsThere();
    for (const QString &path : names("dev1/10/A.JPG dev1/11/B.JPG dev2/11/B.JPG dev1/12/C.JPG"))
      add(unlike(path));
    sandbox::LibraryObject expanded = unlike(u"dev1/13/E.JPG"_s);
    expanded.expandBody = QByteArray(7000, 'e');
    add(expanded);
    add(unlike(u"dev1/13/F.JPG"_s, u"30"_s));
    addPreviews(2);
  }

  [[nodiscard]] static bool asksAhead() { return std::get<bool>(GetParam()); }
  [[nodiscard]] static const Fault &fault() { return std::get<Kind>(GetParam()).fault; }

  /// An image DEVICE/HOUR/NAME with bytes of its own.
  static sandbox::LibraryObject unlike(const QString &path, const QString &period = {}) {
    sandbox::LibraryObject object = image(path.section(u'/', 1, 1), path.section(u'/', 2), path.toUtf8().repeated(400));
    object.deviceId = path.section(u'/', 0, 0);
    if (!period.isEmpty()) object.tags.insert(u"x-strata-storage-period"_s, period);
    return object;
  }

  void addPreviews(int count) {
    QList<sandbox::SamplePreview> previews;
    for (int index = 1; index <= count; ++index)
      previews.append({index, u"%1.x"_s.arg(index), QByteArray(100 + index, 'v'), u"P%1.JPG"_s.arg(index)});
    sandbox::addPreviews(service.library(), previews);
  }

  /// makeRuns() begins with what is taken by now.
  void beginWithWhatIsThere() {
    before = delegate.answers();
    std::filesystem::copy(picturesBelow, beforeBelow, std::filesystem::copy_options::recursive);
  }
  /// @return whether there were @p count runs.
  [[nodiscard]] bool makeRuns(int count, int number = 0) {
    std::filesystem::remove_all(picturesBelow);
    std::filesystem::copy(beforeBelow, picturesBelow, std::filesystem::copy_options::recursive);
    delegate.change([&](auto &answers) {
      answers.records = before.records;
      answers.ledgers = before.ledgers;
      answers.waits.pollingNormal = count == 1 ? 1h : 1ms; // or a few requests of the next run would be counted
    });
    delegate.forgetEvents();
    service.resetRequestCounts();
    if (number > 0) service.orderAt(number, fault());
    start();
    bool made = true;
    for (int runs = 1; made && runs <= count; ++runs)
      made = delegate.waitForEvent(u"enableLoggin 1"_s, runs, 20 * kSlowness) && !isLoginRefused(number);
    processor.reset();
    return made;
  }
  /// By the request of that number, if it was made: then no further run begins.
  [[nodiscard]] bool isLoginRefused(int number) const {
    const bool isRefusal = fault().status == 400 || fault().status == 403;
    return isRefusal && service.requests().value(number - 1).endpoint == Endpoint::RefreshToken;
  }
  /// Names, and what they hold, whatever the order in which equal names got their counters.
  [[nodiscard]] QStringList taken() const {
    static const QRegularExpression counter(uR"(_\d+(?=\.[^./]+$))"_s);
    QStringList found = files();
    for (const QString &file : files()) {
      const QByteArray hash = QCryptographicHash::hash(contentOf(path(file)), QCryptographicHash::Sha256);
      found << QString(file).remove(counter) + u' ' + QString::fromLatin1(hash.toHex());
    }
    found.sort();
    return found;
  }
  /// Lets each request of a run fail, after which @p count files are there.
  void sweep(const char *what, qsizetype count);

  const std::filesystem::path picturesBelow = profile.picturesFolder().toStdString();
  const std::filesystem::path beforeBelow = profile.path(u"before"_s).toStdString();
  FakeDelegate::Answers before;
};

/// Where a single answer makes something else right: a picture whose metadata are not there is filed by its upload
/// hour, one whose variant is not there comes as it is, a preview that is not there is passed over, and one whose tags
/// name no period is of the 10G storage, too.
bool isRightOtherwise(const Fault &fault, Endpoint endpoint) {
  const bool saysNothing = fault.kind == EmptyBody || fault.kind == MalformedBody || fault.status == 404;
  if (endpoint == Endpoint::Metadata) return saysNothing;
  if (endpoint == Endpoint::ObjectHead || endpoint == Endpoint::PreviewObject) return fault.status == 404;
  return endpoint == Endpoint::ObjectTagging && saysNothing;
}

void FaultSweep::sweep(const char *what, qsizetype count) {
  ASSERT_TRUE(makeRuns(1));
  const QStringList all = taken();
  ASSERT_EQ(files().size(), count);
  const auto requests = service.requests().size();
  const int step = qEnvironmentVariableIsSet("KA_SWEEP") ? 1 : 13;
  int points = 0;
  int otherwise = 0;
  for (int number = 1; number <= requests; number += step, ++points) {
    const bool goesOn = makeRuns(3, number);
    const Endpoint met = service.requests().value(number - 1).endpoint;
    SCOPED_TRACE("request " + std::to_string(number) + ", " + sandbox::endpointName(met).toStdString());
    if (isRightOtherwise(fault(), met) || isLoginRefused(number)) {
      ++otherwise;
      continue;
    }
    EXPECT_TRUE(goesOn);
    EXPECT_EQ(taken(), all);
    EXPECT_EQ(link.state(), KaLinkState::Linked);
  }
  std::cout << std::get<Kind>(GetParam()).name << (asksAhead() ? ", asked ahead" : "") << ", " << what << ": " << points
            << " points, " << otherwise << " of them right otherwise\n";
}

TEST_P(FaultSweep, losesAndDoublesNothing) {
  sweep("a first run", 6 + 5 + 2);
}

TEST_P(FaultSweep, losesAndDoublesNothingOfALaterRun) {
  ASSERT_TRUE(makeRuns(1));
  ASSERT_EQ(files().size(), 13);
  beginWithWhatIsThere();
  for (const QString &path : names("dev1/14/G.JPG dev1/13/H.JPG dev2/10/A.JPG"))
    add(unlike(path, u"30"_s));
  add(unlike(u"dev1/14/I.JPG"_s, u"unlimited"_s));
  addPreviews(3);
  sweep("a later run", 13 + 3 + 2 + 1);
}

INSTANTIATE_TEST_SUITE_P(
    Engine, FaultSweep,
    testing::Combine(testing::Bool(),
                     testing::Values(Kind{"dropped", {.kind = DroppedConnection}},
                                     Kind{"droppedInTheBody", {.kind = UncountedCut}},
                                     Kind{"cut", {.kind = TruncatedBody}}, Kind{"empty", {.kind = EmptyBody}},
                                     Kind{"silent", {.kind = NoAnswer}}, Kind{"malformed", {.kind = MalformedBody}},
                                     Kind{"status400", {.status = 400}}, Kind{"status403", {.status = 403}},
                                     Kind{"status404", {.status = 404}}, Kind{"status500", {.status = 500}},
                                     Kind{"status503", {.status = 503}})),
    [](const auto &row) {
      return std::string(std::get<Kind>(row.param).name) + (std::get<bool>(row.param) ? "Ahead" : "");
    });

} // namespace
