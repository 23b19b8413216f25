"""The desktops that run on X11, on a display without a screen."""

import pathlib
import re

from PIL import ImageGrab

from basics import Fault, descendants, wait_until
from desktop import BROWSER, BROWSER_PROGRAM, FOLDERS, GTK_PORTAL, Desktop, kind_of
from pointer import XPointer


class XDesktop(Desktop):
    scale = 1.5

    def prepare(self):
        width, height = self.size
        numbers = self.session.folder / 'display'
        command = f'exec Xvfb -displayfd 3 -screen 0 {width}x{height}x24 -nolisten tcp -noreset 3>"{numbers}"'
        process = self.session.start('xvfb', 'bash', '-c', command)

        def number():
            if process.poll() is not None:
                raise Fault(f'Xvfb ended with {process.returncode}')
            return numbers.exists() and numbers.read_text().strip()
        self.session.environment['DISPLAY'] = ':' + wait_until(number, 'the X display')
        self.pointer = XPointer(self.session)

    def picture(self):
        return ImageGrab.grab(xdisplay=self.session.environment['DISPLAY']).convert('RGB')

    def xdotool(self, *words):
        return self.session.run('xdotool', *words, check=False)

    def class_of(self, window):
        words = self.session.run('xprop', '-id', window, 'WM_CLASS', check=False).split('"')
        return words[3] if len(words) > 3 else ''

    def active_class(self):
        window = self.xdotool('getactivewindow')
        return self.class_of(window) if window else ''

    def output_scale(self):
        """Of letters; there is no other one."""
        lines = self.session.run('xrdb', '-query').splitlines()
        return next((int(line.split()[1]) / 96 for line in lines if line.startswith('Xft.dpi:')), 1)

    def window_box(self, kind):
        for window in self.xdotool('search', '--onlyvisible', '--name', '.').split():
            if kind_of(self.class_of(window)) != kind:
                continue
            # xdotool's own answer counts a frame twice.
            words = dict(re.findall(r'(Absolute upper-left [XY]|Width|Height): +(-?\d+)',
                                    self.session.run('xwininfo', '-id', window, check=False)))
            if len(words) < 4:
                continue  # gone meanwhile
            left, top, width, height = map(int, words.values())
            if width > 150 and height > 100:  # no icon, no menu
                return left, top, left + width, top + height
        return None


class Xfce(XDesktop):
    name, title, current_desktop = 'xfce', 'Xfce 4.18, X11', 'XFCE'
    notifier = 'xfce4-notifyd'
    theme_plugin = 'libqgtk3'
    end_status = 0  # its session manager asks programs to end
    services = (*GTK_PORTAL, 'org.xfce.Xfconf', 'org.xfce.xfce4-notifyd.Notifications')
    def notification_spot(self, changed):
        # Its button: the rest only closes it.
        return changed[2] - 50, changed[1] + 88

    PANEL = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array"><value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/><property name="size" type="uint" value="28"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/><value type="int" value="2"/><value type="int" value="3"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="applicationsmenu"/>
    <property name="plugin-2" type="string" value="separator">
      <property name="expand" type="bool" value="true"/><property name="style" type="uint" value="0"/>
    </property>
    <property name="plugin-3" type="string" value="systray"/>
  </property>
</channel>
"""
    HELPER = """[Desktop Entry]
