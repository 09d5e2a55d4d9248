#include "simulator/xplane/SimulatorAddress.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::simulator::xplane;

class SimulatorAddressTest : public QObject
{
    Q_OBJECT

private slots:
    void addressMeans_data()
    {
        tarvo::test::columns<QString, bool, QString, QHostAddress>("configured", "local", "url", "host");
        const QHostAddress here(QHostAddress::LocalHost);
        const QString ipc = QStringLiteral("ipc:///x");
        QTest::newRow("empty") << QString() << true << ipc << here;
        QTest::newRow("127.0.0.1") << QStringLiteral("127.0.0.1") << true << ipc << here;
        QTest::newRow("localhost") << QStringLiteral("localhost") << true << ipc << here;
        QTest::newRow("LocalHost") << QStringLiteral("LocalHost") << true << ipc << here;
        QTest::newRow("LOCALHOST") << QStringLiteral("LOCALHOST") << true << ipc << here;
        QTest::newRow("another machine") << QStringLiteral("192.168.7.9") << false
                                         << QStringLiteral("tcp://192.168.7.9:192.168.7.9")
                                         << QHostAddress(QStringLiteral("192.168.7.9"));
        QTest::newRow("another loopback address")
            << QStringLiteral("127.0.0.2") << false << QStringLiteral("tcp://127.0.0.2:127.0.0.2")
            << QHostAddress(QStringLiteral("127.0.0.2"));
        QTest::newRow("blanks alone") << QStringLiteral(" \t") << true << ipc << here;
        QTest::newRow("this machine between blanks") << QStringLiteral(" Localhost ") << true << ipc << here;
        QTest::newRow("another machine between blanks")
            << QStringLiteral("\t192.168.7.9 \n") << false << QStringLiteral("tcp://192.168.7.9:192.168.7.9")
            << QHostAddress(QStringLiteral("192.168.7.9"));
        QTest::newRow("a name") << QStringLiteral("sim%1-pc") << false << QStringLiteral("tcp://sim%1-pc:sim%1-pc")
                                << QHostAddress();
    }

    void addressMeans()
    {
        QFETCH(QString, configured);
        QTEST(isLocalMachine(configured), "local");
        const PluginAddress address = pluginAddress(configured, QStringLiteral("ipc:///x"));
        QTEST(address.local, "local");
        QTEST(address.url, "url");
        QTEST(datarefHost(configured), "host");
    }

    void portMeans_data()
    {
        tarvo::test::columns<int, quint16>("configured", "port");
        QTest::newRow("lowest") << 1 << quint16(1);
        QTest::newRow("highest") << 65535 << quint16(65535);
        QTest::newRow("none") << 0 << quint16(49000);
        QTest::newRow("negative") << -1 << quint16(49000);
        QTest::newRow("one too many") << 65536 << quint16(49000);
        QTest::newRow("another port in 16 bits") << 65536 + 49001 << quint16(49000);
    }
    void portMeans()
    {
        QFETCH(const int, configured);
        QTEST(datarefPort(configured), "port");
    }
};

TARVO_TEST(SimulatorAddressTest)
#include "SimulatorAddressTest.moc"
