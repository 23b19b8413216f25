#include "platform/ModifierKeys.h"

#include <QKeyEvent>

namespace platform {

ModifierKey modifierKeyOf(const QKeyEvent &event) {
  // Key symbols of X11, which Wayland shares: the key code alone does not tell the sides.
  constexpr quint32 kLeftShift = 0xffe1;
  constexpr quint32 kRightShift = 0xffe2;
  constexpr quint32 kLeftControl = 0xffe3;
  switch (event.nativeVirtualKey()) {
  case kLeftControl:
    return ModifierKey::LeftCommand;
  case kLeftShift:
    return ModifierKey::LeftShift;
  case kRightShift:
    return ModifierKey::RightShift;
  default:
    return ModifierKey::Other;
  }
}

} // namespace platform
