#include "service/ArrivingObject.h"

#include "log/KaLogUtility.h"
#include "platform/FileNames.h"
#include "platform/VolumeFacts.h"
#include "service/SavedFileName.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

/// @p path with its last component made plainer.
QString plainerPath(const QString &path) {
  const QFileInfo file(path);
  return file.path() + u'/' + platform::plainerName(file.fileName());
}

} // namespace

ArrivingObject::ArrivingObject(const QString &path) : defaultFilePath(path), folder(QFileInfo(path).path()) {
}

bool ArrivingObject::take(const char *bytes, std::size_t count) {
  if (!file) file = platform::UnpublishedFile::create(folder);
  return file->write(bytes, count);
}

bool ArrivingObject::finish(const QDateTime &modified) {
  if (!file || !file->sync()) return false;
  file->setDates(modified);
  return true;
}

ArrivingObject::Placing ArrivingObject::publish(const QString &name, const std::function<bool()> &shallEnd) {
  using enum platform::UnpublishedFile::Publish;
  using Placing::Outcome::Ended, Placing::Outcome::Saved, Placing::Outcome::WasThere;
  const qsizetype longest = platform::longestName(folder);
  QString target = targetFilePath(defaultFilePath, name, longest);
  for (unsigned counter = 0;;) {
    const QString path = counter == 0 ? target : numberedFilePath(target, counter, longest);
    const auto outcome = file->publish(path);
    if (outcome == Published) return {Saved, path};
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

KaResultCode ArrivingObject::failure(const QString &path) const {
  if (file && file->fault() == platform::FileFault::DiskFull) return KaResultCode::DiskFull;
  KaLogUtility::writeInfoLog(u"Save File Error"_s, {u"FilePath="_s + path});
  return KaResultCode::FileNotSaved;
}
