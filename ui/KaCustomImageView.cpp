#include "ui/KaCustomImageView.h"

#include "app/KaModelFacade.h"
#include "log/ExceptionGuard.h"
#include "platform/ModifierKeys.h"
#include "ui/KaLogStateDelegate.h"
#include "ui/OpenOrSay.h"

#include <QKeyEvent>
#include <QMouseEvent>

KaCustomImageView::KaCustomImageView(QWidget *parent) : QLabel(parent) {
  setFocusPolicy(Qt::StrongFocus);
}

void KaCustomImageView::flagsChanged(const QKeyEvent &event) {
  switch (platform::modifierKeyOf(event)) {
  case platform::ModifierKey::LeftCommand:
    clickingCommandKey = event.modifiers().testFlag(Qt::ControlModifier);
    return;
  case platform::ModifierKey::LeftShift:
  case platform::ModifierKey::RightShift:
    clickingShiftKey = event.modifiers().testFlag(Qt::ShiftModifier);
    return;
  case platform::ModifierKey::Other:
    return;
  }
}

void KaCustomImageView::keyPressEvent(QKeyEvent *event) {
  flagsChanged(*event);
  QLabel::keyPressEvent(event);
}

void KaCustomImageView::keyReleaseEvent(QKeyEvent *event) {
  flagsChanged(*event);
  QLabel::keyReleaseEvent(event);
}

void KaCustomImageView::mousePressEvent(QMouseEvent *event) {
  if (event->button() != Qt::LeftButton) return;
  // What goes wrong here is logged, and nothing happens.
  (void)runGuarded([this] { clicked(); });
}

void KaCustomImageView::clicked() {
  KaModelFacade &facade = KaModelFacade::sharedInstance();
  if (clickingCommandKey) {
    facade.switchLogMode();
    if (dLogDelegate) dLogDelegate->didSwitchStatus();
  } else if (clickingShiftKey) {
    openFolderOrSay(facade.getOutputLogFilePath().value_or(QString()));
  }
}
