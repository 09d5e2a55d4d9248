#include "input/InputSource_x11.h"

#include "input/Notes.h"
#include "input/PttHandler.h"
#include "input/PttService.h"
#include "support/LogCapture.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"
#include "support/XServer.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include <memory>
#include <utility>

// After Qt: their macros go by everyday names.
#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

using namespace tarvo::input;
using tarvo::test::LogCapture;
using tarvo::test::Notes;
using tarvo::test::XServer;
using XTestMeans = X11InputSource::XTest;

namespace {

constexpr int evdevRightCtrl = 97;
constexpr int evdevA = 30;
constexpr int rightCtrl = 163;

/// Another program on the same server.
class OtherProgram
{
public:
    explicit OtherProgram(const QByteArray &display) : m_display(XOpenDisplay(display.constData())) {}
    ~OtherProgram() { XCloseDisplay(m_display); }
    OtherProgram(const OtherProgram &) = delete;
    OtherProgram &operator=(const OtherProgram &) = delete;

    void key(int evdev, bool down) { XTestFakeKeyEvent(m_display, unsigned(evdev + 8), down, 0), sync(); }
    void button(int number, bool down) { XTestFakeButtonEvent(m_display, unsigned(number), down, 0), sync(); }

    void takeFocus()
    {
        m_window = XCreateSimpleWindow(m_display, DefaultRootWindow(m_display), 0, 0, 640, 480, 0, 0, 0);
        XSelectInput(m_display, m_window, KeyPressMask | ButtonPressMask | ExposureMask);
        XMapRaised(m_display, m_window);
        XEvent event;
        XWindowEvent(m_display, m_window, ExposureMask, &event); // now it is to be seen
        XSetInputFocus(m_display, m_window, RevertToNone, CurrentTime);
        sync();
    }
    bool grabKeyboard()
    {
        return XGrabKeyboard(m_display, DefaultRootWindow(m_display), True, GrabModeAsync, GrabModeAsync,
                             CurrentTime) == GrabSuccess;
    }
    bool grabPointer()
    {
        return XGrabPointer(m_display, DefaultRootWindow(m_display), True, ButtonPressMask, GrabModeAsync,
                            GrabModeAsync, None, None, CurrentTime) == GrabSuccess;
    }
    /// How many presses its window has got.
    int pressesHeard()
    {
        sync();
        int count = 0;
        XEvent event;
        while (XCheckMaskEvent(m_display, KeyPressMask | ButtonPressMask, &event))
            ++count;
        return count;
    }

    void relabel(int evdev, KeySym symbol)
    {
        XChangeKeyboardMapping(m_display, evdev + 8, 1, &symbol, 1);
        sync();
    }
    /// From now on its keys come from a second keyboard, and its XTEST device.
    void useSecondKeyboard()
    {
        XIAnyHierarchyChangeInfo change{};
        QByteArray name("second");
        change.add = {XIAddMaster, name.data(), 0, True};
        XIChangeHierarchy(m_display, &change, 1);
        int count = 0;
        XIDeviceInfo *devices = XIQueryDevice(m_display, XIAllMasterDevices, &count);
        for (int i = 0; i < count; ++i) {
            if (devices[i].use == XIMasterPointer && QByteArray(devices[i].name) == "second pointer")
                XISetClientPointer(m_display, None, devices[i].deviceid);
        }
        XIFreeDeviceInfo(devices);
        sync();
    }

private:
    void sync() { XSync(m_display, False); }

    Display *m_display;
    Window m_window = 0;
};

struct DesktopStage
{
    explicit DesktopStage(const XServer &server, XTestMeans xtest = XTestMeans::IsAFinger)
        : source(server.display(), xtest), other(server.display())
    {
        source.start(notes);
    }

    Notes notes;
    X11InputSource source;
    OtherProgram other;
};

const QStringList aPressed{u"key 65 down"_qs, u"key 65 up"_qs};

} // namespace

