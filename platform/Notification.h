#pragma once

#include <QString>

namespace platform {

/// What the desktop tells the user for as long as it is true.
struct Notification {
  /// Desktops may show, sound and filter by it.
  enum class Topic { Connected, ConnectionError, Transfer, TransferComplete, TransferError };
  enum class Urgency { Low, Normal };

  QString title{};
  QString text{};             ///< plain
  QString processingResult{}; ///< handed back with a click
  QString clickLabel{};       ///< what a click does: some desktops have a button for it. Empty: nothing
  Topic topic = Topic::Transfer;
  Urgency urgency = Urgency::Normal;
  QString imagePath{}; ///< the picture beside the text; empty: none
};

} // namespace platform
