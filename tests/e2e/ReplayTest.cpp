#include "e2e/Packed.h"
#include "e2e/Stage.h"
#include "practice/replay/ReplayServer.h"
#include "support/SourceFolder.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace tarvo;
using namespace tarvo::test;

namespace {

QString dataPath(const char *name)
{
    return sourceFile(QStringLiteral("tests/data/%1").arg(QLatin1StringView(name)));
}

QString dataFile(const char *name)
{
    QFile file(dataPath(name));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

bool write(const char *name, const QString &text)
{
    QFile file(dataPath(name));
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) > 0;
}

/// Twelve seconds on downwind among the residents, who then fall silent, so that nothing is under way at the end.
bool recordFlight()
{
    practice::PracticeSettings settings = Network::quietSettings();
    settings.residents.present = true;
    Network network(common::systemClock(), settings);
    Client client(network, Protocol::Classic);
    practice::XPlaneStandIn &xplane = network.practice.xplane();
    xplane.setFlightTime(xplane.flight().startOf(u"downwind"_qs));
    if (!network.started || !client.signIn() || !client.activateXPlane())
        return false;
    QString messages;
    QObject::connect(&xplane.plugin(), &practice::PluginStandIn::bytesReceived, &xplane.plugin(),
                     [&](const QByteArray &bytes) { messages += shown(bytes) + u'\n'; });
    if (!client.connectPilot())
        return false;
    QTest::qWait(12'000);
    network.practice.residents()->stop();
    QTest::qWait(1000);
    const QString told = messages;
    client.manager->disconnectFromNetwork(); // brings the log to the disk
    return write("flight.plugin", told) && write("flight.log", client.networkLog());
}

/// What other pilots look like and where they are. The rest is told by the session's timers and the own aeroplane.
QStringList ofAircraft(QStringList messages)
{
    messages.removeIf([](const QString &message) {
        static const QRegularExpression kinds(QStringLiteral("^(ADD|ACCONF|POS|FSTPOS|HB|DEL)\\b"));
        return !message.contains(kinds);
    });
    return messages;
}

} // namespace

/// A flight that was recorded from the practice network, flown again: tests/data/README.md tells how it was made.
class ReplayTest : public QObject
{
    Q_OBJECT

private slots:
    /// Only on demand: the flight is flown for real, at the system's pace, and written over the one that is there.
    void initTestCase()
    {
        if (qEnvironmentVariableIsSet("TARVO_RECORD_FLIGHT"))
            QVERIFY(recordFlight());
    }

    void theSimulatorIsToldTheSame_data()
    {
        QTest::addColumn<int>("lines");
        QTest::newRow("line by line") << 1;
        QTest::newRow("faster") << 20;
    }

    void theSimulatorIsToldTheSame()
    {
        QFETCH(const int, lines);
        const auto recording = practice::readRecording(dataFile("flight.log"));
        QVERIFY(recording);
        practice::PracticeSettings settings = Network::quietSettings();
        settings.replay = {.recording = *recording, .stepwise = true};
        Stage stage(Protocol::Classic, settings);
        QVERIFY(stage.open() && stage.client.connectPilot());
        practice::ReplayServer &replay = *stage.network.practice.replay();
        TRY_VERIFY(replay.linesLeft() > 0);
        stage.stopTimers();
        QStringList told;
        qint64 now = 0;
        while (replay.linesLeft() > 0) {
            const qint64 next = replay.nextMs();
            stage.clock.advance(next - now);
            now = next;
            QVERIFY(replay.step(lines) && stage.settlePlugin());
            told << ofAircraft(stage.takeMessages());
        }
        const QStringList expected = ofAircraft(dataFile("flight.plugin").split(u'\n'));
        QVERIFY(expected.size() > 50);
        TRY_VERIFY((told << ofAircraft(stage.takeMessages())).size() >= expected.size());
        QVERIFY(stage.settlePlugin());
        told << ofAircraft(stage.takeMessages());
        for (qsizetype i = 0; i < std::min(told.size(), expected.size()); ++i)
            QCOMPARE(told.at(i), expected.at(i));
        QCOMPARE(told.size(), expected.size());
    }
};

TARVO_TEST(ReplayTest)
#include "ReplayTest.moc"
