#include "tests/engine/FakeDelegate.h"

using namespace Qt::StringLiterals;

void FakeDelegate::change(const std::function<void(Answers &)> &edit) {
  const std::lock_guard lock(mutex);
  edit(current);
}

// What leaves here shares no data with what stays, since Qt's counting of shares is invisible to thread checkers.
FakeDelegate::Answers FakeDelegate::answers() const {
  const std::lock_guard lock(mutex);
  Answers copy = current;
  for (KaDownloadData &record : copy.records)
    record.ContentIds.detach();
  return copy;
}

QStringList FakeDelegate::events() const {
  const std::lock_guard lock(mutex);
  QStringList copy = told;
  copy.detach();
  return copy;
}

void FakeDelegate::forgetEvents() {
  const std::lock_guard lock(mutex);
  told.clear();
}

bool FakeDelegate::waitForEvent(const QString &event, int times) const {
  std::unique_lock lock(mutex);
  return noted.wait_for(lock, std::chrono::seconds(20), [&] { return told.count(event) >= times; });
}

KaDownloadOption FakeDelegate::downloadOption() const {
  return answers().option;
}

void FakeDelegate::setDownloadOption(const KaDownloadOption &option) {
  change([&](Answers &answers) { answers.option = option; });
}

KaResultCode FakeDelegate::verifyDownloadOptionParentFolder(const QString &) const {
  return answers().folderVerdict;
}

void FakeDelegate::loadWaitTimeInfo(KaWaitTimes &waitTimes) const {
  waitTimes = answers().waits;
}

bool FakeDelegate::bLoggedIn() const {
  const Answers now = answers();
  if (now.onBLoggedIn) now.onBLoggedIn();
  return answers().loggedIn;
}

std::optional<QString> FakeDelegate::loadLinkageSetting() const {
  return answers().token;
}

bool FakeDelegate::saveLinkageSetting(const QString &idToken) {
  change([&](Answers &answers) { answers.token = idToken; });
  note(u"saveLinkage"_s);
  return true;
}

void FakeDelegate::setDownloadDataUUID(const QString &key) {
  change([&](Answers &answers) {
    if (!answers.records.contains(key)) answers.records.insert(key, {});
  });
}

void FakeDelegate::setDownloadDataAddContent(const QString &key, const QString &contentId) {
  change([&](Answers &answers) { answers.records[key].ContentIds << contentId; });
}

void FakeDelegate::setDownloadDataNewDate(const QString &key, const QString &lastDateTime, const QString &contentId) {
  change([&](Answers &answers) { answers.records[key] = {lastDateTime, {contentId}}; });
}

std::optional<QString> FakeDelegate::downloadDataLastDateTime(const QString &key) const {
  const auto records = answers().records;
  return records.contains(key) ? std::optional(records[key].LastDateTime) : std::nullopt;
}

std::optional<QStringList> FakeDelegate::downloadDataContentIds(const QString &key) const {
  const auto records = answers().records;
  return records.contains(key) ? std::optional(records[key].ContentIds) : std::nullopt;
}

bool FakeDelegate::loadGetImageInfo(const QString &fileName) {
  note(u"load "_s + fileName);
  return true;
}

bool FakeDelegate::saveGetImageInfo(const QString &fileName, const QString &uuidKey) {
  note(u"save "_s + fileName + u' ' + uuidKey);
  return answers().saves;
}

void FakeDelegate::setAppStatus(KaAppStatus status) {
  note(u"status %1"_s.arg(static_cast<qint64>(status)));
}

void FakeDelegate::setProcessingResult(KaResultCode result, bool userTrigger) {
  note(u"result %1%2"_s.arg(static_cast<qint64>(result)).arg(userTrigger ? u" by user"_s : QString()));
}

void FakeDelegate::setEnableLoggin(bool enable) {
  note(u"enableLoggin %1"_s.arg(int(enable)));
}

void FakeDelegate::notifyDownloadProcessFinish() {
  note(u"finish"_s);
}

void FakeDelegate::note(const QString &event) {
  const std::lock_guard lock(mutex);
  told << event;
  noted.notify_all();
}
