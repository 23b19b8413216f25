#include "tests/ui/UiProfile.h"
#include "ui/KaPictureRow.h"
#include "ui/KaStatusView.h"
#include "ui/Mnemonics.h"
#include "ui/Texts.h"
#include "ui/Thumbnail.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QImage>
#include <QLabel>
#include <QLayout>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>

#include <semaphore>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using testing::ElementsAre;
using Doing = KaSnapshot::Doing;

namespace {

const QDateTime kNow(QDate(2026, 11, 23), QTime(14, 10));
const QDateTime kLastLook(QDate(2026, 11, 23), QTime(14, 5));
const QDateTime kNextLook(QDate(2026, 11, 23), QTime(14, 35));

QString described(const StatusText &text) {
  QStringList values = text.arguments;
  if (text.count) values.prepend(QString::number(*text.count));
  return QString(text.key).remove(u"STATUS_"_s) + (values.isEmpty() ? QString() : u'(' + values.join(u',') + u')');
}

QString described(const StatusSummary &summary) {
  static const QStringList frames{u"standby"_s, u"1"_s, u"2"_s, u"3"_s, u"4"_s, u"error"_s, u"unlink"_s};
  static const QStringList remedies{u"-"_s, u"login"_s, u"folder"_s, u"folder10G"_s, u"look"_s, u"help"_s};
  QStringList facts;
  for (const StatusText &fact : summary.facts)
    facts << described(fact);
  QString progress;
  if (summary.progress) progress = u" %1/%2"_s.arg(summary.progress->done).arg(summary.progress->all);
  return QStringList{frames[int(summary.frame)], described(summary.headline),
                     summary.explanation ? described(*summary.explanation) : u"-"_s,
                     facts.isEmpty() ? u"-"_s : facts.join(u' '),
                     remedies[int(summary.remedy)] + (summary.isRemedyEnabled ? u""_s : u"(off)"_s) + progress}
      .join(u" | "_s);
}

/// Linked, waiting for its next look after one that ended well.
const KaSnapshot kWell{.linkState = KaLinkState::Linked, .lastLook = kLastLook, .nextLook = kNextLook, .cameToday = 37};

KaSnapshot with(KaSnapshot snapshot, const std::function<void(KaSnapshot &)> &change) {
  change(snapshot);
  return snapshot;
}

KaSnapshot faulty(KaResultCode result, KaFaultCause cause = KaFaultCause::Unknown, Doing doing = Doing::Waiting) {
  return with(kWell, [&](KaSnapshot &s) {
    s.fault = KaFault{result, cause};
    s.doing = doing;
    s.fetched = 12;
    s.toFetch = 240;
  });
}

TEST(StatusSummary, saysWhatMattersMost) {
  using enum KaResultCode;
  const QString facts = u"TODAY(37) LAST_LOOK(14:05) NEXT_LOOK(14:35)"_s;
  const std::pair<KaSnapshot, QString> rows[] = {
      {{}, u"unlink | NOT_LINKED | NOT_LINKED_HINT | - | login"_s},
      {with({}, [](auto &s) { s.fault = KaFault{ValidationFailed}; }),
       u"unlink | NOT_LINKED | MSG_ERR_VALIDATION | - | login"_s},
      {with({}, [](auto &s) { s.linkState = KaLinkState::AwaitsFolders; }),
       u"standby | AWAITS_FOLDERS | AWAITS_FOLDERS_HINT | - | -"_s},
      {with({}, [](auto &s) { s.linkState = KaLinkState::Linked; }), u"standby | NOT_LOOKED_YET | - | - | look"_s},
      {kWell, u"standby | UP_TO_DATE | - | "_s + facts + u" | look"_s},
      {with(kWell,
            [](auto &s) {
              s.lastLook = s.lastLook->addDays(-1);
              s.nextLook = kNow;
            }),
       u"standby | UP_TO_DATE | - | TODAY(37) LAST_LOOK(22/11/2026 14:05) | look"_s},
      {with(kWell, [](auto &s) { s.stillToCome = 3; }),
       u"standby | STILL_TO_COME(3) | STILL_TO_COME_HINT | "_s + facts + u" | look"_s},
      {with(kWell, [](auto &s) { s.doing = Doing::Looking; }), u"1 | LOOKING | - | "_s + facts + u" | look(off)"_s},
      // One of another storage stands, while this one's pass has begun.
      {faulty(ServerError, {}, Doing::Fetching), u"4 | FETCHING(12,240) | - | "_s + facts + u" | look(off) 12/240"_s},
      {with(faulty(DiskFull, {}, Doing::Fetching), [](auto &s) { s.stillToCome = 2; }),
       u"error | DISK_FULL | MSG_ERR_DISK_FULL | FETCHING(12,240) TO_COME(2) "_s + facts + u" | folder 12/240"_s},
      {faulty(FileNotSaved), u"error | NOT_SAVED | MSG_ERR_DOWNLOAD | "_s + facts + u" | folder"_s},
      {with(faulty(FileNotSaved), [](auto &s) { s.fault->isOf10GStorage = true; }),
       u"error | NOT_SAVED | MSG_ERR_DOWNLOAD | "_s + facts + u" | folder10G"_s},
      {with(kWell, [](auto &s) { s.hasNetwork = false; }),
       u"error | OFFLINE | OFFLINE_UNTIL_HINT(14:35) | TODAY(37) LAST_LOOK(14:05) | look"_s},
      {with(faulty(Offline), [](auto &s) { s.nextLook.reset(); }),
       u"error | OFFLINE | OFFLINE_HINT | TODAY(37) LAST_LOOK(14:05) | look"_s},
      {faulty(ValidationFailed, KaFaultCause::NoAnswer),
       u"error | OFFLINE | OFFLINE_UNTIL_HINT(14:35) | TODAY(37) LAST_LOOK(14:05) | look"_s},
      {faulty(LinkInvalid, KaFaultCause::Refused),
       u"error | LOGIN_NEEDED | MSG_ERR_LINK_INVALID | "_s + facts + u" | login"_s},
      {faulty(LinkInvalid, KaFaultCause::Refused, Doing::Looking),
       u"error | LOGIN_NEEDED | MSG_ERR_LINK_INVALID | "_s + facts + u" | login(off)"_s},
      {with(faulty(LinkInvalid), [](auto &s) { s.clockAhead = -16min; }),
       u"error | WRONG_CLOCK | WRONG_CLOCK_HINT(14:10,14:26) | "_s + facts + u" | look"_s},
      {with(faulty(ValidationFailed, KaFaultCause::Refused), [](auto &s) { s.clockAhead = -16min; }),
       u"error | WRONG_CLOCK | WRONG_CLOCK_HINT(14:10,14:26) | "_s + facts + u" | login"_s},
      {with(faulty(LinkInvalid), [](auto &s) { s.clockAhead = -15min; }),
       u"error | LOGIN_NEEDED | MSG_ERR_LINK_INVALID | "_s + facts + u" | login"_s},
      {with(faulty(DiskFull), [](auto &s) { s.clockAhead = 16min; }),
       u"error | DISK_FULL | MSG_ERR_DISK_FULL | "_s + facts + u" | folder"_s},
      {with({}, [](auto &s) { s.clockAhead = 24h; }),
       u"unlink | NOT_LINKED | WRONG_CLOCK_HINT(14:10,22/11/2026 14:10) | - | login"_s},
      {faulty(ServerError), u"error | FAILED | MSG_ERR_SERVER | "_s + facts + u" | look"_s},
      {faulty(SecureConnectionFailed), u"error | FAILED | MSG_ERR_CERTIFICATE | "_s + facts + u" | help"_s},
  };
  QLocale::setDefault(QLocale(u"en_GB"_s));
  for (const auto &[snapshot, expected] : rows)
    EXPECT_EQ(described(statusSummary(snapshot, kNow)), expected);
}

TEST(StatusSummary, isUpToDateWithNothingWrongAloneAndLeavesNoFailureWithoutWords) {
  using enum KaResultCode;
  for (const KaResultCode result : {SecureConnectionFailed, NoBody, DiskFull, Offline, RetryLater, ServerError,
                                    FileNotSaved, Unexpected, LinkInvalid, ValidationFailed})
    for (const KaFaultCause cause :
         {KaFaultCause::Unknown, KaFaultCause::NoAnswer, KaFaultCause::Refused, KaFaultCause::WrongClock}) {
      const StatusSummary summary = statusSummary(faulty(result, cause), kNow);
      EXPECT_EQ(summary.frame, StatusFrame::Error) << int(result);
      EXPECT_NE(summary.remedy, StatusRemedy::None) << int(result);
      EXPECT_TRUE(summary.explanation && !summary.explanation->key.isEmpty()) << int(result);
    }
}

TEST(StatusFolders, sayWhatIsFreeAndWhatIsGone) {
  QLocale::setDefault(QLocale(u"en_GB"_s));
  KaDownloadOption option{.parentFolder = u"/a/Transferred"_s, .parent10GFolder = u"/a/b"_s};
  const auto texts = [&](const FolderRoom &room) {
    QStringList all;
    for (const StatusFolder &folder : statusFolders(option, room))
      all << folder.name + u' ' + described(folder.room);
    return all;
  };
  EXPECT_THAT(texts({}), ElementsAre(u"Transferred "_s, u"b "_s));
  EXPECT_THAT(texts({{u"/a/Transferred"_s, 212'000'000'000}, {u"/a/b"_s, std::nullopt}}),
              ElementsAre(u"Transferred FREE_ROOM(212.0 GB)"_s, u"b FOLDER_MISSING"_s));
  option.parent10GFolder = option.parentFolder;
  EXPECT_EQ(texts({}).size(), 1);
  option = {.parentFolder = u"/"_s, .parent10GFolder = u"/b"_s, .checkBox10GDownload = u"false"_s};
  EXPECT_THAT(texts({}), ElementsAre(u"/ "_s));
}

/// Red on the left and blue on the right, as the camera was held; a turned one is stored lying on its side.
QString writePicture(const QString &path, bool turned = false, const QSize &size = {300, 200}) {
  QImage picture(size, QImage::Format_RGB32);
  picture.fill(Qt::blue);
  for (int y = 0; y < picture.height(); ++y)
    for (int x = 0; x < picture.width() / 2; ++x)
      picture.setPixelColor(x, y, Qt::red);
  if (turned) picture = picture.transformed(QTransform().rotate(-90));
  EXPECT_TRUE(picture.save(path, "jpeg"));
  // EXIF's orientation 6, "turn it right", behind the mark of a JPEG's beginning.
  if (turned)
    writeFile(path, contentOf(path).insert(2, QByteArray::fromHex("ffe10022"
                                                                  "457869660000"
                                                                  "4d4d002a00000008"
                                                                  "0001"
                                                                  "011200030000000100060000"
                                                                  "00000000")));
  return path;
}

bool isRed(const QColor &color) {
  return color.red() > 200 && color.blue() < 60;
}

TEST(Thumbnail, isTheMiddleTheRightWayUpAndNothingForWhatCannotBeRead) {
  const UiProfile profile;
  const QString folder = profile.path() + u'/';
  for (const bool turned : {false, true}) {
    const QImage picture = thumbnailOf(writePicture(folder + u"a.jpg"_s, turned), 64);
    ASSERT_EQ(picture.size(), QSize(64, 64));
    EXPECT_TRUE(isRed(picture.pixelColor(4, 32)) && !isRed(picture.pixelColor(60, 32))) << turned;
  }
  EXPECT_EQ(thumbnailOf(writePicture(folder + u"wide.jpg"_s, false, {4000, 10}), 64).size(), QSize(10, 10));

  writeFile(folder + u"broken.jpg"_s, contentOf(folder + u"a.jpg"_s).first(200));
  writeFile(folder + u"text.jpg"_s, "no picture");
  EXPECT_TRUE(QImage(8, 8, QImage::Format_RGB32).save(folder + u"bitmap.jpg"_s, "bmp"));
  QImage huge(8001, 8000, QImage::Format_Mono);
  huge.fill(0);
  EXPECT_TRUE(huge.save(folder + u"huge.jpg"_s, "png"));
  ASSERT_EQ(::mkfifo(QFile::encodeName(folder + u"pipe.jpg"_s).constData(), 0600), 0);
  for (const char *name : {"broken.jpg", "text.jpg", "bitmap.jpg", "huge.jpg", "pipe.jpg", "missing.jpg", ""})
    EXPECT_TRUE(thumbnailOf(folder + QLatin1StringView(name), 64).isNull()) << name;
}

/// How many threads of ours are beside the main one.
qsizetype sideThreads() {
  qsizetype count = 0;
  for (const QString &task : QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
    count += contentOf(u"/proc/self/task/"_s + task + u"/comm"_s).trimmed() == "side";
  return count;
}

/// Counts what is painted.
class Paints : public QObject {
public:
  bool eventFilter(QObject *watched, QEvent *event) override {
    if (event->type() == QEvent::Paint) names << watched->objectName();
    return false;
  }
  QStringList names;
};

class StatusView : public testing::Test {
protected:
  StatusView() {
    QLocale::setDefault(QLocale(u"en_GB"_s));
    installTexts();
    option = {.parentFolder = profile.picturesFolder(), .parent10GFolder = u"/gone"_s};
  }
  ~StatusView() override {
    view.reset();
    EXPECT_TRUE(waitFor([] { return sideThreads() == 0; }));
  }

  void open() {
    view = std::make_unique<KaStatusView>(KaStatusSources{.snapshot =
                                                              [this] {
                                                                ++looks;
                                                                return snapshot;
                                                              },
                                                          .option = [this] { return option; },
                                                          .now = [] { return kNow; },
                                                          .freeRoom = freeRoom},
                                          nullptr, times);
    QObject::connect(view.get(), &KaStatusView::remedyRequested, [this](StatusRemedy kind) { remedies << kind; });
    QObject::connect(view.get(), &KaStatusView::openFolderRequested, [this](const QString &path) { opened << path; });
    view->show();
  }
  template <class Widget> [[nodiscard]] Widget &find(const QString &name) const {
    return *view->findChild<Widget *>(name);
  }
  [[nodiscard]] QString label(const QString &name) const { return find<QLabel>(name).text(); }
  [[nodiscard]] bool looksAgain() {
    const int before = looks;
    return waitFor([&] { return looks > before + 2; });
  }
  [[nodiscard]] QList<QToolButton *> pictures() const {
    QList<QToolButton *> shown = view->findChildren<QToolButton *>();
    shown.removeIf([](const QToolButton *button) { return button->isHidden(); });
    return shown;
  }
  [[nodiscard]] static QColor middle(const QToolButton &button) {
    const QImage icon = button.icon().pixmap(button.iconSize()).toImage();
    return icon.pixelColor(icon.width() / 4, icon.height() / 2);
  }

  const UiProfile profile;
  KaSnapshot snapshot = kWell;
  KaDownloadOption option;
  std::function<std::optional<qint64>(const QString &)> freeRoom = [](const QString &path) {
    return path == u"/gone" ? std::nullopt : std::optional<qint64>(212'000'000'000);
  };
  KaStatusViewTimes times{.refresh = 2ms, .room = 5ms};
  int looks = 0;
  QList<StatusRemedy> remedies;
  QStringList opened;
  std::unique_ptr<KaStatusView> view;
};

TEST_F(StatusView, showsWhatIsTheCaseAndTouchesWhatDiffersAlone) {
  open();
  EXPECT_EQ(label(u"statusHeadline"_s), u"Up to date"_s);
  EXPECT_EQ(label(u"statusFacts"_s),
            u"37 pictures today · last check: 14:05 · next check: 14:35"_s.replace(u' ', QChar::Nbsp)
                .replace(u"\u00A0·\u00A0"_s, u" · "_s));
  const auto folders = view->findChildren<QLabel *>(u"statusFolder"_s);
  ASSERT_TRUE(waitFor([&] { return folders[1]->text() == u"gone\nnot found"_s; }));
  EXPECT_EQ(folders[0]->text(), u"Pictures\n212.0 GB free"_s);
  ASSERT_TRUE(looksAgain());

  Paints paints;
  for (QWidget *const widget : view->findChildren<QWidget *>())
    widget->installEventFilter(&paints);
  ASSERT_TRUE(looksAgain());
  EXPECT_THAT(paints.names, ElementsAre());

  snapshot = faulty(KaResultCode::DiskFull, {}, Doing::Fetching);
  auto &progress = *view->findChild<QProgressBar *>();
  ASSERT_TRUE(waitFor([&] { return progress.isVisible() && progress.value() == 12 && progress.maximum() == 240; }));
  EXPECT_TRUE(find<QLabel>(u"statusExplanation"_s).isVisible());
  snapshot.fault.reset();
  ASSERT_TRUE(waitFor([&] { return label(u"statusHeadline"_s) == u"Downloading pictures: 12 of 240"_s; }));
  EXPECT_FALSE(find<QLabel>(u"statusExplanation"_s).isVisible());
  ASSERT_TRUE(looksAgain());
  const auto height = [&] { return view->layout()->totalHeightForWidth(600); };
  const int before = height();
  paints.names.clear();
  snapshot.fetched = 13;
  ASSERT_TRUE(waitFor([&] { return progress.value() == 13; }) && looksAgain());
  EXPECT_TRUE(paints.names.contains(u"statusHeadline"_s) && !paints.names.contains(u"statusFolder"_s)
              && !paints.names.contains(u"statusFacts"_s));
  snapshot = kWell;
  ASSERT_TRUE(waitFor([&] { return !progress.isVisible(); }));
  EXPECT_EQ(height(), before) << "the end of a pass moves what is below";
}

TEST_F(StatusView, saysWhatItsButtonsAreFor) {
  open();
  auto &remedy = find<QPushButton>(u"statusRemedy"_s);
  for (const auto &[now, kind, title] :
       {std::tuple(kWell, StatusRemedy::LookNow, localised("MENU_DOWNLOAD"_L1)),
        {KaSnapshot{}, StatusRemedy::LogIn, localised("MENU_LOGIN"_L1)},
        {faulty(KaResultCode::DiskFull), StatusRemedy::ChooseFolder, localised("STATUS_CHOOSE_FOLDER"_L1)},
        {faulty(KaResultCode::Unexpected), StatusRemedy::OpenHelp, localised("MENU_HELP"_L1)}}) {
    snapshot = now;
    ASSERT_TRUE(waitFor([&, text = title] { return spoken(remedy.text()) == text; })) << qPrintable(title);
    remedies.clear();
    remedy.click();
    EXPECT_THAT(remedies, ElementsAre(kind));
  }
  snapshot = with(kWell, [](KaSnapshot &s) { s.doing = Doing::Looking; });
  ASSERT_TRUE(waitFor([&] { return !remedy.isEnabled(); }));
  for (QPushButton *const button : view->findChildren<QPushButton *>(u"statusOpenFolder"_s))
    button->click();
  EXPECT_THAT(opened, ElementsAre(profile.picturesFolder(), u"/gone"_s));
}

TEST_F(StatusView, showsTheLastPicturesAsTheyCanBeRead) {
  const QString folder = profile.path(u"day"_s) + u'/';
  writeFile(folder + u"broken.jpg"_s, "\xff\xd8\xff");
  snapshot.lastFiles = {folder + u"missing.jpg"_s, folder + u"broken.jpg"_s, writePicture(folder + u"good.jpg"_s)};
  times = {.refresh = 1h, .room = 1h};
  open();
  ASSERT_TRUE(waitFor([&] { return pictures().size() == 3 && isRed(middle(*pictures()[2])); }));
  for (const int plain : {0, 1})
    EXPECT_FALSE(pictures()[plain]->icon().isNull() || isRed(middle(*pictures()[plain])));
  EXPECT_EQ(pictures()[2]->accessibleName(), u"good.jpg"_s);
  EXPECT_EQ(pictures()[2]->toolTip(), u"good.jpg"_s);
  EXPECT_NE(pictures()[2]->focusPolicy() & Qt::TabFocus, 0);
  pictures()[2]->click();
  EXPECT_THAT(opened, ElementsAre(folder.chopped(1)));

  snapshot.lastFiles.prepend(writePicture(folder + u"next.jpg"_s, /*turned=*/true));
  view->hide();
  view->show();
  ASSERT_TRUE(waitFor([&] { return pictures().size() == 4 && isRed(middle(*pictures()[0])); }));
  EXPECT_TRUE(isRed(middle(*pictures()[3])));
}

TEST_F(StatusView, costsNothingWhenHidden) {
  open();
  ASSERT_TRUE(waitFor([] { return sideThreads() == 1; }));
  view->hide();
  for (const QTimer *timer : view->findChildren<QTimer *>())
    EXPECT_FALSE(timer->isActive());
  EXPECT_TRUE(waitFor([] { return sideThreads() == 0; }));
  view->show();
  EXPECT_TRUE(looksAgain());
}

TEST_F(StatusView, closesWhileADiskHangs) {
  // Both outlive the thread that waits.
  static std::binary_semaphore asked(0);
  static std::binary_semaphore answers(0);
  freeRoom = [](const QString &) -> std::optional<qint64> {
    asked.release();
    answers.acquire();
    return 1;
  };
  option.checkBox10GDownload = u"false"_s;
  open();
  asked.acquire();
  EXPECT_TRUE(looksAgain()) << "a disk holds up the window";
  view.reset();
  EXPECT_EQ(sideThreads(), 1);
  answers.release();
}

} // namespace
