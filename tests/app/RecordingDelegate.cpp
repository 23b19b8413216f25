#include "tests/app/RecordingDelegate.h"

using namespace Qt::StringLiterals;

namespace {

const QString kOtherThread = u"(thread) "_s;

QString word(bool value) {
  return value ? u"true"_s : u"false"_s;
}

} // namespace

void RecordingDelegate::onChangeStatus(KaModelFacade &, KaAppStatus statusMode) {
  note(u"status %1"_s.arg(static_cast<qint64>(statusMode)));
}

void RecordingDelegate::onProcessingResult(KaModelFacade &, KaResultCode result, bool userTrigger) {
  note(u"result %1 %2"_s.arg(static_cast<qint64>(result)).arg(word(userTrigger)));
}

void RecordingDelegate::onCompleteLinkageSetting() {
  note(u"login complete"_s);
}

void RecordingDelegate::onSetEnableLogginMenu(bool enable) {
  note(u"login menu "_s + word(enable));
}

void RecordingDelegate::onFinishDownloadProcess() {
  note(u"finished"_s);
}

void RecordingDelegate::onChangeLinkage(bool linked) {
  note(u"linkage "_s + word(linked));
}

QStringList RecordingDelegate::reports() const {
  const platform::MutexLock scope(lock);
  // Copied for good: a list that is shared and let go of outside the lock may still be appended to in place inside.
  return {noted.begin(), noted.end()};
}

QStringList RecordingDelegate::ownReports() const {
  QStringList own = reports();
  own.removeIf([](const QString &report) { return report.startsWith(kOtherThread); });
  return own;
}

void RecordingDelegate::note(const QString &report) {
  const bool own = QThread::currentThreadId() == ownThread;
  const platform::MutexLock scope(lock);
  noted.append(own ? report : kOtherThread + report);
}
