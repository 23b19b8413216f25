#include "tests/support/FlushedDisk.h"

#include "tests/support/TestProfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

ino_t FlushedDisk::numberOf(const QString &path) {
  struct stat status {};
  return ::lstat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_ino : 0;
}

FlushedDisk::Names FlushedDisk::namesIn(const QString &folder) const {
  Names names;
  const QDir::Filters all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
  for (const QFileInfo &entry : QDir(folder).entryInfoList(all)) {
    const auto content = contents.find(numberOf(entry.filePath()));
    // Of one that was not written to either there is nothing that could be torn.
    const QByteArray unflushed = entry.size() == 0 ? "" : "torn";
    names[entry.fileName()] =
        entry.isDir() ? std::optional<QByteArray>() : (content == contents.end() ? unflushed : content->second);
  }
  return names;
}

void FlushedDisk::keep(const QString &folder) {
  const QDir::Filters all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
  for (const QFileInfo &entry : QDir(folder).entryInfoList(all)) {
    if (entry.isDir()) {
      keep(entry.filePath());
    } else {
      contents[numberOf(entry.filePath())] = contentOf(entry.filePath());
    }
  }
  folders[folder] = namesIn(folder);
}

void FlushedDisk::flush(int descriptor) {
  const QString link = u"/proc/self/fd/%1"_s.arg(descriptor);
  struct stat status {};
  if (::fstat(descriptor, &status) != 0) return;
  if (S_ISDIR(status.st_mode)) {
    const QString path = QFile::symLinkTarget(link);
    folders[path] = namesIn(path);
  } else {
    contents[status.st_ino] = contentOf(link);
  }
}

void FlushedDisk::forget(ino_t number) {
  contents.erase(number);
}

void FlushedDisk::restore(const QString &folder, const QString &copy, bool isFlushedAlone) const {
  QDir().mkpath(copy);
  const auto flushed = folders.find(folder);
  const Names names = !isFlushedAlone ? namesIn(folder) : flushed == folders.end() ? Names() : flushed->second;
  for (const auto &[name, content] : names) {
    if (content) {
      writeFile(copy + u'/' + name, *content);
    } else {
      restore(folder + u'/' + name, copy + u'/' + name, isFlushedAlone);
    }
  }
}
