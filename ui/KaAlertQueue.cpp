#include "ui/KaAlertQueue.h"

#include "platform/ThreadBound.h"
#include "ui/MessageBoxes.h"
#include "ui/ShowInFront.h"
#include "ui/Texts.h"

#include <QMessageBox>

using namespace Qt::StringLiterals;

KaAlertQueue::~KaAlertQueue() {
  delete current;
}

void KaAlertQueue::show(const QString &text) {
  platform::assertMainThread();
  if (!current) return open(text);
  if (current->text() == text) return showInFront(*current);
  if (!waiting.contains(text)) waiting << text;
}

void KaAlertQueue::open(const QString &text) {
  current = new QMessageBox(QMessageBox::NoIcon, localised("APP_SHORT_NAME"_L1), text);
  current->addButton(localised("DLG_COMMON_BUTTON_CLOSE"_L1), QMessageBox::AcceptRole);
  dressMessageBox(*current);
  current->setAttribute(Qt::WA_DeleteOnClose);
  // A modal window would take the menu of the status item away on some desktops, and with it the way to quit.
  current->setModal(false);
  // The closed window goes away later; from here on it is no longer the one that is open.
  connect(current, &QMessageBox::finished, this, [this] { current = nullptr; });
  // Queued, so that the end of the program, which closes its windows, does not show the next one for a moment.
  connect(current, &QMessageBox::finished, this, &KaAlertQueue::openNext, Qt::QueuedConnection);
  showInFront(*current);
}

void KaAlertQueue::openNext() {
  if (!current && !waiting.isEmpty()) open(waiting.takeFirst());
}
