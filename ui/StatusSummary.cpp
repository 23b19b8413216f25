#include "ui/StatusSummary.h"

#include "app/ResultMeaning.h"

#include <QFileInfo>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

/// What is wrong, by what has to be done about it.
enum class Trouble { None, WrongClock, Login, DiskFull, NotSaved, Offline, Passing };

/// What the headline is about.
enum class Topic {
  NotLinked,
  AwaitsFolders,
  WrongClock,
  LoginNeeded,
  DiskFull,
  NotSaved,
  Fetching,
  Looking,
  Offline,
  Failed,
  StillToCome,
  NotLookedYet,
  UpToDate,
};

bool isClockOff(const KaSnapshot &snapshot) {
  return std::chrono::abs(snapshot.clockAhead) > KaSnapshot::kClockTolerance;
}

Trouble loginTrouble(KaFaultCause cause) {
  return cause == KaFaultCause::NoAnswer ? Trouble::Offline : Trouble::Login;
}

Trouble troubleOf(const KaFault &fault) {
  switch (meaningOf(fault.result)) {
  case ResultMeaning::Login:
    return loginTrouble(fault.cause);
  case ResultMeaning::Saving:
    return fault.result == KaResultCode::DiskFull ? Trouble::DiskFull : Trouble::NotSaved;
  case ResultMeaning::Service:
    return fault.result == KaResultCode::Offline ? Trouble::Offline : Trouble::Passing;
  case ResultMeaning::Unexpected:
    return Trouble::Passing;
  case ResultMeaning::Good:
  case ResultMeaning::NoVerdict:
    return Trouble::None;
  }
  return Trouble::None;
}

/// With a wrong clock the service refuses all, by whatever result that comes out; what lies on this computer's disk or
/// on the way to the service is not of the clock.
Trouble troubleOf(const KaSnapshot &snapshot) {
  if (!snapshot.fault) return Trouble::None;
  const Trouble trouble = troubleOf(*snapshot.fault);
  const bool mayBeRefusal = trouble == Trouble::Login || trouble == Trouble::Passing;
  if (snapshot.fault->cause == KaFaultCause::WrongClock || (mayBeRefusal && isClockOff(snapshot)))
    return Trouble::WrongClock;
  return trouble;
}

std::optional<Topic> topicForTheUser(Trouble trouble) {
  switch (trouble) {
  case Trouble::WrongClock:
    return Topic::WrongClock;
  case Trouble::Login:
    return Topic::LoginNeeded;
  case Trouble::DiskFull:
    return Topic::DiskFull;
  case Trouble::NotSaved:
    return Topic::NotSaved;
  case Trouble::None:
  case Trouble::Offline:
  case Trouble::Passing:
    return std::nullopt;
  }
  return std::nullopt;
}

bool isFetching(const KaSnapshot &snapshot) {
  return snapshot.doing == KaSnapshot::Doing::Fetching && snapshot.toFetch > 0;
}

Topic topicOf(const KaSnapshot &snapshot) {
  if (snapshot.linkState == KaLinkState::Unlinked) return Topic::NotLinked;
  if (snapshot.linkState == KaLinkState::AwaitsFolders) return Topic::AwaitsFolders;
  const Trouble trouble = troubleOf(snapshot);
  if (const auto topic = topicForTheUser(trouble)) return *topic;
  if (isFetching(snapshot)) return Topic::Fetching;
  if (snapshot.doing != KaSnapshot::Doing::Waiting) return Topic::Looking;
  if (!snapshot.hasNetwork || trouble == Trouble::Offline) return Topic::Offline;
  if (trouble == Trouble::Passing) return Topic::Failed;
  if (snapshot.stillToCome > 0) return Topic::StillToCome;
  return snapshot.lastLook ? Topic::UpToDate : Topic::NotLookedYet;
}

StatusFrame frameOf(Topic topic) {
  switch (topic) {
  case Topic::NotLinked:
    return StatusFrame::Unlink;
  case Topic::WrongClock:
  case Topic::LoginNeeded:
  case Topic::DiskFull:
  case Topic::NotSaved:
  case Topic::Offline:
  case Topic::Failed:
    return StatusFrame::Error;
  case Topic::Fetching:
    return StatusFrame::Receive4;
  case Topic::Looking:
    return StatusFrame::Receive1;
  case Topic::AwaitsFolders:
  case Topic::StillToCome:
  case Topic::NotLookedYet:
  case Topic::UpToDate:
    return StatusFrame::Standby;
  }
  return StatusFrame::Standby;
}

