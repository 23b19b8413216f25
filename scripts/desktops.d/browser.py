#!/usr/bin/python3
"""What stands in for a browser and for a file manager: a large window with one large button.

usage: browser.py browser|folders ADDRESS. The login page's button signs in and calls the agent, as a person does who
presses "Sign in" and lets the browser open the program.
"""

import os
import signal
import subprocess
import sys
import urllib.parse

import gi

gi.require_version('Gdk', '3.0')
gi.require_version('Gtk', '3.0')
from gi.repository import Gdk, Gio, GLib, Gtk  # noqa: E402

kind, address = sys.argv[1], sys.argv[2]


def sign_in(button):
    tool, profile = os.environ['DESKTOPS_SANDBOX'], os.environ['DESKTOPS_SERVICE']
    callback = subprocess.run([tool, 'sign-in', '--profile', profile, address], check=True, capture_output=True,
                              text=True).stdout.strip()
    context = Gdk.Display.get_default().get_app_launch_context()
    context.set_timestamp(Gtk.get_current_event_time())
    Gio.AppInfo.launch_default_for_uri(callback, context)
    button.set_label('Signed in')


def show(_application):
    title = urllib.parse.unquote(urllib.parse.urlsplit(address).path) or address
    window = Gtk.ApplicationWindow(application=application, title=f'{kind}: {title}')
    is_login = kind == 'browser' and 'login' in address
    button = Gtk.Button(label='Sign in' if is_login else title)
    if is_login:
        button.connect('clicked', sign_in)
    window.add(button)
    window.set_default_size(900, 600)
    window.maximize()
    window.show_all()
    with open(os.environ['DESKTOPS_OPENED'], 'a', encoding='utf-8') as opened:
        opened.write(f'{kind} {title} {os.getpid()}\n')


GLib.set_prgname(f'standin-{kind}')
Gdk.set_program_class(f'standin-{kind}')
application = Gtk.Application(application_id=None, flags=Gio.ApplicationFlags.NON_UNIQUE)
application.connect('activate', show)
# As a person closes it: who opened it would be told of a failure otherwise.
GLib.unix_signal_add(GLib.PRIORITY_DEFAULT, signal.SIGTERM, application.quit)
application.run([])
