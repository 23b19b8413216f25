#include "platform/LoginItem.h"
#include "platform/UrlScheme.h"
#include "platform/UserDefaults.h"
#include "platform/UserId.h"
#include "platform/linux/DesktopEntry.h"
#include "tests/support/TestProfile.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

using namespace Qt::StringLiterals;

namespace {

void writeFile(const QString &path, const QByteArray &text) {
  QDir().mkpath(QFileInfo(path).path());
  QFile file(path);
  ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write(text) == text.size());
}

constexpr auto kOwnerOnly =
    QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser; // Qt names the owner twice

struct WordRow {
  const char *name;
  const char *stored;
  bool asBool;
  qint64 asInteger;
  std::optional<double> asDouble;
};

class UserDefaultsWords : public testing::TestWithParam<WordRow> {};

TEST_P(UserDefaultsWords, areReadAsPreferencesAre) {
  const TestProfile profile;
  const WordRow &row = GetParam();
  profile.writeUserDefaults({{u"key"_s, QString::fromLatin1(row.stored)}});
  const auto &defaults = platform::standardUserDefaults();
  EXPECT_EQ(defaults.boolValue(u"key"_s), row.asBool);
  EXPECT_EQ(defaults.integerValue(u"key"_s), row.asInteger);
  EXPECT_EQ(defaults.doubleValue(u"key"_s), row.asDouble);
}

INSTANTIATE_TEST_SUITE_P(
    Platform, UserDefaultsWords,
    testing::Values(WordRow{"Yes", "YES", true, 0, std::nullopt}, WordRow{"True", "true", true, 0, std::nullopt},
                    WordRow{"No", "no", false, 0, std::nullopt}, WordRow{"One", "1", true, 1, 1.0},
                    WordRow{"Zero", "0", false, 0, 0.0}, WordRow{"NumberAndUnit", "12 s", true, 12, std::nullopt},
                    WordRow{"Negative", "-3", true, -3, -3.0}, WordRow{"Fraction", "0.25", false, 0, 0.25},
                    WordRow{"Empty", "", false, 0, std::nullopt}),
    [](const auto &row) { return row.param.name; });

TEST(UserDefaults, putStoredValuesBeforeRegisteredOnesAndKeepThemPrivate) {
  const TestProfile profile;
  auto &defaults = platform::standardUserDefaults();
  EXPECT_FALSE(defaults.contains(u"host"_s));
  defaults.registerDefaults({{u"host"_s, u"built-in"_s}, {u"firstLaunch"_s, u"YES"_s}});
  EXPECT_EQ(defaults.string(u"host"_s), u"built-in"_s);
  defaults.setString(u"host"_s, u"a, b; c=d"_s);
  defaults.setBool(u"firstLaunch"_s, false);
  EXPECT_EQ(defaults.string(u"host"_s), u"a, b; c=d"_s);

  const QString path = profile.configFolder() + u"/NORVALE INC/Downloaderpictora.conf"_s;
  const platform::UserDefaults readAgain(path);
  EXPECT_EQ(readAgain.string(u"host"_s), u"a, b; c=d"_s);
  EXPECT_EQ(readAgain.string(u"firstLaunch"_s), u"false"_s);
  EXPECT_EQ(QFileInfo(path).permissions(), kOwnerOnly);
}

TEST(UserId, staysTheSameAndDiffersByMachine) {
  const TestProfile profile;
  const QString kept = profile.path(u"state/kept"_s);
  writeFile(profile.path(u"one"_s), "0123456789abcdef0123456789abcdef\n");
  writeFile(profile.path(u"two"_s), "fedcba9876543210fedcba9876543210\n");
  writeFile(profile.path(u"blank"_s), "\n");
  const auto id = [&](const QStringList &names) {
    QStringList paths;
    for (const QString &name : names)
      paths << profile.path(name);
    return platform::stableUserId(paths, kept);
  };
  EXPECT_EQ(id({u"one"_s}), id({u"blank"_s, u"one"_s, u"two"_s}));
  EXPECT_NE(id({u"one"_s}), id({u"two"_s}));
  EXPECT_FALSE(QFile::exists(kept));

  const QString made = id({u"missing"_s});
  EXPECT_FALSE(made.isEmpty());
  EXPECT_EQ(made, id({u"one"_s})) << "what it enciphered must stay readable";
  EXPECT_EQ(QFileInfo(kept).permissions(), kOwnerOnly);
  EXPECT_EQ(platform::stableUserId({}, profile.path(u"one/cannot/be"_s)), QString());
}

