#pragma once

#include "service/KaResultCode.h"

/// What a result says of the agent, in so far as it is told.
enum class ResultMeaning {
  Good,       ///< a storage was looked through
  Login,      ///< it takes a login, or one could not be checked
  Service,    ///< the service could not be reached or used
  Saving,     ///< pictures could not be saved
  Unexpected, ///< another failure
  NoVerdict,  ///< neither good nor a failure, or never told
};

[[nodiscard]] ResultMeaning meaningOf(KaResultCode result);
