#include "engine/FileFetch.h"

#include "engine/KaPass.h"
#include "log/KaLogUtility.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int kAttempts = 4;

FetchedFile refused(const FileOrder &order, const SavedObject &saved) {
  KaLogUtility::writeConnectionResultLog(KaLogStep::Download, false, {order.logLine, httpLine(saved.statusCode)});
  if (saved.result != KaResultCode::ObjectMissing) return {FileOutcome::Failed, saved};
  KaLogUtility::writeInfoLog(u"Skip DownloadFile"_s,
                             {order.missingName + u" : Skip download because file not found."_s});
  return {FileOutcome::Missing, saved};
}

void writeDroppedLog(const FileOrder &order, const SavedObject &saved) {
  KaLogUtility::writeConnectionResultLog(KaLogStep::Download, false,
                                         {order.logLine, u"ReferenceFileSize=%1"_s.arg(order.save.refFileSize),
                                          u"FileSize=%1"_s.arg(saved.outputFileSize)});
}

} // namespace

FetchedFile fetchFile(const FileOrder &order, const KaPass &pass) {
  SaveOrder save = order.save;
  for (int attempt = 0;; ++attempt) {
    if (attempt > 0) KaLogUtility::writeInfoLog(u"Retry DownloadFile"_s, {u"RetryCount=%1"_s.arg(attempt)});
    save.bKeepWhatComes = attempt + 1 == kAttempts;
    const SavedObject saved = order.request(save);
    if (saved.result != KaResultCode::Success && saved.result != KaResultCode::DefaultFileName)
      return refused(order, saved);
    if (saved.bConfirmed) return {FileOutcome::Confirmed, saved};
    if (save.bKeepWhatComes) return {FileOutcome::Unconfirmed, saved};
    writeDroppedLog(order, saved);
    if (pass.isOver()) return {FileOutcome::Stopped, saved};
  }
}

void writeSavedLog(const FileOrder &order, const SavedObject &saved, const QString &path) {
  KaLogUtility::writeConnectionResultLog(
      KaLogStep::Download, true, {order.logLine, u"FilePath="_s + path, u"FileSize=%1"_s.arg(saved.outputFileSize)});
}
