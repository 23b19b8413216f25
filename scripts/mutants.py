"""The work of scripts/mutants, which says what it is."""
import concurrent.futures
import difflib
import fcntl
import os
import pathlib
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time

import mutation_points

ROOT = pathlib.Path(__file__).resolve().parent.parent
WORK = ROOT / 'build/mutants'
WHOLE_AGENT = ('agent', 'desktop')
GOAL = 85
JOBS = 3  # tests at once per worker: they wait more than they work
MARK = 'KA_MUTANT'
OUTPUT_LIMIT = 1 << 30  # bytes a file, for a mutant that writes without end
one_desktop_at_a_time = threading.Lock()


def say(text):
    print(f'[{time.monotonic() - BEGIN:5.0f} s] {text}', file=sys.stderr, flush=True)


# --- the tree

def tracked_files():
    listed = subprocess.run(['git', 'ls-files', '-co', '--exclude-standard', '-z'], cwd=ROOT, check=True,
                            capture_output=True, text=True).stdout
    return [name for name in listed.split('\0') if name and (ROOT / name).is_file()]


def agent_rooms():
    lines = (ROOT / 'cmake/rooms.txt').read_text().splitlines()
    rooms = [line.split()[0] for line in lines if line.strip() and line[0] != '#' and line.split()[0] != 'values']
    return [room for room in rooms if room != 'sandbox']


def copy_tree(target):
    """Only what has changed gets a new date, so that little is built anew."""
    wanted = tracked_files()
    for name in wanted:
        old, new = target / name, (ROOT / name).read_bytes()
        if not old.is_file() or old.read_bytes() != new:
            old.parent.mkdir(parents=True, exist_ok=True)
            old.write_bytes(new)
            old.chmod((ROOT / name).stat().st_mode)
    for path in [p for p in target.rglob('*') if p.is_file()]:
        if str(path.relative_to(target)) not in set(wanted):
            path.unlink()


# --- tests

class Test:
    def __init__(self, executable, name):
        self.executable, self.name = executable, name
        self.seconds = 0.0
        self.kills = 0

    def limit(self):
        return 10 + 5 * self.seconds

    def folder(self):
        return self.executable.removeprefix('tests_')

    def label(self):
        return f'{self.folder()}.{self.name}'


def tests_listed_by(path):
    listed = subprocess.run([path, '--gtest_list_tests'], capture_output=True, text=True, check=True).stdout
    suite = ''
    for line in listed.splitlines():
        name = line.split('#')[0].rstrip()
        if line.startswith('  '):
            yield suite + name.strip()
        elif name.endswith('.'):
            suite = name


def end_all_with(mark):
    """Whatever a test left behind: it carries the mark in its environment."""
    wanted = f'{MARK}={mark}'.encode()
    for process in pathlib.Path('/proc').glob('[0-9]*'):
        try:
            if wanted in (process / 'environ').read_bytes().split(b'\0'):
                os.kill(int(process.name), signal.SIGKILL)
        except OSError:
            pass


