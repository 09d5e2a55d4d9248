#!/usr/bin/env python3
"""Runs a command on a network of its own, whose name server answers as told, and late where told.

    name_server.py NAME=[ADDRESS[+ADDRESS]][@SECONDS]... -- COMMAND [ARGUMENT...]

    name_server.py fsd.practice.test=127.0.0.1@3 dead.practice.test= -- scripts/demo

A name with an address, or one of each kind, is answered after so many seconds (at once without any). One without an address is never
answered, as by a server that is dead. Any other name doesn't exist. There is only loopback on that network. What the
command ends with is what this ends with; 77 where such a network can't be had (not root, and not on a build server).

A program in Python can instead call enter_own_network() and keep a NameServer by itself.
"""
import argparse
import os
import socket
import struct
import subprocess
import sys
import tempfile
import threading

INSIDE = 'TARVO_OWN_NETWORK'
SET_UP = 'ip link set lo up && mount --bind "$1" /etc/resolv.conf && shift && exec "$@"'
RESOLV_CONF = 'nameserver 127.0.0.1\noptions timeout:30\n'  # a late answer is still an answer
SKIPPED = 77
NO_SUCH_NAME = 3
TYPE_A, TYPE_AAAA, CLASS_IN = 1, 28, 1


def enter_own_network():
    """Starts this program again on a network of its own, where the system's name server is at 127.0.0.1. Returns the
    reason where that can't be; inside nothing."""
    if INSIDE in os.environ:
        os.unlink(os.environ.pop(INSIDE))  # it is mounted by now
        return None
    with tempfile.NamedTemporaryFile('w', prefix='tarvo-resolv-', delete=False) as file:
        file.write(RESOLV_CONF)
    os.chmod(file.name, 0o644)
    own_user = [] if os.geteuid() == 0 else ['--map-root-user']
    prefix = ['unshare', *own_user, '--net', '--mount', 'sh', '-c', SET_UP, 'sh', file.name]
    try:
        tried = subprocess.run([*prefix, 'true'], capture_output=True, text=True, check=False)
        reason = tried.stderr.strip() if tried.returncode != 0 else None
    except FileNotFoundError as error:
        reason = str(error)
    if reason is not None:
        os.unlink(file.name)
        return reason
    os.environ[INSIDE] = file.name
    sys.stdout.flush()
    return os.execvp(prefix[0], [*prefix, sys.executable, *sys.argv])


class Name:
    """What is known of a name: its address (two, an IPv4 and an IPv6, with "+" between), None for a name that is never
    answered, and when it is told. Without `seconds` it is told once answer() is called."""

    def __init__(self, address, seconds=None):
        self.address = address
        self.seconds = seconds
        self.asked = threading.Event()
        self._may_answer = threading.Event()

    def address_of(self, kind):
        """The bytes of the address of that type of record, if there is one."""
        family = {TYPE_A: socket.AF_INET, TYPE_AAAA: socket.AF_INET6}.get(kind)
        return next((bytes_of(a) for a in self.address.split('+') if family_of(a) == family), None)

    def answer(self):
        """From now on whoever asks, or has asked, gets the answer."""
        self._may_answer.set()

    def wait(self):
        """Until it is time to answer."""
        self._may_answer.wait(self.seconds)


class NameServer:
    """Answers at 127.0.0.1 for `names`, text to Name, until the program ends."""

    def __init__(self, names):
        self._names = names
        self._socket = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self._socket.bind(('127.0.0.1', 53))
        threading.Thread(target=self._serve, daemon=True).start()

    def _serve(self):
        while True:
            query, client = self._socket.recvfrom(512)
            try:
                text, kind, question = question_of(query)
            except (IndexError, struct.error):
                continue
            threading.Thread(target=self._answer, args=(self._names.get(text), kind, query, question, client),
                             daemon=True).start()

    def _answer(self, name, kind, query, question, client):
        if name:
            name.asked.set()
            if not name.address:
                return
            name.wait()
        address = name.address_of(kind) if name else None
        self._socket.sendto(reply_to(query, question, address, exists=name is not None), client)


def family_of(address):
    return socket.AF_INET6 if ':' in address else socket.AF_INET


def bytes_of(address):
    return socket.inet_pton(family_of(address), address)


def question_of(query):
    """Name, type, and the question's bytes."""
    labels, at = [], 12
    while query[at]:
        labels.append(query[at + 1:at + 1 + query[at]].decode('latin-1').lower())
        at += 1 + query[at]
    kind = struct.unpack_from('>H', query, at + 1)[0]
    return '.'.join(labels), kind, query[12:at + 5]


def reply_to(query, question, address, exists):
    """Recursion desired and available; one address record, or none."""
    head = query[:2] + struct.pack('>HHHHH', 0x8180 | (0 if exists else NO_SUCH_NAME), 1, 1 if address else 0, 0, 0)
    if not address:
        return head + question
    kind = TYPE_A if len(address) == 4 else TYPE_AAAA
    return head + question + struct.pack('>HHHIH', 0xC00C, kind, CLASS_IN, 1, len(address)) + address


def parse_name(text):
    """NAME=[ADDRESS[+ADDRESS]][@SECONDS] as (text, Name)."""
    name, equals, answer = text.partition('=')
    if not equals or not name:
        raise argparse.ArgumentTypeError(f'"{text}" is not NAME=[ADDRESS[+ADDRESS]][@SECONDS]')
    address, _, seconds = answer.partition('@')
    for part in filter(None, address.split('+')):
        bytes_of(part)
    return name.lower().rstrip('.'), Name(address or None, float(seconds or 0))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('names', nargs='+', type=parse_name, metavar='NAME=[ADDRESS[+ADDRESS]][@SECONDS]')
    if '--' not in sys.argv[1:-1]:
        parser.error('no command')
    split = sys.argv.index('--')
    names, command = parser.parse_args(sys.argv[1:split]).names, sys.argv[split + 1:]
    reason = enter_own_network()
    if reason is not None:
        must = os.geteuid() == 0 or os.environ.get('CI')
        print(f'{"FAILED" if must else "SKIPPED"}: no network of its own to be had: {reason}')
        sys.exit(1 if must else SKIPPED)
    NameServer(dict(names))
    code = subprocess.run(command, check=False).returncode
    sys.exit(code if code >= 0 else 128 - code)


if __name__ == '__main__':
    main()
