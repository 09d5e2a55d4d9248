"""What every driven demonstration does alike: the login, the form of the server's page; and where a pilot clicks and looks
for it.
"""
from driven_client import Failure, Window, looks_of, picture, press, type_text, wait_until

USERNAME, PASSWORD = '1001', 'practice'
CALLSIGN, TYPE_CODE, SELCAL = 'CES2352', 'A320', 'AB-CD'
OTHER_PILOTS = ('CES2117', 'CCA908', 'CHH7182', 'BAW38')
LOGIN_TITLE, MAIN_TITLE = 'TARVO Client - 登录', 'TARVO Client - 控制面板'

# Where the pilot clicks, in pixels of a main window of 1000x700.
SIMULATOR_ITEM = (120, 180)
SERVER_ITEM = (120, 230)
MESSAGES_ITEM = (120, 330)
LOGOUT_ITEM = (120, 468)
CALLSIGN_FIELD = (430, 329)
CONNECT_BUTTON = (430, 503)

# Where he looks: left, top, width, height, and colours of the style.
CARD_ARROWS = (620, 240, 52, 220)  # the discs of both cards of the mode page
PHOTOGRAPH = (60, 580, 40, 60)  # nothing else lies there, before and after
PLOT = (646, 442, 310, 250)
LEAVE_BUTTON = (626, 412, 56, 32)  # of the question, right of the page's own button
END_RED = (0xC8, 0x1E, 0x45)
CYAN, WHITE = (0x67, 0xE8, 0xF9), (0xFF, 0xFF, 0xFF)


def sign_in():
    """From the login window to the main window; nothing else is to be seen between the two."""
    login = Window(LOGIN_TITLE)
    picture('1-login')
    type_text(USERNAME)
    press('Tab')
    type_text(PASSWORD)
    with looks_of(login.part(*PHOTOGRAPH)) as looks:
        press('Return')
        main = Window(MAIN_TITLE)
        wait_until('cards of the simulators', lambda: main.count(*CARD_ARROWS, WHITE) >= 1000)
    if len(looks) != 2:
        raise Failure(f'{len(looks)} looks of the window from the login to the choice of a simulator, not 2')
    return main


def fill_form(main):
    main.focus(CALLSIGN_FIELD)
    type_text(CALLSIGN)
    press('Tab')
    type_text(TYPE_CODE[:3])
    picture('5-suggestions')
    type_text(TYPE_CODE[3:])
    press('Escape', 'Tab')
    type_text(SELCAL)


def disconnect(main, practice):
    """Ends the session on the server's page, which asks whether it is meant."""
    main.click(CONNECT_BUTTON, until=lambda: main.count(*LEAVE_BUTTON, END_RED) >= 500)
    picture('15-question')
    press('Tab', 'Return')
    practice.wait_for(r'#DP' + CALLSIGN)
