#include "ui/StartFailure.h"

#include "platform/Sight.h"
#include "platform/ThreadBound.h"
#include "ui/Mnemonics.h"
#include "ui/ShowInFront.h"
#include "ui/Texts.h"

#include <QMessageBox>

#include <cstdio>

using namespace Qt::StringLiterals;

void showStartFailure(QLatin1StringView messageKey, const QString &detail) {
  platform::assertMainThread();
  const QString message = localised(messageKey);
  const QString line = detail.isEmpty() ? message : message + u" ("_s + detail + u')';
  std::fprintf(stderr, "downloaderpictora: %s\n", qPrintable(line));
  if (platform::isUnseen()) return;
  QMessageBox window(QMessageBox::Critical, localised("APP_SHORT_NAME"_L1), message);
  window.setTextFormat(Qt::PlainText);
  window.setInformativeText(detail);
  window.addButton(localised("DLG_COMMON_BUTTON_CLOSE"_L1), QMessageBox::AcceptRole);
  giveMnemonics(window);
  execInFront(window);
}
