#pragma once

#include "ui/KaStatusItemView.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class KaNotifyIcon;

/// Starts and ends the program, and takes the URL that ends a browser login. Main thread.
class AppDelegate : public QObject {
  Q_OBJECT

public:
  explicit AppDelegate(QObject *parent = nullptr);
  ~AppDelegate() override;

  /// The start-up sequence, to be called from the running event loop: on the very first launch it asks a question and
  /// blocks until that is answered. An exception ends the program.
  void applicationDidFinishLaunching();
  /// The shutdown sequence, once the event loop has ended.
  /// @return false when the download thread still runs: the process must then end without waiting for it.
  [[nodiscard]] bool applicationWillTerminate();

  /// @name What reaches the program from outside. Kept until the status item exists.
  /// @{
  void handleUrl(const QString &url);
  void activate(); ///< a second start: shows the settings, which is all that the agent has to show
  void performAction(const QString &action);
  /// @}

  /// Ends the event loop, and an open question unanswered.
  void terminate();

  /// The line that identifies program and system at the head of each run's log.
  [[nodiscard]] static QString getUserAgent();

private:
  void launch();
  void whenStarted(std::function<void(KaNotifyIcon &)> job);

  bool isTerminating = false;
  std::vector<std::function<void(KaNotifyIcon &)>> kept;
  std::unique_ptr<KaStatusItemView> statusItem;
  std::unique_ptr<KaNotifyIcon> kaNotify;
};

/// The value of the first query item named exactly "idToken", percent-decoded, a plus sign being a plus sign; empty
/// when there is none.
[[nodiscard]] QString idTokenOf(const QString &url);

/// The menu entry that a desktop tool means by @p action.
[[nodiscard]] std::optional<StatusEntry> entryOfAction(const QString &action);
