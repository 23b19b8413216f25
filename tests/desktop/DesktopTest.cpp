#include "platform/ReleasedBy.h"
#include "sandbox/Library.h"
#include "sandbox/SampleLibrary.h"
#include "sandbox/Service.h"
#include "tests/support/AgentProcess.h"
#include "tests/support/FakeBrowser.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/Program.h"
#include "tests/support/TestProfile.h"

#include <gtest/gtest.h>

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QFile>
#include <QProcess>
#include <QScreen>
#include <QSettings>
#include <QStandardPaths>
#include <QSystemTrayIcon>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <stdexcept>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

enum class Tray { StatusNotifier, XEmbed };
constexpr int kLeftButton = 1;
constexpr int kRightButton = 3;

int noArguments = 0;

/// Moves the mouse, presses keys, asks for windows.
QString xdotool(const QString &words) {
  QProcess tool;
  tool.start(u"xdotool"_s, words.split(u' '));
  tool.waitForFinished();
  return QString::fromUtf8(tool.readAllStandardOutput()).trimmed();
}

/// Moves the mouse to a place of a window, in hundredths of its width and height.
void pointAt(const QString &window, int right, int down) {
  const QStringList size = xdotool(u"getwindowgeometry "_s + window).section(u' ', -1).split(u'x');
  xdotool(u"mousemove --window %1 %2 %3"_s.arg(window)
              .arg(size.first().toInt() * right / 100)
              .arg(size.last().toInt() * down / 100));
}

bool waitForActiveWindow(const QString &title) {
  return waitFor([&] { return xdotool(u"getactivewindow getwindowname"_s) == title; });
}

bool waitForService(const QString &name) {
  return waitFor([&] { return QDBusConnection::sessionBus().interface()->isServiceRegistered(name).value(); });
}