class X11InputSourceTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_server.start(); }

    void hearsKeysWithoutFocus()
    {
        DesktopStage stage(m_server);
        stage.other.takeFocus();
        stage.other.key(evdevA, true);
        stage.other.key(evdevA, false);
        TRY_COMPARE(stage.notes.lines(), aPressed);
        QCOMPARE(stage.other.pressesHeard(), 1); // nothing is swallowed
    }

    void hearsKeysThroughAGrab()
    {
        DesktopStage stage(m_server);
        OtherProgram grabber(m_server.display());
        QVERIFY(grabber.grabKeyboard());
        stage.other.key(evdevA, true);
        stage.other.key(evdevA, false);
        TRY_COMPARE(stage.notes.lines(), aPressed);
        QCOMPARE(grabber.pressesHeard(), 1);
    }

    void hearsButtons_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<int>("mask");
        QTest::newRow("left") << 1 << 1;
        QTest::newRow("middle") << 2 << 4;
        QTest::newRow("right") << 3 << 2;
        QTest::newRow("first side") << 8 << 8;
        QTest::newRow("second side") << 9 << 16;
    }
    void hearsButtons()
    {
        QFETCH(int, button);
        QFETCH(int, mask);
        DesktopStage stage(m_server);
        stage.other.takeFocus();
        for (const int wheel : {4, 5, 6, 7}) {
            stage.other.button(wheel, true);
            stage.other.button(wheel, false);
        }
        stage.other.button(button, true);
        stage.other.button(button, false);
        TRY_COMPARE(stage.notes.lines(), (QStringList{u"button %1 down"_qs.arg(mask), u"button %1 up"_qs.arg(mask)}));
        QVERIFY(stage.other.pressesHeard() > 0);
    }

    void hearsButtonsThroughAGrab()
    {
        DesktopStage stage(m_server);
        OtherProgram grabber(m_server.display());
        QVERIFY(grabber.grabPointer());
        stage.other.button(8, true);
        stage.other.button(8, false);
        TRY_COMPARE(stage.notes.lines(), (QStringList{u"button 8 down"_qs, u"button 8 up"_qs}));
    }

    void xtestKeysAreInjected()
    {
        DesktopStage stage(m_server, XTestMeans::IsInjected);
        stage.other.key(evdevA, true);
        stage.other.key(evdevA, false);
        stage.other.button(9, true);
        stage.other.button(9, false);
        TRY_COMPARE(stage.notes.lines(), (QStringList{u"key 65 down, injected"_qs, u"key 65 up"_qs,
                                                      u"button 16 down"_qs, u"button 16 up"_qs}));
    }

    void soAreThoseOfALaterKeyboard()
    {
        DesktopStage stage(m_server, XTestMeans::IsInjected);
        stage.other.useSecondKeyboard();
        stage.other.key(evdevA, true);
        stage.other.key(evdevA, false);
        TRY_COMPARE(stage.notes.lines(), (QStringList{u"key 65 down, injected"_qs, u"key 65 up"_qs}));
    }

    void anUnknownKeyIsNotTold()
    {
        DesktopStage stage(m_server);
        stage.other.key(240, true);
        stage.other.key(240, false);
        stage.other.key(evdevA, true);
        stage.other.key(evdevA, false);
        TRY_COMPARE(stage.notes.lines(), aPressed);
    }

    void namesKeys_data()
    {
        QTest::addColumn<int>("virtualKey");
        QTest::addColumn<QString>("name");
        QTest::newRow("right Ctrl") << 163 << u"Control_R"_qs;
        QTest::newRow("a letter") << 65 << u"A"_qs;
        QTest::newRow("a digit") << 0x31 << u"1"_qs;
        QTest::newRow("a sign") << 0xBA << u";"_qs;
        QTest::newRow("F5") << 0x74 << u"F5"_qs;
        QTest::newRow("Space") << 0x20 << u"space"_qs;
        QTest::newRow("pad 7") << 0x67 << u"KP_Home"_qs;
        QTest::newRow("no such key") << 0xFF << QString();
        QTest::newRow("a key without a name") << 0x87 << QString(); // F24 has no symbol on this keyboard
        QTest::newRow("below 0") << -1 << QString();
    }
    void namesKeys()
    {
        QFETCH(int, virtualKey);
        const X11InputSource source(m_server.display(), XTestMeans::IsInjected);
        QTEST(source.keyName(virtualKey), "name");
    }

    void namesFollowTheKeyboard()
    {
        XServer server;
        server.start();
        DesktopStage stage(server);
        QCOMPARE(stage.source.keyName(65), u"A"_qs);
        stage.other.relabel(evdevA, XK_q); // as on a French keyboard
        QCOMPARE(stage.source.keyName(65), u"Q"_qs);
        stage.other.relabel(evdevA, XK_adiaeresis);
        QCOMPARE(stage.source.keyName(65), u"Ä"_qs);
    }

    void askingForANameLosesNothing()
    {
        DesktopStage stage(m_server);
        stage.other.key(evdevA, true);
        stage.other.key(evdevA, false);
        stage.source.keyName(rightCtrl); // the server's answer brings both events along
        TRY_COMPARE(stage.notes.lines(), aPressed);
    }

    void keysTheRadio()
    {
        PttHandler handler(std::make_unique<X11InputSource>(m_server.display(), XTestMeans::IsAFinger));
        PttService service(handler);
        service.setBoundKey(u"kb:163"_qs);
        QCOMPARE(service.boundKeyName(), u"Control_R"_qs);
        const QSignalSpy active(&service, &PttService::activeChanged);
        OtherProgram other(m_server.display());
        other.takeFocus();
        other.key(evdevRightCtrl, true);
        TRY_COMPARE(active.size(), 1);
        QVERIFY(handler.isActive());
        other.key(evdevRightCtrl, false);
        TRY_COMPARE(active.size(), 2);
        service.startListening();
        other.button(8, true);
        other.button(8, false);
        TRY_COMPARE(service.boundKey(), u"ms:8"_qs);
    }

    void withoutAServer()
    {
        LogCapture log;
        X11InputSource source(":nowhere", XTestMeans::IsInjected);
        Notes notes;
        source.start(notes);
        QCOMPARE(log.texts().size(), 1);
        QVERIFY(log.texts().constFirst().startsWith(u"PttHandler:"_qs));
        QCOMPARE(source.keyName(rightCtrl), QString());
    }

    void theServerGoes()
    {
        XServer server;
        server.start();
        X11InputSource source(server.display(), XTestMeans::IsInjected);
        Notes notes;
        source.start(notes);
        LogCapture log;
        server.kill();
        TRY_COMPARE(log.texts(), QStringList{u"PttHandler: the X server is gone, no key is heard any more"_qs});
        QCOMPARE(notes.lines(), QStringList{u"silence"_qs});
        QCOMPARE(source.keyName(rightCtrl), QString());
    }

    void theServerGoesWhileTheBoundOneIsHeld_data()
    {
        QTest::addColumn<QString>("bound");
        QTest::newRow("a key") << u"kb:163"_qs;
        QTest::newRow("a button") << u"ms:8"_qs;
    }
    void theServerGoesWhileTheBoundOneIsHeld()
    {
        QFETCH(QString, bound);
        XServer server;
        server.start();
        PttHandler handler(std::make_unique<X11InputSource>(server.display(), XTestMeans::IsAFinger));
        PttService service(handler);
        service.setBoundKey(bound);
        const QSignalSpy active(&service, &PttService::activeChanged);
        {
            OtherProgram other(server.display()); // it can't outlive its server
            other.key(evdevRightCtrl, true);
            other.button(8, true);
        }
        TRY_COMPARE(active.size(), 1);
        const LogCapture log;
        server.kill();
        TRY_COMPARE(active.size(), 2);
        QVERIFY(!handler.isActive());
    }

    void theServerGoesUnnoticed()
    {
        XServer server;
        server.start();
        X11InputSource source(server.display(), XTestMeans::IsInjected);
        Notes notes;
        source.start(notes);
        server.kill();
        QCOMPARE(source.keyName(rightCtrl), QString()); // it has to ask the server
        LogCapture log;
        TRY_COMPARE(log.texts().size(), 1);
        QCOMPARE(notes.lines(), QStringList{u"silence"_qs});
    }

    void theServerGoesBeforeTheStart()
    {
        XServer server;
        server.start();
        X11InputSource source(server.display(), XTestMeans::IsInjected);
        server.kill();
        LogCapture log;
        Notes notes;
        source.start(notes);
        QCOMPARE(log.texts().size(), 1);
    }

private:
    XServer m_server;
};

TARVO_TEST(X11InputSourceTest)
#include "X11InputSourceTest_x11.moc"
