"""The installed agent in one desktop session, the service's stand-in for it, and what the agent shows on the bus."""

import json
import os
import pathlib
import subprocess

from gi.repository import GLib

from basics import Fault, holds_within, wait_until

NAME = 'com.norvale.Downloaderpictora'
PATH = '/' + NAME.replace('.', '/')
WATCHER = 'org.kde.StatusNotifierWatcher'
ITEM = 'org.kde.StatusNotifierItem'
MENU = 'com.canonical.dbusmenu'
SETTINGS = '.config/NORVALE INC/Downloaderpictora.conf'
DEFAULTS = """firstLaunch=false
ImageRetryWaitTime=1
ExifRetryWaitTime=1
PollingErrorWaitTime=2
"""


def walk(value):
    """Every object in what JSON gave."""
    if isinstance(value, dict):
        yield value
    for part in value.values() if isinstance(value, dict) else value if isinstance(value, list) else ():
        yield from walk(part)


class Service:
    """The photo service on this machine, with its sample library."""

    def __init__(self, session):
        self.session = session
        self.tool = pathlib.Path(os.environ['DESKTOPS_SANDBOX'])
        self.profile = session.folder / 'service'
        self.profile.mkdir()
        # It listens on the loopback device of this machine: the session's environment does not matter.
        self.process = session.start('service', self.tool, 'serve', '--profile', self.profile, '--port', '0',
                                     '--sample')
        line = wait_until(lambda: [line for line in session.log_of('service') if line.startswith('ready ')],
                          'the service', 60)[0]
        self.address = line.split()[1]
        session.environment.update(DESKTOPS_SERVICE=str(self.profile), DESKTOPS_SANDBOX=str(self.tool))

    def ask(self, page):
        # It knows that names below localhost are this machine, which not every resolver does.
        done = subprocess.run(['curl', '--silent', '--fail', '--noproxy', '*', '--max-time', '5', '--cacert',
                               self.profile / 'ca.pem', f'{self.address}/{page}'], capture_output=True, check=False)
        if done.returncode != 0:
            raise Fault(f'the service does not tell its {page}: curl ended with {done.returncode}')
        return json.loads(done.stdout)

    def requests(self, name):
        return next((entry[name] for entry in walk(self.ask('requests.json')) if name in entry), 0)

    def fetched(self):
        return self.requests('ObjectGet') + self.requests('PreviewObject')


class Agent:
    def __init__(self, session, service, bus):
        self.session, self.service, self.bus = session, service, bus
        self.pictures = session.home / 'Pictures'
        self.process = None
        (session.home / 'Pictures').mkdir(exist_ok=True)
        session.write(SETTINGS, (service.profile / 'defaults.conf').read_text() + DEFAULTS)

    def start(self, **environment):
        self.process = self.session.start('agent', 'downloaderpictora', **environment)
        wait_until(lambda: self.bus.has_owner(NAME), 'the agent on the bus', 20)

    def act(self, action):
        if self.bus.call(NAME, PATH, 'org.freedesktop.Application', 'ActivateAction',
                         GLib.Variant('(sava{sv})', (action, [], {}))) is None:
            raise Fault(f'the agent does not take "{action}": {self.bus.trouble}')

    def ended_within(self, seconds):
        """Its exit status, or None."""
        try:
            return self.process.wait(seconds)
        except subprocess.TimeoutExpired:
            return None

    def platform(self):
        """The kind of window system that it has chosen."""
        maps = pathlib.Path(f'/proc/{self.process.pid}/maps').read_text()
        return 'Wayland' if 'libqwayland' in maps else 'X11'

    def has_loaded(self, library):
        """Says yes to none. It may have told its name on the bus before."""
        return holds_within(lambda: library in pathlib.Path(f'/proc/{self.process.pid}/maps').read_text(), 5)

    def set(self, name, value):
        """Writes a setting, for its next start."""
        file = self.session.home / SETTINGS
        kept = [line for line in file.read_text().splitlines() if not line.startswith(f'{name}=')]
        kept.insert(kept.index('[General]') + 1, f'{name}={value}')
        file.write_text('\n'.join(kept) + '\n')

    def item(self):
        """Its entry at the tray, as (bus name, path)."""
        for entry in self.bus.get(WATCHER, '/StatusNotifierWatcher', WATCHER, 'RegisteredStatusNotifierItems') or []:
            name, slash, path = entry.replace('@', '').partition('/')
            pid = self.bus.call('org.freedesktop.DBus', '/org/freedesktop/DBus', 'org.freedesktop.DBus',
                                'GetConnectionUnixProcessID', GLib.Variant('(s)', (name,)))
            if pid and pid[0] == self.process.pid:
                return name, slash + path if slash else '/StatusNotifierItem'
        return None

    def menu(self):
        """What the host is told of the menu: [(id, label, visible, enabled)], separators without a label."""
        name, path = self.item()
        menu = self.bus.get(name, path, ITEM, 'Menu')
        layout = self.bus.call(name, menu, MENU, 'GetLayout', GLib.Variant('(iias)', (0, -1, [])))
        if layout is None:
            raise Fault(f'the menu is not told: {self.bus.trouble}')
        entries = []
        for number, properties, _ in layout[1][2]:
            label = '' if properties.get('type') == 'separator' else properties.get('label', '').replace('_', '')
            entries.append((number, label, properties.get('visible', True), properties.get('enabled', True)))
        return entries

    def wait_for_run(self):
        """Each of its three passes is reported."""
        wait_until(lambda: len(self.service.ask('reports.json')) >= 3, 'the first run', 90)

    def verify(self):
        """What is wrong with the folders; empty when every picture is in its place."""
        done = subprocess.run([self.service.tool, 'verify', '--folder', self.pictures / 'Transferred', '--10g-folder',
                               self.pictures / 'Transferred(10G)'], capture_output=True, text=True, check=False)
        wrong = [line for line in done.stdout.splitlines() if not line.startswith('OK ') and 'as expected' not in line]
        return wrong or ([] if done.returncode == 0 else [done.stderr.strip()])
