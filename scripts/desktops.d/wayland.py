"""As much of Wayland's wire format as a virtual pointer needs."""

import os
import socket
import struct

DISPLAY = 1


class Connection:
    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self.socket.settimeout(5)
        self.socket.connect(str(path))
        self.last_id = DISPLAY
        self.globals = {}
        self.registry = self.new_id()
        self.request(DISPLAY, 1, 'n', self.registry)
        self.round_trip()

    def new_id(self):
        self.last_id += 1
        return self.last_id

    def request(self, target, opcode, form='', *values):
        """form: one letter a value: n, o, u (new id, object, number), f (fixed point), s (string)."""
        body = b''
        for letter, value in zip(form, values):
            if letter == 's':
                text = value.encode() + b'\0'
                body += struct.pack('=I', len(text)) + text + b'\0' * (-len(text) % 4)
            elif letter == 'f':
                body += struct.pack('=i', round(value * 256))
            else:
                body += struct.pack('=I', value)
        self.socket.sendall(struct.pack('=IHH', target, opcode, 8 + len(body)) + body)

    def receive(self, size):
        data = b''
        while len(data) < size:
            part = self.socket.recv(size - len(data))
            if not part:
                raise ConnectionError('the compositor has closed the connection')
            data += part
        return data

    def round_trip(self):
        """Returns once the compositor has dealt with all that was sent."""
        callback = self.new_id()
        self.request(DISPLAY, 0, 'n', callback)
        while True:
            sender, opcode, length = struct.unpack('=IHH', self.receive(8))
            body = self.receive(length - 8)
            if sender == callback:
                return
            if sender == DISPLAY and opcode == 0:
                raise ConnectionError(body[12:].rstrip(b'\0').decode(errors='replace'))
            if sender == self.registry and opcode == 0:
                name, size = struct.unpack('=II', body[:8])
                self.globals[body[8:8 + size - 1].decode()] = name

    def bind(self, interface, version):
        made = self.new_id()
        self.request(self.registry, 0, 'usun', self.globals[interface], interface, version, made)
        return made


def display_path(environment):
    return os.path.join(environment['XDG_RUNTIME_DIR'], environment['WAYLAND_DISPLAY'])
