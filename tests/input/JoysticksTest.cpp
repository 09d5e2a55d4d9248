#include "input/PttHandler.h"

#include "input/Witness.h"
#include "support/LogCapture.h"
#include "support/Patience.h"
#include "support/ScriptedInput.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <csignal>

#define SDL_MAIN_HANDLED
#include <SDL.h>

using namespace tarvo::input;
using tarvo::test::LogCapture;
using tarvo::test::ScriptedInput;
using tarvo::test::Witness;

namespace {

constexpr int buttonCount = 12;

/// A joystick that only SDL knows. SDL has to be up.
class VirtualJoystick
{
public:
    VirtualJoystick()
        : m_index(SDL_JoystickAttachVirtual(SDL_JOYSTICK_TYPE_GAMECONTROLLER, 2, buttonCount, 0)),
          m_id(SDL_JoystickGetDeviceInstanceID(m_index)),
          m_device(SDL_JoystickOpen(m_index))
    {
    }
    ~VirtualJoystick() { unplug(); }
    VirtualJoystick(const VirtualJoystick &) = delete;
    VirtualJoystick &operator=(const VirtualJoystick &) = delete;

    int id() const { return m_id; }
    void press(int button) { SDL_JoystickSetVirtualButton(m_device, button, SDL_PRESSED); }
    void release(int button) { SDL_JoystickSetVirtualButton(m_device, button, SDL_RELEASED); }

    void unplug()
    {
        if (!m_device || SDL_WasInit(SDL_INIT_JOYSTICK) == 0) // SDL's end closes it, too
            return;
        SDL_JoystickClose(m_device);
        m_device = nullptr;
        for (int i = 0; i < SDL_NumJoysticks(); ++i) {
            if (SDL_JoystickGetDeviceInstanceID(i) == m_id)
                SDL_JoystickDetachVirtual(i);
        }
    }

private:
    int m_index;
    int m_id;
    SDL_Joystick *m_device;
};

PttBinding buttonOf(const VirtualJoystick &joystick, int button)
{
    return {PttBinding::Type::Joystick, button, joystick.id()};
}

constexpr PttBinding ofAJoystickThatIsAway{PttBinding::Type::Joystick, 0, 99};

struct JoystickStage
{
    JoystickStage() = default;
    explicit JoystickStage(const PttBinding &binding) { handler.setBinding(binding); }

    /// What is told in one look at the joysticks, and has been told before it.
    QStringList poll()
    {
        handler.pollJoystick();
        return witness.take();
    }

    ScriptedInput input;
    PttHandler handler{input.source()};
    Witness witness{handler};
};

} // namespace

class JoysticksTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(SDL_WasInit(0), 0U); }

    void sdlStaysDownForKeys()
    {
        JoystickStage stage;
        QCOMPARE(SDL_WasInit(0), 0U);
        stage.handler.setBinding({PttBinding::Type::Keyboard, 163, -1});
        stage.handler.pollJoystick();
        QCOMPARE(SDL_WasInit(0), 0U);
        stage.handler.setBinding({PttBinding::Type::Mouse, 8, -1});
        QCOMPARE(SDL_WasInit(0), 0U);
    }

    void sdlIsUpWhileItIsWanted()
    {
        JoystickStage stage;
        const Uint32 both = SDL_INIT_JOYSTICK | SDL_INIT_GAMECONTROLLER;
        stage.handler.startListening();
        QCOMPARE(SDL_WasInit(both), both);
        stage.handler.stopListening();
        QCOMPARE(SDL_WasInit(0), 0U);
        stage.handler.setBinding(ofAJoystickThatIsAway);
        QCOMPARE(SDL_WasInit(both), both);
        stage.handler.startListening();
        stage.handler.stopListening();
        QCOMPARE(SDL_WasInit(both), both);
        stage.handler.clearBinding();
        QCOMPARE(SDL_WasInit(0), 0U);
        stage.handler.startListening();
        stage.input.keyDown(65); // captured: a key needs no SDL
        QCOMPARE(SDL_WasInit(0), 0U);
        stage.handler.setBinding(ofAJoystickThatIsAway); // its end closes SDL, cleanup() looks
    }

    void hintsAreSet()
    {
        JoystickStage stage;
        stage.handler.startListening();
        QCOMPARE(SDL_GetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS), "1");
        QCOMPARE(SDL_GetHint(SDL_HINT_NO_SIGNAL_HANDLERS), "1");
    }

    void interruptsAreNotSdls()
    {
        JoystickStage stage;
        stage.handler.startListening();
        for (const int number : {SIGINT, SIGTERM}) {
            const auto handler = std::signal(number, SIG_DFL);
            std::signal(number, handler);
            QVERIFY(handler == SIG_DFL);
        }
    }

    void aButtonKeys()
    {
        JoystickStage stage(ofAJoystickThatIsAway);
        VirtualJoystick joystick;
        stage.handler.setBinding(buttonOf(joystick, 3));
        stage.handler.pollJoystick();
        joystick.press(3);
        stage.handler.pollJoystick();
        QCOMPARE(stage.poll(), QStringList{u"down"_qs});
        stage.input.silence(); // of keys and the mouse
        QVERIFY(stage.handler.isActive());
        joystick.press(4);
        joystick.release(4);
        QCOMPARE(stage.poll(), QStringList());
        joystick.release(3);
        QCOMPARE(stage.poll(), QStringList{u"up"_qs});
    }

    void theTimerPolls()
    {
        JoystickStage stage(ofAJoystickThatIsAway);
        VirtualJoystick joystick;
        stage.handler.setBinding(buttonOf(joystick, 0));
        TRY_VERIFY(SDL_NumJoysticks() == 1);
        stage.handler.pollJoystick(); // opens it
        joystick.press(0);
        TRY_COMPARE(stage.witness.words(), QStringList{u"down"_qs});
    }

    void anotherJoystickIsNotBound()
    {
        JoystickStage stage(ofAJoystickThatIsAway);
        VirtualJoystick first;
        VirtualJoystick second;
        QVERIFY(first.id() != second.id());
        stage.handler.setBinding(buttonOf(second, 0));
        stage.handler.pollJoystick();
        first.press(0);
        QCOMPARE(stage.poll(), QStringList());
        second.press(0);
        QCOMPARE(stage.poll(), QStringList{u"down"_qs});
    }

    void aButtonIsCaptured()
    {
        JoystickStage stage;
        stage.handler.setBinding({PttBinding::Type::Keyboard, 65, -1});
        stage.input.keyDown(65);
        stage.handler.startListening();
        VirtualJoystick joystick;
        stage.handler.pollJoystick();
        stage.witness.take();
        joystick.press(7);
        QCOMPARE(stage.poll(),
                 (QStringList{u"up"_qs, u"listens no more"_qs, u"captured js:%1:7"_qs.arg(joystick.id())}));
        joystick.release(7);
        QCOMPARE(stage.poll(), QStringList());
        joystick.press(7);
        QCOMPARE(stage.poll(), QStringList{u"down"_qs});
    }

    void aReleaseIsNotCaptured()
    {
        JoystickStage stage(ofAJoystickThatIsAway);
        VirtualJoystick joystick;
        stage.handler.pollJoystick();
        joystick.press(1);
        stage.handler.pollJoystick();
        stage.handler.startListening();
        joystick.release(1);
        QCOMPARE(stage.poll(), QStringList{u"listens"_qs});
    }

    void unpluggedWhileHeld()
    {
        JoystickStage stage(ofAJoystickThatIsAway);
        VirtualJoystick joystick;
        stage.handler.setBinding(buttonOf(joystick, 2));
        stage.handler.pollJoystick();
        joystick.press(2);
        stage.handler.pollJoystick();
        joystick.unplug();
        QCOMPARE(stage.poll(), (QStringList{u"down"_qs, u"up"_qs}));
        QVERIFY(!stage.handler.isActive());
    }

    /// Without a button's up before it, as a driver may leave it out.
    void removedWithoutAnUp_data()
    {
        QTest::addColumn<int>("offset"); ///< from the bound joystick's id to the removed one's
        QTest::addColumn<QStringList>("told");
        QTest::newRow("the bound one") << 0 << QStringList{u"up"_qs};
        QTest::newRow("another") << 1 << QStringList();
    }
    void removedWithoutAnUp()
    {
        QFETCH(int, offset);
        JoystickStage stage(ofAJoystickThatIsAway);
        VirtualJoystick joystick;
        stage.handler.setBinding(buttonOf(joystick, 2));
        stage.handler.pollJoystick();
        joystick.press(2);
        stage.handler.pollJoystick();
        stage.witness.take();
        SDL_Event event{};
        event.type = SDL_JOYDEVICEREMOVED;
        event.jdevice.which = joystick.id() + offset;
        SDL_PushEvent(&event);
        stage.handler.pollJoystick();
        QTEST(stage.witness.take(), "told");
    }

    void theBindingOutlivesTheJoystick()
    {
        JoystickStage stage(ofAJoystickThatIsAway);
        int id = -1;
        {
            VirtualJoystick joystick;
            id = joystick.id();
            stage.handler.pollJoystick();
        }
        stage.handler.setBinding({PttBinding::Type::Joystick, 0, id + 1}); // the id that the next one gets
        stage.handler.pollJoystick();
        VirtualJoystick next;
        QCOMPARE(next.id(), id + 1);
        stage.handler.pollJoystick();
        next.press(0);
        QCOMPARE(stage.poll(), QStringList{u"down"_qs});
    }

    void logsThoseThatCome()
    {
        JoystickStage stage;
        stage.handler.startListening();
        LogCapture log;
        VirtualJoystick joystick;
        stage.handler.pollJoystick();
        QCOMPARE(log.startingWith(u"Joystick connected:"_qs).size(), 1);
        QCOMPARE(log.startingWith(u"Opened joystick:"_qs).size(), 0);
    }

    void opensThoseThatAreThere()
    {
        SDL_InitSubSystem(SDL_INIT_JOYSTICK);
        {
            VirtualJoystick joystick;
            LogCapture log;
            JoystickStage stage;
            stage.handler.setBinding(buttonOf(joystick, 0));
            QCOMPARE(log.startingWith(u"Opened joystick:"_qs).size(), 1);
            joystick.press(0);
            QCOMPARE(stage.poll(), QStringList{u"down"_qs});
        }
        SDL_QuitSubSystem(SDL_INIT_JOYSTICK);
    }

    void eachIsClosedAsOftenAsItWasOpened()
    {
        SDL_InitSubSystem(SDL_INIT_JOYSTICK);
        {
            VirtualJoystick joystick;
            JoystickStage stage;
            stage.handler.setBinding(buttonOf(joystick, 0));
            stage.handler.pollJoystick(); // it is told of as added, too
            stage.handler.clearBinding();
            const int id = joystick.id();
            joystick.unplug();
            QVERIFY(!SDL_JoystickFromInstanceID(id));
        }
        SDL_QuitSubSystem(SDL_INIT_JOYSTICK);
    }

    void theListenerMayEndIt()
    {
        JoystickStage stage;
        connect(&stage.handler, &PttHandler::activeChanged, &stage.handler, [&stage] { stage.handler.clearBinding(); });
        stage.handler.setBinding(ofAJoystickThatIsAway);
        VirtualJoystick joystick;
        stage.handler.setBinding(buttonOf(joystick, 0));
        stage.handler.pollJoystick();
        joystick.press(0);
        joystick.press(1);
        stage.handler.pollJoystick(); // closes SDL, in the middle of its events
        QCOMPARE(stage.witness.take(), (QStringList{u"down"_qs, u"up"_qs}));
        QCOMPARE(SDL_WasInit(0), 0U);
    }
};

TARVO_TEST(JoysticksTest)
#include "JoysticksTest.moc"
