#pragma once

#include "ui/StatusTables.h"

#include <optional>

/// What the status item shows, icon and menu, as one plain value.
struct StatusItemState {
  std::optional<StatusFrame> frame = StatusFrame::Unlink; ///< absent: no picture
  QLatin1StringView tooltipKey{};                         ///< empty: no tooltip
  bool isLinked = false;                                  ///< the menu offers to log out, not to link
  bool isDownloadEnabled = false;
  bool isLogginEnabled = true; ///< the link or log-out entry
  bool isLaunchedAtLogin = false;

  friend bool operator==(const StatusItemState &, const StatusItemState &) = default;
};
