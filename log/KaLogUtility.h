#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// The steps of a run whose outcome the log records; the numbers stand in the log.
enum class KaLogStep : quint64 {
  GetClientId = 0,
  GetNorvaleId = 1,
  GetPublicKey = 2,
  RefreshNorvaleId = 3,
  GetTemporaryCredentials = 4,
  GetDeviceList = 5,
  GetExcludeDeviceList = 6,
  GetImageList = 7,
  GetExif = 8,
  Download = 9,
  Complete = 10,
};

/// The diagnostic log: a file per local calendar day in the app folder's "Log" folder, made of titled blocks.
/// Off at every start. With logging on the files may hold tokens, so only the user can read them.
/// Every operation may be called from any thread, until the process ends; none reports a failure; a block is appended
/// in one write. A writer touches the disk: not to be called under a lock, nor with details made for a log that is off.
class KaLogUtility {
public:
  KaLogUtility() = delete;

  /// Switches logging off, whatever an earlier launch stored. Always false.
  static bool initialize();
  static void writeStartLog(const QStringList &details);
  static void writeEndLog();
  static void writeInfoLog(const QString &title, const QStringList &message = {});
  static void writeConnectionResultLog(KaLogStep step, bool connectionResult, const QStringList &message = {});
  /// @param stackTrace  frames, innermost first; absent leaves the "<STACK TRACE>" line out.
  static void writeErrorLog(const std::optional<QString> &message, const std::optional<QStringList> &stackTrace = {});

  /// Inverts the switch and stores it as the user default "OutputLog".
  static void switchLogStatus();
  [[nodiscard]] static bool outputLog();
  /// Stores the switch as "OutputLog". Always true.
  static bool terminate();
  /// The log folder, made when it is missing; absent when it cannot be made.
  [[nodiscard]] static std::optional<QString> outputLogFilePath();

  /// A title line: @p title framed by @p symbol, @p titleLineLength characters in all, the title's leading blank at
  /// @p titleStartIndex. A title that reaches the end is not cut.
  [[nodiscard]] static QString createTitleLine(const QString &title, QChar symbol, qsizetype titleLineLength,
                                               qsizetype titleStartIndex);
  /// Appends one block, logging switched on or not.
  static void writeLog(const QString &titleLine, const QStringList &message);
};
