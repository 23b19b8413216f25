#include "ui/ShowInFront.h"

#include "platform/ActivationToken.h"

#include <QApplication>
#include <QDialog>

namespace {

/// On Wayland a window that stands comes in front by somebody's leave alone, and not every desktop's leave suffices:
/// nothing would happen, or little more. A new one comes in front.
bool hasToOpenAnew(const QWidget &window) {
  return QGuiApplication::platformName().startsWith(u"wayland") && window.isVisible() && !window.isActiveWindow()
         && !QApplication::activeModalWidget(); // which would end, or lose what it belongs to
}

} // namespace

void showInFront(QWidget &window) {
  if (hasToOpenAnew(window)) window.hide();
  const platform::ActivationScope leave;
  window.show();
  window.raise();
  leave.activate(*window.windowHandle());
}

void execInFront(QDialog &dialog) {
  dialog.setModal(true); // as it shall be, before it is shown
  showInFront(dialog);
  dialog.exec();
}
