"""What every desktop can do for the one who tries the agent on it."""

import pathlib

from gi.repository import GLib

from basics import Fault, holds_within, settled, wait_until

AGENT, BROWSER, FOLDERS = 'agent', 'browser', 'folders'
BROWSER_PROGRAM = pathlib.Path(__file__).resolve().parent / 'browser.py'
# Without its documents, which it would mount into the session's folders.
PORTAL = ('org.freedesktop.portal.Desktop', 'org.freedesktop.impl.portal.PermissionStore')
GTK_PORTAL = (*PORTAL, 'org.freedesktop.impl.portal.desktop.gtk')
KINDS = {'downloaderpictora': AGENT, 'com.norvale.downloaderpictora': AGENT, 'standin-browser': BROWSER,
         'standin-folders': FOLDERS}


def kind_of(window_class):
    """Whose a window is; its own class for a stranger's."""
    return KINDS.get((window_class or '').lower(), window_class or '')


class Desktop:
    name = ''
    title = ''
    current_desktop = ''
    session_type = 'x11'
    services = ()  # of the session bus, started when they are asked for
    has_tray = True
    size = (1280, 800)
    scale = 1.5
    menu_button = 'right'
    left_click_is_told = False  # to the agent, which shows how things stand

    def __init__(self, session):
        self.session = session
        self.bus = None
        self.pointer = None
        session.environment.update(XDG_CURRENT_DESKTOP=self.current_desktop, XDG_SESSION_TYPE=self.session_type)

    end_status = 1  # the agent's, as Qt ends a program whose display goes
    theme_plugin = ''  # of Qt's, that gives a program the desktop's looks
    separator = 0.35  # height of one in its menus, in entries
    notifier = ''

    def prepare(self):
        """What has to be there before the session bus starts."""

    def panel(self):
        """The box of the panel that has the tray."""
        return 0, 0, self.size[0], 28

    def icon_box(self, changed):
        """The icon's within what has changed of the panel when it came: what stands right of it may have moved."""
        return changed[0], changed[1], min(changed[2], changed[0] + 24), changed[3]

    def menu_area(self, icon):
        """Where the menu of an icon in that box shows: an upright strip that is all menu for as far as it reaches."""
        return max(0, icon[0] - 60), 28, icon[0], self.size[1]

    def notification_area(self):
        return self.size[0] // 2, 28, self.size[0], self.size[1] // 2 - 50

    def show_notifications(self):
        """Where a desktop does not show them by itself."""

    def leave_notifications(self):
        """Where what shows them stays open after a click, and is in the way."""

    def work_area(self, scale):
        """All but the panels, in the picture's pixels."""
        return 0, round(32 * scale), *self.size

    def output_scale(self):
        """As the desktop itself tells it."""
        raise NotImplementedError

    def notification_spot(self, changed):
        """Where the newest in the changed box is to be clicked."""
        return (changed[0] + changed[2]) // 2, changed[1] + 20

    def start(self):
        """Writes the configuration, starts the desktop and returns when it can be used."""
        raise NotImplementedError

    def picture(self):
        """The whole screen, as it is now."""
        raise NotImplementedError

    def active_class(self):
        """The class, or application id, of the window that has the keys."""
        raise NotImplementedError

    def window_box(self, kind):
        """Left, top, right, bottom of the window, in the picture's pixels; None without one."""
        raise NotImplementedError

    def set_dark(self):
        raise NotImplementedError

    def set_scale(self, factor):
        raise NotImplementedError

    def log_out(self):
        """Ends the session as its own log-out does, or as near to that as can be."""
        raise NotImplementedError

    def front(self):
        return kind_of(self.active_class())

    def comes_to_front(self, kind, seconds=5):
        return bool(holds_within(lambda: self.front() == kind, seconds))

    def quiet_picture(self):
        """Once nothing moves."""
        last = []

        def look():
            last[:] = [self.picture()]
            return last[0].tobytes()
        settled(look)
        return last[0]

    def has_notifications(self):
        return self.bus.has_owner('org.freedesktop.Notifications')

    def send_action(self, action):
        """As the agent's entry in the applications menu does."""
        self.session.run('gapplication', 'action', 'com.norvale.Downloaderpictora', action)

    def tell_bus(self):
        """What the bus starts is to find the display, too."""
        known = {name: value for name, value in self.session.environment.items() if value}
        self.bus.call('org.freedesktop.DBus', '/org/freedesktop/DBus', 'org.freedesktop.DBus',
                      'UpdateActivationEnvironment', GLib.Variant('(a{ss})', (known,)))

    def ask_for_dark(self):
        """As the settings of most desktops do, and their portal tells it."""
        self.session.run('gsettings', 'set', 'org.gnome.desktop.interface', 'color-scheme', 'prefer-dark')

    def wait_for_tray(self):
        watcher = 'org.kde.StatusNotifierWatcher'
        wait_until(lambda: self.bus.get(watcher, '/StatusNotifierWatcher', watcher,
                                        'IsStatusNotifierHostRegistered'), 'a tray', 20)


def must(answer, what):
    if not answer:
        raise Fault(what)
    return answer
