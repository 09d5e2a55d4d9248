"""What may happen on a flight of the driven demonstration: an attempt that is called off, a text in Chinese, a station that
is tuned by a click, the compact view, a pause, and the end of the connection by somebody else's wish.
"""
from demo_steps import CALLSIGN, CONNECT_BUTTON, MESSAGES_ITEM, SERVER_ITEM, SIMULATOR_ITEM
from driven_client import Window, picture, press, type_text, wait_until, window, xdotool

COMPACT_TITLE = 'TARVO 精简视图'
GROUND = 121900  # kHz
TOWER = 118500

# Where the pilot clicks, in pixels of a main window of 1000x700, and of the compact view.
GROUND_FREQUENCY = (439, 511)
BANNER_ACTION = (896, 40)
COMPACT_LINE = (150, 232)
COMPACT_LEAVE = (395, 25)

# Where he looks: left, top, width, height, and colours of the style.
NETWORK_DOT = (32, 545, 14, 20)
BANNER = (320, 20, 200, 36)
NOTE = (535, 636, 210, 24)
TOUR_CARD = (270, 200, 200, 90)
AMBER, NOTICE, NAVY = (0xF5, 0x9E, 0x0B), (0xFF, 0xF1, 0xF3), (0x1A, 0x2B, 0x47)
WARNING = (0x92, 0x50, 0x0B)


def end_tour(main):
    """The first start's cards; Escape ends them."""
    wait_until('card of the tour', lambda: main.count(*TOUR_CARD, NAVY) > 9000)
    picture('3-tour')
    press('Escape')
    wait_until('end of the tour', lambda: main.count(*TOUR_CARD, NAVY) < 4000)


def look_around_meanwhile(main, server_name):
    """Connects, goes to another page and back while the server's name is being looked up, and calls it off once."""
    main.click(CONNECT_BUTTON, until=server_name.asked.is_set)
    main.open_page(MESSAGES_ITEM)
    picture('5-other-page-while-looking-up')
    main.open_page(SERVER_ITEM)
    picture('5-server-page-while-looking-up')
    call_off(main)
    server_name.answer()


def call_off(main):
    """Calls the attempt off that is under way, and begins another."""
    main.click(CONNECT_BUTTON, until=lambda: main.count(*NETWORK_DOT, AMBER) == 0)
    picture('5-called-off')
    main.click(CONNECT_BUTTON, until=lambda: main.count(*NETWORK_DOT, AMBER) >= 20)


def write_chinese(main, practice, to):
    """The line tells what can't go as typed; so it goes."""
    xdotool('type', '--delay', 250, '收到')  # each changes the keyboard's map, and faster ones get lost
    wait_until('note under the line', lambda: main.count(*NOTE, WARNING) >= 10)
    picture('10-chinese-text')
    start = len(practice.lines)
    press('Return')
    practice.wait_for(rf'#TM{CALLSIGN}:{to}:\?+$', start=start)


def tune_station(main, practice):
    """A click on the ground's frequency tunes COM1."""
    main.click(GROUND_FREQUENCY, until=lambda: practice.has(f'write .*com1_frequency.* = {GROUND}$'))
    picture('10-station-tuned')


def answer_in_compact_view(practice, to):
    """Goes to the compact view, answers who has written last there, and comes back."""
    press('ctrl+0')
    compact = wait_until('compact view', lambda: window(COMPACT_TITLE))
    wait_until('main window to go', lambda: not xdotool('search', '--onlyvisible', '--name', '控制面板$'))
    start = len(practice.lines)
    click_in(compact, COMPACT_LINE)
    type_text('TRAFFIC IN SIGHT')
    picture('10-compact-view')
    press('Return')
    practice.wait_for(f'#TM{CALLSIGN}:{to}:TRAFFIC IN SIGHT$', start=start)
    click_in(compact, COMPACT_LEAVE)
    wait_until('compact view to go', lambda: not window(COMPACT_TITLE))
    practice.order('tune', frequency=TOWER)


def pause_flight(main, practice):
    """A paused flight stays on the network."""
    practice.order('pause', on=1)
    main.open_page(SIMULATOR_ITEM)
    picture('13-paused')
    practice.order('pause', on=0)


def come_back_after_kill(main, practice):
    """The banner tells who ended the connection and why, and its button begins anew."""
    killed = len(practice.lines)
    practice.order('kill', callsign=CALLSIGN, reason='unattended')
    wait_until('banner', lambda: main.count(*BANNER, NOTICE) >= 3000)
    picture('13-killed')
    main.click(BANNER_ACTION, until=lambda: any(f'#AP{CALLSIGN}' in line for line in practice.lines[killed:]))
    practice.wait_for(r'@[SNY]:' + CALLSIGN, start=killed)
    picture('13-connected-again')


def click_in(identity, point):
    """Clicks at a point of a window that has no frame."""
    xdotool('mousemove', '--window', identity, *point)
    xdotool('click', 1)
