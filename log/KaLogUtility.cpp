#include "log/KaLogUtility.h"

#include "platform/Folders.h"
#include "platform/Mutex.h"
#include "platform/UserDefaults.h"

#include <QDateTime>
#include <QFile>

#include <array>
#include <atomic>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kTitleLineLength = 58;
constexpr qsizetype kTitleStartIndex = 3;

std::atomic<bool> outputLogSwitch = false;

QLatin1StringView stepTitle(KaLogStep step) {
  constexpr std::array kTitles = {
      "Get ClientId"_L1,
      "Get NorvaleId"_L1,
      "Get PublicKey"_L1,
      "Refresh NorvaleId"_L1,
      "Get Temporary Credentials"_L1,
      "Get DeviceList"_L1,
      "Get ExcludeDeviceList"_L1,
      "Get ImageList"_L1,
      "Get Exif"_L1,
      "Download"_L1,
      "Complete"_L1,
  };
  static_assert(kTitles.size() == static_cast<std::size_t>(KaLogStep::Complete) + 1);
  const auto index = static_cast<std::size_t>(step);
  return index < kTitles.size() ? kTitles[index] : QLatin1StringView();
}

void writeBlock(const QString &title, QChar symbol, const QStringList &message) {
  if (!KaLogUtility::outputLog()) return;
  KaLogUtility::writeLog(KaLogUtility::createTitleLine(title, symbol, kTitleLineLength, kTitleStartIndex), message);
}

/// The C library guards its time zone with a lock that thread sanitizers do not see; this one they do.
QDateTime currentLocalTime() {
  static platform::Mutex zone;
  const platform::MutexLock lock(zone);
  return QDateTime::currentDateTime();
}

void storeSwitch() {
  platform::standardUserDefaults().setBool(u"OutputLog"_s, outputLogSwitch);
}

} // namespace

bool KaLogUtility::initialize() {
  outputLogSwitch = false;
  return false;
}

void KaLogUtility::writeStartLog(const QStringList &details) {
  writeBlock(u"[START]"_s, u'*', details);
}

void KaLogUtility::writeEndLog() {
  writeBlock(u"[END]"_s, u'*', {});
}

void KaLogUtility::writeInfoLog(const QString &title, const QStringList &message) {
  writeBlock(title, u'=', message);
}

void KaLogUtility::writeConnectionResultLog(KaLogStep step, bool connectionResult, const QStringList &message) {
  const QString title = u"[%1] %2: %3"_s.arg(connectionResult ? u"OK"_s : u"NG"_s)
                            .arg(static_cast<quint64>(step), 3, 10, QChar(u'0'))
                            .arg(stepTitle(step));
  writeBlock(title, u'-', message);
}

void KaLogUtility::writeErrorLog(const std::optional<QString> &message, const std::optional<QStringList> &stackTrace) {
  QStringList details;
  if (message) details << *message;
  if (stackTrace) details << u"<STACK TRACE>"_s << *stackTrace;
  writeBlock(u"ERROR"_s, u'#', details);
}

void KaLogUtility::switchLogStatus() {
  // Two at once must invert twice.
  bool before = outputLogSwitch;
  while (!outputLogSwitch.compare_exchange_weak(before, !before)) {
  }
  storeSwitch();
}

bool KaLogUtility::outputLog() {
  return outputLogSwitch;
}

bool KaLogUtility::terminate() {
  storeSwitch();
  return true;
}

std::optional<QString> KaLogUtility::outputLogFilePath() {
  const QString folder = platform::applicationSupportFolder() + u"/NORVALE INC/Downloaderpictora/Log"_s;
  if (!platform::makePrivateFolder(folder)) return {};
  return folder;
}

QString KaLogUtility::createTitleLine(const QString &title, QChar symbol, qsizetype titleLineLength,
                                      qsizetype titleStartIndex) {
  const qsizetype titleIndex = titleStartIndex + 1;
  if (titleLineLength <= titleStartIndex) return QString(titleLineLength, symbol);
  QString line = QString(titleStartIndex, symbol) + u' ';
  if (titleLineLength <= titleIndex) return line;
  line += title;
  if (line.size() < titleLineLength) line += u' ';
  return line.leftJustified(titleLineLength, symbol);
}

void KaLogUtility::writeLog(const QString &titleLine, const QStringList &message) {
  const std::optional<QString> folder = outputLogFilePath();
  if (!folder) return;

  const QDateTime now = currentLocalTime();
  QString block = u"[%1] %2\n"_s.arg(now.toString(u"yyyy/MM/dd HH:mm:ss"), titleLine);
  for (const QString &detail : message)
    block += u"    "_s + detail + u'\n';

  // Unbuffered and appending: the block is one write, so that blocks of two threads never mix.
  QFile file(*folder + u"/Downloaderpictora_%1.log"_s.arg(now.toString(u"yyyyMMdd")));
  if (!file.open(QFile::WriteOnly | QFile::Append | QFile::Unbuffered, QFile::ReadOwner | QFile::WriteOwner)) return;
  file.write(block.toUtf8());
}
