#include "ui/ScreenRoom.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <QWidget>
#include <QWindow>

QSize roomOnScreen(const QWidget &window) {
  // Until it is open, nobody knows its frame. Some have high title bars.
  const int border = window.style()->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
  const int titleBar = window.style()->pixelMetric(QStyle::PM_TitleBarHeight);
  // On Wayland nobody knows of panels, either; a desktop makes windows smaller that reach below one.
  const int panels = QGuiApplication::platformName().startsWith(u"wayland") ? 2 * titleBar : 0;
  const QSize guess(2 * border, 2 * titleBar + panels);
  const QSize frame = window.frameGeometry().size() - window.size();
  return window.screen()->availableGeometry().size() - frame.expandedTo(guess);
}

void moveOntoScreen(QWidget &window) {
  if (!window.windowHandle() || !window.windowHandle()->isExposed()) return; // its place is not chosen yet
  const QRect available = window.screen()->availableGeometry();
  QRect place = window.frameGeometry();
  place.moveRight(qMin(place.right(), available.right()));
  place.moveBottom(qMin(place.bottom(), available.bottom()));
  place.moveLeft(qMax(place.left(), available.left()));
  place.moveTop(qMax(place.top(), available.top()));
  if (place != window.frameGeometry()) window.move(place.topLeft());
}
