#!/usr/bin/env python3
"""Runs the practice network and the client beside each other. Called by scripts/demo, which builds both.

With --headless the client runs in a virtual display and is flown by key presses and clicks from the login to the logout;
pictures of every window stay in build/demo, and the lines that the server saw are printed as they stood on the wire.
Where this machine allows it, that client finds the server by a name, which is answered late.
Without it, the pilot is told what there is to look at.
"""
import argparse
import contextlib
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import threading
import time

from name_server import Name, NameServer, enter_own_network

ROOT = pathlib.Path(__file__).resolve().parents[2]
PICTURES = ROOT / 'build' / 'demo'
USERNAME, PASSWORD = '1001', 'practice'
CALLSIGN, TYPE_CODE, SELCAL = 'CES2352', 'A320', 'AB-CD'
OTHER_PILOTS = ('CES2117', 'CCA908', 'CHH7182', 'BAW38')
TOWER = 'ZBAA_TWR'
SERVER_NAME = 'fsd.practice.test'
LOGIN_TITLE, MAIN_TITLE = 'TARVO Client - 登录', 'TARVO Client - 控制面板'


class Failure(Exception):
    """Something that should have happened did not."""


def wait_until(what, test, seconds=60):
    """Polls `test` until it returns something; the windows give no other sign to the outside."""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        result = test()
        if result:
            return result
        time.sleep(0.05)
    raise Failure(f'{what}: nothing after {seconds} s')


class Practice:
    """The practice network; keeps what it printed."""

    def __init__(self, program):
        self.lines = []
        self.process = subprocess.Popen([program], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                                        errors='replace')
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        for line in self.process.stdout:
            self.lines.append(line.rstrip('\n'))
            print(line, end='', flush=True)

    def has(self, pattern):
        """True once a line holds `pattern`."""
        return any(re.search(pattern, line) for line in self.lines)

    def wait_for(self, pattern, seconds=60, start=0):
        """The number of the first line from `start` that holds `pattern`."""
        def found():
            if self.process.poll() is not None:
                raise Failure('the practice network stopped; its last lines say why')
            return next((i + 1 for i in range(start, len(self.lines)) if re.search(pattern, self.lines[i])), None)
        return wait_until(f'practice network, "{pattern}"', found, seconds) - 1

    def stop(self):
        self.process.send_signal(signal.SIGTERM)
        if self.process.wait(10) != 0:
            raise Failure(f'the practice network ended with {self.process.returncode}')


