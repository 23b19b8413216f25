#pragma once

#include <QObject>

#include <chrono>
#include <memory>

namespace platform {

/// Whether the system has any network: a route that is up and leads off this computer. A link-local one leads to no
/// service and does not count. True, too, when it cannot be told. Any thread; asks the kernel alone.
[[nodiscard]] bool hasNetwork();

/// Tells when the answer to hasNetwork(), or the way off this computer, may have changed. Where the system tells
/// nothing of that, neither does this. Main thread; costs nothing while nothing happens.
class NetworkNews : public QObject {
  Q_OBJECT

public:
  /// @param settling  what changes within so long after the first change is one piece of news.
  explicit NetworkNews(std::chrono::milliseconds settling = std::chrono::seconds(1), QObject *parent = nullptr);
  ~NetworkNews() override;

Q_SIGNALS:
  void changed();

private:
  class Private;
  std::unique_ptr<Private> d;
};

} // namespace platform
