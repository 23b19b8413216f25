#include "app/main/AppDelegate.h"

#include "app/KaModelFacade.h"
#include "app/main/CommandLine.h"
#include "platform/UserDefaults.h"
#include "sandbox/Service.h"
#include "tests/support/FakeBrowser.h"
#include "tests/ui/UiProfile.h"
#include "ui/Texts.h"

#include <gmock/gmock.h>

#include <QFileInfo>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

struct CallbackRow {
  const char *name;
  const char *url;
  const char *idToken;
};

class CallbackUrl : public testing::TestWithParam<CallbackRow> {};

TEST_P(CallbackUrl, bringsTheToken) {
  EXPECT_EQ(idTokenOf(QString::fromUtf8(GetParam().url)), QString::fromUtf8(GetParam().idToken));
}

INSTANTIATE_TEST_SUITE_P(
    Urls, CallbackUrl,
    testing::Values(CallbackRow{"plain", "downloaderpictora://authenticate?idToken=a.b-c_d", "a.b-c_d"},
                    CallbackRow{"amongOthers", "downloaderpictora://authenticate?x=1&idToken=abc&y=2", "abc"},
                    CallbackRow{"theFirstOfTwo", "downloaderpictora://authenticate?idToken=one&idToken=two", "one"},
                    CallbackRow{"anyHost", "downloaderpictora://elsewhere/path?idToken=abc", "abc"},
                    CallbackRow{"plusStays", "downloaderpictora://authenticate?idToken=a+b", "a+b"},
                    CallbackRow{"percentDecoded", "downloaderpictora://authenticate?idToken=a%2Bb%26c%20d", "a+b&c d"},
                    CallbackRow{"decodedOnce", "downloaderpictora://authenticate?idToken=a%2526", "a%26"},
                    CallbackRow{"equalSignsInside", "downloaderpictora://authenticate?idToken=abc==", "abc=="},
                    CallbackRow{"beforeTheFragment", "downloaderpictora://authenticate?idToken=abc#d", "abc"},
                    CallbackRow{"noQuery", "downloaderpictora://authenticate", ""},
                    CallbackRow{"noToken", "downloaderpictora://authenticate?token=abc", ""},
                    CallbackRow{"otherCase", "downloaderpictora://authenticate?IDTOKEN=abc", ""},
                    CallbackRow{"noValue", "downloaderpictora://authenticate?idToken", ""},
                    CallbackRow{"noUrl", "", ""}),
    [](const auto &row) { return row.param.name; });

TEST(CommandLine, takesNothingOrOneUrlOfItsOwn) {
  const auto parsed = [](const QStringList &arguments) {
    return parseCommandLine(QStringList{u"agent"_s} + arguments);
  };
  ASSERT_TRUE(parsed({}));
  EXPECT_FALSE(parsed({})->url);
  ASSERT_TRUE(parsed({u"downloaderpictora://a?b"_s}));
  EXPECT_EQ(parsed({u"downloaderpictora://a?b"_s})->url, u"downloaderpictora://a?b"_s);
  for (const auto &refused : {QStringList{u"--help"_s}, QStringList{QString()}, QStringList{u"https://a/"_s},
                              QStringList{u"downloaderpictora:a"_s, u"downloaderpictora:b"_s}})
    EXPECT_FALSE(parsed(refused)) << refused.join(u' ').toStdString();
}

TEST(DesktopActions, meanMenuEntries) {
  EXPECT_EQ(entryOfAction(u"download"_s), StatusEntry::Download);
  EXPECT_EQ(entryOfAction(u"link"_s), StatusEntry::Link);
  EXPECT_EQ(entryOfAction(u"logout"_s), StatusEntry::Logout);
  EXPECT_EQ(entryOfAction(u"quit"_s), StatusEntry::Exit);
  EXPECT_EQ(entryOfAction(u"Quit"_s), std::nullopt);
}

TEST(UserAgent, namesProgramAndSystem) {
  EXPECT_THAT(
      AppDelegate::getUserAgent().toStdString(),
      testing::MatchesRegex("UserAgent=Downloaderpictora/[0-9.]+[(]NORVALE;MAC_OS/[0-9]+[.][0-9]+[.][0-9]+[)]"));
}

/// The very first launch: what is done while the question is open, and what is left behind.
class FirstLaunch : public testing::Test {
protected:
  FirstLaunch() { installTexts(); }
  ~FirstLaunch() override { EXPECT_TRUE(delegate.applicationWillTerminate()); }