StatusText fetching(const KaSnapshot &snapshot) {
  const QLocale locale;
  return {.key = "STATUS_FETCHING"_L1,
          .arguments = {locale.toString(snapshot.fetched), locale.toString(snapshot.toFetch)}};
}

StatusText headlineOf(Topic topic, const KaSnapshot &snapshot) {
  switch (topic) {
  case Topic::NotLinked:
    return {"STATUS_NOT_LINKED"_L1};
  case Topic::AwaitsFolders:
    return {"STATUS_AWAITS_FOLDERS"_L1};
  case Topic::WrongClock:
    return {"STATUS_WRONG_CLOCK"_L1};
  case Topic::LoginNeeded:
    return {"STATUS_LOGIN_NEEDED"_L1};
  case Topic::DiskFull:
    return {"STATUS_DISK_FULL"_L1};
  case Topic::NotSaved:
    return {"STATUS_NOT_SAVED"_L1};
  case Topic::Fetching:
    return fetching(snapshot);
  case Topic::Looking:
    return {"STATUS_LOOKING"_L1};
  case Topic::Offline:
    return {"STATUS_OFFLINE"_L1};
  case Topic::Failed:
    return {"STATUS_FAILED"_L1};
  case Topic::StillToCome:
    return {.key = "STATUS_STILL_TO_COME"_L1, .count = snapshot.stillToCome};
  case Topic::NotLookedYet:
    return {"STATUS_NOT_LOOKED_YET"_L1};
  case Topic::UpToDate:
    return {"STATUS_UP_TO_DATE"_L1};
  }
  return {};
}

QString momentText(const QDateTime &moment, const QDateTime &now) {
  const QLocale locale;
  const QDateTime local = moment.toLocalTime();
  return local.date() == now.date() ? locale.toString(local.time(), QLocale::ShortFormat)
                                    : locale.toString(local, QLocale::ShortFormat);
}

StatusText clockHint(const KaSnapshot &snapshot, const QDateTime &now) {
  const QDateTime right = now.addSecs(-snapshot.clockAhead.count());
  return {.key = "STATUS_WRONG_CLOCK_HINT"_L1, .arguments = {momentText(now, now), momentText(right, now)}};
}

/// The fault in the words that it was told in.
StatusText toldOf(const KaFault &fault) {
  return {resultEffect(fault.result, fault.cause).messageKey};
}

/// When the next look is, unless that has passed: what was due waits for something else.
std::optional<QString> nextLook(const KaSnapshot &snapshot, const QDateTime &now) {
  if (!snapshot.nextLook || *snapshot.nextLook <= now) return std::nullopt;
  return momentText(*snapshot.nextLook, now);
}

StatusText offlineHint(const KaSnapshot &snapshot, const QDateTime &now) {
  if (const auto next = nextLook(snapshot, now)) return {.key = "STATUS_OFFLINE_UNTIL_HINT"_L1, .arguments = {*next}};
  return {"STATUS_OFFLINE_HINT"_L1};
}

std::optional<StatusText> explanationOf(Topic topic, const KaSnapshot &snapshot, const QDateTime &now) {
  if (isClockOff(snapshot) && topic != Topic::DiskFull && topic != Topic::NotSaved) return clockHint(snapshot, now);
  switch (topic) {
  case Topic::NotLinked:
    return snapshot.fault ? toldOf(*snapshot.fault) : StatusText{"STATUS_NOT_LINKED_HINT"_L1};
  case Topic::AwaitsFolders:
    return StatusText{"STATUS_AWAITS_FOLDERS_HINT"_L1};
  case Topic::DiskFull:
    return StatusText{"MSG_ERR_DISK_FULL"_L1};
  case Topic::NotSaved:
    return StatusText{"MSG_ERR_DOWNLOAD"_L1};
  case Topic::Offline:
    return offlineHint(snapshot, now);
  case Topic::WrongClock: // which has been set right since
    return StatusText{"MSG_ERR_CLOCK"_L1};
  case Topic::LoginNeeded:
  case Topic::Failed:
    return toldOf(*snapshot.fault);
  case Topic::StillToCome:
    return StatusText{"STATUS_STILL_TO_COME_HINT"_L1};
  case Topic::Fetching:
  case Topic::Looking:
  case Topic::NotLookedYet:
  case Topic::UpToDate:
    return std::nullopt;
  }
  return std::nullopt;
}