TEST(LoginItem, isTheAutostartEntryAndTellsWhetherItTookEffect) {
  const TestProfile profile;
  int noArguments = 0;
  const QCoreApplication application(noArguments, nullptr);
  const QString entry = profile.configFolder() + u"/autostart/com.norvale.Downloaderpictora.desktop"_s;
  EXPECT_TRUE(platform::setLoginItemEnabled(false)) << "nothing to remove is success";
  ASSERT_TRUE(platform::setLoginItemEnabled(true));
  EXPECT_EQ(QProcess::execute(u"desktop-file-validate"_s, {entry}), 0);
  EXPECT_TRUE(platform::setLoginItemEnabled(false));
  EXPECT_FALSE(QFile::exists(entry));

  QDir(profile.configFolder()).rmdir(u"autostart"_s);
  writeFile(profile.configFolder() + u"/autostart"_s, "not a folder");
  EXPECT_FALSE(platform::setLoginItemEnabled(true));
}

TEST(UrlScheme, isRegisteredForTheUserUnlessInstalled) {
  const TestProfile profile;
  qputenv("XDG_DATA_DIRS", QFile::encodeName(profile.path(u"system"_s)));
  qputenv("PATH", ""); // none of the desktop's tools
  const QString entry = profile.dataFolder() + u"/applications/com.norvale.Downloaderpictora.desktop"_s;
  ASSERT_TRUE(platform::registerUrlScheme(u"/home/u/my apps/agent"_s));
  QFile file(entry);
  ASSERT_TRUE(file.open(QFile::ReadOnly));
  const QByteArray text = file.readAll();
  EXPECT_THAT(text.toStdString(), testing::HasSubstr("Exec=\"/home/u/my apps/agent\" %u\n"));
  EXPECT_THAT(text.toStdString(), testing::HasSubstr("MimeType=x-scheme-handler/downloaderpictora;\n"));

  ASSERT_TRUE(QFile::remove(entry));
  writeFile(profile.path(u"system/applications/com.norvale.Downloaderpictora.desktop"_s), "[Desktop Entry]\n");
  EXPECT_TRUE(platform::registerUrlScheme(u"/home/u/agent"_s));
  EXPECT_FALSE(QFile::exists(entry));
}

TEST(UrlScheme, leadsTheDesktopsOpenerToTheProgram) {
  const TestProfile profile;
  int noArguments = 0;
  const QCoreApplication application(noArguments, nullptr);
  qputenv("DISPLAY", ":0"); // the opener only asks whether it is set
  for (const char *variable : {"XDG_CURRENT_DESKTOP", "KDE_FULL_SESSION", "DESKTOP_SESSION", "XDG_DATA_DIRS"})
    qunsetenv(variable);
  const QString program = profile.path(u"agent"_s);
  writeFile(program, "#!/bin/sh\nprintf '%s' \"$1\" >\"$HOME/url.new\" && mv \"$HOME/url.new\" \"$HOME/url\"\n");
  QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  ASSERT_TRUE(platform::registerUrlScheme(program));
  // The desktop's tools work on by themselves after the call.
  ASSERT_TRUE(waitFor([&] { return QFile::exists(profile.configFolder() + u"/mimeapps.list"_s); }));

  const QString url = u"downloaderpictora://authenticate?idToken=a.b-c_d&x=%20%25"_s;
  ASSERT_EQ(QProcess::execute(u"xdg-open"_s, {url}), 0);
  QFile seen(profile.path(u"url"_s));
  ASSERT_TRUE(seen.open(QFile::ReadOnly));
  EXPECT_EQ(seen.readAll(), url.toUtf8());
}

TEST(ExecArgument, isQuotedAndEscapedForADesktopEntry) {
  EXPECT_EQ(platform::execArgument(u"/opt/a-b_c/100%"_s), u"/opt/a-b_c/100%%"_s);
  EXPECT_EQ(platform::execArgument(u"/opt/a b/100%"_s), u"\"/opt/a b/100%%\""_s);
  EXPECT_EQ(platform::execArgument(uR"(a"$`\)"_s), uR"("a\\"\\$\\`\\\\")"_s);
}

} // namespace
