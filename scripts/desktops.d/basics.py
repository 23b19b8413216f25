"""Processes that end with us, waits with deadlines, and the private folders of one desktop session."""

import ctypes
import os
import pathlib
import shutil
import signal
import subprocess
import time

BUS_SETTINGS = """<busconfig><type>session</type><listen>unix:path={socket}</listen>
<servicedir>{services}</servicedir>
<policy context="default">
<allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
</policy></busconfig>
"""


class Fault(Exception):
    """Something that should have happened did not."""


def wait_until(condition, what, seconds=10.0):
    """Asks until the answer is true, and returns it."""
    deadline = time.monotonic() + seconds
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > deadline:
            raise Fault(f'{what}: not within {seconds:g} s')
        time.sleep(0.05)


def holds_within(condition, seconds):
    try:
        return wait_until(condition, '', seconds)
    except Fault:
        return None


def settled(look, seconds=5.0, still=0.4):
    """What look() gives once it has given the same for a moment."""
    deadline = time.monotonic() + seconds
    last, since = look(), time.monotonic()
    while time.monotonic() < deadline and time.monotonic() - since < still:
        time.sleep(0.1)
        now = look()
        if now != last:
            last, since = now, time.monotonic()
    return last


def adopt_orphans():
    """Makes every process that a desktop leaves behind a child of this one."""
    set_child_subreaper = 36
    if ctypes.CDLL(None, use_errno=True).prctl(set_child_subreaper, 1, 0, 0, 0) != 0:
        raise OSError(ctypes.get_errno(), 'prctl')


def descendants():
    children = {}
    for folder in pathlib.Path('/proc').glob('[0-9]*'):
        try:
            parent = int((folder / 'stat').read_text().rsplit(')', 1)[1].split()[1])
        except (OSError, IndexError):
            continue
        children.setdefault(parent, []).append(int(folder.name))
    found, queue = [], [os.getpid()]
    while queue:
        of_this = children.get(queue.pop(), [])
        found += of_this
        queue += of_this
    return found


def reap():
    try:
        while os.waitpid(-1, os.WNOHANG)[0]:
            pass
    except ChildProcessError:
        pass


def end_descendants():
    """First asked, then killed."""
    def remaining():
        reap()
        return descendants()
    for number, seconds in ((signal.SIGTERM, 3), (signal.SIGKILL, 5)):
        for pid in remaining():
            try:
                os.kill(pid, number)
            except ProcessLookupError:
                pass
        if holds_within(lambda: not remaining(), seconds):
            return


class Session:
    """The folders, the environment, the session bus and the processes of one desktop."""

    def __init__(self, folder, home, base_environment):
        self.folder = folder
        self.home = home
        self.logs = folder / 'logs'
        runtime = folder / 'run'
        for path in (self.home, self.logs, runtime, self.home / '.config'):
            path.mkdir(parents=True, exist_ok=True)
        runtime.chmod(0o700)
        self.environment = dict(
            base_environment, HOME=str(self.home), XDG_RUNTIME_DIR=str(runtime),
            XDG_CONFIG_HOME=str(self.home / '.config'), XDG_DATA_HOME=str(self.home / '.local/share'),
            XDG_STATE_HOME=str(self.home / '.local/state'), XDG_CACHE_HOME=str(self.home / '.cache'))
        self.processes = {}

    @property
    def runtime(self):
        return pathlib.Path(self.environment['XDG_RUNTIME_DIR'])

    def start(self, name, *command, **environment):
        with open(self.logs / f'{name}.log', 'ab') as log:
            process = subprocess.Popen([str(word) for word in command], env=dict(self.environment, **environment),
                                       stdin=subprocess.DEVNULL, stdout=log, stderr=log, cwd=self.home,
                                       start_new_session=True)
        self.processes[name] = process
        return process

    def end(self, pid):
        try:
            os.kill(pid, signal.SIGTERM)
        except ProcessLookupError:
            pass  # by itself

    def run(self, *command, seconds=15, check=True):
        try:
            done = subprocess.run([str(word) for word in command], env=self.environment, stdin=subprocess.DEVNULL,
                                  capture_output=True, text=True, timeout=seconds, cwd=self.home, check=False)
        except subprocess.TimeoutExpired as late:
            raise Fault(f'{command[0]} does not end within {seconds} s') from late
        if check and done.returncode != 0:
            raise Fault(f'{command[0]} ended with {done.returncode}: {done.stderr.strip() or done.stdout.strip()}')
        return done.stdout.strip()

    def await_end(self, name, seconds):
        try:
            return self.processes[name].wait(seconds)
        except subprocess.TimeoutExpired as late:
            raise Fault(f'{name} does not end within {seconds} s') from late

    def write(self, path, text):
        file = self.home / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)
        return file

    def start_bus(self, services):
        """A session bus that can start the named services of the system's, and nothing else."""
        chosen = self.folder / 'services'
        chosen.mkdir(exist_ok=True)
        for name in services:
            source = pathlib.Path('/usr/share/dbus-1/services') / f'{name}.service'
            if source.exists():
                shutil.copy(source, chosen)
        socket = self.runtime / 'bus'
        settings = self.folder / 'bus.conf'
        settings.write_text(BUS_SETTINGS.format(socket=socket, services=chosen))
        self.start('bus', 'dbus-daemon', f'--config-file={settings}', '--nofork')
        wait_until(socket.exists, 'the session bus')
        self.environment['DBUS_SESSION_BUS_ADDRESS'] = f'unix:path={socket}'

    def log_of(self, name, lines=5):
        path = self.logs / f'{name}.log'
        return path.read_text(errors='replace').strip().splitlines()[-lines:] if path.exists() else []
