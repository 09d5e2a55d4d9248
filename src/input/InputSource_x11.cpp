#include "input/InputSource_x11.h"

#include "input/KeyCodes.h"
#include "input/MouseMask.h"

#include <QByteArray>
#include <QDebug>
#include <QSocketNotifier>

#include <optional>
#include <set>

// After Qt: their macros go by everyday names.
#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>

namespace tarvo::input {

namespace {

constexpr int evdevToKeycode = 8; ///< what X adds to the kernel's codes

struct ButtonMask
{
    int button; ///< X's number; 4 to 7 are the wheels
    int mask;
};
constexpr ButtonMask buttonMasks[] = {
    {1, LeftButton}, {2, MiddleButton}, {3, RightButton}, {8, FirstSideButton}, {9, SecondSideButton},
};

std::optional<int> maskOf(int button)
{
    for (const ButtonMask &row : buttonMasks) {
        if (row.button == button)
            return row.mask;
    }
    return std::nullopt;
}

/// What a key types without Shift and the like, as the keyboard is now; NoSymbol for nothing.
KeySym firstSymbol(Display *display, int keycode)
{
    XkbDescPtr keyboard = XkbGetMap(display, XkbKeyTypesMask | XkbKeySymsMask, XkbUseCoreKbd);
    if (!keyboard)
        return NoSymbol;
    KeySym symbol = NoSymbol;
    if (XkbKeycodeInRange(keyboard, keycode) && XkbKeyNumSyms(keyboard, keycode) > 0)
        symbol = XkbKeySymEntry(keyboard, keycode, 0, 0);
    XkbFreeKeyboard(keyboard, 0, True);
    return symbol;
}

/// The sign that a key types, as it is printed on keys; empty for a key that types none.
QString printedSign(KeySym symbol)
{
    const bool isLatin1 = (symbol > 0x20 && symbol < 0x7F) || (symbol > 0xA0 && symbol <= 0xFF);
    return isLatin1 ? QString(QChar(static_cast<ushort>(symbol))).toUpper() : QString();
}

} // namespace

class X11InputSource::Connection
{
public:
    Connection(Display *display, XTest xtest);
    ~Connection();
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    /// False when the server doesn't have what it takes.
    bool tell(InputListener &listener);
    QString keyName(int evdevCode);

private:
    bool selectEvents();
    void drain();
    void handle(XEvent &event);
    void handle(const XIRawEvent &event);
    void handleKey(const XIRawEvent &event);
    void handleButton(const XIRawEvent &event);
    void findXTestKeyboards();

    Display *m_display;
    XTest m_xtest;
    QSocketNotifier m_notifier;
    InputListener *m_listener = nullptr;
    int m_xinput = 0;               ///< the extension's number
    std::set<int> m_xtestKeyboards; ///< their device ids
    bool m_isLost = false;
};

X11InputSource::Connection::Connection(Display *display, XTest xtest)
    : m_display(display), m_xtest(xtest), m_notifier(ConnectionNumber(display), QSocketNotifier::Read)
{
    m_notifier.setEnabled(false);
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { drain(); });
    // Xlib ends the program when the server goes, and that in two places: once for all connections, which need not be
    // because it is done for each of them, too, and there this one only takes note.
    XSetIOErrorHandler([](Display *) { return 0; });
    XSetIOErrorExitHandler(
        m_display, [](Display *, void *connection) { static_cast<Connection *>(connection)->m_isLost = true; }, this);
}

X11InputSource::Connection::~Connection()
{
    m_notifier.setEnabled(false); // before its socket goes
    XCloseDisplay(m_display);
}

bool X11InputSource::Connection::tell(InputListener &listener)
{
    if (!selectEvents())
        return false;
    m_listener = &listener;
    m_notifier.setEnabled(true);
    findXTestKeyboards();
    drain(); // what came with the answers makes no noise on the socket any more
    return true;
}

bool X11InputSource::Connection::selectEvents()
{
    int unused = 0;
    int major = 2;
    int minor = 2;
    // libXi doesn't look whether the server is still there.
    const bool hasXInput = XQueryExtension(m_display, "XInputExtension", &m_xinput, &unused, &unused) && !m_isLost;
    if (!hasXInput || XIQueryVersion(m_display, &major, &minor) != Success)
        return false;
    unsigned char raw[XIMaskLen(XI_LASTEVENT)] = {};
    unsigned char devices[XIMaskLen(XI_LASTEVENT)] = {};
    for (const int event : {XI_RawKeyPress, XI_RawKeyRelease, XI_RawButtonPress, XI_RawButtonRelease})
        XISetMask(raw, event);
    XISetMask(devices, XI_HierarchyChanged);
    // Of the master devices only: of all devices each event would come twice.
    XIEventMask masks[] = {{XIAllMasterDevices, sizeof raw, raw}, {XIAllDevices, sizeof devices, devices}};
    return XISelectEvents(m_display, DefaultRootWindow(m_display), masks, 2) == Success;
}