class Worker:
    """A copy of the tree with a build of its own."""

    def __init__(self, number):
        self.tree = WORK / f'worker{number}' / 'tree'
        self.build_folder = WORK / f'worker{number}' / 'build'
        self.mark = f'{os.getpid()}.{number}'

    def prepare(self, targets):
        copy_tree(self.tree)
        linker = next((f'-fuse-ld={name}' for name in ('mold', 'lld', 'gold')
                       if shutil.which('mold' if name == 'mold' else f'ld.{name}')), '')
        launcher = ['-DCMAKE_CXX_COMPILER_LAUNCHER=ccache'] if shutil.which('ccache') else []
        options = ['-DCMAKE_BUILD_TYPE=None', '-DCMAKE_CXX_FLAGS=-O1 -g0 -DNDEBUG -DQT_NO_DEBUG',
                   f'-DCMAKE_EXE_LINKER_FLAGS={linker}', '-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST']
        subprocess.run(['cmake', '-S', self.tree, '-B', self.build_folder, '-G', 'Ninja', '--log-level=WARNING',
                        *options, *launcher], check=True, stdout=subprocess.DEVNULL)
        if not self.build(targets, jobs=os.cpu_count()):
            sys.exit(f'mutants: the unchanged tree does not build, see {self.build_folder}/output.txt')

    def build(self, targets, jobs=2):
        environment = os.environ | {'CCACHE_BASEDIR': str(self.tree.parent), 'CCACHE_NOHASHDIR': '1'}
        with open(self.build_folder / 'output.txt', 'w') as log:
            return subprocess.run(['ninja', '-C', self.build_folder, '-j', str(jobs), *targets], stdout=log,
                                  stderr=subprocess.STDOUT, env=environment).returncode == 0

    def tests_of(self, folder):
        executable = f'tests_{folder}'
        return [Test(executable, name) for name in tests_listed_by(self.build_folder / 'bin' / executable)]

    def fails(self, test, stopped=lambda: False):
        """Whether the test fails or does not end, and how long that took."""
        begin = time.monotonic()
        limit = test.limit() if test.seconds else 120
        with tempfile.TemporaryDirectory(prefix='mutants.', ignore_cleanup_errors=True) as scratch:
            # Nothing of the user's: not the home, the session bus, nor the screen.
            environment = {'PATH': os.environ['PATH'], 'LANG': 'C.UTF-8', 'HOME': scratch, 'TMPDIR': scratch,
                           MARK: self.mark}
            process = subprocess.Popen(
                [self.build_folder / 'bin' / test.executable, f'--gtest_filter={test.name}'], env=environment,
                cwd=scratch, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                start_new_session=True, preexec_fn=limit_output)
            while process.poll() is None and time.monotonic() - begin < limit and not stopped():
                time.sleep(0.01)
            failed = process.poll() != 0
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()
        return failed, time.monotonic() - begin

    def first_failing(self, tests, at_once=JOBS):
        """Those first that failed before, then the quick ones. One failure counts if it comes again."""
        found = []

        def look(test):
            if found:
                return
            failed, seconds = self.fails(test, stopped=lambda: bool(found))
            is_hang = seconds >= test.limit()
            if failed and not found and (is_hang or self.fails(test, stopped=lambda: bool(found))[0]) and not found:
                found.append(test)

        with concurrent.futures.ThreadPoolExecutor(at_once) as pool:
            list(pool.map(look, sorted(tests, key=lambda t: (-t.kills, t.seconds))))
        end_all_with(self.mark)
        return found[0] if found else None


def end_with_all_tests(marks):
    def end(number, _):
        for mark in marks:
            end_all_with(mark)
        os._exit(128 + number)

    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, end)


def all_targets(rooms):
    return ['downloaderpictora', *(f'tests_{name}' for name in (*(room.name for room in rooms), *WHOLE_AGENT))]


def limit_output():
    resource.setrlimit(resource.RLIMIT_FSIZE, (OUTPUT_LIMIT, OUTPUT_LIMIT))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


# --- mutants

class Room:
    """Its candidates in their order, of which the first that compile make its share of the mutants."""

    def __init__(self, name, share, order):
        self.name, self.share, self.order = name, share, order
        self.taken = 0  # compile, or are being tried
        self.tests = []

    def next_candidate(self):
        if self.taken == self.share:
            return None
        point = next(self.order, None)
        self.taken += point is not None
        return point


def rooms_with_candidates(count, seed, only):
    sources = {name: (ROOT / name).read_text() for name in sorted(tracked_files())
               if name.split('/')[0] in agent_rooms() and name.endswith(('.cpp', '.h'))}
    enums = mutation_points.enums_in(sources.values())
    chance = random.Random(seed)
    sizes, points = {}, {}
    for room in agent_rooms():
        own = {n: s for n, s in sources.items() if n.startswith(room + '/') and n.endswith('.cpp')}
        sizes[room] = sum(len(mutation_points.tokens_of(source)) for source in own.values())
        points[room] = [p for n, s in own.items() for p in mutation_points.Finder(n, s, enums, chance).find()]
    shares = shares_by({room: size if not only or room in only else 0 for room, size in sizes.items()}, count)
    return [Room(room, shares[room], mutation_points.candidates(points[room], random.Random(f'{seed} {room}')))
            for room in agent_rooms()]


