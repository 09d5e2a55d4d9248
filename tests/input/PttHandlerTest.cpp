#include "input/PttHandler.h"

#include "input/MouseMask.h"
#include "input/NoInputSource.h"
#include "input/Witness.h"
#include "support/LogCapture.h"
#include "support/ScriptedInput.h"
#include "support/TestRegistry.h"

#include <QMetaType>
#include <QTest>

using namespace tarvo::input;
using tarvo::test::LogCapture;
using tarvo::test::ScriptedInput;
using tarvo::test::Witness;

namespace {

constexpr int rightCtrl = 163;
constexpr int keyA = 0x41;
constexpr int keyEscape = 0x1B;

constexpr PttBinding keyboard(int code)
{
    return {PttBinding::Type::Keyboard, code, -1};
}
constexpr PttBinding mouse(int mask)
{
    return {PttBinding::Type::Mouse, mask, -1};
}

struct ScriptedHandler
{
    ScriptedInput input;
    PttHandler handler{input.source()};
    Witness witness{handler};
};

} // namespace

class PttHandlerTest : public QObject
{
    Q_OBJECT

private slots:
    void startsWithoutABinding()
    {
        ScriptedHandler stage;
        stage.input.keyDown(0);
        stage.input.keyUp(0);
        stage.input.buttonDown(0);
        QCOMPARE(stage.witness.take(), QStringList());
        QVERIFY(!stage.handler.isActive());
        QVERIFY(QMetaType::fromName("tarvo::input::PttBinding").isValid());
        QCOMPARE(PttBinding(), keyboard(0));
    }

    void aKey()
    {
        ScriptedHandler stage;
        stage.handler.setBinding(keyboard(rightCtrl));
        stage.input.keyDown(rightCtrl);
        QVERIFY(stage.handler.isActive());
        stage.input.keyDown(rightCtrl); // auto-repeat
        stage.input.keyDown(rightCtrl);
        stage.input.keyUp(rightCtrl);
        stage.input.keyUp(rightCtrl);
        QVERIFY(!stage.handler.isActive());
        QCOMPARE(stage.witness.take(), (QStringList{u"down"_qs, u"up"_qs}));
    }

    void otherControlsDoNothing()
    {
        ScriptedHandler stage;
        stage.handler.setBinding(keyboard(LeftButton)); // the same number as a mouse button's
        stage.input.keyDown(rightCtrl);
        stage.input.buttonDown(LeftButton);
        QCOMPARE(stage.witness.take(), QStringList());
        stage.input.keyDown(LeftButton);
        stage.input.keyUp(rightCtrl);
        stage.input.buttonUp(LeftButton);
        QCOMPARE(stage.witness.take(), QStringList{u"down"_qs});
    }

    void aMouseButton_data()
    {
        QTest::addColumn<int>("mask");
        QTest::newRow("left") << 1;
        QTest::newRow("right") << 2;
        QTest::newRow("middle") << 4;
        QTest::newRow("first side") << 8;
        QTest::newRow("second side") << 16;
    }
    void aMouseButton()
    {
        QFETCH(int, mask);
        ScriptedHandler stage;
        stage.handler.setBinding(mouse(mask));
        for (const int pressed : {1, 2, 4, 8, 16})
            stage.input.buttonDown(pressed);
        for (const int released : {1, 2, 4, 8, 16})
            stage.input.buttonUp(released);
        QCOMPARE(stage.witness.take(), (QStringList{u"down"_qs, u"up"_qs}));
    }

    void silenceReleases()
    {
        ScriptedHandler stage;
        stage.input.silence();
        stage.handler.setBinding(mouse(LeftButton));
        stage.input.buttonDown(LeftButton);
        stage.input.silence();
        stage.handler.setBinding(keyboard(keyA));
        stage.input.keyDown(keyA);
        stage.input.silence();
        stage.input.silence();
        QCOMPARE(stage.witness.take(), (QStringList{u"down"_qs, u"up"_qs, u"down"_qs, u"up"_qs}));
    }

    void anInjectedKeyDownIsIgnored()
    {
        ScriptedHandler stage;
        stage.handler.setBinding(keyboard(rightCtrl));
        stage.input.keyDown(rightCtrl, true);
        QCOMPARE(stage.witness.take(), QStringList());
        stage.handler.startListening();
        stage.input.keyDown(keyA, true);
        stage.input.keyDown(keyEscape, true);
        QCOMPARE(stage.witness.take(), QStringList{u"listens"_qs});
        QVERIFY(stage.handler.isListening());
    }

    void anInjectedKeyUpEndsIt() // a source tells key-ups alike, whoever made them
    {
        ScriptedHandler stage;
        stage.handler.setBinding(keyboard(rightCtrl));
        stage.input.keyDown(rightCtrl);
        stage.input.keyUp(rightCtrl);
        stage.input.keyDown(rightCtrl, true); // the finger is still there, as far as Windows is concerned
        QCOMPARE(stage.witness.take(), (QStringList{u"down"_qs, u"up"_qs}));
    }

    void aCapturedPressDoesNotKey()
    {
        ScriptedHandler stage;
        stage.handler.startListening();
        stage.input.keyDown(keyA);
        QCOMPARE(stage.witness.take(), (QStringList{u"listens"_qs, u"listens no more"_qs, u"captured kb:65"_qs}));
        QVERIFY(!stage.handler.isActive());
        stage.input.keyUp(keyA);
        QCOMPARE(stage.witness.take(), QStringList());
        stage.input.keyDown(keyA);
        stage.input.keyUp(keyA);
        QCOMPARE(stage.witness.take(), (QStringList{u"down"_qs, u"up"_qs}));
    }