/// What the panel's StatusNotifier side says of itself; nothing when there is none.
QVariant notifierHost(const QString &property) {
  const QString watcher = u"org.kde.StatusNotifierWatcher"_s;
  auto question = QDBusMessage::createMethodCall(watcher, u"/StatusNotifierWatcher"_s,
                                                 u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
  question << watcher << property;
  return QDBusReply<QVariant>(QDBusConnection::sessionBus().call(question)).value();
}

/// Whether a notification stands, or comes to stand, or none.
bool waitForNotification(bool isThere = true) {
  return waitFor([&] { return xdotool(u"search --onlyvisible --class Dunst"_s).isEmpty() != isThere; });
}

/// Clicks the notification that stands alone, which removes it.
bool clickNotification() {
  if (!waitForNotification()) return false;
  xdotool(u"mousemove 850 50 click 1"_s);
  return waitForNotification(false);
}

bool waitForContent(const QString &path, const QByteArray &part) {
  return waitFor([&] { return contentOf(path).simplified().contains(part); });
}

/// The whole program on a desktop: a screen, a window manager and a notification service, and a panel when it is
/// asked for.
class Desktop : public testing::TestWithParam<Tray> {
protected:
  Desktop() {
    auto defaults = service.userDefaults();
    defaults.insert(u"firstLaunch"_s, u"false"_s);
    defaults.insert(u"ImageRetryWaitTime"_s, u"1"_s);
    defaults.insert(u"timeoutIntervalForRequest"_s, u"60"_s);
    profile.writeUserDefaults(defaults);
    // A window that asks for its place while openbox starts stays unseen until something else happens: begin only once
    // it does what it is told.
    if (!waitFor([] { return xdotool(u"set_desktop 1 get_desktop"_s) == u"1"_s; }))
      throw std::runtime_error("no desktop");
  }

  void startNotifications() {
    const QString settings = profile.path(u"dunstrc"_s);
    writeFile(settings, "[global]\norigin = top-right\noffset = 20x20\nwidth = 300\nmouse_left_click = do_action\n"
                        "[urgency_low]\ntimeout = 0\n[urgency_normal]\ntimeout = 0\n");
    notifications.emplace(u"dunst"_s, QStringList{u"-config"_s, settings});
  }

  void startTray(Tray kind) {
    if (kind == Tray::XEmbed) {
      panel.emplace(u"trayer"_s, u"--edge top --align left --widthtype request --height 28"_s.split(u' '));
      ASSERT_TRUE(waitFor([] { return QSystemTrayIcon::isSystemTrayAvailable(); }));
      return;
    }
    writeFile(profile.configFolder() + u"/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml"_s, R"(
<channel name="xfce4-panel" version="1.0"><property name="configver" type="int" value="2"/>
<property name="panels" type="array"><value type="int" value="1"/><property name="panel-1" type="empty">
<property name="position" type="string" value="p=6;x=0;y=0"/><property name="position-locked" type="bool" value="true"/>
<property name="length" type="uint" value="100"/><property name="size" type="uint" value="28"/>
<property name="plugin-ids" type="array"><value type="int" value="1"/></property></property></property>
<property name="plugins" type="empty"><property name="plugin-1" type="string" value="systray"/></property></channel>)");
    const QSettings xfconf(u"/usr/share/dbus-1/services/org.xfce.Xfconf.service"_s, QSettings::IniFormat);
    panelSettings.emplace(xfconf.value(u"D-BUS Service/Exec"_s).toString(), QStringList());
    ASSERT_TRUE(waitForService(u"org.xfce.Xfconf"_s));
    panel.emplace(u"xfce4-panel"_s, QStringList{u"--disable-wm-check"_s});
    ASSERT_TRUE(waitFor([] { return notifierHost(u"IsStatusNotifierHostRegistered"_s).toBool(); }));
  }

  [[nodiscard]] QImage icon() const { return application.primaryScreen()->grabWindow(0, 4, 4, 20, 20).toImage(); }
  [[nodiscard]] bool waitForIcon() const {
    return waitFor([this] { return icon().convertToFormat(QImage::Format_Indexed8).colorCount() > 1; });
  }

  /// It alone of the windows of agent and panel has no frame around it.
  static QString visibleMenu() {
    return xdotool(u"search --onlyvisible --maxdepth 1 --class downloaderpictora|wrapper"_s);
  }
  /// Opens the menu and clicks an entry by mouse.
  /// @param down  the entry's place, in hundredths of the menu's height.
  static void choose(int button, int down) {
    xdotool(u"mousemove 14 14 click %1"_s.arg(button));
    QString menu;
    ASSERT_TRUE(waitFor([&] {
      menu = visibleMenu();
      return !menu.isEmpty();
    }));
    pointAt(menu, 50, down);
    xdotool(u"click 1"_s);
  }

  void quitByMenu(AgentProcess &agent) {
    choose(kRightButton, 93);
    EXPECT_EQ(agent.waitForEnd(1s * kSlowness), 0) << agent.errorOutput().toStdString();
  }

  TestProfile profile;
  const QString downloads = profile.picturesFolder() + u"/Transferred"_s;
  const QString desktopsOpener = QStandardPaths::findExecutable(u"xdg-open"_s);
  FakeBrowser browser{profile};
  PrivateBus bus;
  const Screen screen;
  const bool hasEnvironment = qputenv("QT_QPA_PLATFORM", "xcb") && qputenv("GDK_BACKEND", "x11")
                              && qputenv("XDG_CURRENT_DESKTOP", "X-Generic") && qputenv("LC_ALL", "C.UTF-8")
                              && qunsetenv("LANGUAGE");
  QApplication application{noArguments, nullptr};
  Program windowManager{u"openbox"_s, {u"--sm-disable"_s}};
  std::optional<Program> notifications;
  std::optional<Program> panelSettings;
  std::optional<Program> panel;
  sandbox::Service service;
};

TEST_P(Desktop, menuAndWindowsWorkByMouseAndKeys) {
  startTray(GetParam());
  AgentProcess agent({}, u"xcb"_s);
  const bool isNotifier = GetParam() == Tray::StatusNotifier;
  ASSERT_TRUE(
      waitFor([&] { return notifierHost(u"RegisteredStatusNotifierItems"_s).toStringList().isEmpty() != isNotifier; }));
  ASSERT_TRUE(waitForIcon());

  choose(kLeftButton, 23);
  ASSERT_TRUE(waitForActiveWindow(u"Downloaderpictora"_s));
  // By its key to the kind of folders by date, and to the next one.
  xdotool(u"key alt+d Down Return"_s);
  const QString settings = profile.appFolder() + u"/DownloadSettingData.plist"_s;
  EXPECT_TRUE(waitForContent(settings, "<key>ChildFolder</key> <integer>1</integer>"));
  EXPECT_TRUE(waitForContent(settings, "<string>" + downloads.toUtf8() + "</string>"));

  choose(kRightButton, 65);
  ASSERT_TRUE(waitForActiveWindow(u"About Downloaderpictora"_s));
  pointAt(xdotool(u"getactivewindow"_s), 50, 35);
  // Right Control does nothing; left Control switches the log; left Shift opens its folder, after those.
  for (const int keyCode : {105, 37, 50})
    xdotool(u"keydown %1 click 1 keyup %1"_s.arg(keyCode));
  EXPECT_EQ(browser.takeUrl(), profile.appFolder() + u"/Log"_s);
  EXPECT_TRUE(waitForContent(profile.configFolder() + u"/NORVALE INC/Downloaderpictora.conf"_s, "OutputLog=true"));
  quitByMenu(agent);
}

TEST_P(Desktop, notificationsAndUrlsLinkAndShowWhatArrives) {
  service.library().setSettingsObject("{\"applicationAliasIds\":[],\"isEnableDownload10GStorage\":true}");
  const auto &picture = sandbox::sampleObjects().first();
  service.library().add(picture);
  service.order(sandbox::Endpoint::ObjectGet, {.kind = sandbox::Fault::Kind::SlowBody});
  AgentProcess agent({}, u"xcb"_s);
  ASSERT_TRUE(agent.waitUntilServing());
  startTray(GetParam());
  ASSERT_TRUE(waitForIcon());

  startNotifications();
  ASSERT_TRUE(clickNotification()) << "that the agent is not linked, told before anything could show it";
  ASSERT_TRUE(browser.takeUrl()) << "the login page";
  for (const auto &token : {u"none"_s, u"neither"_s})
    ASSERT_EQ(QProcess::execute(desktopsOpener, {u"downloaderpictora://authenticate?idToken="_s + token}), 0);
  ASSERT_TRUE(waitForNotification()) << "that the login was refused, once";
  ASSERT_TRUE(AgentProcess::requestAction(u"link"_s));
  ASSERT_EQ(QProcess::execute(desktopsOpener, {service.signIn(browser.takeUrl().value_or(QString()))}), 0);
  ASSERT_TRUE(waitForActiveWindow(u"Downloaderpictora"_s));
  EXPECT_TRUE(waitForNotification(false)) << "it is not true any more";
  xdotool(u"key Return"_s);

  ASSERT_TRUE(clickNotification()) << "that the agent is linked";
  QList<QImage> icons; // the first may be of the time before
  EXPECT_TRUE(waitFor([&] {
    if (const QImage now = icon(); !icons.contains(now)) icons << now;
    return icons.size() == 3;
  }));
  service.clearFaults();
  const QString arrived = downloads + u'/' + sandbox::expectedFiles({picture}).first().relativePath;
  EXPECT_TRUE(waitFor([&] { return QFile::exists(arrived); })) << arrived.toStdString();
  ASSERT_TRUE(clickNotification()) << "that all pictures have arrived";
  EXPECT_EQ(browser.takeUrl(), downloads);
  quitByMenu(agent);
}

INSTANTIATE_TEST_SUITE_P(Trays, Desktop, testing::Values(Tray::StatusNotifier, Tray::XEmbed),
                         [](const auto &row) { return row.param == Tray::XEmbed ? "XEmbed" : "StatusNotifier"; });

TEST_F(Desktop, inAWaylandSessionAClickShowsHowThingsStandOnItsX11Part) {
  startTray(Tray::XEmbed);
  qputenv("XDG_SESSION_TYPE", "wayland");
  AgentProcess agent({}, u"xcb"_s);
  ASSERT_TRUE(waitForIcon());
  xdotool(u"mousemove 14 14 click %1"_s.arg(kLeftButton));
  EXPECT_TRUE(waitForActiveWindow(u"Downloaderpictora"_s));
  EXPECT_TRUE(visibleMenu().isEmpty()) << "it would be where the pointer was last seen";
}

/// Nothing else brings it in front where the desktop gives no leave. A question would be answered by that.
TEST(Wayland, opensAWindowAnewThatIsAskedForAgainAndNoQuestion) {
  const TestProfile profile;
  const PrivateBus bus;
  const QCoreApplication application(noArguments, nullptr);
  const sandbox::Service service;
  const Compositor compositor(profile);
  qputenv("WAYLAND_DEBUG", "1");
  for (const bool isFirstLaunch : {true, false}) {
    auto defaults = service.userDefaults();
    if (!isFirstLaunch) defaults.insert(u"firstLaunch"_s, u"false"_s);
    profile.writeUserDefaults(defaults);
    AgentProcess agent({}, u"wayland"_s);
    QString heard;
    const auto opensItsWindow = [&](int times) {
      return waitFor([&] { return (heard += agent.errorOutput()).count(u".get_toplevel("_s) == times; });
    };
    ASSERT_TRUE(agent.waitUntilServing());
    ASSERT_TRUE(isFirstLaunch || AgentProcess::requestAction(u"settings"_s));
    ASSERT_TRUE(opensItsWindow(1)) << heard.toStdString();
    EXPECT_EQ(AgentProcess().waitForEnd(10s), 0) << "a second start";
    EXPECT_TRUE(isFirstLaunch || opensItsWindow(2)) << heard.toStdString();
    ASSERT_TRUE(AgentProcess::requestAction(u"quit"_s));
    EXPECT_EQ(agent.waitForEnd(10s), 0);
    EXPECT_TRUE(opensItsWindow(isFirstLaunch ? 1 : 2)) << heard.toStdString();
    const QByteArray stored = contentOf(profile.configFolder() + u"/NORVALE INC/Downloaderpictora.conf"_s);
    EXPECT_NE(stored.contains("firstLaunch"), isFirstLaunch) << "that the question was answered";
  }
}

TEST_F(Desktop, withoutABusALoginCompletes) {
  startTray(Tray::XEmbed);
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  AgentProcess agent({}, u"xcb"_s);
  ASSERT_TRUE(waitForIcon());
  choose(kRightButton, 38);
  const auto loginUrl = browser.takeUrl();
  ASSERT_TRUE(loginUrl && loginUrl->contains(u"/getLogin?"_s));
  ASSERT_EQ(QProcess::execute(desktopsOpener, {service.signIn(*loginUrl)}), 0);
  EXPECT_TRUE(waitForActiveWindow(u"Downloaderpictora"_s)) << "which asks for the folders of the new link";
  agent.terminate();
  EXPECT_EQ(agent.waitForEnd(1s * kSlowness), 0);
}

/// What programs tell a launcher.
struct HeardOnRoot : QAbstractNativeEventFilter {
  HeardOnRoot() {
    qApp->installNativeEventFilter(this);
    const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    auto *const display = qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    xcb_change_window_attributes(display, xcb_setup_roots_iterator(xcb_get_setup(display)).data->root,
                                 XCB_CW_EVENT_MASK, &mask);
    xcb_flush(display);
  }
  bool nativeEventFilter(const QByteArray & /*type*/, void *message, qintptr * /*result*/) override {
    const auto *const event = static_cast<const xcb_client_message_event_t *>(message);
    if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE) return false;
    if (event->type == active) activations << event->data.data32[1];
    if (event->type == begin) heard.clear();
    if (event->type == begin || event->type == next)
      heard.append(reinterpret_cast<const char *>(event->data.data8), sizeof event->data.data8);
    return false;
  }
  [[nodiscard]] bool waitFor(const QByteArray &text) const {
    return ::waitFor([&] { return heard.contains(text + '\0'); });
  }
  static xcb_atom_t atom(const QByteArray &name) {
    auto *const display = qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    const auto request = xcb_intern_atom(display, 0, static_cast<uint16_t>(name.size()), name.constData());
    const std::unique_ptr<xcb_intern_atom_reply_t, platform::ReleasedBy<&std::free>> reply(
        xcb_intern_atom_reply(display, request, nullptr));
    return reply->atom;
  }
  const xcb_atom_t begin = atom("_NET_STARTUP_INFO_BEGIN");
  const xcb_atom_t next = atom("_NET_STARTUP_INFO");
  const xcb_atom_t active = atom("_NET_ACTIVE_WINDOW");
  QByteArray heard;
  QList<uint> activations; ///< as of which time
};

