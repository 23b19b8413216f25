#include "main/AppDelegate.h"

#include "identity/KaLinkageUtility.h"
#include "log/KaLogUtility.h"
#include "platform/ActivationToken.h"
#include "platform/UserDefaults.h"
#include "tests/log/LogFile.h"
#include "tests/support/FakeBrowser.h"
#include "tests/ui/UiProfile.h"
#include "ui/KaAlertQueue.h"
#include "ui/OpenOrSay.h"
#include "ui/StartFailure.h"
#include "ui/Texts.h"

#include <gmock/gmock.h>

#include <QImageReader>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QTimer>

#include <set>
#include <stdexcept>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

TEST(AppDelegate, takesTheFirstTokenPercentDecodedOnceAndNamesItself) {
  const auto token = [](const char *query) {
    return idTokenOf(u"downloaderpictora://any"_s + QLatin1StringView(query));
  };
  EXPECT_EQ(token("?x=1&idToken=a.b-c_d&idToken=two#e"), u"a.b-c_d"_s);
  EXPECT_EQ(token("?idToken=a+b%2Bc%2526=="), u"a+b+c%26=="_s);
  for (const char *const query : {"", "?IDTOKEN=abc&token=d", "?idToken"})
    EXPECT_EQ(token(query), QString()) << query;
  const QRegularExpression userAgent(u"^UserAgent=Downloaderpictora/[0-9.]+\\(NORVALE;MAC_OS/\\d+\\.\\d+\\.\\d+\\)$"_s);
  EXPECT_TRUE(userAgent.match(AppDelegate::getUserAgent()).hasMatch()) << qPrintable(AppDelegate::getUserAgent());
}

TEST(AppDelegate, doesWhatTheLauncherOffersForEachEntryOfTheMenu) {
  const QString entry =
      QString::fromUtf8(contentOf(QStringLiteral(KA_SOURCE "/resources/com.norvale.Downloaderpictora.desktop")));
  EXPECT_TRUE(entry.contains(u"\nStartupNotify=true\n")) << "else GTK's launchers give it no leave to come in front";
  std::set<std::optional<StatusEntry>> done;
  for (const QString &action : entry.section(u"\nActions="_s, 1).section(u";\n"_s, 0, 0).split(u';')) {
    EXPECT_TRUE(entry.contains(u"\n[Desktop Action %1]\nName="_s.arg(action))) << qPrintable(action);
    EXPECT_TRUE(entry.contains(u"\nExec=gapplication action com.norvale.Downloaderpictora "_s + action + u'\n'));
    EXPECT_TRUE(done.insert(entryOfAction(action)).second && entryOfAction(action)) << qPrintable(action);
  }
  EXPECT_EQ(done.size(), static_cast<std::size_t>(StatusEntry::Exit) + 1);
}

/// The very first launch: what is done while the question is open, and what is left behind.
class FirstLaunch : public testing::Test {
protected:
  FirstLaunch() { installTexts(); }
  ~FirstLaunch() override { delegate->applicationWillTerminate(); }

  /// Starts up anew; @p whileOpen is given the question as soon as it stands.
  /// @return whether it was asked, "firstLaunch", "LaunchAtLogin", and whether the agent starts at login.
  QString launch(const std::function<void(QMessageBox &)> &whileOpen) {
    QString asked = u"silent"_s;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
      auto *const question = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
      if (!question) return;
      poll.stop();
      if (question->text() == localised("MSG_FIRST_LAUNCH"_L1)) asked = u"asked"_s;
      whileOpen(*question);
    });
    poll.start(5ms);
    delegate.emplace().applicationDidFinishLaunching();
    return u"%1 %2 %3 %4"_s.arg(asked)
        .arg(defaults.boolValue(u"firstLaunch"_s))
        .arg(defaults.string(u"LaunchAtLogin"_s).value_or(u"-"_s))
        .arg(QFile::exists(profile.autostartEntry()));
  }

  const UiProfile profile;
  platform::UserDefaults &defaults = platform::standardUserDefaults();
  std::optional<AppDelegate> delegate;
};

TEST_F(FirstLaunch, asksOnceAndStartsAtLoginOnlyIfAccepted) {
  const auto accept = [](QMessageBox &question) { question.defaultButton()->click(); };
  const QString obstacle = profile.blockAutostart();
  EXPECT_EQ(launch(accept), u"asked 0 - 0"_s) << "the login item is refused";
  const auto alerts = UiProfile::windows<QMessageBox>();
  EXPECT_TRUE(alerts.size() == 1 && alerts.first()->text() == localised("MSG_ERR_LAUNCH_SETTING"_L1));
  EXPECT_EQ(launch(accept), u"silent 0 - 0"_s);
  EXPECT_EQ(QImageReader::allocationLimit(), 64) << "megabytes that a picture may take";
  ASSERT_TRUE(QFile::remove(obstacle));
  defaults.setString(u"firstLaunch"_s, u"YES"_s);
  EXPECT_EQ(launch(accept), u"asked 0 true 1"_s);
  EXPECT_TRUE(UiProfile::windows<QMessageBox>().isEmpty());
  defaults.setString(u"firstLaunch"_s, u"YES"_s);
  EXPECT_EQ(launch([](QMessageBox &question) { question.close(); }), u"asked 0 false 0"_s);
  KaLogUtility::switchLogStatus();
  for (int time = 0; time < 2; ++time)
    delegate->applicationWillTerminate();
  EXPECT_EQ(loggedLines(profile).filter(u"[END]"_s).size(), 1) << "the display may end while the program does";
}

