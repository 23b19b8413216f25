#pragma once

class QKeyEvent;

namespace platform {

/// The modifier keys that are told apart by their side.
enum class ModifierKey {
  LeftCommand, ///< the left Control key where keyboards have no command key
  LeftShift,
  RightShift,
  Other, ///< every other key
};

/// The key that @p event, a press or a release, is about.
[[nodiscard]] ModifierKey modifierKeyOf(const QKeyEvent &event);

} // namespace platform