TEST_F(Desktop, withoutATrayTheAgentStillAnswers) {
  const HeardOnRoot root;
  qputenv("DESKTOP_STARTUP_ID", "launcher \"1\"_TIME7");
  AgentProcess agent({}, u"xcb"_s);
  ASSERT_TRUE(agent.waitUntilServing());
  EXPECT_TRUE(root.waitFor(R"(remove: ID="launcher \"1\"_TIME7")")) << "the launcher waits for a window";
  qputenv("DESKTOP_STARTUP_ID", "launcher 2_TIME8");
  AgentProcess second;
  EXPECT_EQ(second.waitForEnd(10s), 0);
  EXPECT_TRUE(root.waitFor(R"(remove: ID="launcher 2_TIME8")"));
  EXPECT_TRUE(waitForActiveWindow(u"Downloaderpictora"_s));
  EXPECT_TRUE(waitFor([&] { return root.activations.contains(8U); })) << "as of when the user started it";
  const QSettings entry(QStringLiteral(KA_SOURCE "/resources/com.norvale.Downloaderpictora.desktop"),
                        QSettings::IniFormat);
  const QString windowClass = entry.value(u"Desktop Entry/StartupWMClass"_s).toString();
  EXPECT_EQ(xdotool(u"search --onlyvisible --class ^%1$"_s.arg(windowClass)), xdotool(u"getactivewindow"_s));
  ASSERT_TRUE(AgentProcess::requestAction(u"quit"_s));
  EXPECT_EQ(agent.waitForEnd(10s), 0);
}

} // namespace
