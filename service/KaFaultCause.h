#pragma once

/// Why a login or a run failed, as far as its result does not tell.
enum class KaFaultCause {
  Unknown,
  NoAnswer,    ///< the service could not be asked, or did not answer as itself
  Refused,     ///< the service said no
  NotAccepted, ///< what came back from the browser does not belong to a login of this agent
  WrongClock,  ///< refused while this computer's clock is far off
};