  /// Runs the start-up; @p whileOpen is given the question as soon as it stands.
  void launch(const std::function<void(QMessageBox &)> &whileOpen) {
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
      auto *const question = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
      if (!question) return;
      poll.stop();
      questionText = question->text();
      whileOpen(*question);
    });
    poll.start(5ms);
    delegate.applicationDidFinishLaunching();
  }
  [[nodiscard]] static bool asksAgain() { return platform::standardUserDefaults().boolValue(u"firstLaunch"_s); }
  [[nodiscard]] static std::optional<QString> launchAtLogin() {
    return platform::standardUserDefaults().string(u"LaunchAtLogin"_s);
  }
  [[nodiscard]] bool startsAtLogin() const { return QFileInfo::exists(profile.autostartEntry()); }

  static void pressKey(QMessageBox &question, Qt::Key key) {
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
      QKeyEvent event(type, key, Qt::NoModifier);
      QApplication::sendEvent(&question, &event);
    }
  }
  static void clickRejecting(QMessageBox &question) {
    for (QAbstractButton *const button : question.buttons())
      if (question.buttonRole(button) == QMessageBox::RejectRole) return button->click();
  }

  const UiProfile profile;
  AppDelegate delegate;
  QString questionText;
};

TEST_F(FirstLaunch, returnAcceptsToStartAtLogin) {
  launch([](QMessageBox &question) { pressKey(question, Qt::Key_Return); });
  EXPECT_EQ(questionText, localised("MSG_FIRST_LAUNCH"_L1));
  EXPECT_TRUE(startsAtLogin());
  EXPECT_TRUE(platform::standardUserDefaults().boolValue(u"LaunchAtLogin"_s));
  EXPECT_FALSE(asksAgain());
}

TEST_F(FirstLaunch, anyOtherAnswerDeclines) {
  using Answer = void (*)(QMessageBox &);
  for (const Answer answer : {+[](QMessageBox &question) { clickRejecting(question); },
                              +[](QMessageBox &question) { pressKey(question, Qt::Key_Escape); },
                              +[](QMessageBox &question) { question.close(); }}) {
    platform::standardUserDefaults().setString(u"firstLaunch"_s, u"YES"_s);
    platform::standardUserDefaults().setString(u"LaunchAtLogin"_s, u"unset"_s);
    AppDelegate another;
    QTimer::singleShot(20ms, [answer] { answer(*qobject_cast<QMessageBox *>(QApplication::activeModalWidget())); });
    another.applicationDidFinishLaunching();
    EXPECT_FALSE(startsAtLogin());
    EXPECT_EQ(launchAtLogin(), u"false"_s);
    EXPECT_FALSE(asksAgain());
  }
}

TEST_F(FirstLaunch, aRefusedLoginItemIsNotStoredAndNotAskedForAgain) {
  profile.blockAutostart();
  launch([](QMessageBox &question) { pressKey(question, Qt::Key_Return); });
  EXPECT_EQ(launchAtLogin(), std::nullopt);
  EXPECT_FALSE(asksAgain());
}

TEST_F(FirstLaunch, laterLaunchesDoNotAsk) {
  platform::standardUserDefaults().setBool(u"firstLaunch"_s, false);
  launch([](QMessageBox &) { ADD_FAILURE() << "asked"; });
  EXPECT_EQ(questionText, QString());
}

TEST_F(FirstLaunch, endingTheProgramAnswersNothing) {
  QTimer::singleShot(0, [this] { launch([this](QMessageBox &) { delegate.performAction(u"quit"_s); }); });
  EXPECT_EQ(QApplication::exec(), 0);
  EXPECT_EQ(launchAtLogin(), std::nullopt);
  EXPECT_TRUE(asksAgain());
}

TEST_F(FirstLaunch, aLoginThatComesBackDuringTheQuestionIsCompletedAfterIt) {
  sandbox::Service service;
  auto &defaults = platform::standardUserDefaults();
  const auto pointers = service.userDefaults();
  for (auto it = pointers.begin(); it != pointers.end(); ++it)
    defaults.setString(it.key(), it.value());
  const FakeBrowser browser(profile);
  auto &facade = KaModelFacade::sharedInstance();
  facade.setupLinkage();
  const QString callback = service.signIn(browser.takeUrl().value_or(QString()));
  ASSERT_FALSE(callback.isEmpty());

  launch([&](QMessageBox &question) {
    delegate.handleUrl(callback);
    pressKey(question, Qt::Key_Escape);
  });
  ASSERT_TRUE(waitFor([&] { return facade.loadLinkageSetting().has_value(); }));
  EXPECT_EQ(facade.loadLinkageSetting(), idTokenOf(callback));
}

} // namespace
