#pragma once

#include "engine/KaWaitCondition.h"
#include "settings/KaWaitTimes.h"

#include <atomic>

/// What the pieces of the download thread share.
struct KaDownloadState {
  explicit KaDownloadState(const KaWaitClock &clock = {}) : waitcnd(endAppFlag, clock) {}

  // Any thread.
  std::atomic<bool> endAppFlag = false;     ///< set once: the program quits
  std::atomic<bool> bUserTrigger = false;   ///< the current run was asked for by the user
  std::atomic<bool> bInitialAccess = false; ///< the next successful listing is the first after linking
  std::atomic<bool> bStartAsked = false;    ///< a link is there that no run has begun for
  std::atomic<bool> bNews = false;          ///< of the network or of sleep, that no run has begun for
  KaWaitCondition waitcnd;                  ///< between runs, re-checks and metadata attempts, and for a network

  // Download thread.
  bool bLinkSetup = true; ///< the link is broken and must be set up again
  KaWaitTimes waitTimes;
};