void X11InputSource::Connection::drain()
{
    while (!m_isLost && XPending(m_display) > 0) {
        XEvent event;
        XNextEvent(m_display, &event);
        handle(event);
    }
    if (m_isLost && m_notifier.isEnabled()) {
        m_notifier.setEnabled(false);
        qWarning() << "PttHandler: the X server is gone, no key is heard any more";
        m_listener->onSilence();
    }
}

void X11InputSource::Connection::handle(XEvent &event)
{
    if (event.type != GenericEvent || event.xcookie.extension != m_xinput || !XGetEventData(m_display, &event.xcookie))
        return;
    if (event.xcookie.evtype == XI_HierarchyChanged)
        findXTestKeyboards();
    else
        handle(*static_cast<const XIRawEvent *>(event.xcookie.data));
    XFreeEventData(m_display, &event.xcookie);
}

void X11InputSource::Connection::handle(const XIRawEvent &event)
{
    switch (event.evtype) {
    case XI_RawKeyPress:
    case XI_RawKeyRelease:
        handleKey(event);
        break;
    case XI_RawButtonPress:
    case XI_RawButtonRelease:
        handleButton(event);
        break;
    default:
        break;
    }
}

void X11InputSource::Connection::handleKey(const XIRawEvent &event)
{
    const auto key = virtualKeyOf(event.detail - evdevToKeycode);
    if (!key)
        return;
    if (event.evtype == XI_RawKeyPress)
        m_listener->onKeyDown(*key, m_xtest == XTest::IsInjected && m_xtestKeyboards.count(event.sourceid) > 0);
    else
        m_listener->onKeyUp(*key);
}

void X11InputSource::Connection::handleButton(const XIRawEvent &event)
{
    const auto mask = maskOf(event.detail);
    if (!mask)
        return;
    if (event.evtype == XI_RawButtonPress)
        m_listener->onButtonDown(*mask);
    else
        m_listener->onButtonUp(*mask);
}

void X11InputSource::Connection::findXTestKeyboards()
{
    m_xtestKeyboards.clear();
    int count = 0;
    // All of them, because asking for one that has gone would be an X error, which ends the program.
    XIDeviceInfo *devices = XIQueryDevice(m_display, XIAllDevices, &count);
    for (int i = 0; i < count; ++i) {
        if (devices[i].use == XISlaveKeyboard && QByteArray(devices[i].name).endsWith("XTEST keyboard"))
            m_xtestKeyboards.insert(devices[i].deviceid);
    }
    if (devices)
        XIFreeDeviceInfo(devices);
}

QString X11InputSource::Connection::keyName(int evdevCode)
{
    if (m_isLost)
        return {};
    const KeySym symbol = firstSymbol(m_display, evdevCode + evdevToKeycode);
    // Asking may have brought events along, for which the socket rings no more.
    QMetaObject::invokeMethod(
        &m_notifier, [this] { drain(); }, Qt::QueuedConnection);
    const QString sign = printedSign(symbol);
    return sign.isEmpty() ? QString::fromLatin1(XKeysymToString(symbol)) : sign;
}

X11InputSource::X11InputSource(const QByteArray &display, XTest xtest)
{
    if (Display *opened = XOpenDisplay(display.isEmpty() ? nullptr : display.constData()))
        m_connection = std::make_unique<Connection>(opened, xtest);
}

X11InputSource::~X11InputSource() = default;

void X11InputSource::start(InputListener &listener)
{
    if (!m_connection || !m_connection->tell(listener))
        qWarning() << "PttHandler: no X server with XInput 2.2 to hear keys and mouse buttons from";
}

QString X11InputSource::keyName(int virtualKey) const
{
    const auto code = evdevCodeOf(virtualKey);
    return m_connection && code ? m_connection->keyName(*code) : QString();
}

std::unique_ptr<InputSource> InputSource::ofSystem()
{
    return std::make_unique<X11InputSource>(QByteArray(), X11InputSource::XTest::IsInjected);
}

} // namespace tarvo::input
