#include "ui/KaVersionInformationView.h"

#include "log/KaLogUtility.h"
#include "platform/AppInfo.h"
#include "ui/Texts.h"
#include "ui_VersionInformationWindow.h"

#include <QIcon>

using namespace Qt::StringLiterals;

KaVersionInformationView::KaVersionInformationView(QWidget *parent)
    : QDialog(parent), window(std::make_unique<Ui::VersionInformationWindow>()) {
  window->setupUi(this);
  setWindowTitle(localised("DLG_ABOUT_TITLE"_L1));
  const QString name = localised("APP_LONG_NAME"_L1);
  const QSize size = window->applicationImage->minimumSize();
  const auto picture = [&](const QString &file) { return QIcon(file).pixmap(size, devicePixelRatio()); };
  const QPixmap drawing = picture(u":/images/img_app_info.svg"_s);
  // Without Qt's SVG plug-in there is none.
  window->applicationImage->setPixmap(drawing.isNull() ? picture(u":/images/img_app_info.png"_s) : drawing);
  window->applicationImage->setAccessibleName(name);
  window->applicationImage->setDLogDelegate(this);
  window->applicationImage->setFocus();
  window->applicationNameLabel->setText(name);
  window->versionLabel->setText(u"Version "_s + platform::appInfo().version);
  didSwitchStatus();
}

KaVersionInformationView::~KaVersionInformationView() = default;

void KaVersionInformationView::didSwitchStatus() {
  const QString copyright = platform::appInfo().copyright;
  window->copyrightLabel->setText(KaLogUtility::outputLog() ? copyright + u'.' : copyright);
}
