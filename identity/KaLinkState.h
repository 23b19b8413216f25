#pragma once

/// Whether this computer is linked to an account.
enum class KaLinkState {
  Unlinked,
  AwaitsFolders, ///< a login has completed; nothing runs before the user has seen where the pictures go
  Linked,
};
