#include "input/PttKey.h"
#include "input/PttBinding.h"

#include "support/TestRegistry.h"

#include <QTest>

using tarvo::input::parsePttKey;
using tarvo::input::PttBinding;
using tarvo::input::pttKeyOf;
using BoundType = PttBinding::Type;

class PttKeyTest : public QObject
{
    Q_OBJECT

private slots:
    void bothWays_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<PttBinding>("binding");
        QTest::newRow("right Ctrl") << u"kb:163"_qs << PttBinding{BoundType::Keyboard, 163, -1};
        QTest::newRow("a side button") << u"ms:8"_qs << PttBinding{BoundType::Mouse, 8, -1};
        QTest::newRow("a joystick") << u"js:0:3"_qs << PttBinding{BoundType::Joystick, 3, 0};
        QTest::newRow("a later joystick") << u"js:12:31"_qs << PttBinding{BoundType::Joystick, 31, 12};
        QTest::newRow("the largest") << u"kb:2147483647"_qs << PttBinding{BoundType::Keyboard, 2147483647, -1};
        QTest::newRow("below 0") << u"kb:-5"_qs << PttBinding{BoundType::Keyboard, -5, -1};
    }
    void bothWays()
    {
        QFETCH(QString, text);
        QFETCH(PttBinding, binding);
        QCOMPARE(parsePttKey(text), binding);
        QCOMPARE(pttKeyOf(binding), text);
    }

    void whatFollowsTwoFieldsIsIgnored()
    {
        QCOMPARE(parsePttKey(u"js:1:2:3"_qs), (PttBinding{BoundType::Joystick, 2, 1}));
        QCOMPARE(parsePttKey(u"js:1:2:x"_qs), (PttBinding{BoundType::Joystick, 2, 1}));
    }

    void isNone_data()
    {
        QTest::addColumn<QString>("text");
        for (const char *text : {"",       "kb",     "kb:",     "kb:x", "kb:1x",  "kb:0x41", "kb:1.5", "kb:2147483648",
                                 "kb 163", "163",    " kb:163", "ms:",  "ms:abc", "js:",     "js:1",   "js:1:",
                                 "js::1",  "js:a:1", "js:1:b",  "xx:1", "KB:163"})
            QTest::addRow("\"%s\"", text) << QString::fromLatin1(text);
    }
    void isNone()
    {
        QFETCH(QString, text);
        QVERIFY(!parsePttKey(text));
    }
};

TARVO_TEST(PttKeyTest)
#include "PttKeyTest.moc"
