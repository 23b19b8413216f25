"""GNOME Shell without a screen, with and without the extension for tray icons."""

import json

from gi.repository import GLib
from PIL import Image

from basics import Fault, wait_until
from desktop import GTK_PORTAL, Desktop, kind_of
from pointer import MutterPointer

SHELL = 'org.gnome.Shell'
AGENT_ENTRY = 'com.norvale.Downloaderpictora.desktop'
EXTENSION = 'ubuntu-appindicators@ubuntu.com'
SYSTEM_BUS = """<busconfig><type>system</type><listen>unix:path={}</listen>
<policy context="default">
<allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
</policy></busconfig>
"""
WINDOWS = """JSON.stringify(global.get_window_actors().map(actor => {
  const w = actor.meta_window, r = w.get_buffer_rect(), f = w.get_frame_rect();
  return {class: w.get_wm_class(), active: w.has_focus(), type: w.get_window_type(),
          box: [f.x, f.y, f.width, f.height]};
}))"""


class Gnome(Desktop):
    name, title, current_desktop, session_type = 'gnome', 'GNOME Shell 43', 'GNOME', 'wayland'
    services = (*GTK_PORTAL, 'org.gnome.Shell.Notifications', 'org.gnome.Shell.Extensions', 'org.gnome.ScreenSaver')
    has_tray = False
    theme_plugin = 'libqgtk3'
    notifier = "the Shell's own"
    extensions = '@as []'

    def prepare(self):
        session = self.session
        session.environment.update(WAYLAND_DISPLAY='wayland-0',
                                   XDG_SESSION_DESKTOP='gnome', XDG_SESSION_CLASS='user')
        session.write('.config/glib-2.0/settings/keyfile', f"""[org/gnome/shell]
enabled-extensions={self.extensions}
disable-user-extensions=false
welcome-dialog-last-shown-version='99'

[org/gnome/desktop/interface]
enable-animations=false
enable-hot-corners=false

[org/gnome/desktop/lockdown]
disable-lock-screen=true

[org/gnome/mutter]
experimental-features=['scale-monitor-framebuffer']
""")
        socket = session.runtime / 'system-bus'
        settings = session.folder / 'system-bus.conf'
        settings.write_text(SYSTEM_BUS.format(socket))
        session.start('system-bus', 'dbus-daemon', f'--config-file={settings}', '--nofork')
        wait_until(socket.exists, 'the system bus')
        session.environment['DBUS_SYSTEM_BUS_ADDRESS'] = f'unix:path={socket}'
        session.start('logind', '/usr/bin/python3', '-m', 'dbusmock', '--system', '--template', 'logind')

    def start(self):
        width, height = self.size
        self.shell = self.session.start('gnome-shell', 'gnome-shell', '--headless', '--virtual-monitor',
                                        f'{width}x{height}', '--wayland', '--wayland-display', 'wayland-0',
                                        '--unsafe-mode')

        def is_there():
            if self.shell.poll() is not None:
                raise Fault(f'gnome-shell ended with {self.shell.returncode}: '
                                f'{self.session.log_of("gnome-shell", 1)}')
            return self.bus.has_owner(SHELL) and self.evaluate('Main.layoutManager._startingUp') is False
        wait_until(is_there, 'GNOME Shell', 40)
        self.tell_bus()
        # Where it shows itself first, and what it says of a session without a display manager.
        self.evaluate('Main.overview.hide()')
        self.evaluate('Main.messageTray.getSources().forEach(source => source.destroy())')
        wait_until(self.has_notifications, 'the notification service')
        if self.has_tray:
            self.wait_for_tray()
        self.pointer = MutterPointer(self.bus, width, height)

    def evaluate(self, script):
        answer = self.bus.call(SHELL, '/org/gnome/Shell', SHELL, 'Eval', GLib.Variant('(s)', (script,)))
        if not answer or not answer[0]:
            return None
        return json.loads(answer[1]) if answer[1] else None

    def picture(self):
        path = self.session.folder / 'screen.png'
        answer = self.bus.call('org.gnome.Shell.Screenshot', '/org/gnome/Shell/Screenshot',
                               'org.gnome.Shell.Screenshot', 'Screenshot',
                               GLib.Variant('(bbs)', (True, False, str(path))))
        if not answer or not answer[0]:
            raise Fault(f'GNOME Shell takes no picture: {self.bus.trouble}')
        with Image.open(path) as picture:
            return picture.convert('RGB')

    def windows(self):
        found = self.evaluate(WINDOWS)
        if found is None:
            raise Fault('GNOME Shell does not tell its windows')
        return json.loads(found) if isinstance(found, str) else found

    def active_class(self):
        return next((window['class'] for window in self.windows() if window['active']), '')

    def window_box(self, kind):
        for window in self.windows():
            left, top, width, height = window['box']
            if kind_of(window['class']) == kind and width > 150 and height > 100:
                scale = self.output_scale()
                return tuple(round(scale * edge) for edge in (left, top, left + width, top + height))
        return None

    def panel(self):
        # Between the clock and the Shell's own.
        return self.size[0] // 2 + 100, 0, self.size[0] - 155, 30

    def menu_area(self, icon):
        return icon[0] - 60, 34, icon[0], self.size[1]

    def notification_spot(self, changed):
        return changed[0] + 210, changed[1] + 55

    def notification_area(self):
        return 280, 32, 1000, 360

    def show_notifications(self):
        # Quiet ones wait in the list below the clock.
        self.pointer.click(self.size[0] // 2, 14)

    def leave_notifications(self):
        if self.evaluate('Main.panel.statusArea.dateMenu.menu.isOpen'):
            self.show_notifications()

    def send_action(self, action):
        if self.evaluate(f"""imports.gi.Shell.AppSystem.get_default().lookup_app('{AGENT_ENTRY}').launch_action(
                         '{action}', global.display.get_current_time_roundtrip(), -1); true""") is not True:
            raise Fault('GNOME Shell does not know the agent')

    def set_dark(self):
        self.ask_for_dark()

    def set_scale(self, factor):
        config, path = 'org.gnome.Mutter.DisplayConfig', '/org/gnome/Mutter/DisplayConfig'
        serial, monitors, _, _ = self.bus.call(config, path, config, 'GetCurrentState')
        connector, modes = monitors[0][0][0], monitors[0][1]
        nearest = min(modes[0][5], key=lambda scale: abs(scale - factor))
        if self.bus.call(config, path, config, 'ApplyMonitorsConfig', GLib.Variant('(uua(iiduba(ssa{sv}))a{sv})', (
                serial, 1, [(0, 0, nearest, 0, True, [(connector, modes[0][0], {})])], {}))) is None:
            raise Fault(f'GNOME Shell does not scale: {self.bus.trouble}')

    def output_scale(self):
        config, path = 'org.gnome.Mutter.DisplayConfig', '/org/gnome/Mutter/DisplayConfig'
        _, _, logical, _ = self.bus.call(config, path, config, 'GetCurrentState')
        return logical[0][2]

    def log_out(self):
        self.shell.terminate()
        self.session.await_end('gnome-shell', 10)


class GnomeWithExtension(Gnome):
    name, title = 'gnome-appindicator', 'GNOME Shell 43 with the AppIndicator extension'
    has_tray = True
    extensions = f"['{EXTENSION}']"
