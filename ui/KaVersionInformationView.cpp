#include "ui/KaVersionInformationView.h"

#include "log/KaLogUtility.h"
#include "platform/AppInfo.h"
#include "ui/ScreenRoom.h"
#include "ui/Texts.h"
#include "ui_VersionInformationWindow.h"

#include <QIcon>

using namespace Qt::StringLiterals;

KaVersionInformationView::KaVersionInformationView(QWidget *parent)
    : QDialog(parent), window(std::make_unique<Ui::VersionInformationWindow>()) {
  window->setupUi(this);
  setWindowTitle(localised("DLG_ABOUT_TITLE"_L1));
  const QString name = localised("APP_LONG_NAME"_L1);
  window->applicationImage->setAccessibleName(name);
  window->applicationImage->setDLogDelegate(this);
  window->applicationImage->setFocus();
  window->applicationNameLabel->setText(name);
  window->versionLabel->setText(u"Version "_s + platform::appInfo().version);
  didSwitchStatus();
  fitTexts();
}

KaVersionInformationView::~KaVersionInformationView() = default;

void KaVersionInformationView::didSwitchStatus() {
  const QString copyright = platform::appInfo().copyright;
  window->copyrightLabel->setText(KaLogUtility::outputLog() ? copyright + u'.' : copyright);
}

void KaVersionInformationView::changeEvent(QEvent *event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::FontChange && !window->versionLabel->text().isEmpty()) fitTexts();
}

void KaVersionInformationView::fitTexts() {
  const int line = fontMetrics().height();
  const QSize room = roomOnScreen(*this);
  const int side = qMin(3 * line, room.width() / 20);
  const int above = qMin(2 * line, room.height() / 20);
  layout()->setContentsMargins(side, above, side, above);
  layout()->setSpacing(line / 2);
  QFont large = font();
  large.setBold(true);
  large.setPointSizeF(1.4 * QFontInfo(font()).pointSizeF());
  window->applicationNameLabel->setFont(large);
  // In one line, if the screen has room for it.
  const int width = QFontMetrics(large).horizontalAdvance(window->applicationNameLabel->text());
  window->applicationNameLabel->setMinimumWidth(qMin(width + line, room.width() - 2 * side));
  const int picture = qMin(6 * line, room.height() / 6);
  showPicture({picture, picture});
}

void KaVersionInformationView::showPicture(QSize size) {
  const auto picture = [&](const QString &file) { return QIcon(file).pixmap(size, devicePixelRatio()); };
  const QPixmap drawing = picture(u":/images/img_app_info.svg"_s);
  // Without Qt's SVG plug-in there is none.
  window->applicationImage->setPixmap(drawing.isNull() ? picture(u":/images/img_app_info.png"_s) : drawing);
  window->applicationImage->setFixedSize(size);
}
