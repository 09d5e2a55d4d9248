#include "manager/RemoteAircraftTable.h"
#include "common/Callsign.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo;
using namespace tarvo::manager;
using tarvo::model::RemoteAircraft;

namespace {

using Record = RemoteAircraftTable::Record;

const QDateTime noon(QDate(2024, 5, 1), QTime(12, 0), Qt::UTC);

QString callsignOf(qsizetype number)
{
    return QStringLiteral("X%1").arg(number);
}

} // namespace

/// The other aircraft by callsign, and what was asked about them.
class RemoteAircraftTableTest : public QObject
{
    Q_OBJECT

private slots:
    void anUnknownAircraftIsMade()
    {
        RemoteAircraftTable table;
        QCOMPARE(table.find(u"CCA1"_qs), nullptr);
        RemoteAircraft expected;
        expected.callsign = u"CCA1"_qs;
        expected.airline = u"CCA"_qs;
        expected.lastUpdate = noon;
        Record *made = table.obtain(u"CCA1"_qs, noon);
        QVERIFY(made);
        QCOMPARE(static_cast<RemoteAircraft &>(*made), expected);
        made->typeCode = u"B738"_qs;
        QCOMPARE(table.obtain(u"CCA1"_qs, noon.addSecs(1))->typeCode, u"B738"_qs);
        QCOMPARE(table.find(u"CCA1"_qs)->lastUpdate, noon); // only the making sets it
        QCOMPARE(std::as_const(table).find(u"cca1"_qs), nullptr);
        QCOMPARE(table.size(), 1);
    }

    void refusedCallsigns_data()
    {
        QTest::addColumn<QString>("callsign");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("empty") << QString() << false;
        QTest::newRow("longest") << QString(common::longestCallsign, QLatin1Char('A')) << true;
        QTest::newRow("too long") << QString(common::longestCallsign + 1, QLatin1Char('A')) << false;
        QTest::newRow("a million") << QString(1'000'000, QLatin1Char('A')) << false;
    }

    void refusedCallsigns()
    {
        QFETCH(QString, callsign);
        RemoteAircraftTable table;
        QTEST(table.obtain(callsign, noon) != nullptr, "accepted");
        QTEST(table.size() == 1, "accepted");
    }

    void aFullTableIgnoresNewcomersAndSaysSoOnce()
    {
        RemoteAircraftTable table;
        const test::LogCapture log;
        for (qsizetype i = 0; i < RemoteAircraftTable::maximumSize; ++i)
            QVERIFY(table.obtain(callsignOf(i), noon));
        QCOMPARE(log.texts(), QStringList());
        QCOMPARE(table.obtain(u"NEW"_qs, noon), nullptr);
        QCOMPARE(table.obtain(u"NEWER"_qs, noon), nullptr);
        QCOMPARE(log.texts(QtWarningMsg),
                 QStringList{u"No room for more than 4000 other aircraft; new ones are ignored"_qs});
        QVERIFY(table.obtain(callsignOf(0), noon)); // those who are there stay
        QVERIFY(table.take(callsignOf(7)));
        QVERIFY(table.obtain(u"NEW"_qs, noon));
        QCOMPARE(table.size(), RemoteAircraftTable::maximumSize);
        table.clear();
        QCOMPARE(table.size(), 0);
    }

    void aTypeIsAskedOnceUntilItIsAnswered()
    {
        constexpr qint64 interval = Record::typeIntervalMs;
        Record record;
        QVERIFY(record.shouldAskForType(0));
        QVERIFY(!record.shouldAskForType(interval)); // not while nobody has answered
        record.typeAnswered();                       // by nobody who knows it
        QVERIFY(!record.shouldAskForType(interval - 1));
        QVERIFY(record.shouldAskForType(interval));
        record.typeAnswered();
        record.typeCode = u"B738"_qs;
        QVERIFY(!record.shouldAskForType(2 * interval)); // known
    }

    void whoHasLeftIsAskedAnew()
    {
        RemoteAircraftTable table;
        Record *record = table.obtain(u"AB2"_qs, noon);
        record->state = RemoteAircraft::State::InSimulator;
        QVERIFY(record->shouldAskForConfiguration());
        QVERIFY(!record->shouldAskForConfiguration());
        QVERIFY(record->shouldAskForType(0)); // one has nothing to do with the other
        const std::optional<Record> taken = table.take(u"AB2"_qs);
        QVERIFY(taken);
        QCOMPARE(taken->state, RemoteAircraft::State::InSimulator);
        QVERIFY(!table.take(u"AB2"_qs));
        record = table.obtain(u"AB2"_qs, noon);
        QCOMPARE(record->state, RemoteAircraft::State::New);
        QVERIFY(record->shouldAskForType(0));
        QVERIFY(record->shouldAskForConfiguration());
    }

    void lists()
    {
        RemoteAircraftTable table;
        for (const char *callsign : {"CD3", "AB2", "EF4"})
            table.obtain(QLatin1StringView(callsign), noon);
        QCOMPARE(table.callsigns(), (QStringList{u"AB2"_qs, u"CD3"_qs, u"EF4"_qs}));
        QStringList listed;
        const QList<RemoteAircraft> all = table.all();
        for (const RemoteAircraft &aircraft : all)
            listed << aircraft.callsign;
        listed.sort();
        QCOMPARE(listed, table.callsigns());
    }
};

TARVO_TEST(RemoteAircraftTableTest)
#include "RemoteAircraftTableTest.moc"
