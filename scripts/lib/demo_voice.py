"""The voice of the driven demonstration: the tower's greeting, a radio check through the mini window, and what of both is
found again in the recorded headphone.
"""
import contextlib
import subprocess
import tempfile
import time

import found_words
import driven_client
from driven_client import Failure, picture, wait_until, window, xdotool

MINI_TITLE = '语音服务'
RADIO_CHECK = 122800  # kHz

# Where the pilot clicks, in pixels of a main window of 1000x700, and of the mini window.
VOICE_ITEM = (120, 280)
CONNECT_BUTTON = (873, 38)
MINI_BUTTON = (960, 38)
MINI_TALK = (140, 115)
MINI_CLOSE = (255, 25)
MINI_GRIP = (60, 25)


def talk(main, practice, sound):
    """Returns once the radio check has come back."""
    with contextlib.ExitStack() as stack:
        folder = stack.enter_context(tempfile.TemporaryDirectory())
        words = f'{folder}/words.wav'
        subprocess.run(['opusdec', '--quiet', '--rate', '48000', found_words.SPEECH / 'radio-check.opus', words], check=True)
        with sound.record('spk_a', f'{folder}/headphone.wav'):
            hear_tower(main, practice)
            check_radio(main, practice, lambda: sound.saying(words))
            time.sleep(0.5)  # what is still in the devices
        subprocess.run(['flac', '--silent', '--force', '-o', driven_client.PICTURES / 'headphone.flac',
                        f'{folder}/headphone.wav'], check=True)
        print('\nFound in the headphone (seconds, correlation, words):', flush=True)
        heard = found_words.read(f'{folder}/headphone.wav')
        if not found_words.report(heard, ['tower-greeting', 'radio-check']):
            raise Failure('not every word was found in the headphone')


def hear_tower(main, practice):
    main.open_page(VOICE_ITEM)
    main.click(CONNECT_BUTTON, until=lambda: practice.has(r'voice .*SERVER:.*:Welcome'))
    speaks = practice.wait_for('ZBAA_TWR speaks on 118.500')
    picture('11-hearing-the-tower')
    practice.wait_for('ZBAA_TWR has spoken on 118.500', start=speaks)


def check_radio(main, practice, saying):
    practice.order('tune', frequency=RADIO_CHECK)
    tuned = practice.wait_for(f'{RADIO_CHECK}:1')
    main.click(MINI_BUTTON, until=mini_window)
    drag(mini_window())
    with held(mini_window(), MINI_TALK):
        practice.wait_for('speaks on 122.800', start=tuned)
        with saying():
            picture('12-mini-window-sending')
    speaks = practice.wait_for('RADIO_CHECK speaks on 122.800', start=tuned)
    picture('13-mini-window-radio-check')
    practice.wait_for('RADIO_CHECK has spoken on 122.800', start=speaks)
    with held(mini_window(), MINI_CLOSE):
        pass
    wait_until('mini window to close', lambda: not mini_window())


def mini_window():
    """The mini window has the title of the page and no frame."""
    return window(MINI_TITLE)


def drag(identity):
    """Moves the mini window, and sees that it stays behind when the pointer goes on."""
    start = place(identity)
    with held(identity, MINI_GRIP):
        for _ in range(8):
            xdotool('mousemove_relative', '--', -10, -10)
            time.sleep(0.1)
    moved = wait_until('mini window to move', lambda: start != place(identity) and place(identity))
    xdotool('mousemove_relative', '--', -200, -200)
    driven_client.wait_for_rest(driven_client.DISPLAY)
    if place(identity) != moved:
        raise Failure('the mini window sticks to the pointer')


def place(identity):
    return xdotool('getwindowgeometry', '--shell', identity)[1:3]


@contextlib.contextmanager
def held(identity, point):
    """Holds the mouse button down on a point of a window, which doesn't take the keyboard."""
    xdotool('mousemove', '--window', identity, *point)
    xdotool('mousedown', 1)
    try:
        yield
    finally:
        xdotool('mouseup', 1)
