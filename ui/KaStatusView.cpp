#include "ui/KaStatusView.h"

#include "ui/KaPictureRow.h"
#include "ui/KaSideWorker.h"
#include "ui/Mnemonics.h"
#include "ui/StatusIcons.h"
#include "ui/Texts.h"

#include <QEvent>
#include <QFontInfo>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

QString spelled(const StatusText &text) {
  if (text.key.isEmpty()) return {};
  const QString form = text.count ? localised(text.key, *text.count) : localised(text.key);
  if (text.arguments.size() == 2) return form.arg(text.arguments[0], text.arguments[1]);
  return text.arguments.isEmpty() ? form : form.arg(text.arguments[0]);
}

/// A line breaks between two of them alone.
QString spelled(const QList<StatusText> &texts) {
  QStringList parts;
  for (const StatusText &text : texts)
    parts << spelled(text).replace(u' ', QChar::Nbsp);
  return parts.join(u" · "_s);
}

QString titleOf(StatusRemedy remedy) {
  switch (remedy) {
  case StatusRemedy::LogIn:
    return localised("MENU_LOGIN"_L1);
  case StatusRemedy::ChooseFolder:
  case StatusRemedy::Choose10GFolder:
    return localised("STATUS_CHOOSE_FOLDER"_L1);
  case StatusRemedy::LookNow:
    return localised("MENU_DOWNLOAD"_L1);
  case StatusRemedy::OpenHelp:
    return localised("MENU_HELP"_L1);
  case StatusRemedy::None:
    return {};
  }
  return {};
}

/// The icons are drawn in one colour, which need not be this window's.
QPixmap tinted(const QIcon &icon, const QSize &size, qreal ratio, const QColor &color) {
  QPixmap pixmap = icon.pixmap(size, ratio);
  QPainter painter(&pixmap);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(QRect(QPoint(), size), color);
  return pixmap;
}

QLabel *wrappingLabel(QWidget *parent, const QString &name) {
  auto *const label = new QLabel(parent);
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

} // namespace

KaStatusView::KaStatusView(KaStatusSources from, QWidget *parent, const KaStatusViewTimes &times)
    : QFrame(parent), sources(std::move(from)), icon(new QLabel(this)),
      headline(wrappingLabel(this, u"statusHeadline"_s)), explanation(wrappingLabel(this, u"statusExplanation"_s)),
      facts(wrappingLabel(this, u"statusFacts"_s)), progress(new QProgressBar(this)), remedy(new QPushButton(this)),
      pictures(new KaPictureRow(this)), refreshTimer(new QTimer(this)), roomTimer(new QTimer(this)) {
  layOut();
  refreshTimer->setInterval(times.refresh);
  roomTimer->setInterval(times.room);
  connect(refreshTimer, &QTimer::timeout, this, &KaStatusView::refresh);
  connect(roomTimer, &QTimer::timeout, this, &KaStatusView::askForRoom);
  connect(pictures, &KaPictureRow::folderRequested, this, &KaStatusView::openFolderRequested);
  connect(remedy, &QPushButton::clicked, this, [this] {
    if (shown) Q_EMIT remedyRequested(shown->remedy);
  });
  refresh(); // a window is made as large as what it shows needs
}

KaStatusView::~KaStatusView() = default;

void KaStatusView::layOut() {
  setFrameShape(QFrame::StyledPanel);
  remedy->setObjectName(u"statusRemedy"_s);
  remedy->setAutoDefault(false);
  progress->setTextVisible(false);
  for (QWidget *const kept : {static_cast<QWidget *>(progress), static_cast<QWidget *>(remedy)}) {
    QSizePolicy policy = kept->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    kept->setSizePolicy(policy);
    kept->hide();
  }
  explanation->hide();
  auto *const folders = new QHBoxLayout;
  addFolderPlaces(*folders);
  folders->setSpacing(fontMetrics().height() / 2);
  auto *const grid = new QGridLayout(this);
  grid->setColumnStretch(1, 1);
  grid->addWidget(icon, 0, 0, 3, 1, Qt::AlignTop);
  grid->addWidget(headline, 0, 1);
  grid->addWidget(remedy, 0, 2, Qt::AlignTop);
  grid->addWidget(explanation, 1, 1, 1, 2);
  grid->addWidget(facts, 2, 1, 1, 2);
  grid->addWidget(progress, 3, 1, 1, 2);
  grid->addLayout(folders, 4, 1, 1, 2);
  grid->addWidget(pictures, 5, 1, 1, 2);
  fitToFont();
}

void KaStatusView::addFolderPlaces(QHBoxLayout &row) {
  for (FolderPlace &place : folderPlaces) {
    place = {new QPushButton(localised("STATUS_OPEN_FOLDER"_L1), this), wrappingLabel(this, u"statusFolder"_s)};
    place.open->setObjectName(u"statusOpenFolder"_s);
    place.open->setAutoDefault(false);
    QWidget::setTabOrder(&place == folderPlaces.data() ? remedy : folderPlaces[0].open, place.open);
    connect(place.open, &QPushButton::clicked, this, [this, index = &place - folderPlaces.data()] {
      Q_EMIT openFolderRequested(shownFolders.value(index).path);
    });
    place.open->hide();
    place.text->hide();
    row.addWidget(place.open);
    row.addWidget(place.text, 1);
  }
}

