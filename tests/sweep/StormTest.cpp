#include "tests/support/Image.h"
#include "tests/sweep/SweepFixture.h"

#include <QDateTime>

#include <array>
#include <csignal>
#include <iostream>
#include <random>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using sandbox::Endpoint;
using sandbox::Fault;
using enum sandbox::Fault::Kind;

namespace {

constexpr int kDays = 30;
constexpr int kStepsADay = 8;
constexpr int kSecondsADay = 24 * 60 * 60;

/// In CI, or with KA_SWEEP in the environment.
const int kMonths = qEnvironmentVariableIsSet("KA_SWEEP") ? 10 : 1;
const auto kStep = qEnvironmentVariableIsSet("KA_SWEEP") ? 200ms : 60ms;
/// Between the runs; what they take themselves is the longer the faster it goes by.
const int kSpeed = static_cast<int>(kSecondsADay / kStepsADay * 1000 / kStep.count());

struct Happened {
  int pictures = 0;
  int faults = 0;
  int kills = 0;
  int quits = 0;
  int outages = 0;
  int sleeps = 0;
};
std::ostream &operator<<(std::ostream &out, const Happened &happened) {
  return out << happened.pictures << " pictures, " << happened.faults << " faults, " << happened.kills << " kills, "
             << happened.quits << " quits, " << happened.outages << " outages, " << happened.sleeps << " sleeps";
}

/// A month of everything that goes wrong, as chance has it; then peace.
class Storm : public SweepTest {
protected:
  Storm() : SweepTest({{u"PollingNormalWaitTime"_s, u"1800"_s}, {u"timeoutIntervalForRequest"_s, u"0.3"_s}}) {}

  /// Below @p count.
  [[nodiscard]] int any(int count) { return static_cast<int>(chance() % static_cast<unsigned>(count)); }
  [[nodiscard]] bool isOneOf(int count) { return any(count) == 0; }
  template <std::size_t N> [[nodiscard]] auto oneOf(const std::array<auto, N> &all) { return all[chance() % N]; }

  /// Of several cameras, whose names are the same, and some of which send late, into hours that are over.
  void upload() {
    const QDateTime hour = now.addSecs(isOneOf(4) ? -3600 * any(30) : 0);
    const QString name = u"IMG_%1%2"_s.arg(any(12)).arg(isOneOf(4) ? u".RAF" : u".JPG");
    sandbox::LibraryObject object = image(hour.toString(u"HH"_s), name, QByteArray(500 + any(20'000), 'p'));
    object.date = hour.toString(u"yyyyMMdd"_s);
    object.deviceId = u"camera%1"_s.arg(any(4));
    // The service tells equal uploads of one camera and hour apart by the last part of the key.
    object.fileName = u"%1-%2"_s.arg(happened.pictures++).arg(name);
    if (isOneOf(3)) object.metadataDocument.reset();
    if (isOneOf(2)) object.tags.insert(u"x-strata-storage-period"_s, u"30"_s);
    add(object);
  }

  void spoil() {
    const Endpoint endpoint = sandbox::allEndpoints()[chance() % sandbox::allEndpoints().size()];
    Fault fault{.kind = oneOf(std::array{Status, Status, EmptyBody, MalformedBody, DroppedConnection, NoAnswer,
                                         TruncatedBody, UncountedCut}),
                .status = oneOf(std::array{400, 403, 404, 500, 503}),
                .times = 1 + any(3)};
    if (makesSomethingElseRight(endpoint, fault)) fault.kind = DroppedConnection;
    service.order(endpoint, fault);
    ++happened.faults;
  }
  /// A login that is refused is over; a tag that is not there makes a picture one of the long-term storage; a preview
  /// that is said to be missing is passed over; wrong bytes that come four times are kept.
  static bool makesSomethingElseRight(Endpoint endpoint, const Fault &fault) {
    if (endpoint == Endpoint::RefreshToken) return fault.kind == Status && fault.status < 500;
    if (endpoint == Endpoint::ObjectTagging) return fault.kind != Status || fault.status == 404;
    if (endpoint == Endpoint::PreviewObject && fault.kind == Status && fault.status == 404) return true;
    const bool isContent = endpoint == Endpoint::ObjectGet || endpoint == Endpoint::PreviewObject;
    return isContent && (fault.kind == EmptyBody || fault.kind == MalformedBody);
  }

  void takeNetworkAway() {
    for (const Endpoint endpoint : sandbox::allEndpoints())
      service.order(endpoint, {.kind = DroppedConnection, .times = -1});
    ++happened.outages;
    awayFor = 1 + any(8);
  }

  void end(bool isKill) {
    if (isKill) {
      agent->kill9();
    } else {
      agent->terminate();
      EXPECT_EQ(agent->waitForEnd(10s), 0);
    }
    ++(isKill ? happened.kills : happened.quits);
    agent.reset();
  }

  void sleep() {
    agent->signal(SIGSTOP);
    std::this_thread::sleep_for(kStep * (1 + any(4)));
    agent->signal(SIGCONT);
    ++happened.sleeps;
  }

  void step() {
    EXPECT_TRUE(!agent || agent->isRunning()) << "ended by itself";
    if (awayFor > 0 && --awayFor == 0) service.clearFaults();
    while (isOneOf(2))
      upload();
    if (isOneOf(40)) addPreviews(++previews);
    if (isOneOf(4) && awayFor == 0) spoil();
    if (isOneOf(25) && awayFor == 0) takeNetworkAway();
    if (!agent) {
      if (isOneOf(2)) agent = start({.speed = kSpeed});
    } else if (isOneOf(12)) {
      end(isOneOf(2));
    } else if (isOneOf(30)) {
      sleep();
    }
    std::this_thread::sleep_for(kStep);
  }

  /// Everything is well again. @return what has not come right after all.
  [[nodiscard]] Losses peace() {
    service.clearFaults();
    service.resetRequestCounts();
    if (!agent) agent = start({.speed = kSpeed});
    const bool isSilent = !waitFor([this] { return !service.requests().isEmpty(); }, 5s);
    // What could not be had before is tried again at least daily.
    constexpr int kRefreshesInTwoDays = 2 * 2 * 48;
    static_cast<void>(waitFor(
        [this] { return service.requestCount(Endpoint::RefreshToken) >= kRefreshesInTwoDays || losses() == Losses(); },
        60s));
    service.resetRequestCounts();
    EXPECT_TRUE(waitForRuns(*agent)) << "so that what would be doubled is";
    end(false);
    Losses found = losses();
    found.silent = isSilent && !found.linkLost;
    return found;
  }

  std::mt19937 chance;
  std::unique_ptr<AgentProcess> agent;
  QDateTime now;
  Happened happened;
  int previews = 0;
  int awayFor = 0; ///< steps
};

TEST_F(Storm, leavesEveryPictureOnce) {
  const int seed = qEnvironmentVariableIntValue("KA_SWEEP_SEED");
  for (int month = 0; month < kMonths; ++month) {
    SCOPED_TRACE("seed " + std::to_string(seed + month));
    chance.seed(static_cast<unsigned>(seed + month));
    happened = {};
    forgetPictures();
    beginAnew();
    const QDateTime begin = QDateTime::currentDateTimeUtc().addDays(-kDays);
    for (int number = 0; number < kDays * kStepsADay; ++number) {
      now = begin.addSecs(number * (kSecondsADay / kStepsADay));
      step();
    }
    const Losses found = peace();
    EXPECT_EQ(found, Losses());
    std::cout << "storm " << seed + month << ": " << happened << "; " << found << '\n';
  }
}

} // namespace
