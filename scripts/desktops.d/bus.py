"""Calls on the session bus of the desktop that is looked at."""

import gi

gi.require_version('Gio', '2.0')
from gi.repository import Gio, GLib  # noqa: E402


class Bus:
    def __init__(self, address):
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self.connection = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
        self.connection.set_exit_on_close(False)
        self.trouble = ''  # why the last call failed

    def call(self, name, path, interface, method, arguments=None, seconds=10, descriptors=None):
        """The answer's values; None when it could not be had."""
        try:
            if descriptors is not None:
                reply, _ = self.connection.call_with_unix_fd_list_sync(
                    name, path, interface, method, arguments, None, Gio.DBusCallFlags.NO_AUTO_START, seconds * 1000,
                    descriptors, None)
            else:
                reply = self.connection.call_sync(name, path, interface, method, arguments, None,
                                                  Gio.DBusCallFlags.NO_AUTO_START, seconds * 1000, None)
        except GLib.Error as error:
            self.trouble = error.message
            return None
        return reply.unpack()

    def get(self, name, path, interface, of_property):
        answer = self.call(name, path, 'org.freedesktop.DBus.Properties', 'Get',
                           GLib.Variant('(ss)', (interface, of_property)))
        return answer[0] if answer else None

    def has_owner(self, name):
        answer = self.call('org.freedesktop.DBus', '/org/freedesktop/DBus', 'org.freedesktop.DBus', 'NameHasOwner',
                           GLib.Variant('(s)', (name,)))
        return bool(answer and answer[0])

    def close(self):
        try:
            self.connection.close_sync(None)
        except GLib.Error:
            pass  # the bus went first


def pump():
    context = GLib.MainContext.default()
    while context.iteration(False):
        pass
