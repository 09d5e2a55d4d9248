#include "input/InputSource.h"

#include "input/Notes.h"
#include "input/PttHandler.h"
#include "input/PttService.h"
#include "support/LogCapture.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

#include <windows.h>

using namespace tarvo::input;
using tarvo::test::LogCapture;
using tarvo::test::Notes;

namespace {

// Windows marks all of it as injected.

void sendKey(WORD virtualKey, DWORD flags = 0)
{
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = virtualKey;
    input.ki.dwFlags = flags;
    QCOMPARE(SendInput(1, &input, sizeof input), 1U);
}

void sendMouse(DWORD flags, DWORD button = 0)
{
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = flags;
    input.mi.mouseData = button;
    QCOMPARE(SendInput(1, &input, sizeof input), 1U);
}

} // namespace

/// The hooks, with events that this program injects.
class WindowsInputSourceTest : public QObject
{
    Q_OBJECT

private slots:
    void hearsKeys_data()
    {
        QTest::addColumn<int>("virtualKey");
        QTest::addColumn<int>("flags");
        QTest::newRow("a letter") << int('A') << 0;
        QTest::newRow("F5") << int(VK_F5) << 0;
        QTest::newRow("left Ctrl") << int(VK_LCONTROL) << 0;
        QTest::newRow("right Ctrl, the default") << int(VK_RCONTROL) << int(KEYEVENTF_EXTENDEDKEY);
    }
    void hearsKeys()
    {
        QFETCH(int, virtualKey);
        QFETCH(int, flags);
        Notes notes;
        const auto source = InputSource::ofSystem();
        source->start(notes);
        sendKey(static_cast<WORD>(virtualKey), static_cast<DWORD>(flags));
        sendKey(static_cast<WORD>(virtualKey), static_cast<DWORD>(flags) | KEYEVENTF_KEYUP);
        TRY_COMPARE(notes.lines(),
                    (QStringList{u"key %1 down, injected"_qs.arg(virtualKey), u"key %1 up"_qs.arg(virtualKey)}));
    }

    void hearsButtons_data()
    {
        QTest::addColumn<int>("down");
        QTest::addColumn<int>("up");
        QTest::addColumn<int>("button");
        QTest::addColumn<int>("mask");
        QTest::newRow("left") << MOUSEEVENTF_LEFTDOWN << MOUSEEVENTF_LEFTUP << 0 << 1;
        QTest::newRow("right") << MOUSEEVENTF_RIGHTDOWN << MOUSEEVENTF_RIGHTUP << 0 << 2;
        QTest::newRow("middle") << MOUSEEVENTF_MIDDLEDOWN << MOUSEEVENTF_MIDDLEUP << 0 << 4;
        QTest::newRow("first side") << MOUSEEVENTF_XDOWN << MOUSEEVENTF_XUP << XBUTTON1 << 8;
        QTest::newRow("second side") << MOUSEEVENTF_XDOWN << MOUSEEVENTF_XUP << XBUTTON2 << 16;
    }
    void hearsButtons()
    {
        QFETCH(int, down);
        QFETCH(int, up);
        QFETCH(int, button);
        QFETCH(int, mask);
        Notes notes;
        const auto source = InputSource::ofSystem();
        source->start(notes);
        sendMouse(MOUSEEVENTF_MOVE); // of no concern
        sendMouse(static_cast<DWORD>(down), static_cast<DWORD>(button));
        sendMouse(static_cast<DWORD>(up), static_cast<DWORD>(button));
        TRY_COMPARE(notes.lines(), (QStringList{u"button %1 down"_qs.arg(mask), u"button %1 up"_qs.arg(mask)}));
    }

    void aSimulatorsKeysDoNotKey()
    {
        PttHandler handler(InputSource::ofSystem());
        PttService service(handler);
        service.setBoundKey(u"kb:65"_qs);
        service.startListening();
        QSignalSpy listening(&service, &PttService::listeningChanged);
        QSignalSpy active(&service, &PttService::activeChanged);
        sendKey('A');
        sendKey('A', KEYEVENTF_KEYUP);
        sendMouse(MOUSEEVENTF_XDOWN, XBUTTON1); // captured: mouse buttons are taken as they come
        sendMouse(MOUSEEVENTF_XUP, XBUTTON1);
        TRY_COMPARE(service.boundKey(), u"ms:8"_qs);
        QCOMPARE(listening.size(), 1);
        QCOMPARE(active.size(), 0);
        sendMouse(MOUSEEVENTF_XDOWN, XBUTTON1);
        TRY_VERIFY(handler.isActive());
        sendMouse(MOUSEEVENTF_XUP, XBUTTON1);
        TRY_VERIFY(!handler.isActive());
    }

    void itsEndTakesTheHooksAlong()
    {
        Notes before;
        Notes after;
        auto source = InputSource::ofSystem();
        source->start(before);
        source.reset();
        source = InputSource::ofSystem();
        source->start(after);
        sendKey('B');
        sendKey('B', KEYEVENTF_KEYUP);
        TRY_COMPARE(after.lines().size(), 2);
        QCOMPARE(before.lines(), QStringList());
    }

    void theHooksHold()
    {
        const LogCapture log;
        Notes notes;
        const auto source = InputSource::ofSystem();
        source->start(notes);
        QCOMPARE(log.texts(), QStringList());
        QVERIFY(source->keyName(VK_RCONTROL).size() < 64); // called as the system likes
    }
};

TARVO_TEST(WindowsInputSourceTest)
#include "WindowsInputSourceTest_win.moc"
