#pragma once

#include "ui/StatusSummary.h"

#include "platform/VolumeFacts.h"

#include <QFrame>

#include <array>
#include <chrono>
#include <functional>
#include <memory>

class KaPictureRow;
class KaSideWorker;
class QHBoxLayout;
class QLabel;
class QProgressBar;
class QPushButton;
class QTimer;

/// Where the status view asks. All on the main thread but the last, which may take its time.
struct KaStatusSources {
  std::function<KaSnapshot()> snapshot;
  std::function<KaDownloadOption()> option;
  std::function<QDateTime()> now = [] { return QDateTime::currentDateTime(); };
  std::function<std::optional<qint64>(const QString &)> freeRoom = platform::freeSpace;
};

struct KaStatusViewTimes {
  std::chrono::milliseconds refresh{800};
  std::chrono::milliseconds room{10'000}; ///< between two questions for free room
};

/// A strip that answers at a glance how the agent stands, what it does, what came last, and what to do about trouble.
/// It looks while it can be seen; hidden, it has neither timer nor thread. Main thread.
class KaStatusView : public QFrame {
  Q_OBJECT

public:
  explicit KaStatusView(KaStatusSources sources, QWidget *parent = nullptr, const KaStatusViewTimes &times = {});
  ~KaStatusView() override;

Q_SIGNALS:
  void remedyRequested(StatusRemedy remedy);
  void openFolderRequested(const QString &path);

private:
  /// A folder that pictures go to.
  struct FolderPlace {
    QPushButton *open = nullptr;
    QLabel *text = nullptr;
  };

  void showEvent(QShowEvent *event) override;
  void hideEvent(QHideEvent *event) override;
  void changeEvent(QEvent *event) override;

  void layOut();
  void addFolderPlaces(QHBoxLayout &row);
  void fitToFont();
  void refresh();
  void showSummary(const StatusSummary &summary);
  void showIcon();
  void showFolders(const QList<StatusFolder> &folders);
  void askForRoom();

  const KaStatusSources sources;
  QLabel *const icon;
  QLabel *const headline;
  QLabel *const explanation;
  QLabel *const facts;
  QProgressBar *const progress;
  QPushButton *const remedy;
  std::array<FolderPlace, 2> folderPlaces{};
  KaPictureRow *const pictures;

  std::optional<StatusSummary> shown;
  QList<StatusFolder> shownFolders;
  FolderRoom room;
  QTimer *const refreshTimer;
  QTimer *const roomTimer;
  std::unique_ptr<KaSideWorker> worker; ///< while this can be seen
  bool isRoomAsked = false;
};
