#include "voice/engine/AudioDevice.h"

#include "support/TestRegistry.h"
#include "voice/engine/WishStage.h"

#include <QTest>

using namespace tarvo;
using namespace tarvo::voice;

namespace {

/// The same with a pilot, who has chosen one device for all.
struct ChoosingStage : test::WishStage
{
    explicit ChoosingStage(const QList<QByteArray> &names, const QString &stored = QStringLiteral("Default"))
    {
        for (const StringKey &key :
             {config::voiceInputDevice, config::voiceOutputHeadphoneDevice, config::voiceOutputSpeakerDevice})
            config.set(key, stored);
        system.plug(names);
        read();
        audio->follow(devices);
        QObject::disconnect(&*audio, &AudioHandler::devicesChanged, &devices, nullptr); // would ask PortAudio
        QObject::connect(&*audio, &AudioHandler::devicesChanged, &devices, [this] { read(); });
    }

    /// The last is the driver's default.
    void read()
    {
        const QList<DeviceInfo> known = system.access().devices();
        const auto last = static_cast<qint32>(known.size() - 1);
        devices.onRead(
            {{.index = 0, .type = 8, .name = "ALSA", .defaultInputDevice = last, .defaultOutputDevice = last}}, known);
    }
    /// By the place in the pages' list, where the first is "Default".
    void choose(int listIndex)
    {
        devices.setInput(listIndex);
        devices.setOutputHeadphone(listIndex);
        devices.setOutputSpeaker(listIndex);
    }
    void endAll()
    {
        for (const StreamRole role : everyRole)
            system.end(role, true);
        settle();
    }
    /// The device that all three have opened; nothing when they don't run, or differ.
    QByteArray used() const
    {
        const QByteArray one = system.used(StreamRole::Input);
        const bool isOne = one == system.used(StreamRole::Headphone) && one == system.used(StreamRole::Speaker);
        return isOne && system.running() == everyRole ? one : QByteArray();
    }

    const Roles everyRole{StreamRole::Input, StreamRole::Headphone, StreamRole::Speaker};
    AudioDevice devices{config, sound};
};

using Told = test::WishStage::Events;

} // namespace

/// Sound servers and plugs that go, and what plays then.
class DevicesComeAndGoTest : public QObject
{
    Q_OBJECT

private slots:
    void aChoiceThatIsMadeWithoutTheServerHolds()
    {
        ChoosingStage stage({"a", "b"});
        stage.choose(1);
        stage.audio->startAll();
        stage.settle();
        QCOMPARE(stage.used(), QByteArray("a"));
        stage.system.plug({});
        stage.endAll();
        stage.pass();
        stage.choose(2);
        stage.settle();
        stage.system.plug({"a", "b"});
        stage.pass();
        QCOMPARE(stage.used(), QByteArray("b"));
        QCOMPARE(stage.devices.headphoneName(), QStringLiteral("b"));
    }

    void aServerThatRestartsFindsItsHardwareFree()
    {
        ChoosingStage stage({"server", "hardware"});
        stage.choose(1);
        stage.audio->startAll();
        stage.settle();
        stage.system.takeTried();
        stage.system.plug({"hardware"});
        stage.endAll();
        stage.pass();
        stage.pass();
        QCOMPARE(stage.system.takeTried(), 0);
        QCOMPARE(stage.takeEvents(), (Told{{DeviceEvent::Ended, stage.everyRole}}));
        stage.system.plug({"server", "hardware"});
        stage.pass();
        QCOMPARE(stage.used(), QByteArray("server"));
        QCOMPARE(stage.takeEvents(), (Told{{DeviceEvent::Back, stage.everyRole}}));
    }

