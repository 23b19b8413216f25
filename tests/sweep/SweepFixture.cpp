#include "tests/sweep/SweepFixture.h"

#include "identity/KaLinkageUtility.h"
#include "sandbox/SampleLibrary.h"
#include "settings/SettingsFiles.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using sandbox::Endpoint;

namespace {

constexpr auto kOrdinary = "recent"_L1;
constexpr auto kLongTerm = "long-term"_L1;

void copyFolder(const QString &from, const QString &to) {
  QDir(to).removeRecursively();
  QDir().mkpath(to);
  for (const QString &file : filesBelow(from))
    writeFile(to + u'/' + file, contentOf(from + u'/' + file));
  for (QDirIterator it(from, QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories); it.hasNext();)
    QDir().mkpath(to + u'/' + QDir(from).relativeFilePath(it.next()));
}

void order(const char *variable, const QByteArray &value) {
  if (value.isEmpty()) {
    qunsetenv(variable);
  } else {
    qputenv(variable, value);
  }
}

} // namespace

Losses &Losses::operator+=(const Losses &more) {
  lost += more.lost;
  doubled += more.doubled;
  broken += more.broken;
  leftOver += more.leftOver;
  silent += more.silent;
  linkLost += more.linkLost;
  return *this;
}

std::ostream &operator<<(std::ostream &out, const Losses &losses) {
  return out << "lost " << losses.lost << ", doubled " << losses.doubled << ", broken " << losses.broken
             << ", left over " << losses.leftOver << ", silent " << losses.silent << ", link lost " << losses.linkLost;
}

SweepTest::SweepTest(const QHash<QString, QString> &defaults)
    : userDefaults([&] {
        auto values = service.userDefaults();
        values.insert(u"firstLaunch"_s, u"false"_s);
        values.insert(u"PollingNormalWaitTime"_s, u"60"_s);
        values.insert(defaults);
        return values;
      }()) {
  forgetPictures();
}

void SweepTest::forgetPictures() {
  pictures.clear();
  service.library().clear();
  service.library().setSettingsObject(R"({"applicationAliasIds":[],"isEnableDownload10GStorage":true})");
}

void SweepTest::add(sandbox::LibraryObject object) {
  const auto number = pictures[kOrdinary].size() + pictures[kLongTerm].size();
  object.body += " picture " + QByteArray::number(number);
  service.library().add(object);
  pictures[kOrdinary] << object.expandBody.value_or(object.body);
  if (object.tags.value(u"x-strata-storage-period"_s) != u"30") pictures[kLongTerm] << object.body;
}

void SweepTest::addPreviews(int count) {
  QList<sandbox::SamplePreview> previews;
  for (int index = 1; index <= count; ++index) {
    const QByteArray body = "preview " + QByteArray::number(index) + QByteArray(700, 'v');
    if (!pictures[kLongTerm].contains(body)) pictures[kLongTerm] << body;
    previews.append({index, u"%1.x"_s.arg(index), body, u"P%1.JPG"_s.arg(index), u"2024-05-0%1T12:00:00"_s.arg(index)});
  }
  sandbox::addPreviews(service.library(), previews);
}

QStringList SweepTest::roots() const {
  return {profile.dataFolder(), profile.configFolder(), profile.picturesFolder()};
}

void SweepTest::beginAnew() {
  for (const QString &root : roots())
    QDir(root).removeRecursively();
  profile.writeUserDefaults(userDefaults);
  const QString ordinary = profile.picturesFolder() + u'/' + kOrdinary;
  const QString longTerm = profile.picturesFolder() + u'/' + kLongTerm;
  QDir().mkpath(ordinary);
  QDir().mkpath(longTerm);
  const bool isSaved = ensureAppFolder() && saveDownloadOption({.parentFolder = ordinary, .parent10GFolder = longTerm});
  if (!isSaved) throw std::runtime_error("no profile");
  link();
}

void SweepTest::link() {
  const sandbox::LinkedToken linked = service.issueLinkedToken();
  if (!KaLinkageUtility::saveLinkageSetting(linked.idToken) || !KaLinkageUtility::saveTokenCode(linked.tokenCode))
    throw std::runtime_error("no link");
  service.resetRequestCounts();
}

void SweepTest::putAside() const {
  for (const QString &root : roots())
    copyFolder(root, profile.path(u"aside"_s) + root.sliced(profile.path().size()));
}

void SweepTest::beginAgain() {
  for (const QString &root : roots())
    copyFolder(profile.path(u"aside"_s) + root.sliced(profile.path().size()), root);
  link();
}

std::unique_ptr<AgentProcess> SweepTest::start(const Around &around) const {
  QByteArray alone;
  if (!around.keepsOwn) alone += "01";
  if (!around.keepsPictures) alone += "2";
  QDir(profile.path(u"left"_s)).removeRecursively();
  order("LD_PRELOAD", KA_SURROUNDINGS);
  order("KA_SWEEP_ROOTS", QFile::encodeName(roots().join(u':')));
  order("KA_SWEEP_END", QByteArray::number(around.endAt));
  order("KA_SWEEP_COPY", around.isCut ? QFile::encodeName(profile.path(u"left"_s)) : QByteArray());
  order("KA_SWEEP_ALONE", alone);
  order("KA_SWEEP_PLAIN", around.isPlain ? "1" : "");
  order("KA_SWEEP_SPEED", QByteArray::number(around.speed));
  auto agent = std::make_unique<AgentProcess>();
  order("LD_PRELOAD", {});
  return agent;
}

bool SweepTest::waitForRuns(const AgentProcess &agent) const {
  constexpr int kRefreshes = 5; // a run makes two
  static_cast<void>(
      waitFor([&] { return !agent.isRunning() || service.requestCount(Endpoint::RefreshToken) >= kRefreshes; }));
  return service.requestCount(Endpoint::RefreshToken) >= kRefreshes;
}

void SweepTest::takeUpWhatIsLeft() const {
  for (qsizetype number = 0; number < roots().size(); ++number)
    copyFolder(profile.path(u"left/%1"_s.arg(number)), roots()[number]);
}

QStringList SweepTest::leftOver() const {
  // What QSaveFile calls a file until it is whole.
  static const QRegularExpression temporary(uR"(\.[A-Za-z0-9]{6}$)"_s);
  return (filesBelow(profile.dataFolder()) + filesBelow(profile.configFolder())).filter(temporary);
}

Losses SweepTest::losses() const {
  Losses found;
  for (const auto &[folder, expected] : pictures.asKeyValueRange()) {
    QHash<QByteArray, int> arrived;
    const QString path = profile.picturesFolder() + u'/' + folder;
    for (const QString &file : filesBelow(path))
      ++arrived[contentOf(path + u'/' + file)];
    for (const QByteArray &picture : expected) {
      const int times = arrived.take(picture);
      found.lost += times == 0;
      found.doubled += std::max(0, times - 1);
    }
    for (const int files : std::as_const(arrived))
      found.broken += files;
  }
  found.leftOver = static_cast<int>(leftOver().size());
  found.linkLost = !KaLinkageUtility::loadLinkageSetting() || !KaLinkageUtility::loadTokenCode();
  return found;
}