TEST_F(FirstLaunch, takesTheEndOfTheProgramForNoAnswer) {
  QTimer::singleShot(
      0, [this] { EXPECT_EQ(launch([this](auto &) { delegate->performAction(u"quit"_s); }), u"asked 1 - 0"_s); });
  EXPECT_EQ(QApplication::exec(), 0);
}

TEST_F(FirstLaunch, thatFailsSaysWhyAndEndsWithAFailure) {
  defaults.setString(u"firstLaunch"_s, u"NO"_s);
  delegate.emplace([]() -> std::unique_ptr<KaStatusItemView> { throw std::runtime_error("no more threads"); });
  QTimer::singleShot(0, [this] { delegate->applicationDidFinishLaunching(); });
  QString told;
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, [&] {
    auto *const message = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    if (!message) return;
    told = message->text() + message->informativeText();
    message->close();
  });
  poll.start(5ms);
  EXPECT_EQ(QApplication::exec(), EXIT_FAILURE);
  EXPECT_EQ(told, localised("MSG_ERR_START"_L1) + u"std::runtime_error : no more threads"_s);
}

TEST_F(FirstLaunch, keepsWhatComesInDuringTheQuestionAndDoesWhatTheMenuThenOffers) {
  const FakeBrowser browser(profile);
  ASSERT_TRUE(KaLinkageUtility::saveLinkageSetting(u"token"_s));
  launch([&](QMessageBox &question) {
    for (const QString &action : {u"link"_s, u"help"_s})
      delegate->performAction(action);
    question.close();
  });
  EXPECT_THAT(browser.takeUrl().value_or(QString()).toStdString(), testing::HasSubstr("/help/"));
  EXPECT_TRUE(KaLinkageUtility::loadLinkageSetting()) << "a login was begun";
}

/// Notes what Qt would ask the compositor with when a window shows.
struct SeenTokens : QObject {
  SeenTokens() { qApp->installEventFilter(this); }
  bool eventFilter(QObject *watched, QEvent *event) override {
    if (event->type() == QEvent::Show && watched->isWidgetType() && static_cast<QWidget *>(watched)->isWindow())
      seen = qgetenv("XDG_ACTIVATION_TOKEN");
    return false;
  }
  QByteArray seen;
};

TEST_F(FirstLaunch, showsEachWindowByTheLeaveOfWhoAskedForIt) {
  SeenTokens tokens;
  platform::keepActivationToken(u"launcher's"_s);
  launch([&](QMessageBox &question) {
    EXPECT_EQ(tokens.seen, "launcher's");
    platform::keepActivationToken(u"second start's"_s);
    delegate->activate();
    EXPECT_EQ(platform::activationToken(), QString()) << "the question comes in front";
    question.close();
  });
  ASSERT_TRUE(waitFor([] { return UiProfile::windows<QDialog>().size() == 1; })) << "the settings";
  delete UiProfile::windows<QDialog>().first();
  KaAlertQueue alerts;
  const std::pair<const char *, std::function<void()>> rows[] = {
      {"about", [&] { delegate->performAction(u"about"_s); }},
      {"settings", [&] { delegate->activate(); }},
      {"settings once more", [&] { delegate->activate(); }},
      {"not opened", [&] { showNotOpened(Openable::Page, u"https://a.example/"_s); }},
      {"alert", [&] { alerts.show(u"alert"_s); }},
      {"the same alert", [&] { alerts.show(u"alert"_s); }},
      {"failure",
       [&] {
         QTimer::singleShot(0, [] { QApplication::activeModalWidget()->close(); });
         showStartFailure("MSG_ERR_START"_L1);
       }},
  };
  for (const auto &[name, show] : rows) {
    const bool isNew = !QByteArray(name).contains("same") && !QByteArray(name).contains("once more");
    tokens.seen.clear();
    platform::keepActivationToken(u"token"_s);
    show();
    EXPECT_EQ(tokens.seen, isNew ? "token" : "") << name;
    EXPECT_EQ(platform::activationToken(), QString()) << name;
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN")) << name;
  }
}

} // namespace
