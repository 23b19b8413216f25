"""KDE Plasma on KWin's virtual screen."""

import json
import os
import shutil

from gi.repository import Gio, GLib
from PIL import Image

from basics import Fault, wait_until
from bus import pump
from desktop import PORTAL, Desktop, kind_of
from pointer import KWinPointer

KWIN = 'org.kde.KWin'
ANSWER = '<node><interface name="desktops.Answer"><method name="tell"><arg type="s" direction="in"/></method>' \
         '</interface></node>'
WINDOWS = """callDBus('%s', '/answer', 'desktops.Answer', 'tell', JSON.stringify(workspace.clientList().map(
  c => ({class: String(c.resourceClass), active: c.active, normal: c.normalWindow || c.dialog,
         box: [c.frameGeometry.x, c.frameGeometry.y, c.frameGeometry.width, c.frameGeometry.height]}))));
"""
TRAY = """panels().forEach(panel => panel.widgets('org.kde.plasma.systemtray').forEach(widget => {
  const tray = desktopById(widget.readConfig('SystrayContainmentId'));
  tray.currentConfigGroup = ['General'];
  tray.writeConfig('extraItems', ['org.kde.plasma.notifications']);
  tray.writeConfig('hiddenItems', ['org.kde.plasma.notifications']);
  tray.reloadConfig();
}));"""


class Plasma(Desktop):
    name, title, current_desktop, session_type = 'plasma', 'KDE Plasma 5.27, Wayland', 'KDE', 'wayland'
    services = (*PORTAL, 'org.freedesktop.impl.portal.desktop.kde', 'org.kde.ActivityManager', 'org.kde.kded5',
                'org.kde.kglobalaccel', 'org.kde.kscreen')
    notifier = "Plasma's own"
    left_click_is_told = True

    def prepare(self):
        self.session.environment.update(
            KDE_FULL_SESSION='true', KDE_SESSION_VERSION='5', XDG_MENU_PREFIX='plasma-',
            WAYLAND_DISPLAY='wayland-0', QT_QUICK_BACKEND='software',
            KWIN_SCREENSHOT_NO_PERMISSION_CHECKS='1', KWIN_WAYLAND_NO_PERMISSION_CHECKS='1')
        self.session.write('.config/kdeglobals', '[KDE]\nAnimationDurationFactor=0\n')
        self.session.write('.config/kscreenlockerrc', '[Daemon]\nAutolock=false\n')
        self.session.write('.config/kwalletrc', '[Wallet]\nEnabled=false\n')

    def start(self):
        width, height = self.size
        # The installed one carries a capability, and with that it cannot be started where nobody may have it.
        program = shutil.copy(shutil.which('kwin_wayland'), self.session.folder)
        self.shell = self.session.start('kwin', program, '--virtual', '--width', width, '--height', height,
                                        '--socket', 'wayland-0', '--no-lockscreen', '--xwayland')

        def display():
            if self.shell.poll() is not None:
                raise Fault(f'kwin_wayland ended with {self.shell.returncode}: {self.session.log_of("kwin", 1)}')
            return (self.session.runtime / 'wayland-0').exists()
        wait_until(display, 'the Wayland display', 20)
        wait_until(lambda: self.bus.has_owner(KWIN), 'KWin on the bus', 20)
        self.tell_bus()
        self.listen()
        self.session.start('kded5', 'kded5')
        self.session.start('plasmashell', 'plasmashell', '--no-respawn')
        self.wait_for_tray()
        wait_until(self.has_notifications, 'the notification service', 20)
        self.arrange_tray()
        self.pointer = KWinPointer(self.session)
        self.quiet_picture()

    def arrange_tray(self):
        """Nothing else comes and goes there."""
        if self.bus.call('org.kde.plasmashell', '/PlasmaShell', 'org.kde.PlasmaShell', 'evaluateScript',
                         GLib.Variant('(s)', (TRAY,))) is None:
            raise Fault(f'Plasma does not arrange its tray: {self.bus.trouble}')

    def listen(self):
        self.told = []
        interface = Gio.DBusNodeInfo.new_for_xml(ANSWER).interfaces[0]

        def tell(_connection, _sender, _path, _interface, _method, arguments, invocation):
            self.told.append(arguments.unpack()[0])
            invocation.return_value(None)
        self.bus.connection.register_object('/answer', interface, tell, None, None)
        self.script = self.session.folder / 'windows.js'
        self.script.write_text(WINDOWS % self.bus.connection.get_unique_name())

    def picture(self):
        # It drops what it was asked for when the screen changes meanwhile.
        return wait_until(self.capture, "KWin's picture", 5)

    def capture(self):
        read, write = os.pipe()
        descriptors = Gio.UnixFDList.new()
        handle = descriptors.append(write)
        os.close(write)
        answer = self.bus.call(KWIN, '/org/kde/KWin/ScreenShot2', 'org.kde.KWin.ScreenShot2', 'CaptureWorkspace',
                               GLib.Variant('(a{sv}h)', ({'native-resolution': GLib.Variant('b', True)}, handle)),
                               descriptors=descriptors)
        del descriptors
        with os.fdopen(read, 'rb') as stream:
            if answer is None:
                return None
            facts = answer[0]
            data = stream.read(facts['stride'] * facts['height'])
        return Image.frombytes('RGB', (facts['width'], facts['height']), data, 'raw', 'BGRX', facts['stride'])

    def windows(self):
        self.told.clear()
        loaded = self.bus.call(KWIN, '/Scripting', 'org.kde.kwin.Scripting', 'loadScript',
                               GLib.Variant('(ss)', (str(self.script), 'desktops')))
        if not loaded:
            raise Fault(f'KWin loads no script: {self.bus.trouble}')
        self.bus.call(KWIN, '/Scripting', 'org.kde.kwin.Scripting', 'start')
        wait_until(lambda: pump() or self.told, "KWin's windows", 5)
        self.bus.call(KWIN, '/Scripting', 'org.kde.kwin.Scripting', 'unloadScript', GLib.Variant('(s)', ('desktops',)))
        return json.loads(self.told[0])

    def active_class(self):
        return next((window['class'] for window in self.windows() if window['active']), '')

    def window_box(self, kind):
        for window in self.windows():
            if kind_of(window['class']) == kind and window['normal']:
                left, top, width, height = window['box']
                scale = self.output_scale()
                return tuple(round(scale * edge) for edge in (left, top, left + width, top + height))
        return None

    def panel(self):
        return self.size[0] // 2, self.size[1] - 44, self.size[0] - 120, self.size[1]

    def menu_area(self, icon):
        return icon[0], 0, icon[2], self.size[1] - 48

    def notification_area(self):
        return self.size[0] // 2 + 100, self.size[1] // 2 + 50, self.size[0], self.size[1] - 48

    def set_dark(self):
        self.session.run('plasma-apply-colorscheme', 'BreezeDark')

    def set_scale(self, factor):
        self.session.run('kscreen-doctor', f'output.1.scale.{factor}')

    def output_scale(self):
        return json.loads(self.session.run('kscreen-doctor', '--json'))['outputs'][0]['scale']

    def work_area(self, scale):
        return 0, 0, self.size[0], self.size[1] - round(46 * scale)

    def log_out(self):
        self.shell.terminate()
        self.session.await_end('kwin', 10)
