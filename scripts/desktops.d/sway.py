"""sway with waybar's tray, drawn into memory."""

import io
import json
import pathlib
import subprocess

from PIL import Image

from basics import Fault, wait_until
from desktop import GTK_PORTAL, Desktop, kind_of
from pointer import WlrootsPointer


class Sway(Desktop):
    name, title, current_desktop, session_type = 'sway', 'sway 1.7 with waybar', 'sway', 'wayland'
    services = GTK_PORTAL
    notifier = 'mako'
    left_click_is_told = True
    SETTINGS = """output HEADLESS-1 resolution {0}x{1}
output HEADLESS-1 background #31506a solid_color
seat seat0 fallback true
bar {{
  swaybar_command waybar
}}
for_window [app_id="com.norvale.Downloaderpictora"] floating enable
exec mako
"""
    BAR = {'layer': 'top', 'position': 'top', 'height': 28, 'modules-left': ['sway/workspaces'],
           'modules-right': ['tray'], 'tray': {'icon-size': 20}}

    def prepare(self):
        environment = self.session.environment
        environment.update(WLR_BACKENDS='headless', WLR_RENDERER='pixman', WLR_LIBINPUT_NO_DEVICES='1',
                           SWAYSOCK=str(self.session.runtime / 'sway'))
        self.session.write('.config/sway/config', self.SETTINGS.format(*self.size))
        self.session.write('.config/waybar/config', json.dumps(self.BAR))
        self.session.write('.config/mako/config', 'anchor=top-right\non-button-left=invoke-default-action\n')

    def start(self):
        self.shell = self.session.start('sway', 'sway')

        def display():
            if self.shell.poll() is not None:
                raise Fault(f'sway ended with {self.shell.returncode}: {self.session.log_of("sway", 1)}')
            return [path.name for path in self.session.runtime.glob('wayland-[0-9]') if path.is_socket()]
        self.session.environment['WAYLAND_DISPLAY'] = wait_until(display, 'the Wayland display')[0]
        self.tell_bus()
        wait_until(pathlib.Path(self.session.environment['SWAYSOCK']).exists, "sway's socket")
        self.wait_for_tray()
        wait_until(self.has_notifications, 'the notification service')
        self.pointer = WlrootsPointer(self.session, *self.size)

    def picture(self):
        done = subprocess.run(['grim', '-t', 'ppm', '-'], env=self.session.environment, capture_output=True,
                              timeout=10, check=True)
        return Image.open(io.BytesIO(done.stdout)).convert('RGB')

    def windows(self, node=None):
        if node is None:
            node = json.loads(self.session.run('swaymsg', '-r', '-t', 'get_tree'))
        if node.get('pid') and node['type'].endswith('con'):
            yield node
        for child in node['nodes'] + node['floating_nodes']:
            yield from self.windows(child)

    def class_of(self, window):
        return window['app_id'] or window.get('window_properties', {}).get('class', '')

    def active_class(self):
        return next((self.class_of(window) for window in self.windows() if window['focused']), '')

    def window_box(self, kind):
        for window in self.windows():
            if kind_of(self.class_of(window)) == kind:
                outer, inner = window['rect'], window['window_rect']
                left, top = outer['x'] + inner['x'], outer['y'] + inner['y']
                box = left, top, left + inner['width'], top + inner['height']
                scale = self.output_scale()
                return tuple(round(scale * edge) for edge in box)
        return None

    def menu_area(self, icon):
        # It begins within the bar, at the pointer.
        return icon[0] - 100, 0, icon[0] - 10, self.size[1]

    def set_dark(self):
        self.ask_for_dark()

    def set_scale(self, factor):
        self.session.run('swaymsg', f'output HEADLESS-1 scale {factor}')

    def output_scale(self):
        return json.loads(self.session.run('swaymsg', '-r', '-t', 'get_outputs'))[0]['scale']

    def leave_notifications(self):
        # What is left of them would hide the menu.
        self.session.run('makoctl', 'dismiss', '--all')

    def log_out(self):
        self.session.run('swaymsg', 'exit', check=False)
