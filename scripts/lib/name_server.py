"""A name server for one name, in a network of its own, that answers when it is told to. Needs Linux and root, or user
namespaces."""
import os
import socket
import struct
import subprocess
import sys
import tempfile
import threading

MARK = 'TARVO_OWN_NETWORK'
SET_UP = 'ip link set lo up && mount --bind "$1" /etc/resolv.conf && shift && exec "$@"'


def unshared(command):
    """The command that runs `command` in a network of its own, whose name server is at 127.0.0.1; None where this
    machine doesn't let us."""
    with tempfile.NamedTemporaryFile('w', prefix='tarvo-resolv-', delete=False) as file:
        file.write('nameserver 127.0.0.1\noptions timeout:30\n')  # a late answer is still an answer
    os.chmod(file.name, 0o644)
    root = [] if os.geteuid() == 0 else ['--map-root-user']
    prefix = ['unshare', *root, '--net', '--mount', 'sh', '-c', SET_UP, 'sh', file.name]
    try:
        if subprocess.run([*prefix, 'true'], stderr=subprocess.DEVNULL).returncode == 0:
            return [*prefix, *command]
    except FileNotFoundError:
        pass
    os.unlink(file.name)
    return None


def enter_own_network():
    """Starts this program again in a network of its own. Returns False where that can't be, True inside."""
    if MARK in os.environ:
        os.unlink(os.environ[MARK])  # it is mounted by now
        return True
    command = unshared([sys.executable, *sys.argv])
    if command is None:
        return False
    os.environ[MARK] = command[command.index('sh', command.index('-c')) + 1]
    sys.stdout.flush()
    os.execvp(command[0], command)


class NameServer:
    """Knows one name, which is 127.0.0.1."""

    def __init__(self, name):
        self.name = name
        self.asked = threading.Event()
        self._may_answer = threading.Event()
        self._socket = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self._socket.bind(('127.0.0.1', 53))
        threading.Thread(target=self._serve, daemon=True).start()

    def answer(self):
        """From now on whoever asks, or has asked, gets an answer."""
        self._may_answer.set()

    def _serve(self):
        while True:
            question, sender = self._socket.recvfrom(512)
            if self._name_of(question) == self.name:
                self.asked.set()
                self._may_answer.wait()
            self._socket.sendto(self._reply(question), sender)

    @staticmethod
    def _name_of(question):
        labels, at = [], 12
        while question[at]:
            labels.append(question[at + 1:at + 1 + question[at]].decode('ascii', 'replace'))
            at += 1 + question[at]
        return '.'.join(labels)

    def _reply(self, question):
        end = question.index(0, 12) + 5  # behind type and class
        known = self._name_of(question) == self.name and question[end - 4:end] == b'\0\1\0\1'
        head = struct.pack('>2sHHHHH', question[:2], 0x8180 if known else 0x8183, 1, int(known), 0, 0)
        record = struct.pack('>HHHIH4B', 0xC00C, 1, 1, 60, 4, 127, 0, 0, 1) if known else b''
        return head + question[12:end] + record
