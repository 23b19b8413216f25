#pragma once

#include "identity/KaLinkState.h"
#include "service/KaFaultCause.h"
#include "service/KaResultCode.h"
#include "service/ServiceClock.h"

#include <QDateTime>
#include <QStringList>

#include <chrono>
#include <optional>

/// What went wrong last.
struct KaFault {
  KaResultCode result = KaResultCode::Unexpected; ///< as it was told; Offline for a run that got no answer
  KaFaultCause cause = KaFaultCause::Unknown;
  bool isOf10GStorage = false; ///< and its folder, or of the previews, which share it; else of the ordinary one

  friend bool operator==(const KaFault &, const KaFault &) = default;
};

/// How the agent stands and what it does, at one moment: a plain value, which the facade makes for whoever looks.
struct KaSnapshot {
  enum class Doing {
    Waiting,  ///< for its next look, for a network or for a login
    Looking,  ///< asks the service what is new
    Fetching, ///< is in a pass over files
  };

  KaLinkState linkState = KaLinkState::Unlinked;
  Doing doing = Doing::Waiting;
  qsizetype fetched = 0;               ///< while fetching: so many files of the pass are behind it
  qsizetype toFetch = 0;               ///< of so many
  std::optional<QDateTime> lastLook{}; ///< when the service last said what there is; of this process
  std::optional<QDateTime> nextLook{}; ///< while waiting for a set time
  qsizetype cameToday = 0;             ///< files saved since midnight, by this process
  qsizetype stillToCome = 0;           ///< files that could not be had so far, and are tried again
  std::optional<KaFault> fault{};      ///< of the last run, or login while there is no link; absent once all is well
  bool hasNetwork = true;
  std::chrono::seconds clockAhead{0}; ///< of the service's clock, as it last answered; negative: behind
  QStringList lastFiles{};            ///< paths, newest first, at most kLastFiles; saved by this process

  static constexpr qsizetype kLastFiles = 6;
  /// By more than this the service refuses whatever is asked.
  static constexpr std::chrono::minutes kClockTolerance = ServiceClock::kTolerance;

  friend bool operator==(const KaSnapshot &, const KaSnapshot &) = default;
};