Version=1.0
Type=X-XFCE-Helper
Name=Stand-in
X-XFCE-Category={0}
X-XFCE-Commands={1} {2} about:blank;
X-XFCE-CommandsWithParameter={1} {2} "%s";
"""
    SESSION = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-session" version="1.0">
  <property name="general" type="empty">
    <property name="FailsafeSessionName" type="string" value="Failsafe"/>
    <property name="SaveOnExit" type="bool" value="false"/><property name="PromptOnLogout" type="bool" value="false"/>
  </property>
  <property name="sessions" type="empty">
    <property name="Failsafe" type="empty">
      <property name="IsFailsafe" type="bool" value="true"/><property name="Count" type="int" value="4"/>
      <property name="Client0_Command" type="array"><value type="string" value="xfwm4"/></property>
      <property name="Client1_Command" type="array"><value type="string" value="xfsettingsd"/></property>
      <property name="Client2_Command" type="array"><value type="string" value="xfce4-panel"/></property>
      <property name="Client3_Command" type="array"><value type="string" value="xfdesktop"/></property>
    </property>
  </property>
</channel>
"""

    def start(self):
        folder = '.config/xfce4/xfconf/xfce-perchannel-xml'
        self.session.write(f'{folder}/xfce4-panel.xml', self.PANEL)
        self.session.write(f'{folder}/xfce4-session.xml', self.SESSION)
        for category, kind in (('WebBrowser', BROWSER), ('FileManager', FOLDERS)):
            self.session.write(f'.local/share/xfce4/helpers/standin-{kind}.desktop',
                               self.HELPER.format(category, BROWSER_PROGRAM, kind))
        self.session.write('.config/xfce4/helpers.rc', f'WebBrowser=standin-{BROWSER}\nFileManager=standin-{FOLDERS}\n')
        self.shell = self.session.start('xfce4-session', 'xfce4-session')
        # Programs that a person starts find the session manager; ours find it as the window manager does.
        self.session.environment['SESSION_MANAGER'] = wait_until(self.session_manager, 'the session manager', 20)
        notifyd = next(pathlib.Path('/usr/lib').glob('*/xfce4/notifyd/xfce4-notifyd'))
        self.session.start('notifyd', notifyd)
        self.wait_for_tray()
        wait_until(self.has_notifications, 'the notification service')

    def set_dark(self):
        self.session.run('xfconf-query', '-c', 'xsettings', '-p', '/Net/ThemeName', '-n', '-t', 'string', '-s',
                         'Adwaita-dark')
        self.ask_for_dark()

    def set_scale(self, factor):
        self.session.run('xfconf-query', '-c', 'xsettings', '-p', '/Xft/DPI', '-n', '-t', 'int', '-s',
                         int(96 * factor))

    def session_manager(self):
        for pid in descendants():
            folder = pathlib.Path('/proc', str(pid))
            try:
                if (folder / 'comm').read_text().strip() == 'xfwm4':
                    words = (folder / 'environ').read_text().split('\0')
                    return next((word.partition('=')[2] for word in words if word.startswith('SESSION_MANAGER=')), '')
            except OSError:
                pass  # it has ended
        return ''

    def log_out(self):
        self.session.run('xfce4-session-logout', '--logout', check=False)
        self.session.await_end('agent', 10)
        self.session.await_end('xfce4-session', 20)
        self.session.processes['xvfb'].terminate()


class NoTray(XDesktop):
    name, title, current_desktop = 'none', 'Openbox 3.6, X11, no tray', ''
    services = GTK_PORTAL
    has_tray = False
    notifier = 'dunst'

    def start(self):
        self.session.write('.config/dunst/dunstrc', '[global]\nmouse_left_click = do_action\norigin = top-right\n')
        self.shell = self.session.start('openbox', 'openbox', '--sm-disable')
        self.session.start('dunst', 'dunst')
        wait_until(self.has_notifications, 'the notification service')
        wait_until(lambda: self.session.run('xprop', '-root', '_NET_SUPPORTING_WM_CHECK', check=False).count('#'),
                   'the window manager')

    def work_area(self, scale):
        return 0, 0, *self.size

    def set_dark(self):
        self.ask_for_dark()

    def set_scale(self, factor):
        self.session.run('bash', '-c', f'xrdb -merge <<<"Xft.dpi: {int(96 * factor)}"')

    def log_out(self):
        # Such a session is a script of the user's: it ends when the window manager does, and the display with it.
        self.shell.terminate()
        self.session.await_end('openbox', 10)
        self.session.processes['xvfb'].terminate()
