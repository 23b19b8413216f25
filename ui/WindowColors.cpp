#include "ui/WindowColors.h"

#include <QApplication>
#include <QPalette>

namespace {

constexpr int kHalfBright = 128;

QPalette darkPalette() {
  const QColor text(0xee, 0xee, 0xec);
  const QColor faint(0x8c, 0x8c, 0x8c);
  const QColor link(0x6c, 0xb0, 0xf0);
  const QColor highlight(0x2a, 0x6c, 0xb0);
  const QColor window(0x2e, 0x2e, 0x2e);
  // The rest, the edges of buttons among it, is derived from these two.
  QPalette palette(QColor(0x3c, 0x3c, 0x3c), window);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
    palette.setColor(role, text);
    palette.setColor(QPalette::Disabled, role, faint);
  }
  palette.setColor(QPalette::PlaceholderText, faint);
  palette.setColor(QPalette::BrightText, Qt::white);
  // Lighter than the window: boxes and circles to tick are filled with it, and their edges are darker than the window.
  palette.setColor(QPalette::Base, QColor(0x4c, 0x4c, 0x4c));
  palette.setColor(QPalette::AlternateBase, QColor(0x44, 0x44, 0x44));
  palette.setColor(QPalette::ToolTipBase, QColor(0x1c, 0x1c, 0x1c));
  palette.setColor(QPalette::Link, link);
  palette.setColor(QPalette::LinkVisited, link);
  palette.setColor(QPalette::Highlight, highlight);
  palette.setColor(QPalette::Disabled, QPalette::Highlight, faint);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  return palette;
}

} // namespace

void showWindowsDark(bool isDark) {
  static bool isOurs = false;
  if (isDark == isOurs) return;
  const bool isThemeDark = QApplication::palette().color(QPalette::Window).lightness() < kHalfBright;
  if (isDark && isThemeDark) return;
  isOurs = isDark;
  QApplication::setPalette(isDark ? darkPalette() : QPalette());
}
