"""Moves a pointer and presses its buttons, by the way that each kind of display has for it."""

import time

from gi.repository import GLib

import wayland

BUTTONS = {'left': (1, 0x110), 'right': (3, 0x111)}  # X11's number, Linux' code
PRESS = 0.05  # seconds that a button is held: no desktop takes a shorter one for certain


class XPointer:
    name = 'X11 test events'

    def __init__(self, session):
        self.session = session

    def move(self, x, y):
        self.session.run('xdotool', 'mousemove', '--sync', x, y, check=False)

    def click(self, x, y, button='left'):
        self.move(x, y)
        time.sleep(PRESS)
        self.session.run('xdotool', 'click', BUTTONS[button][0])


class WaylandPointer:
    """What a subclass sends by move_to() and set_button() is one event each."""

    def __init__(self, session):
        self.connection = wayland.Connection(wayland.display_path(session.environment))

    def time(self):
        return time.monotonic_ns() // 1_000_000 & 0xffffffff

    def move(self, x, y):
        # Some look for what lies below a pointer only when it moves there.
        self.move_to(x - 1, y)
        self.move_to(x, y)
        self.connection.round_trip()

    def click(self, x, y, button='left'):
        self.move(x, y)
        time.sleep(PRESS)
        for pressed in (1, 0):
            self.set_button(BUTTONS[button][1], pressed)
            self.connection.round_trip()
            time.sleep(PRESS)


class WlrootsPointer(WaylandPointer):
    name = "the compositor's virtual pointer"

    def __init__(self, session, width, height):
        super().__init__(session)
        self.size = (width, height)
        manager = self.connection.bind('zwlr_virtual_pointer_manager_v1', 1)
        self.pointer = self.connection.new_id()
        self.connection.request(manager, 0, 'on', 0, self.pointer)
        self.connection.round_trip()

    def move_to(self, x, y):
        self.connection.request(self.pointer, 1, 'uuuuu', self.time(), int(x), int(y), *self.size)
        self.connection.request(self.pointer, 4)

    def set_button(self, code, pressed):
        self.connection.request(self.pointer, 2, 'uuu', self.time(), code, pressed)
        self.connection.request(self.pointer, 4)


class KWinPointer(WaylandPointer):
    name = "the compositor's fake input"

    def __init__(self, session):
        super().__init__(session)
        self.pointer = self.connection.bind('org_kde_kwin_fake_input', 4)
        self.connection.request(self.pointer, 0, 'ss', 'desktops', 'to try the agent')
        self.connection.round_trip()

    def move_to(self, x, y):
        self.connection.request(self.pointer, 9, 'ff', x, y)

    def set_button(self, code, pressed):
        self.connection.request(self.pointer, 2, 'uu', code, pressed)


class MutterPointer:
    name = "the compositor's remote desktop"
    NAME, PATH = 'org.gnome.Mutter.RemoteDesktop', '/org/gnome/Mutter/RemoteDesktop'

    def __init__(self, bus, width, height):
        self.bus, self.size = bus, (width, height)
        made = bus.call(self.NAME, self.PATH, self.NAME, 'CreateSession')
        self.path = made[0]
        self.tell('Start')

    def tell(self, method, form=None, *values):
        self.bus.call(self.NAME, self.path, f'{self.NAME}.Session', method,
                      GLib.Variant(form, values) if form else None)

    def move(self, x, y):
        # Without a stream of the screen there are only steps: from the corner where nothing else reacts to a pointer.
        width, height = self.size
        self.tell('NotifyPointerMotionRelative', '(dd)', 10000.0, 10000.0)
        self.tell('NotifyPointerMotionRelative', '(dd)', x - width + 1.0, y - height + 1.0)

    def click(self, x, y, button='left'):
        self.move(x, y)
        time.sleep(PRESS)
        for pressed in (True, False):
            self.tell('NotifyPointerButton', '(ib)', BUTTONS[button][1], pressed)
            time.sleep(PRESS)
