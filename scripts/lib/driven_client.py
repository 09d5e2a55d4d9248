"""Drives the client as a pilot would: windows found by their titles, keys and clicks, pictures of the display; and the
practice network beside it.
"""
import contextlib
import os
import pathlib
import re
import signal
import subprocess
import tempfile
import threading
import time
import urllib.parse
import urllib.request

ROOT = pathlib.Path(__file__).resolve().parents[2]
PICTURES = ROOT / 'build' / 'demo'

# Where a pilot looks: a column of a window of 1000x700, and the colours of the style.
DISPLAY = '1280x800+0+0'
SIDEBAR_DOT = 47
FIELD_HEIGHT = 42
INK, FOCUS = (0x0F, 0x17, 0x2A), (0x3B, 0x82, 0xF6)


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


class Program:
    """A program of ours that runs beside; keeps what it printed."""

    def __init__(self, name, command, environment=None):
        self.name = name
        self.lines = []
        self.process = subprocess.Popen(command, env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
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
                raise Failure(f'{self.name} stopped; its last lines say why')
            return next((i + 1 for i in range(start, len(self.lines)) if re.search(pattern, self.lines[i])), None)
        return wait_until(f'{self.name}, "{pattern}"', found, seconds) - 1

    def wait_for_end(self, seconds=None):
        try:
            if self.process.wait(seconds) != 0:
                raise Failure(f'{self.name} ended with {self.process.returncode}')
        except subprocess.TimeoutExpired as error:
            raise Failure(f'{self.name} does not end') from error

    def end(self):
        """Ends it if it still runs."""
        if self.process.poll() is None:
            self.process.terminate()
            self.process.wait()


class Practice(Program):
    """The practice network."""

    def __init__(self, command, environment=None):
        super().__init__('the practice network', command, environment)

    def order(self, verb, **arguments):
        """Lets one of its verbs be carried out."""
        query = urllib.parse.urlencode(arguments)
        request = urllib.request.Request(f'http://127.0.0.1:8080/practice/{verb}?{query}', method='POST')
        try:
            with urllib.request.urlopen(request, timeout=10):
                pass
        except OSError as error:
            raise Failure(f'the practice network does not {verb}: {error}') from error

    def stop(self):
        self.process.send_signal(signal.SIGTERM)
        self.wait_for_end(10)


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
        manager = subprocess.Popen(['openbox', '--config-file', still_windows(folder), '--startup', f'touch {ready}'],
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            wait_until('window manager', ready.exists)  # a window shown while it takes over is never mapped
            yield
        finally:
            for process in (manager, server):
                process.terminate()
                process.wait()


def still_windows(folder):
    """Openbox's own settings, but a window that is back from its icon is at its place at once, not on the way to it."""
    moving, still = '<animateIconify>yes<', '<animateIconify>no<'
    settings = pathlib.Path('/etc/xdg/openbox/rc.xml').read_text()
    if moving not in settings:
        raise Failure('Openbox has other settings than expected')
    file = pathlib.Path(folder, 'openbox.xml')
    file.write_text(settings.replace(moving, still))
    return file


def xdotool(*words):
    utf8 = os.environ | {'LC_ALL': 'C.UTF-8'}  # the titles are Chinese
    result = subprocess.run(['xdotool', *map(str, words)], capture_output=True, text=True, env=utf8)
    return result.stdout.split() if result.returncode == 0 else []


def window(title):
    found = xdotool('search', '--onlyvisible', '--name', f'^{title}$')
    return found[-1] if found else None


def pixels(part):
    """Of a part of the display, "WIDTHxHEIGHT+LEFT+TOP": red, green, blue."""
    return subprocess.run(['import', '-window', 'root', '-crop', part, '-depth', '8', 'rgb:-'], capture_output=True,
                          check=True).stdout


def wait_for_rest(part):
    """Until that part of the display has come to rest; live figures keep changing, and then any moment is as good."""
    image = pixels(part)
    for _ in range(6):
        time.sleep(0.1)
        previous, image = image, pixels(part)
        if image == previous:
            break


@contextlib.contextmanager
def looks_of(part):
    """Gives a list that takes each new look of a part of the display, as long as the context is."""
    looks, over = [pixels(part)], threading.Event()

    def watch():
        while not over.is_set():
            look = pixels(part)
            if look != looks[-1]:
                looks.append(look)

    thread = threading.Thread(target=watch)
    thread.start()
    try:
        yield looks
    finally:
        over.set()
        thread.join()


def keep_pictures_in(name):
    global PICTURES
    PICTURES = ROOT / 'build' / name
    PICTURES.mkdir(parents=True, exist_ok=True)


def picture(name):
    wait_for_rest(DISPLAY)
    subprocess.run(['import', '-window', 'root', PICTURES / f'{name}.png'], check=True)


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
        xdotool('mousemove', self.x + x, self.y + y)  # "--sync" waits 15 s for a pointer that is there already
        wait_for_rest(f'160x80+{max(0, self.x + x - 80)}+{max(0, self.y + y - 40)}')  # where the pointer's tip may come, too
        xdotool('click', 1)
        wait_until(f'click at {x}, {y}', until)

    def count(self, left, top, width, height, colour):
        """How many pixels of a part of the window have that colour, or nearly."""
        raw = pixels(self.part(left, top, width, height))
        return sum(all(abs(a - b) <= 12 for a, b in zip(raw[i:i + 3], colour)) for i in range(0, len(raw) - 2, 3))

    def part(self, left, top, width, height):
        """Of the display."""
        return f'{width}x{height}+{self.x + left}+{self.y + top}'

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