@contextlib.contextmanager
def virtual_display():
    """A display of 1280x800 with a window manager; sets DISPLAY."""
    read, write = os.pipe()
    server = subprocess.Popen(['Xvfb', '-displayfd', str(write), '-screen', '0', '1280x800x24', '-nolisten', 'tcp',
                               '-noreset'], pass_fds=[write], stderr=subprocess.DEVNULL)
    os.close(write)
    with os.fdopen(read) as numbers:
        number = numbers.readline().strip()
    if not number:
        raise Failure('Xvfb did not start')
    os.environ['DISPLAY'] = ':' + number
    os.environ['QT_QPA_PLATFORM'] = 'xcb'
    os.environ.pop('WAYLAND_DISPLAY', None)
    with tempfile.TemporaryDirectory() as folder:
        ready = pathlib.Path(folder, 'ready')
        manager = subprocess.Popen(['openbox', '--startup', f'touch {ready}'], stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        try:
            wait_until('window manager', ready.exists)  # a window shown while it takes over is never mapped
            yield
        finally:
            for process in (manager, server):
                process.terminate()
                process.wait()


def xdotool(*words):
    utf8 = os.environ | {'LC_ALL': 'C.UTF-8'}  # the titles are Chinese
    result = subprocess.run(['xdotool', *map(str, words)], capture_output=True, text=True, env=utf8)
    return result.stdout.split() if result.returncode == 0 else []


def window(title):
    found = xdotool('search', '--onlyvisible', '--name', f'^{title}$')
    return found[-1] if found else None


def screenshot():
    return subprocess.run(['import', '-window', 'root', 'png:-'], capture_output=True, check=True).stdout


def at_rest():
    """The display once it has come to rest; live figures keep changing, and then the newest picture is as good as any."""
    image = screenshot()
    for _ in range(6):
        time.sleep(0.1)
        previous, image = image, screenshot()
        if image == previous:
            break
    return image


def picture(name):
    (PICTURES / f'{name}.png').write_bytes(at_rest())


class Window:
    """A window of the client, found by its title."""

    def __init__(self, title):
        self.id = wait_until(f'window "{title}"', lambda: window(title))
        xdotool('windowactivate', '--sync', self.id)
        # Where the pointer gets to: the window's own geometry is wrong by its frame under some window managers.
        xdotool('mousemove', '--window', self.id, 0, 0)
        place = dict(w.split('=') for w in xdotool('getmouselocation', '--shell') if '=' in w)
        self.x, self.y = int(place['X']), int(place['Y'])

    def click(self, point, until):
        """Clicks at a point of the window, in pixels, and waits until `until` says that this had its effect: the display
        itself changes all the time."""
        x, y = point
        xdotool('mousemove', '--sync', self.x + x, self.y + y)
        at_rest()
        xdotool('click', 1)
        wait_until(f'click at {x}, {y}', until)

    def count(self, left, top, width, height, colour):
        """How many pixels of a part of the window have that colour, or nearly."""
        part = f'{width}x{height}+{self.x + left}+{self.y + top}'
        raw = subprocess.run(['import', '-window', 'root', '-crop', part, '-depth', '8', 'rgb:-'], capture_output=True,
                             check=True).stdout
        return sum(all(abs(a - b) <= 12 for a, b in zip(raw[i:i + 3], colour)) for i in range(0, len(raw) - 2, 3))

    def open_page(self, item):
        """Clicks an item of the sidebar; the dot before the title is filled once its page is shown."""
        self.click(item, lambda: self.count(SIDEBAR_DOT - 3, item[1] - 3, 6, 6, INK) == 36)

    def focus(self, field):
        """Clicks an entry field, whose frame is blue while it takes the keys."""
        x, y = field
        self.click(field, lambda: self.count(x, y - FIELD_HEIGHT, 8, 2 * FIELD_HEIGHT, FOCUS) >= 16)


def type_text(text):
    xdotool('type', '--delay', 20, text)


def press(*keys):
    for key in keys:
        xdotool('key', key)


def fly(client, practice, server_name):
    """From the login to the logout, as a pilot would. `server_name` is what the name server knows, if there is one."""
    Window(LOGIN_TITLE)
    picture('1-login')
    type_text(USERNAME)
    press('Tab')
    type_text(PASSWORD)
    press('Return')

    main = Window(MAIN_TITLE)
    wait_until('card of X-Plane', lambda: main.count(*X_PLANE_ARROW, WHITE) >= 1000)
    picture('2-mode-selection')
    main.click(X_PLANE_CARD, until=lambda: practice.has(r'plugin +<<< VER'))
    picture('3-overview')

    main.open_page(SERVER_ITEM)
    picture('4-server-page')
    fill_form(main)
    if server_name:
        look_around_meanwhile(main, server_name)
    else:
        main.click(CONNECT_BUTTON, until=lambda: practice.has(r'#AP' + CALLSIGN))
    connected = practice.wait_for(r'#AP' + CALLSIGN)
    practice.wait_for(r'@[SNY]:' + CALLSIGN, start=connected)
    picture('6-connected')
    meet_traffic(main, practice, connected)
    talk_to_tower(main, practice, connected)
    main.open_page(SERVER_ITEM)
    main.click(CONNECT_BUTTON, until=lambda: practice.has(r'#DP' + CALLSIGN))
    picture('11-disconnected')
    main.click(LOGOUT_ITEM, until=lambda: window(LOGIN_TITLE))
    Window(LOGIN_TITLE)
    picture('12-login-again')
    press('alt+F4')
    if client.wait(10) != 0:
        raise Failure(f'the client ended with {client.returncode}')


def fill_form(main):
    main.focus(CALLSIGN_FIELD)
    type_text(CALLSIGN)
    press('Tab')
    type_text(TYPE_CODE[:3])
    picture('5-suggestions')
    type_text(TYPE_CODE[3:])
    press('Escape', 'Tab')
    type_text(SELCAL)


def look_around_meanwhile(main, server_name):
    """Connects, and goes to another page and back while the server's name is being looked up."""
    main.click(CONNECT_BUTTON, until=server_name.asked.is_set)
    main.open_page(MESSAGES_ITEM)
    picture('5-other-page-while-looking-up')
    main.open_page(SERVER_ITEM)
    picture('5-server-page-while-looking-up')
    server_name.answer()


def meet_traffic(main, practice, connected):
    """Waits until every other aircraft is drawn, and looks at them on the plot. The tower has greeted meanwhile: a badge
    tells."""
    for callsign in OTHER_PILOTS:
        practice.wait_for(r'plugin +>>> ADDED.*' + callsign, start=connected)
    practice.wait_for(f'#TM{TOWER}:{CALLSIGN}:', start=connected)
    wait_until('badge of unread messages', lambda: main.count(*BADGE, RED) >= 50)
    main.open_page(SIMULATOR_ITEM)
    wait_until('aircraft on the plot', lambda: main.count(*PLOT, CYAN) >= 20)
    picture('7-simulator-page')


def talk_to_tower(main, practice, connected):
    """A private session with the tower, which answers, and its call by SELCAL."""
    main.open_page(MESSAGES_ITEM)
    picture('8-messages-page')
    x, y = TOWER_SESSION
    main.click(TOWER_SESSION, until=lambda: main.count(SESSION_MARK - 3, y - 6, 6, 12, FOCUS) >= 20)

    def write(text):
        main.focus(COMPOSE_FIELD)
        type_text(text)
        press('Return')
        return practice.wait_for(f'#TM{CALLSIGN}:{TOWER}:{text}$', start=connected)

    sent = write(f'SELCAL {SELCAL}')
    practice.wait_for(f'#TM{TOWER}:{CALLSIGN}:.*SELCAL is {SELCAL}', start=sent)
    picture('9-answered-by-tower')
    sent = write('SELCAL')
    practice.wait_for(f'#TM{TOWER}:@[0-9]+:SELCAL {SELCAL}', start=sent)
    picture('10-called-by-selcal')


# Where the pilot clicks, in pixels of a main window of 1000x700.
X_PLANE_CARD = (500, 382)
X_PLANE_ARROW = (620, 356, 52, 52)  # left, top, width, height of the card's disc
SIMULATOR_ITEM = (120, 180)
SERVER_ITEM = (120, 230)
MESSAGES_ITEM = (120, 280)
LOGOUT_ITEM = (120, 368)
TOWER_SESSION = (360, 377)
COMPOSE_FIELD = (650, 660)
CALLSIGN_FIELD = (430, 329)
CONNECT_BUTTON = (430, 503)

# Where he looks: left, top, width, height or a column, and the colours of the style.
SIDEBAR_DOT = 47
SESSION_MARK = 281
FIELD_HEIGHT = 42
BADGE = (190, 260, 40, 40)
PLOT = (646, 132, 310, 290)
INK, FOCUS, RED, CYAN = (0x0F, 0x17, 0x2A), (0x3B, 0x82, 0xF6), (0xF4, 0x3F, 0x5E), (0x67, 0xE8, 0xF9)
WHITE = (0xFF, 0xFF, 0xFF)

TOUR = f"""
What there is to see, once X-Plane is chosen and a callsign is connected on the page 服务器:
  模拟器  four other aircraft on the plot and in its list; {OTHER_PILOTS[0]} and {OTHER_PILOTS[1]} are in the air
  消息    a badge, as {TOWER} greets after six seconds; open the session and write to it
          "SELCAL AB-CD" tells {TOWER} your code, "SELCAL" lets it call you on COM1
          a wallop is answered by a supervisor, and every five minutes there is a broadcast
Close the client to end it all.
"""


def write_config(programs, account):
    words = [USERNAME, PASSWORD] if account else []
    subprocess.run([programs / 'tarvo-demo-config', programs, *words], check=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('--bin', required=True, type=pathlib.Path)
    parser.add_argument('--headless', action='store_true')
    arguments = parser.parse_args()
    programs = arguments.bin.resolve()
    server_name, client_command = None, [programs / 'TarvoClient']
    if arguments.headless:
        reason = enter_own_network()
        if reason is None:
            server_name, client_command = Name('127.0.0.1'), [programs / 'tarvo-demo-client', SERVER_NAME]
            NameServer({SERVER_NAME: server_name})
        else:
            print('no network of our own here, so the client finds the server by its address:', reason, flush=True)
    PICTURES.mkdir(parents=True, exist_ok=True)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # through the clean-up below

    practice = Practice(programs / 'tarvo-practice')
    client = None
    failure = None
    try:
        practice.wait_for('ready')
        write_config(programs, account=not arguments.headless)
        if arguments.headless:
            with virtual_display():
                client = subprocess.Popen(client_command)
                try:
                    fly(client, practice, server_name)
                finally:
                    if client.poll() is None:
                        picture('at-the-end')
                        client.terminate()
                        client.wait()
        else:
            print(TOUR, flush=True)
            client = subprocess.Popen(client_command)
            if client.wait() != 0:
                raise Failure(f'the client ended with {client.returncode}')
    except (Failure, KeyboardInterrupt) as reason:
        failure = reason or 'interrupted'
    finally:
        if client and client.poll() is None:
            client.terminate()
            client.wait()
        if practice.process.poll() is None:
            practice.stop()
    if arguments.headless:
        report(practice)
    if failure:
        print(f'the demonstration failed: {failure}', file=sys.stderr)
    sys.exit(1 if failure else 0)


def report(practice):
    print('\nFSD lines as the server saw them:')
    for line in practice.lines:
        if re.search(r' fsd .*(<<<|>>>)', line):
            print('  ' + line)
    print(f'Pictures: {PICTURES.relative_to(ROOT)}')


if __name__ == '__main__':
    main()
