#include "simulator/xplane/ReportInbox.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::simulator::xplane;
using Put = ReportInbox::Put;

namespace {

PluginReport reportOf(int number)
{
    return report::Added{QString::number(number)};
}

} // namespace

class ReportInboxTest : public QObject
{
    Q_OBJECT

private slots:
    void givesInOrder()
    {
        ReportInbox inbox;
        QVERIFY(!inbox.take());
        for (int i = 0; i < 3; ++i)
            inbox.put(reportOf(i), 1);
        for (int i = 0; i < 3; ++i)
            QVERIFY(inbox.take() == reportOf(i));
        QVERIFY(!inbox.take());
    }

    void isBounded_data()
    {
        QTest::addColumn<size_t>("count");
        QTest::addColumn<size_t>("bytes");
        QTest::newRow("by number") << ReportInbox::mostReports << size_t{1};
        QTest::newRow("by bytes") << size_t{4} << ReportInbox::mostBytes / 4;
    }

    void isBounded()
    {
        QFETCH(size_t, count);
        QFETCH(size_t, bytes);
        ReportInbox inbox;
        for (size_t i = 0; i < count; ++i)
            QVERIFY(inbox.put(reportOf(0), bytes) != Put::Refused);
        QCOMPARE(inbox.put(reportOf(1), 1), Put::Refused);
        QVERIFY(inbox.take() == reportOf(0));
        QCOMPARE(inbox.put(reportOf(2), bytes), Put::Kept);
        QCOMPARE(inbox.put(reportOf(3), 1), Put::Refused);
    }

    void oneDrainIsScheduledAtATime()
    {
        ReportInbox inbox;
        QCOMPARE(inbox.put(reportOf(0), 1), Put::KeptFirst);
        QCOMPARE(inbox.put(reportOf(1), 1), Put::Kept);
        inbox.beginDrain();
        QVERIFY(inbox.stopDrain());
        QCOMPARE(inbox.put(reportOf(2), 1), Put::Kept);
        QVERIFY(!inbox.stopDrain()); // one is scheduled already
        inbox.beginDrain();
        while (inbox.take()) {
        }
        QVERIFY(!inbox.stopDrain());
        QCOMPARE(inbox.put(reportOf(3), 1), Put::KeptFirst);
    }
};

TARVO_TEST(ReportInboxTest)
#include "ReportInboxTest.moc"
