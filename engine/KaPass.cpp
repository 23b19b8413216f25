#include "engine/KaPass.h"

#include "engine/DiskSpace.h"
#include "engine/KaDownloadProcessorDelegate.h"
#include "engine/KaDownloadSession.h"
#include "engine/KaFilledFolders.h"
#include "log/KaLogUtility.h"
#include "service/KaStorage.h"

KaPass::KaPass(const Parts &parts, const QString &parentFolder) : with(parts), parent(parentFolder) {
}

bool KaPass::beginItem(const QString &title, const QString &logLine) {
  thread.check();
  KaLogUtility::writeInfoLog(title, {logLine});
  if (carried() == KaResultCode::Success) {
    carry(with.session.renewIfExpiring());
    hasRenewalFailed = carried() != KaResultCode::Success;
  }
  return !isOver();
}

bool KaPass::isOver() const {
  return with.session.isOver();
}

bool KaPass::hasCredentials() const {
  return !hasRenewalFailed && !with.session.hasExpired();
}

KaPass::Verdict KaPass::judgeItem(qint64 size) {
  // A failure is carried over on purpose: what follows it is passed over until a check of a later item succeeds.
  if (carried() != KaResultCode::Success) return Verdict::PassOver;
  if (with.delegate.verifyDownloadOptionParentFolder(parent) != KaResultCode::Success) {
    carry(KaResultCode::FileNotSaved);
    return Verdict::Stop;
  }
  // What waits for its turn takes room, too.
  if (!checkDiskSpace(static_cast<float>(size), parent)) static_cast<void>(with.storage.giveUpAhead());
  if (hasRoomFor(size, parent)) return Verdict::Take;
  carry(KaResultCode::DiskFull);
  return isOver() ? Verdict::Stop : Verdict::PassOver;
}

void KaPass::countSaved(const QString &path) {
  ++outcomeSoFar.savedCount;
  saved = path;
}

void KaPass::endItem() {
  with.session.tell([this] { with.delegate.noteFile(saved); });
  saved.clear();
}

std::optional<QString> KaPass::makeFolder(const QString &folder) {
  auto made = with.filledFolders.make(folder, parent);
  if (!made && with.storage.giveUpAhead()) made = with.filledFolders.make(folder, parent);
  if (!made) carry(KaResultCode::FileNotSaved);
  return made;
}