    void anotherDeviceTakesThePlaceUntilTheNextStart()
    {
        ChoosingStage stage({"server", "hardware"});
        stage.choose(1);
        stage.audio->startAll();
        stage.settle();
        stage.system.plug({"hardware"});
        stage.endAll();
        for (int i = 0; i < 3; ++i)
            stage.pass();
        QCOMPARE(stage.used(), QByteArray("hardware"));
        QCOMPARE(stage.devices.headphoneName(), QStringLiteral("Default"));
        QCOMPARE(stage.takeEvents(),
                 (Told{{DeviceEvent::Ended, stage.everyRole}, {DeviceEvent::Replaced, stage.everyRole}}));

        stage.system.plug({"server", "hardware"});
        stage.audio->stopAll();
        stage.settle();
        stage.system.takeSearches();
        QByteArray whenTried;
        stage.audio->startAll([&] { whenTried = stage.used(); });
        stage.settle();
        QCOMPARE(whenTried, QByteArray("server"));
        QCOMPARE(stage.devices.headphoneName(), QStringLiteral("server"));
        QCOMPARE(stage.takeEvents(), Told()); // a start that succeeds is told nowhere
        QCOMPARE(stage.system.takeSearches(), 1);
        stage.audio->stopAll();
        stage.audio->startAll();
        stage.settle();
        QCOMPARE(stage.system.takeSearches(), 0); // all is there
    }

    void theDefaultIsTakenAgainAtTheNextStart()
    {
        ChoosingStage stage({"hardware", "server"});
        stage.audio->startAll();
        stage.settle();
        QCOMPARE(stage.used(), QByteArray("server"));
        stage.system.plug({"hardware"});
        stage.endAll();
        for (int i = 0; i < 3; ++i)
            stage.pass();
        QCOMPARE(stage.used(), QByteArray("hardware"));
        stage.system.plug({"hardware", "server"});
        stage.audio->stopAll();
        stage.settle();
        stage.audio->startAll();
        stage.settle();
        QCOMPARE(stage.used(), QByteArray("server"));
    }

    void aDeviceThatIsMissingAtFirstIsFoundAtTheNextStart_data()
    {
        QTest::addColumn<bool>("isStopped");
        QTest::newRow("behind a session") << true;
        QTest::newRow("behind a session that was lost") << false;
    }

    void aDeviceThatIsMissingAtFirstIsFoundAtTheNextStart()
    {
        QFETCH(bool, isStopped);
        ChoosingStage stage({"hardware"}, QStringLiteral("server"));
        stage.audio->startAll();
        stage.settle();
        QCOMPARE(stage.used(), QByteArray("hardware"));
        if (isStopped)
            stage.audio->stopAll();
        stage.settle();
        stage.system.plug({"server", "hardware"});
        stage.system.takeSearches();
        stage.audio->startAll();
        stage.settle();
        QCOMPARE(stage.used(), QByteArray("server"));
        QCOMPARE(stage.devices.headphoneName(), QStringLiteral("server"));
        QCOMPARE(stage.config.get(config::voiceOutputHeadphoneDevice), QStringLiteral("server"));
        QCOMPARE(stage.takeEvents(), Told());
        QCOMPARE(stage.system.takeSearches(), 1);
        stage.audio->startAll();
        stage.settle();
        QCOMPARE(stage.system.takeSearches(), 0);
    }

    void aMissingDeviceInterruptsNothingButAStart()
    {
        ChoosingStage stage({"hardware"}, QStringLiteral("server"));
        stage.audio->startAll();
        stage.settle();
        stage.system.takeSearches();
        stage.system.takeTried();
        stage.devices.announceChosen();
        stage.settle();
        stage.pass();
        QCOMPARE(stage.system.takeSearches(), 0);
        QCOMPARE(stage.system.takeTried(), 0);
    }

    void aDeviceOfAnotherIndexIsFoundByItsName()
    {
        ChoosingStage stage({"a", "b"});
        stage.choose(2);
        stage.audio->startAll();
        stage.settle();
        stage.audio->disconnect(&stage.devices); // nobody chooses anew
        QObject::disconnect(&*stage.audio, &AudioHandler::devicesChanged, nullptr, nullptr);
        stage.system.plug({"new", "a", "b"});
        stage.endAll();
        stage.pass();
        QCOMPARE(stage.used(), QByteArray());
        stage.pass();
        QCOMPARE(stage.used(), QByteArray("b"));
    }
};

TARVO_TEST(DevicesComeAndGoTest)
#include "DevicesComeAndGoTest.moc"
