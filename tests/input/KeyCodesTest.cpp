#include "input/KeyCodes.h"

#include "support/TestRegistry.h"

#include <QSet>
#include <QTest>

using tarvo::input::evdevCodeOf;
using tarvo::input::virtualKeyOf;

class KeyCodesTest : public QObject
{
    Q_OBJECT

private slots:
    void knowsTheKey_data()
    {
        QTest::addColumn<int>("evdev");
        QTest::addColumn<int>("virtualKey");
        QTest::newRow("Escape") << 1 << 0x1B;
        QTest::newRow("1") << 2 << int('1');
        QTest::newRow("9") << 10 << int('9');
        QTest::newRow("0") << 11 << int('0');
        QTest::newRow("Q") << 16 << int('Q');
        QTest::newRow("P") << 25 << int('P');
        QTest::newRow("A") << 30 << int('A');
        QTest::newRow("L") << 38 << int('L');
        QTest::newRow("Z") << 44 << int('Z');
        QTest::newRow("M") << 50 << int('M');
        QTest::newRow("Space") << 57 << 0x20;
        QTest::newRow("left Shift") << 42 << 160;
        QTest::newRow("right Shift") << 54 << 161;
        QTest::newRow("left Ctrl") << 29 << 162;
        QTest::newRow("right Ctrl, the default") << 97 << 163;
        QTest::newRow("left Alt") << 56 << 164;
        QTest::newRow("right Alt") << 100 << 165;
        QTest::newRow("left Windows") << 125 << 91;
        QTest::newRow("right Windows") << 126 << 92;
        QTest::newRow("F1") << 59 << 0x70;
        QTest::newRow("F10") << 68 << 0x79;
        QTest::newRow("F11") << 87 << 0x7A;
        QTest::newRow("F12") << 88 << 0x7B;
        QTest::newRow("F13") << 183 << 0x7C;
        QTest::newRow("F24") << 194 << 0x87;
        QTest::newRow("pad 0") << 82 << 0x60;
        QTest::newRow("pad 9") << 73 << 0x69;
        QTest::newRow("pad /") << 98 << 0x6F;
        QTest::newRow("Up") << 103 << 0x26;
        QTest::newRow("Pause") << 119 << 0x13;
        QTest::newRow("`") << 41 << 0xC0;
        QTest::newRow("Enter") << 28 << 13;
    }
    void knowsTheKey()
    {
        QFETCH(int, evdev);
        QFETCH(int, virtualKey);
        QCOMPARE(virtualKeyOf(evdev), virtualKey);
        QCOMPARE(evdevCodeOf(virtualKey), evdev);
    }

    void bothEnterKeysAreOne()
    {
        QCOMPARE(virtualKeyOf(96), virtualKeyOf(28));
        QCOMPARE(evdevCodeOf(13), 28);
    }

    void doesNotKnow_data()
    {
        QTest::addColumn<int>("code");
        QTest::newRow("none") << 0;
        QTest::newRow("below") << -8;
        QTest::newRow("a lamp of the keyboard") << 240;
        QTest::newRow("far above") << 70000;
    }
    void doesNotKnow()
    {
        QFETCH(int, code);
        QVERIFY(!virtualKeyOf(code));
        QVERIFY(!evdevCodeOf(code));
    }

    /// What is bound with one key isn't keyed by another, but for the pairs that Windows doesn't tell apart.
    void codesAreUnique()
    {
        QSet<int> virtualKeys;
        int count = 0;
        for (int evdev = 0; evdev < 256; ++evdev) {
            const auto key = virtualKeyOf(evdev);
            if (!key)
                continue;
            ++count;
            virtualKeys.insert(*key);
            QCOMPARE(virtualKeyOf(*evdevCodeOf(*key)), key);
        }
        QCOMPARE(virtualKeys.size(), count - 2); // Enter twice, and Kana, which is Hangul elsewhere
        QVERIFY(count > 120);
    }
};

TARVO_TEST(KeyCodesTest)
#include "KeyCodesTest.moc"
