#include "ui/KaPathField.h"

#include <QStyleOptionFrame>
#include <QStylePainter>

namespace {

constexpr int kInset = 2; // of a line edit's text

}

KaPathField::KaPathField(QWidget *parent) : QLineEdit(parent) {
  setReadOnly(true);
  setFrame(false);
  setTextMargins(-kInset, 0, -kInset, 0); // so that it begins where labels do
  setGrey(false);
  connect(this, &QLineEdit::textChanged, this, &QWidget::setToolTip);
}

void KaPathField::setGrey(bool grey) {
  QPalette colors; // the desktop's
  colors.setColor(QPalette::Base, Qt::transparent);
  if (grey) colors.setColor(QPalette::Text, QColor::fromRgbF(0.5F, 0.5F, 0.5F));
  setPalette(colors);
}

QSize KaPathField::sizeHint() const {
  constexpr int kLetters = 40; // of a path in somebody's home
  return {kLetters * fontMetrics().averageCharWidth(), QLineEdit::sizeHint().height()};
}

void KaPathField::paintEvent(QPaintEvent *event) {
  QStyleOptionFrame option;
  initStyleOption(&option);
  const QRect room = style()->subElementRect(QStyle::SE_LineEditContents, &option, this);
  const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, room.width());
  const bool isWalked = hasFocus() && (hasSelectedText() || cursorPosition() < text().size());
  const bool isWhole = isWalked || shown == text();
  if (isWhole) QLineEdit::paintEvent(event);
  QStylePainter painter(this);
  if (!isWhole) {
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, shown);
  }
  if (hasFocus()) {
    QStyleOptionFocusRect focus; // else it would show with a frame alone
    focus.initFrom(this);
    painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
  }
}
