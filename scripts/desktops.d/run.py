#!/usr/bin/env python3
"""usage: run.py OUTPUT NAME...: tries the agent on each desktop, saves pictures and table in the folder OUTPUT."""

import os
import pathlib
import shutil
import signal
import sys
import time
import traceback

import report
from basics import Fault, Session, adopt_orphans, end_descendants
from desktop import BROWSER_PROGRAM
from flow import Flow
from gnome import Gnome, GnomeWithExtension
from plasma import Plasma
from sway import Sway
from x11 import NoTray, Xfce

DESKTOPS = {kind.name: kind for kind in (Gnome, GnomeWithExtension, Plasma, Sway, Xfce, NoTray)}


def base_environment(work):
    """Nothing of the surrounding session's."""
    prefix = work / 'installed'
    return {'PATH': f'{prefix}/bin:/usr/local/bin:/usr/bin:/bin:/usr/sbin:/usr/games', 'LANG': 'C.UTF-8',
            'USER': os.environ.get('USER', 'nobody'), 'LOGNAME': os.environ.get('LOGNAME', 'nobody'),
            'XDG_DATA_DIRS': f'{prefix}/share:/usr/local/share:/usr/share', 'XDG_CONFIG_DIRS': '/etc/xdg',
            'DESKTOPS_SANDBOX': os.environ['DESKTOPS_SANDBOX'], 'LIBGL_ALWAYS_SOFTWARE': '1',
            'NO_AT_BRIDGE': '1', 'GSETTINGS_BACKEND': 'keyfile', 'SHELL': '/bin/bash'}


def add_handlers(session):
    """The stand-ins for a browser and a file manager."""
    session.environment['DESKTOPS_OPENED'] = str(session.folder / 'opened')
    for kind, type_ in (('browser', 'x-scheme-handler/https;x-scheme-handler/http;text/html;'),
                        ('folders', 'inode/directory;')):
        session.write(f'.local/share/applications/standin-{kind}.desktop',
                      f'[Desktop Entry]\nType=Application\nName=Stand-in ({kind})\nMimeType={type_}\n'
                      f'Exec={BROWSER_PROGRAM} {kind} %u\nStartupNotify=true\n'
                      f'StartupWMClass=standin-{kind}\n')
    session.write('.config/mimeapps.list', '[Default Applications]\nx-scheme-handler/https=standin-browser.desktop\n'
                  'inode/directory=standin-folders.desktop\n')
    session.run('update-desktop-database', session.home / '.local/share/applications', check=False)


def emptied(home):
    """One home for all desktops, so that each finds the same path; a mounted one cannot be removed."""
    for entry in home.iterdir():
        if entry.is_dir() and not entry.is_symlink():
            shutil.rmtree(entry)
        else:
            entry.unlink()
    return home


def try_desktop(kind, work, output):
    session = Session(work / kind.name, emptied(pathlib.Path(os.environ['DESKTOPS_HOME'])), base_environment(work))
    add_handlers(session)
    flow = Flow(kind(session), lambda text: print(text, flush=True))
    try:
        flow.run()
    except Exception as trouble:  # pylint: disable=broad-except: every other desktop is still to be tried
        if not isinstance(trouble, Fault):
            traceback.print_exc()
        flow.fault('icon', f'the desktop does not work here: {trouble}')
    finally:
        end_descendants()
    for name, picture in flow.pictures.items():
        report.save(picture, output / f'{kind.name}-{name}.png')
    shutil.copytree(session.logs, output / 'logs' / kind.name, dirs_exist_ok=True)
    return kind.title, flow.cells


def leave(number, _frame):
    """By way of all that cleans up, which nothing is to interrupt."""
    for other in (signal.SIGINT, signal.SIGTERM):
        signal.signal(other, signal.SIG_IGN)
    sys.exit(128 + number)


def main():
    work, output = pathlib.Path(os.environ['DESKTOPS_WORK']), pathlib.Path(sys.argv[1])
    output.mkdir(parents=True, exist_ok=True)
    names = sys.argv[2:]
    for number in (signal.SIGINT, signal.SIGTERM):
        signal.signal(number, leave)
    adopt_orphans()
    rows = []
    for name in names:
        began = time.monotonic()
        print(f'{DESKTOPS[name].title}:', flush=True)
        rows.append(try_desktop(DESKTOPS[name], work, output))
        print(f'  {time.monotonic() - began:.0f} s', flush=True)
    text = report.table(rows)
    (output / 'table.md').write_text(text)
    (output / 'titles').write_text(''.join(f'{name}\t{DESKTOPS[name].title}\n' for name in names))
    print(text)
    sys.exit(1 if report.has_fault(rows) else 0)


main()