    void theAutoRepeatOfACapturedKeyKeys() // Windows repeats a held key's down, and the press logic knows no better
    {
        ScriptedHandler stage;
        stage.handler.startListening();
        stage.input.keyDown(keyA);
        stage.witness.take();
        stage.input.keyDown(keyA);
        stage.input.keyDown(keyA);
        QCOMPARE(stage.witness.take(), QStringList{u"down"_qs});
    }

    void capturesAMouseButton()
    {
        ScriptedHandler stage;
        stage.handler.setBinding(keyboard(keyA));
        stage.handler.startListening();
        stage.input.buttonDown(SecondSideButton);
        stage.input.buttonUp(SecondSideButton);
        QCOMPARE(stage.witness.take(), (QStringList{u"listens"_qs, u"listens no more"_qs, u"captured ms:16"_qs}));
        stage.input.keyDown(keyA); // bound no more
        stage.input.buttonDown(SecondSideButton);
        QCOMPARE(stage.witness.take(), QStringList{u"down"_qs});
    }

    void capturingWhileActive()
    {
        ScriptedHandler stage;
        stage.handler.setBinding(keyboard(keyA));
        stage.input.keyDown(keyA);
        stage.handler.startListening();
        stage.witness.take();
        stage.input.keyDown(rightCtrl);
        QCOMPARE(stage.witness.take(), (QStringList{u"up"_qs, u"listens no more"_qs, u"captured kb:163"_qs}));
        stage.input.keyUp(keyA);
        QCOMPARE(stage.witness.take(), QStringList());
    }

    void listeningKeepsTheBindingUntilThen()
    {
        ScriptedHandler stage;
        stage.handler.setBinding(keyboard(keyA));
        stage.input.keyDown(keyA);
        stage.handler.startListening();
        stage.input.keyUp(keyA); // while it listens
        stage.handler.stopListening();
        stage.input.keyDown(keyA);
        QCOMPARE(stage.witness.take(),
                 (QStringList{u"down"_qs, u"listens"_qs, u"up"_qs, u"listens no more"_qs, u"down"_qs}));
    }

    void listeningTwiceIsOnce()
    {
        ScriptedHandler stage;
        stage.handler.stopListening();
        stage.handler.startListening();
        stage.handler.startListening();
        stage.handler.stopListening();
        stage.handler.stopListening();
        QCOMPARE(stage.witness.take(), (QStringList{u"listens"_qs, u"listens no more"_qs}));
    }

    void escapeLeavesWithoutBinding()
    {
        ScriptedHandler stage;
        stage.handler.setBinding(keyboard(keyA));
        stage.handler.startListening();
        stage.input.keyDown(keyEscape);
        stage.input.keyUp(keyEscape);
        QCOMPARE(stage.witness.take(), (QStringList{u"listens"_qs, u"listens no more"_qs}));
        stage.input.keyDown(keyEscape);
        stage.input.keyDown(keyA);
        QCOMPARE(stage.witness.take(), QStringList{u"down"_qs});
    }

    void escapeKeysWhereItIsBound() // by a hand-edited file
    {
        ScriptedHandler stage;
        stage.handler.setBinding(keyboard(keyEscape));
        stage.input.keyDown(keyEscape);
        QCOMPARE(stage.witness.take(), QStringList{u"down"_qs});
    }

    void aNewBindingReleases()
    {
        ScriptedHandler stage;
        stage.handler.setBinding(keyboard(keyA));
        stage.input.keyDown(keyA);
        stage.handler.setBinding(keyboard(keyA)); // the same
        QCOMPARE(stage.witness.take(), (QStringList{u"down"_qs, u"up"_qs}));
        stage.input.keyUp(keyA);
        QCOMPARE(stage.witness.take(), QStringList());
    }

    void aKeyHeldWhileItIsBoundWaits()
    {
        ScriptedHandler stage;
        stage.input.keyDown(keyA);
        stage.handler.setBinding(keyboard(keyA));
        QVERIFY(!stage.handler.isActive());
        stage.input.keyDown(keyA); // the next down event, and its repeat
        stage.input.keyDown(keyA);
        QCOMPARE(stage.witness.take(), QStringList{u"down"_qs});
    }

    void clearingReleases()
    {
        ScriptedHandler stage;
        stage.handler.setBinding(keyboard(keyA));
        stage.input.keyDown(keyA);
        stage.handler.clearBinding();
        stage.handler.clearBinding();
        QCOMPARE(stage.witness.take(), (QStringList{u"down"_qs, u"up"_qs}));
        stage.input.keyDown(keyA);
        QCOMPARE(stage.witness.take(), QStringList());
    }

    void whereNothingTells()
    {
        LogCapture log;
        PttHandler handler(std::make_unique<NoInputSource>());
        QCOMPARE(log.texts().size(), 1);
        QVERIFY(log.texts().constFirst().startsWith(u"PttHandler:"_qs));
        QCOMPARE(handler.keyName(rightCtrl), QString());
    }

    void theListenerMayBindInTheSignal()
    {
        ScriptedHandler stage;
        connect(&stage.handler, &PttHandler::activeChanged, &stage.handler, [&stage](bool active) {
            if (active)
                stage.handler.clearBinding();
        });
        stage.handler.setBinding(keyboard(keyA));
        stage.input.keyDown(keyA);
        stage.input.keyUp(keyA);
        QVERIFY(!stage.handler.isActive());
    }
};

TARVO_TEST(PttHandlerTest)
#include "PttHandlerTest.moc"
