#include "ui/ShowInFront.h"

#include "platform/ActivationToken.h"

#include <QDialog>

void showInFront(QWidget &window) {
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
