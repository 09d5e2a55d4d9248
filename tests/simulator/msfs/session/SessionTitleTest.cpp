#include "SessionBench.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::test;
using namespace tarvo::simulator::msfs;

/// The title of the model that the pilot flies.
class SessionTitleTest : public QObject
{
    Q_OBJECT

private slots:
    void isRead_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QString>("title");
        QTest::newRow("title") << message::text(" Airbus A320 Neo ", 256) << line("Airbus A320 Neo");
        QTest::newRow("more behind it") << message::text("Airbus", 300) << line("Airbus");
        QTest::newRow("cut at the first zero")
            << message::text(QByteArray("Airbus\0Boeing", 13), 256) << line("Airbus");
        QTest::newRow("256 bytes") << QByteArray(256, 'x') << QString(256, u'x');
        QTest::newRow("UTF-8") << message::text("Caf\xC3\xA9", 256) << QStringLiteral("Caf\u00e9");
        QTest::newRow("blanks") << message::text("   ", 256) << QString();
        QTest::newRow("a byte short") << message::text("Airbus", 255) << QString();
        QTest::newRow("no data") << QByteArray() << QString();
    }

    void isRead()
    {
        QFETCH(QByteArray, data);
        QFETCH(QString, title);
        DefinedBench bench;
        const QSignalSpy titles(&bench.session, &SimConnectSession::userAircraftTitleDetected);
        const auto logged = bench.log.texts().size();
        bench.send(message::objectData({.request = 50001, .define = 50000}, data));
        QCOMPARE(bench.samples.size(), 0);
        QCOMPARE(titles, title.isEmpty() ? QList<QVariantList>() : (QList<QVariantList>{{title}}));
        const QStringList told = bench.log.texts().sliced(logged);
        QCOMPARE(told, title.isEmpty()
                           ? QStringList()
                           : QStringList(QStringLiteral("Detected user aircraft container title: %1").arg(title)));
    }

    void refusedDefinitionIsAWarning()
    {
        OpenBench bench;
        bench.standIn.failNext(line("AddToDataDefinition"), 1, -1, 57);
        bench.session.registerDefinitions();
        QCOMPARE(bench.standIn.calls(), groupCalls() + titleCalls().first(1));
        QCOMPARE(bench.log.texts(QtWarningMsg),
                 QStringList(line("Failed to register user TITLE definition (HRESULT: 0xffffffff)")));
        QCOMPARE(bench.errors.size(), 0);
        QCOMPARE(bench.log.texts(QtInfoMsg).last(), line("Successfully registered 57 SimConnect data definitions"));
    }

    void refusedRequestIsAWarning()
    {
        OpenBench bench;
        bench.standIn.failNext(line("RequestDataOnSimObject"));
        bench.session.registerDefinitions();
        QCOMPARE(bench.log.texts(QtWarningMsg),
                 QStringList(line("Failed to request user TITLE data (HRESULT: 0x80004005)")));
        QCOMPARE(bench.errors.size(), 0);
    }
};

TARVO_TEST(SessionTitleTest)
#include "SessionTitleTest.moc"
