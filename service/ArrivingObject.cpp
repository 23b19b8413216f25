#include "service/ArrivingObject.h"

#include "platform/FileNames.h"
#include "platform/VolumeFacts.h"
#include "service/SavedFileName.h"

#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// @p path with its last component made plainer.
QString plainerPath(const QString &path) {
  const QFileInfo file(path);
  return file.path() + u'/' + platform::plainerName(file.fileName());
}

} // namespace

ArrivingObject::ArrivingObject(QString madeIn) : folder(std::move(madeIn)) {
}

bool ArrivingObject::take(const char *bytes, std::size_t count) {
  if (!file) file = platform::UnpublishedFile::create(folder);
  if (!file->write(bytes, count)) return false;
  taken += static_cast<qint64>(count);
  return true;
}

bool ArrivingObject::sync() {
  if (!isSynced) isSynced = file && file->sync();
  return isSynced;
}

void ArrivingObject::setDates(const QDateTime &modified) {
  file->setDates(modified);
}

ArrivingObject::Placing ArrivingObject::publish(const QString &defaultFilePath, const QString &name,
                                                const std::function<bool()> &shallEnd) {
  using enum platform::UnpublishedFile::Publish;
  using Placing::Outcome::Ended, Placing::Outcome::Elsewhere, Placing::Outcome::Saved, Placing::Outcome::WasThere;
  const qsizetype longest = platform::longestName(QFileInfo(defaultFilePath).path());
  QString target = targetFilePath(defaultFilePath, name, longest);
  for (unsigned counter = 0;;) {
    const QString path = counter == 0 ? target : numberedFilePath(target, counter, longest);
    const auto outcome = file->publish(path);
    if (outcome == Published) return {Saved, path};
    if (outcome == AcrossVolumes) return {Elsewhere, path};
    if (outcome == NameTaken) {
      if (file->isSameAs(path, shallEnd)) return {WasThere, path};
      if (shallEnd()) return {Ended, path};
      ++counter;
      continue;
    }
    const QString plainer = plainerPath(target);
    if (outcome != NameRefused || plainer == target) return {Placing::Outcome::Failed, path};
    target = plainer;
    counter = 0;
  }
}

KaResultCode ArrivingObject::failure() const {
  const bool isFull = file && file->fault() == platform::FileFault::DiskFull;
  return isFull ? KaResultCode::DiskFull : KaResultCode::FileNotSaved;
}
