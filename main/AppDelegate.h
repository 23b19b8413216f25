#pragma once

#include "ui/KaStatusItemView.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class KaNotifyIcon;

/// Starts and ends the program, and takes the URL that ends a browser login. Main thread.
class AppDelegate : public QObject {
  Q_OBJECT

public:
  using StatusItemMaker = std::function<std::unique_ptr<KaStatusItemView>()>;

  /// @param makeStatusItem  the desktop's own status item when it is empty.
  explicit AppDelegate(StatusItemMaker makeStatusItem = {}, QObject *parent = nullptr);
  ~AppDelegate() override;

  /// The start-up sequence, to be called from the running event loop: on the very first launch that somebody can see it
  /// asks a question and blocks until that is answered. An exception ends the event loop, with a message and
  /// EXIT_FAILURE.
  void applicationDidFinishLaunching();
  /// The shutdown sequence, once; a second call does nothing. Needs no event loop.
  /// @param finishWait  at most this long for the download thread, which may go on after it.
  void applicationWillTerminate(std::chrono::milliseconds finishWait = std::chrono::seconds(10));

  /// @name What reaches the program from outside. Kept until the status item exists.
  /// @{
  void handleUrl(const QString &url);
  /// A second start: shows the settings, which is all that the agent has to show. One that nobody can see ends.
  void activate();
  void performAction(const QString &action);
  /// @}

  /// Ends the event loop, and an open question unanswered.
  void terminate();

  /// Sees every kind of end come, that of the session too.
  bool eventFilter(QObject *watched, QEvent *event) override;

  /// The line that identifies program and system at the head of each run's log.
  [[nodiscard]] static QString getUserAgent();

Q_SIGNALS:
  /// The end has begun: what comes from now on is not for this process.
  void terminating();

private:
  void launch();
  void beginTermination();
  void whenStarted(std::function<void(KaNotifyIcon &)> job);

  const StatusItemMaker newStatusItem;
  bool isTerminating = false;
  bool hasTerminated = false;
  std::vector<std::function<void(KaNotifyIcon &)>> kept;
  std::unique_ptr<KaStatusItemView> statusItem;
  std::unique_ptr<KaNotifyIcon> kaNotify;
};

/// The value of the first query item named exactly "idToken", percent-decoded, a plus sign being a plus sign; empty
/// when there is none.
[[nodiscard]] QString idTokenOf(const QString &url);

/// The actions that open a window or a page.
[[nodiscard]] QStringList showingActions();

/// The menu entry that a desktop tool means by @p action.
[[nodiscard]] std::optional<StatusEntry> entryOfAction(const QString &action);
