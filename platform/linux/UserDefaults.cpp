#include "platform/UserDefaults.h"

#include "platform/Folders.h"
#include "platform/NoDestructor.h"
#include "platform/PrivateFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

/// What the library reads as a whole, and without asking what it is.
bool isFit(const QString &path) {
  const QFileInfo info(path);
  return !info.exists() || (info.isFile() && info.size() <= kSmallFileLimit);
}

/// What a kill in mid write left. The lock of a process that only looks alive would hold the next write up for 30 s.
void sweep(const QFileInfo &file) {
  sweepReplacements(file.path(), {file.fileName()});
  for (const QString &lock : {file.filePath() + u".lock"_s, file.filePath() + u".lock.rmlock"_s})
    if (const QFileInfo info(lock); info.isFile() && !info.isSymLink()) QFile::remove(lock);
}

} // namespace

class UserDefaults::Private {
public:
  explicit Private(const QString &file) : path(file) {
    if (isFit(path)) open();
  }

  void open() KA_REQUIRES(lock) {
    settings.emplace(path, QSettings::IniFormat);
    // Each change would post it an event that another thread may handle, past the lock; all are written at once anyway.
    settings->moveToThread(nullptr);
  }

  /// Storing reads the file again. @return whether there is none by now that must not be read.
  [[nodiscard]] bool makeWay() KA_REQUIRES(lock) {
    if (!isFit(path) && !QFile::remove(path)) return false;
    if (!settings) open();
    return true;
  }

  /// An empty file of the right mode before there is anything to read in it.
  void makeFile() KA_REQUIRES(lock) {
    QFile file(path);
    if (!file.exists()) file.open(QFile::WriteOnly | QFile::NewOnly, QFile::ReadOwner | QFile::WriteOwner);
  }

  void writeOut() KA_REQUIRES(lock) {
    settings->sync();
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
    syncFolder(QFileInfo(path).canonicalPath());
  }

  const QString path;
  mutable Mutex lock;
  std::optional<QSettings> settings KA_GUARDED_BY(lock); ///< absent while the file must not be read
  QHash<QString, QString> registered KA_GUARDED_BY(lock);
};

UserDefaults::UserDefaults(const QString &path) {
  const QFileInfo file(path);
  // A folder that cannot be made shows when the first value is stored.
  [[maybe_unused]] const bool made = makePrivateFolder(file.path());
  sweep(file);
  d = std::make_unique<Private>(path);
}

UserDefaults::~UserDefaults() = default;

std::optional<QString> UserDefaults::string(const QString &key) const {
  const MutexLock scope(d->lock);
  if (d->settings && d->settings->contains(key)) {
    // The INI form reads an unquoted comma as a list.
    return d->settings->value(key).toStringList().join(u", "_s);
  }
  if (const auto found = d->registered.constFind(key); found != d->registered.cend()) return *found;
  return std::nullopt;
}

bool UserDefaults::boolValue(const QString &key) const {
  const QString text = string(key).value_or(QString()).trimmed();
  static const NoDestructor<QRegularExpression> kTrue(u"^([yYtT]|[+-]?0*[1-9])"_s);
  return kTrue->match(text).hasMatch();
}

qint64 UserDefaults::integerValue(const QString &key) const {
  static const NoDestructor<QRegularExpression> kLeadingNumber(u"^\\s*([+-]?[0-9]+)"_s);
  const QString text = string(key).value_or(QString());
  return kLeadingNumber->match(text).captured(1).toLongLong();
}

std::optional<double> UserDefaults::doubleValue(const QString &key) const {
  const auto text = string(key);
  bool isNumber = false;
  const double number = text ? text->toDouble(&isNumber) : 0;
  return isNumber ? std::optional(number) : std::nullopt;
}

void UserDefaults::setString(const QString &key, const QString &value) {
  const MutexLock scope(d->lock);
  if (!d->makeWay()) {
    d->registered.insert(key, value);
    return;
  }
  d->makeFile();
  d->settings->setValue(key, value);
  d->writeOut();
}

void UserDefaults::setBool(const QString &key, bool value) {
  setString(key, value ? u"true"_s : u"false"_s);
}

void UserDefaults::registerDefaults(const QHash<QString, QString> &defaults) {
  const MutexLock scope(d->lock);
  d->registered.insert(defaults);
}

UserDefaults &standardUserDefaults() {
  static NoDestructor<UserDefaults> defaults(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
                                             + u"/NORVALE INC/Downloaderpictora.conf"_s);
  return *defaults;
}

} // namespace platform
