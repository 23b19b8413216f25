#include "ui/OpenOrSay.h"

#include "log/KaLogUtility.h"
#include "platform/Opening.h"
#include "platform/ThreadBound.h"
#include "ui/Mnemonics.h"
#include "ui/ScreenRoom.h"
#include "ui/ShowInFront.h"
#include "ui/Texts.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

/// Wide enough for the beginning of an address to tell what it is.
constexpr int kAddressCharacters = 60;

QString windowName(Openable what) {
  return what == Openable::Page ? u"pageNotOpened"_s : u"folderNotOpened"_s;
}

QString message(Openable what, const QString &address) {
  if (what == Openable::Folder) return localised("MSG_FOLDER_NOT_OPENED"_L1);
  // Not even an address could be made: there is nothing to open by hand.
  return address.isEmpty() ? localised("MSG_ERR_UNEXPECTED"_L1) : localised("MSG_PAGE_NOT_OPENED"_L1);
}

QString copyTitle(Openable what) {
  return what == Openable::Page ? localised("DLG_NOT_OPENED_BUTTON_COPY_ADDRESS"_L1)
                                : localised("DLG_NOT_OPENED_BUTTON_COPY_PATH"_L1);
}

QDialog *standingWindow(Openable what) {
  for (QWidget *const widget : QApplication::topLevelWidgets())
    if (widget->isVisible() && widget->objectName() == windowName(what)) return qobject_cast<QDialog *>(widget);
  return nullptr;
}

QDialogButtonBox *buttonsOf(Openable what, QLineEdit *address) {
  auto *const buttons = new QDialogButtonBox;
  QPushButton *const copy = buttons->addButton(copyTitle(what), QDialogButtonBox::ActionRole);
  copy->setObjectName(u"copy"_s);
  buttons->addButton(localised("DLG_COMMON_BUTTON_CLOSE"_L1), QDialogButtonBox::RejectRole);
  QObject::connect(copy, &QPushButton::clicked, address, [address] {
    QApplication::clipboard()->setText(address->text());
    address->selectAll();
  });
  return buttons;
}

/// Deletes itself when it is closed.
QDialog *makeWindow(Openable what) {
  auto *const window = new QDialog;
  window->setObjectName(windowName(what));
  window->setWindowTitle(localised("APP_SHORT_NAME"_L1));
  window->setAttribute(Qt::WA_DeleteOnClose);
  auto *const reason = new QLabel;
  reason->setObjectName(u"reason"_s);
  reason->setTextFormat(Qt::PlainText);
  reason->setWordWrap(true);
  // One line, which scrolls: an address has no blanks to break it at.
  auto *const address = new QLineEdit;
  address->setReadOnly(true);
  const int wanted = address->fontMetrics().averageCharWidth() * kAddressCharacters;
  address->setMinimumWidth(qMin(wanted, roomOnScreen(*window).width() - 4 * address->fontMetrics().height()));
  auto *const buttons = buttonsOf(what, address);
  QObject::connect(buttons, &QDialogButtonBox::rejected, window, &QDialog::reject);
  auto *const column = new QVBoxLayout(window);
  for (QWidget *const row :
       {static_cast<QWidget *>(reason), static_cast<QWidget *>(address), static_cast<QWidget *>(buttons)})
    column->addWidget(row);
  giveMnemonics(*window);
  return window;
}

void fill(const QDialog &window, Openable what, const QString &address) {
  auto *const reason = window.findChild<QLabel *>(u"reason"_s);
  reason->setText(message(what, address));
  auto *const line = window.findChild<QLineEdit *>();
  line->setAccessibleName(reason->text());
  line->setText(address);
  line->setCursorPosition(0);
  line->setVisible(!address.isEmpty());
  window.findChild<QPushButton *>(u"copy"_s)->setVisible(!address.isEmpty());
}

} // namespace

void openPageOrSay(const QString &url) {
  platform::openUrl(url, qApp, [url](bool opened) {
    if (opened) return;
    KaLogUtility::writeErrorLog(u"a page cannot be shown"_s); // without its address, which may hold secrets
    showNotOpened(Openable::Page, url);
  });
}

void openFolderOrSay(const QString &path) {
  platform::openFolder(path, qApp, [path](bool opened) {
    if (opened) return;
    KaLogUtility::writeErrorLog(u"the folder cannot be shown: "_s + path);
    showNotOpened(Openable::Folder, path);
  });
}

void showNotOpened(Openable what, const QString &address) {
  platform::assertMainThread();
  QDialog *window = standingWindow(what);
  if (!window) window = makeWindow(what);
  fill(*window, what, address);
  showInFront(*window);
}
