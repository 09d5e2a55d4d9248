#include "manager/ConnectRequest.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

using tarvo::manager::ConnectConditions;
using tarvo::manager::ConnectRequest;
using tarvo::manager::refusalOf;
using tarvo::test::columns;

namespace {
const QString busy = u"Already connected or connecting to network. Disconnect before changing callsign."_qs;
const QString observerNeedsCallsign = u"Callsign is required for observer mode."_qs;
const QString pilotNeedsBoth = u"Callsign and Type Code are required."_qs;
const QString invalid =
    u"Invalid callsign. Use only A-Z, 0-9, or underscore; spaces and Chinese characters are not allowed."_qs;
const QString noSimulator = u"飞行员模式连接 FSD 前，请先连接模拟器并等待有效的飞机数据。"_qs;
const QString granted;
} // namespace

class ConnectRequestTest : public QObject
{
    Q_OBJECT

private slots:
    void refusal_data()
    {
        columns<QString, QString, bool, bool, bool, QString>("callsign", "typeCode", "observer", "isBusy",
                                                             "simulatorReady", "expected");
        const bool pilot = false;
        const bool observer = true;
        QTest::newRow("pilot") << u"AB1"_qs << u"B738"_qs << pilot << false << true << granted;
        QTest::newRow("observer needs nothing else") << u"AB1"_qs << u""_qs << observer << false << false << granted;
        QTest::newRow("busy comes first") << u""_qs << u""_qs << pilot << true << false << busy;
        QTest::newRow("busy observer") << u"AB1"_qs << u""_qs << observer << true << true << busy;
        QTest::newRow("observer without callsign")
            << u""_qs << u"B738"_qs << observer << false << true << observerNeedsCallsign;
        QTest::newRow("pilot without callsign") << u""_qs << u"B738"_qs << pilot << false << true << pilotNeedsBoth;
        QTest::newRow("one letter") << u"A"_qs << u"B738"_qs << pilot << false << true << invalid;
        QTest::newRow("two") << u"A_"_qs << u"B738"_qs << pilot << false << true << granted;
        QTest::newRow("twelve") << u"ABCDEFGHIJ12"_qs << u"B738"_qs << pilot << false << true << granted;
        QTest::newRow("thirteen") << u"ABCDEFGHIJ123"_qs << u"B738"_qs << pilot << false << true << invalid;
        QTest::newRow("hyphen") << u"AB-1"_qs << u"B738"_qs << pilot << false << true << invalid;
        QTest::newRow("space") << u"AB 1"_qs << u"B738"_qs << pilot << false << true << invalid;
        QTest::newRow("Chinese") << u"国航1"_qs << u"B738"_qs << pilot << false << true << invalid;
        QTest::newRow("foreign digits") << u"AB١"_qs << u"B738"_qs << pilot << false << true << invalid;
        QTest::newRow("invalid before the type") << u"A"_qs << u""_qs << pilot << false << true << invalid;
        QTest::newRow("invalid observer") << u"A:B"_qs << u""_qs << observer << false << false << invalid;
        QTest::newRow("blank type") << u"AB1"_qs << u" \t"_qs << pilot << false << true << pilotNeedsBoth;
        QTest::newRow("type before the simulator") << u"AB1"_qs << u""_qs << pilot << false << false << pilotNeedsBoth;
        QTest::newRow("no simulator") << u"AB1"_qs << u"B738"_qs << pilot << false << false << noSimulator;
    }

    void refusal()
    {
        QFETCH(QString, callsign);
        QFETCH(QString, typeCode);
        QFETCH(bool, observer);
        QFETCH(bool, isBusy);
        QFETCH(bool, simulatorReady);
        QFETCH(QString, expected);
        const ConnectConditions conditions{.busy = isBusy, .simulatorReady = simulatorReady};
        QCOMPARE(refusalOf({callsign, typeCode, observer}, conditions), expected);
    }
};

TARVO_TEST(ConnectRequestTest)
#include "ConnectRequestTest.moc"