def shares_by(sizes, count):
    whole = sum(sizes.values())
    shares = {room: count * size // whole for room, size in sizes.items()}
    by_rest = sorted(sizes, key=lambda room: -(count * sizes[room] % whole))
    for room in by_rest[:count - sum(shares.values())]:
        shares[room] += 1
    return shares


class Run:
    def __init__(self, rooms, whole_agent_tests):
        self.rooms, self.whole_agent_tests = rooms, whole_agent_tests
        self.lock = threading.Lock()
        self.seen, self.survivors, self.refused = [], [], 0

    def next_job(self):
        with self.lock:
            for room in self.rooms:
                point = room.next_candidate()
                if point:
                    return room, point
        return None

    def work(self, worker):
        while job := self.next_job():
            room, point = job
            path = worker.tree / point.file
            source = path.read_text()
            path.write_text(source[:point.start] + point.text + source[point.end:])
            try:
                outcome = self.outcome_of(worker, room)
            finally:
                path.write_text(source)
            self.note(room, point, source, outcome)

    def outcome_of(self, worker, room):
        """The test that sees it, None, or 'refused' by the compiler. The tests that are likely to see it come first."""
        if not worker.build([f'tests_{room.name}']):
            return 'refused'
        agent, desktop = self.whole_agent_tests
        above = self.rooms[self.rooms.index(room) + 1:]
        test = worker.first_failing(room.tests)
        if not test:
            if not worker.build(all_targets(above)):
                return 'refused'
            test = worker.first_failing(agent) or worker.first_failing([test for r in above for test in r.tests])
        if not test:
            with one_desktop_at_a_time:
                test = worker.first_failing(desktop, at_once=1)
        return test

    def note(self, room, point, source, outcome):
        place = f'{point.file}:{point.line} ({point.kind})'
        with self.lock:
            if outcome == 'refused':
                room.taken -= 1
                self.refused += 1
                return
            if outcome:
                outcome.kills += 1
                self.seen.append((room.name, point, outcome.folder()))
            else:
                self.survivors.append((room.name, point, difference(point, source)))
            done = len(self.seen) + len(self.survivors)
        say(f'{done}: {place}: ' + (f'seen by {outcome.label()}' if outcome else 'SURVIVED'))


def difference(point, source):
    changed = source[:point.start] + point.text + source[point.end:]
    lines = difflib.unified_diff(source.splitlines(), changed.splitlines(), n=0, lineterm='')
    return '\n'.join(line for line in lines if not re.match(r'---|\+\+\+|@@', line))


def baseline(worker, rooms):
    """Every test on the unchanged tree: all must pass, and show how long they take."""
    groups = {room.name: worker.tests_of(room.name) for room in rooms} | {f: worker.tests_of(f) for f in WHOLE_AGENT}
    for name, tests in groups.items():
        with concurrent.futures.ThreadPoolExecutor(1 if name == 'desktop' else JOBS) as pool:
            for test, (failed, seconds) in zip(tests, pool.map(worker.fails, tests)):
                if failed:
                    sys.exit(f'mutants: {test.label()} fails on the unchanged tree')
                test.seconds = seconds
    end_all_with(worker.mark)
    for room in rooms:
        room.tests = groups[room.name]
    return [groups[folder] for folder in WHOLE_AGENT]


def report(run, count):
    lines = []
    for _, point, change in sorted(run.survivors, key=lambda s: (s[1].file, s[1].line)):
        lines += [f'{point.file}:{point.line}: {point.kind}', change, '']
    for title, of in (('room', lambda entry: entry[0]), ('kind', lambda entry: entry[1].kind)):
        everything = run.seen + run.survivors
        for value in sorted({of(entry) for entry in everything}):
            lines.append(f'{title} {value}: seen {sum(of(e) == value for e in run.seen)} of '
                         f'{sum(of(e) == value for e in everything)}')
    total = len(run.seen) + len(run.survivors)
    percent = 100 * len(run.seen) / total if total else 0
    own = sum(entry[0] == entry[2] for entry in run.seen)
    whole = sum(entry[2] in WHOLE_AGENT for entry in run.seen)
    lines.append(f'seen by tests of the room {own}, of the whole program {whole}, '
                 f'of rooms above {len(run.seen) - own - whole}')
    lines.append(f'not counted, as they do not build: {run.refused}')
    lines.append(f'seen {len(run.seen)} of {total} ({percent:.0f} %)')
    text = '\n'.join(lines)
    (WORK / 'report.txt').write_text(text + '\n')
    print(text)
    return total == count and percent >= GOAL


def take_work_folder():
    """@return what holds it, as long as it is open."""
    WORK.mkdir(parents=True, exist_ok=True)
    held = open(WORK / 'lock', 'w')
    try:
        fcntl.flock(held, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except OSError:
        sys.exit('mutants: another run is at work in build/mutants')
    return held


def main():
    count = int(sys.argv[1]) if len(sys.argv) > 1 else 200
    seed = sys.argv[2] if len(sys.argv) > 2 else '1'
    rooms = rooms_with_candidates(count, seed, sys.argv[3:])
    _held = take_work_folder()
    workers = [Worker(number) for number in range(len(os.sched_getaffinity(0)))]
    end_with_all_tests([worker.mark for worker in workers])
    for worker in workers:
        say(f'building {worker.tree.parent.name}')
        worker.prepare(all_targets(rooms))
    say('running all tests on the unchanged tree')
    run = Run(rooms, baseline(workers[0], rooms))
    say(f'changing: {", ".join(f"{room.name} {room.share}" for room in rooms)}')
    with concurrent.futures.ThreadPoolExecutor(len(workers)) as pool:
        list(pool.map(run.work, workers))
    return 0 if report(run, count) else 1


BEGIN = time.monotonic()
if __name__ == '__main__':
    sys.exit(main())
