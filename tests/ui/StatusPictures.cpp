// Draws the status view from made-up snapshots, each the same every time: status_pictures STATE FILE.png [dark].
// Language, letters and scale are the environment's, as for the agent (LANG, QT_SCALE_FACTOR).
#include "ui/KaStatusView.h"
#include "ui/Texts.h"
#include "ui/WindowColors.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QPainter>
#include <QPainterPath>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <cstdio>
#include <map>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Doing = KaSnapshot::Doing;

namespace {

QDateTime today(int hour, int minute) {
  return {QDate(2026, 11, 23), QTime(hour, minute)};
}

const KaSnapshot kWell{
    .linkState = KaLinkState::Linked, .lastLook = today(14, 5), .nextLook = today(14, 35), .cameToday = 37};

KaSnapshot with(const std::function<void(KaSnapshot &)> &change) {
  KaSnapshot snapshot = kWell;
  change(snapshot);
  return snapshot;
}

const std::map<QString, KaSnapshot> kStates{
    {u"up-to-date"_s, kWell},
    {u"unlinked"_s, {}},
    {u"looking"_s, with([](KaSnapshot &now) { now.doing = Doing::Looking; })},
    {u"fetching"_s, with([](KaSnapshot &now) {
       now.doing = Doing::Fetching;
       now.fetched = 12;
       now.toFetch = 240;
       now.cameToday = 12;
       now.nextLook.reset();
     })},
    {u"offline"_s, with([](KaSnapshot &now) {
       now.hasNetwork = false;
       now.nextLook = today(14, 39);
     })},
    {u"disk-full"_s, with([](KaSnapshot &now) {
       now.fault = KaFault{.result = KaResultCode::DiskFull};
       now.stillToCome = 3;
     })},
    {u"still-to-come"_s, with([](KaSnapshot &now) { now.stillToCome = 3; })},
    {u"wrong-clock"_s, with([](KaSnapshot &now) {
       now.fault = KaFault{.result = KaResultCode::LinkInvalid, .cause = KaFaultCause::WrongClock};
       now.clockAhead = 52min;
     })},
};

/// A landscape, another for each number.
QString paintPhotograph(const QString &path, int number) {
  QImage picture(number % 3 == 1 ? QSize(400, 600) : QSize(600, 400), QImage::Format_RGB32);
  const int width = picture.width();
  const int height = picture.height();
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  QLinearGradient sky(0, 0, 0, height);
  sky.setColorAt(0, QColor::fromHsv((200 + 47 * number) % 360, 150, 210));
  sky.setColorAt(1, QColor::fromHsv((30 + 23 * number) % 360, 60, 250));
  painter.fillRect(picture.rect(), sky);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(255, 250, 220));
  painter.drawEllipse(QPointF(width * (0.3 + 0.07 * number), height * 0.35), 40, 40);
  for (int hill = 0; hill < 3; ++hill) {
    QPainterPath path_(QPointF(0, height));
    path_.lineTo(0, height * (0.6 + 0.1 * hill));
    path_.cubicTo(width * 0.3, height * (0.4 + 0.12 * hill + 0.03 * number), width * 0.6,
                  height * (0.8 + 0.05 * hill - 0.03 * number), width, height * (0.55 + 0.13 * hill));
    path_.lineTo(width, height);
    painter.setBrush(QColor::fromHsv((110 + 31 * number) % 360, 110, 150 - 35 * hill));
    painter.drawPath(path_);
  }
  painter.end();
  picture.save(path, "jpeg");
  return path;
}

/// Lets the view ask and read until it has what it shows.
void settle(const KaStatusView &view, const bool &isRoomKnown) {
  QEventLoop loop;
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, &loop, [&] {
    bool isRead = isRoomKnown;
    for (const QToolButton *const picture : view.findChildren<QToolButton *>())
      isRead = isRead && (picture->isHidden() || picture->icon().availableSizes().value(0).width() > 32);
    if (isRead) loop.quit();
  });
  QTimer::singleShot(10s, &loop, &QEventLoop::quit);
  look.start(20ms);
  loop.exec();
}

} // namespace

int main(int argc, char **argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  const auto state = kStates.find(arguments.value(1));
  if (state == kStates.end() || arguments.size() < 3) {
    std::fprintf(stderr, "usage: status_pictures STATE FILE.png [dark], STATE one of:\n");
    for (const auto &[name, snapshot] : kStates)
      std::fprintf(stderr, "  %s\n", qPrintable(name));
    return 2;
  }
  installTexts();
  if (arguments.value(3) == u"dark") showWindowsDark(true);

  const QTemporaryDir home;
  KaSnapshot snapshot = state->second;
  const QStringList names{u"IMG_4821.JPG"_s, u"IMG_4820.JPG"_s, u"IMG_4819.JPG"_s,
                          u"IMG_4818.JPG"_s, u"IMG_4817.JPG"_s, u"IMG_4816.JPG"_s};
  if (snapshot.linkState == KaLinkState::Linked)
    for (const QString &name : names)
      snapshot.lastFiles << paintPhotograph(home.filePath(name), int(snapshot.lastFiles.size()));
  const KaDownloadOption option{.parentFolder = u"/home/anna/Pictures/Transferred"_s,
                                .parent10GFolder = u"/home/anna/Pictures/Transferred(10G)"_s};
  bool isRoomKnown = false;
  QWidget window;
  auto *const view = new KaStatusView({.snapshot = [&] { return snapshot; },
                                       .option = [&] { return option; },
                                       .now = [] { return today(14, 10); },
                                       .freeRoom = [&](const QString &) -> std::optional<qint64> {
                                         return state->first == u"disk-full" ? 96'000'000 : 212'400'000'000;
                                       }},
                                      &window, {.refresh = 20ms});
  auto *const layout = new QVBoxLayout(&window);
  layout->addWidget(view);
  window.show();
  window.resize(std::max(window.sizeHint().width(), 36 * window.fontMetrics().height()), 1);
  QTimer::singleShot(100ms, &window, [&] { isRoomKnown = true; });
  settle(*view, isRoomKnown);
  window.resize(window.width(), layout->totalHeightForWidth(window.width()));
  return window.grab().save(arguments[2]) ? 0 : 1;
}
