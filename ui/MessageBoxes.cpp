#include "ui/MessageBoxes.h"

#include "ui/Mnemonics.h"

#include <QApplication>
#include <QIcon>
#include <QMessageBox>
#include <QStyle>

void dressMessageBox(QMessageBox &box) {
  const int size = box.style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, &box);
  box.setIconPixmap(QApplication::windowIcon().pixmap(QSize(size, size), box.devicePixelRatio()));
  box.setTextFormat(Qt::PlainText);
  giveMnemonics(box);
}