QList<StatusText> factsOf(Topic topic, const KaSnapshot &snapshot, const QDateTime &now) {
  QList<StatusText> facts;
  if (topic == Topic::NotLinked || topic == Topic::AwaitsFolders) return facts;
  if (topic != Topic::Fetching && isFetching(snapshot)) facts << fetching(snapshot);
  if (topic != Topic::StillToCome && snapshot.stillToCome > 0)
    facts << StatusText{.key = "STATUS_TO_COME"_L1, .count = snapshot.stillToCome};
  if (snapshot.cameToday > 0 || snapshot.lastLook)
    facts << StatusText{.key = "STATUS_TODAY"_L1, .count = snapshot.cameToday};
  if (snapshot.lastLook)
    facts << StatusText{.key = "STATUS_LAST_LOOK"_L1, .arguments = {momentText(*snapshot.lastLook, now)}};
  const auto next = nextLook(snapshot, now);
  if (next && topic != Topic::Offline) facts << StatusText{.key = "STATUS_NEXT_LOOK"_L1, .arguments = {*next}};
  return facts;
}

/// What certificates or the unexpected want is more than a sentence.
StatusRemedy remedyForFailure(KaResultCode result) {
  const bool needsHelp = result == KaResultCode::SecureConnectionFailed || result == KaResultCode::Unexpected;
  return needsHelp ? StatusRemedy::OpenHelp : StatusRemedy::LookNow;
}

/// A link that was refused is not looked at again, whatever the clock shows by then.
StatusRemedy remedyForClock(const KaFault &fault) {
  return clickEffect(fault.result, fault.cause) == ClickEffect::Link ? StatusRemedy::LogIn : StatusRemedy::LookNow;
}

StatusRemedy remedyOf(Topic topic, const KaSnapshot &snapshot) {
  switch (topic) {
  case Topic::NotLinked:
  case Topic::LoginNeeded:
    return StatusRemedy::LogIn;
  case Topic::DiskFull:
  case Topic::NotSaved:
    return snapshot.fault->isOf10GStorage ? StatusRemedy::Choose10GFolder : StatusRemedy::ChooseFolder;
  case Topic::Failed:
    return remedyForFailure(snapshot.fault->result);
  case Topic::WrongClock:
    return remedyForClock(*snapshot.fault);
  case Topic::AwaitsFolders:
    return StatusRemedy::None;
  case Topic::Fetching:
  case Topic::Looking:
  case Topic::Offline:
  case Topic::StillToCome:
  case Topic::NotLookedYet:
  case Topic::UpToDate:
    return StatusRemedy::LookNow;
  }
  return StatusRemedy::None;
}

StatusText roomText(const QString &path, const FolderRoom &room) {
  const auto asked = room.constFind(path);
  if (asked == room.constEnd()) return {};
  if (!*asked) return {"STATUS_FOLDER_MISSING"_L1};
  return {.key = "STATUS_FREE_ROOM"_L1,
          .arguments = {QLocale().formattedDataSize(**asked, 1, QLocale::DataSizeSIFormat)}};
}

/// Long names are cut in the middle, so that one does not widen the window.
QString shownName(const QString &path) {
  constexpr qsizetype most = 24;
  const QString name = QFileInfo(path).fileName();
  if (name.isEmpty()) return path;
  return name.size() <= most ? name : name.first(most / 2) + u'…' + name.last(most / 2 - 1);
}

} // namespace

StatusSummary statusSummary(const KaSnapshot &snapshot, const QDateTime &now) {
  const Topic topic = topicOf(snapshot);
  StatusSummary summary{.frame = frameOf(topic),
                        .headline = headlineOf(topic, snapshot),
                        .explanation = explanationOf(topic, snapshot, now),
                        .facts = factsOf(topic, snapshot, now),
                        .remedy = remedyOf(topic, snapshot)};
  const bool isLinked = snapshot.linkState == KaLinkState::Linked;
  if (isLinked && isFetching(snapshot)) summary.progress = {snapshot.fetched, snapshot.toFetch};
  // A run is under way already, or may not be cut off by a login.
  if (summary.remedy == StatusRemedy::LookNow || summary.remedy == StatusRemedy::LogIn)
    summary.isRemedyEnabled = snapshot.doing == KaSnapshot::Doing::Waiting;
  return summary;
}

QList<StatusFolder> statusFolders(const KaDownloadOption &option, const FolderRoom &room) {
  QStringList paths{option.parentFolder};
  if (option.checkBox10GDownload == u"true") paths << option.parent10GFolder;
  paths.removeDuplicates();
  paths.removeAll(QString());
  QList<StatusFolder> folders;
  for (const QString &path : std::as_const(paths))
    folders.append({path, shownName(path), roomText(path, room)});
  return folders;
}
