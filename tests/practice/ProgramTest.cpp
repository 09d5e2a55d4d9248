#include "Peers.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTemporaryDir>

#include <memory>

using namespace tarvo::test;

class ProgramTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;

    QStringList freeAddresses() const
    {
        return {QStringLiteral("--http-port=0"),
                QStringLiteral("--fsd-port=0"),
                QStringLiteral("--xplane-port=0"),
                QStringLiteral("--voice-port=0"),
                QStringLiteral("--voice-udp-port=0"),
                QStringLiteral("--plugin=ipc://%1").arg(m_folder.filePath(QStringLiteral("p.ipc")))};
    }
    static void start(QProcess &process, const QStringList &arguments)
    {
        process.start(QStringLiteral(TARVO_PRACTICE_PROGRAM), arguments);
    }
    /// Collects the program's output until it says that it is ready.
    static QString untilReady(QProcess &process)
    {
        QByteArray output;
        [&] {
            QTRY_VERIFY2((output += process.readAllStandardOutput()).contains(" ready "),
                         process.readAllStandardError().constData());
        }();
        return QString::fromUtf8(output);
    }
    static quint16 portOf(const QString &output, const QString &area)
    {
        const QRegularExpression serving(area + QStringLiteral(" +serving [^\n]*?127\\.0\\.0\\.1:(\\d+)"));
        return static_cast<quint16>(serving.match(output).captured(1).toUInt());
    }

private slots:
    void saysWhatItServesAndStopsCleanly_data()
    {
        QTest::addColumn<bool>("quiet");
        QTest::newRow("talking") << false;
        QTest::newRow("quiet") << true;
    }

    void saysWhatItServesAndStopsCleanly()
    {
        QFETCH(bool, quiet);
        QProcess process;
        start(process, freeAddresses() + (quiet ? QStringList{QStringLiteral("--quiet")} : QStringList()));
        QString output = untilReady(process);
        QVERIFY(portOf(output, QStringLiteral("account")) != 0);
        QVERIFY(output.contains(QStringLiteral("serving UDP port ")));

        QTcpSocket pilot;
        pilot.connectToHost(QHostAddress::LocalHost, portOf(output, QStringLiteral("fsd")));
        pilot.write("#APAB1:SERVER:1001:practice:1:9:5:Lin\r\n#TMAB1:*S:last\r\n");
        QByteArray received;
        TRY_VERIFY((received += pilot.readAll()).contains("Your call"));

        process.terminate();
        TRY_COMPARE(process.state(), QProcess::NotRunning);
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
        output += QString::fromUtf8(process.readAllStandardOutput());
        QCOMPARE(output.contains(QStringLiteral("#APAB1:SERVER:1001:******:1:9:5:Lin")), !quiet);
        QVERIFY(!output.contains(QStringLiteral("1001:practice")));
        QVERIFY(output.contains(QStringLiteral(" stopped")));
    }

    void aPortInUseIsNamed_data()
    {
        QTest::addColumn<QString>("option");
        QTest::newRow("account service") << QStringLiteral("--http-port=%1");
        QTest::newRow("FSD server") << QStringLiteral("--fsd-port=%1");
        QTest::newRow("X-Plane") << QStringLiteral("--xplane-port=%1");
        QTest::newRow("voice server") << QStringLiteral("--voice-port=%1");
        QTest::newRow("voice itself") << QStringLiteral("--voice-udp-port=%1");
    }

    void aPortInUseIsNamed()
    {
        QFETCH(QString, option);
        QTcpServer tcp;
        QVERIFY(tcp.listen(QHostAddress::LocalHost, 0));
        QUdpSocket udp;
        QVERIFY(udp.bind(QHostAddress::LocalHost, 0, QAbstractSocket::DontShareAddress));
        const quint16 port =
            option.contains(QRegularExpression(QStringLiteral("xplane|udp"))) ? udp.localPort() : tcp.serverPort();
        QProcess process;
        start(process, freeAddresses() + QStringList{option.arg(port)});
        TRY_COMPARE(process.state(), QProcess::NotRunning);
        QCOMPARE(process.exitCode(), 1);
        const QByteArray error = process.readAllStandardError();
        QVERIFY2(error.contains(QByteArray::number(port)), error.constData());
    }

    void aRecordingIsReplayed()
    {
        QFile log(m_folder.filePath(QStringLiteral("flight.log")));
        QVERIFY(log.open(QIODevice::WriteOnly));
        log.write("[12:00:00.000] <<< $DISERVER:CLIENT:1:ab\n[12:00:01.000] >>> #APAB1:SERVER\n"
                  "[12:00:05.000] <<< #TMSERVER:AB1:recorded\n");
        log.close();
        QProcess process;
        start(process, freeAddresses() +
                           QStringList{QStringLiteral("--replay=") + log.fileName(), QStringLiteral("--speed=1000")});
        const QString output = untilReady(process);
        QTcpSocket pilot;
        pilot.connectToHost(QHostAddress::LocalHost, portOf(output, QStringLiteral("fsd")));
        pilot.write("#APAB1:SERVER:1001:secret:1:9:5:Lin\r\n");
        QByteArray received;
        TRY_COMPARE(received += pilot.readAll(), QByteArray("$DISERVER:CLIENT:1:ab\r\n#TMSERVER:AB1:recorded\r\n"));
        process.terminate();
        TRY_COMPARE(process.state(), QProcess::NotRunning);
        QVERIFY(process.readAllStandardOutput().contains("AB1 has been told all"));
    }

    void whatIsNoRecordingIsNamed()
    {
        QProcess process;
        start(process, freeAddresses() + QStringList{QStringLiteral("--replay=") + m_folder.path()});
        TRY_COMPARE(process.state(), QProcess::NotRunning);
        QCOMPARE(process.exitCode(), 1);
        QVERIFY(process.readAllStandardError().contains("is no network log"));
    }

    void aPluginAddressInUseIsNamed()
    {
        const QStringList arguments = freeAddresses();
        QProcess first;
        start(first, arguments);
        untilReady(first);
        QProcess second;
        start(second, arguments);
        TRY_COMPARE(second.state(), QProcess::NotRunning);
        QCOMPARE(second.exitCode(), 1);
        QVERIFY(second.readAllStandardError().contains("p.ipc"));
        first.terminate();
        TRY_COMPARE(first.state(), QProcess::NotRunning);
    }

    void nonsenseIsRefused()
    {
        QProcess process;
        start(process, {QStringLiteral("--address=0.0.0.0")});
        TRY_COMPARE(process.state(), QProcess::NotRunning);
        QCOMPARE(process.exitCode(), 1);
        QVERIFY(process.readAllStandardError().contains("--address"));
    }
};

TARVO_TEST(ProgramTest)
#include "ProgramTest.moc"