void KaStatusView::fitToFont() {
  QFont large = font();
  large.setPointSizeF(QFontInfo(font()).pointSizeF() * 1.2);
  large.setBold(true);
  headline->setFont(large);
  const int line = fontMetrics().height();
  icon->setFixedSize(2 * line, 2 * line);
  progress->setFixedHeight(line / 2);
  auto *const grid = static_cast<QGridLayout *>(layout());
  grid->setHorizontalSpacing(line / 2);
  grid->setVerticalSpacing(line / 3);
}

void KaStatusView::showEvent(QShowEvent *event) {
  QFrame::showEvent(event);
  if (!worker) worker = std::make_unique<KaSideWorker>();
  refreshTimer->start();
  roomTimer->start();
  refresh();
  askForRoom();
}

void KaStatusView::hideEvent(QHideEvent *event) {
  refreshTimer->stop();
  roomTimer->stop();
  worker.reset();
  pictures->dropWorker();
  isRoomAsked = false;
  QFrame::hideEvent(event);
}

void KaStatusView::changeEvent(QEvent *event) {
  QFrame::changeEvent(event);
  const QEvent::Type type = event->type();
  if (type == QEvent::FontChange || type == QEvent::StyleChange) fitToFont();
  if (type == QEvent::FontChange || type == QEvent::StyleChange || type == QEvent::PaletteChange) showIcon();
}

void KaStatusView::refresh() {
  const KaSnapshot snapshot = sources.snapshot();
  const StatusSummary summary = statusSummary(snapshot, sources.now());
  if (summary != shown) showSummary(summary);
  const QList<StatusFolder> folders = statusFolders(sources.option(), room);
  if (folders != shownFolders) showFolders(folders);
  const auto isUnknown = [this](const StatusFolder &folder) { return !room.contains(folder.path); };
  if (std::any_of(folders.cbegin(), folders.cend(), isUnknown)) askForRoom();
  if (worker) pictures->showFiles(snapshot.lastFiles, *worker);
}

/// What is set already stays untouched: labels, buttons and bars look by themselves.
void KaStatusView::showSummary(const StatusSummary &summary) {
  const std::optional<StatusSummary> before = std::exchange(shown, summary);
  headline->setText(spelled(summary.headline));
  icon->setAccessibleName(headline->text());
  progress->setAccessibleName(headline->text());
  explanation->setText(summary.explanation ? spelled(*summary.explanation) : QString());
  explanation->setVisible(summary.explanation.has_value());
  facts->setText(spelled(summary.facts));
  facts->setVisible(!summary.facts.isEmpty());
  if (!before || before->frame != summary.frame) showIcon();
  if (summary.progress) {
    progress->setMaximum(int(summary.progress->all));
    progress->setValue(int(summary.progress->done));
  }
  progress->setVisible(summary.progress.has_value());
  const bool hasRemedy = summary.remedy != StatusRemedy::None;
  if (hasRemedy && (!before || before->remedy != summary.remedy)) {
    remedy->setText(titleOf(summary.remedy));
    // The first is marked with all of its window, where some texts have marks of their own.
    if (before) giveMnemonics(*window());
  }
  remedy->setEnabled(summary.isRemedyEnabled);
  remedy->setVisible(hasRemedy);
}

void KaStatusView::showIcon() {
  if (!shown) return;
  icon->setPixmap(tinted(statusIcon(shown->frame), icon->size(), devicePixelRatioF(),
                         palette().color(QPalette::Active, QPalette::WindowText)));
}

void KaStatusView::showFolders(const QList<StatusFolder> &folders) {
  shownFolders = folders;
  for (std::size_t i = 0; i < folderPlaces.size(); ++i) {
    const auto &[open, text] = folderPlaces[i];
    const bool isUsed = qsizetype(i) < folders.size();
    if (isUsed) {
      const StatusFolder &folder = folders[qsizetype(i)];
      text->setText(folder.name + u'\n' + spelled(folder.room));
      text->setToolTip(folder.path);
      open->setToolTip(folder.path);
      open->setAccessibleName(localised("STATUS_OPEN_FOLDER_NAMED"_L1).arg(folder.name));
    }
    open->setVisible(isUsed);
    text->setVisible(isUsed);
  }
}

void KaStatusView::askForRoom() {
  if (!worker || std::exchange(isRoomAsked, true)) return;
  QStringList paths;
  for (const StatusFolder &folder : std::as_const(shownFolders))
    paths << folder.path;
  worker->post([this, paths, freeRoom = sources.freeRoom]() -> KaSideWorker::Report {
    FolderRoom found;
    for (const QString &path : paths)
      found.insert(path, freeRoom(path));
    return [this, found] {
      isRoomAsked = false;
      room = found;
      refresh();
    };
  });
}
