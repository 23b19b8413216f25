#include "ui/KaPictureRow.h"

#include "ui/KaSideWorker.h"
#include "ui/Texts.h"
#include "ui/Thumbnail.h"

#include <QEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <QToolButton>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

KaPictureRow::KaPictureRow(QWidget *parent) : QWidget(parent), placeholder(new QLabel(this)) {
  setAccessibleName(localised("STATUS_LAST_PICTURES"_L1));
  auto *const layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  for (QToolButton *&button : buttons) {
    button = new QToolButton(this);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setAccessibleDescription(localised("STATUS_PICTURE_BUTTON"_L1));
    button->hide();
    connect(button, &QToolButton::clicked, this, [this, button] {
      const auto position = std::size_t(std::find(buttons.begin(), buttons.end(), button) - buttons.begin());
      Q_EMIT folderRequested(QFileInfo(shown.value(qsizetype(position))).absolutePath());
    });
    layout->addWidget(button);
  }
  placeholder->setText(localised("STATUS_NO_PICTURES_YET"_L1));
  placeholder->setWordWrap(true);
  layout->addWidget(placeholder, 1);
  layout->addStretch();
  fitToFont();
}

void KaPictureRow::changeEvent(QEvent *event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) fitToFont();
}

/// The row keeps its height when there are no pictures, so that the first ones move nothing.
void KaPictureRow::fitToFont() {
  const int edge = 4 * fontMetrics().height();
  for (QToolButton *button : buttons)
    button->setIconSize(QSize(edge, edge));
  setMinimumHeight(buttons.front()->sizeHint().height());
}

int KaPictureRow::edgeInPixels() const {
  return int(std::ceil(buttons.front()->iconSize().width() * devicePixelRatioF()));
}

void KaPictureRow::showFiles(const QStringList &files, KaSideWorker &worker) {
  if (readEdge != edgeInPixels()) {
    readEdge = edgeInPixels();
    icons.clear();
    shown.clear();
  }
  const QStringList wanted = files.first(std::min(files.size(), KaSnapshot::kLastFiles));
  if (shown != wanted) {
    shown = wanted;
    icons.removeIf([this](const auto &icon) { return !shown.contains(icon.key()); });
    showNames();
  }
  readNext(worker);
}

void KaPictureRow::showNames() {
  placeholder->setVisible(shown.isEmpty());
  for (std::size_t position = 0; position < buttons.size(); ++position) {
    const bool isUsed = qsizetype(position) < shown.size();
    if (isUsed) {
      const QString name = QFileInfo(shown[qsizetype(position)]).fileName();
      buttons[position]->setToolTip(name);
      buttons[position]->setAccessibleName(name);
      showIcon(position);
    }
    buttons[position]->setVisible(isUsed);
  }
}

void KaPictureRow::showIcon(std::size_t position) {
  const auto icon = icons.constFind(shown[qsizetype(position)]);
  const bool isRead = icon != icons.constEnd() && !icon->isNull();
  buttons[position]->setIcon(isRead ? *icon : style()->standardIcon(QStyle::SP_FileIcon));
}

void KaPictureRow::readNext(KaSideWorker &worker) {
  if (!underWay.isEmpty()) return;
  const auto next =
      std::find_if(shown.cbegin(), shown.cend(), [this](const QString &file) { return !icons.contains(file); });
  if (next == shown.cend()) return;
  underWay = *next;
  worker.post([this, &worker, file = underWay, edge = readEdge]() -> KaSideWorker::Report {
    return [this, &worker, file, edge, picture = thumbnailOf(file, edge)] {
      underWay.clear();
      take(file, picture, edge);
      readNext(worker);
    };
  });
}

void KaPictureRow::take(const QString &file, const QImage &picture, int edge) {
  const qsizetype position = shown.indexOf(file);
  if (position < 0 || edge != readEdge) return; // others have come meanwhile
  QPixmap pixmap = QPixmap::fromImage(picture);
  pixmap.setDevicePixelRatio(devicePixelRatioF());
  icons.insert(file, picture.isNull() ? QIcon() : QIcon(pixmap));
  showIcon(std::size_t(position));
}
