#include "simulator/msfs/session/SimConnectException.h"
#include "support/TestRegistry.h"

#include <QMap>
#include <QTest>

using namespace tarvo::simulator::msfs;

class SimConnectExceptionTest : public QObject
{
    Q_OBJECT

private slots:
    void everyCodeHasItsName()
    {
        const QMap<quint32, const char *> named{{1, "ERROR"},
                                                {2, "SIZE_MISMATCH"},
                                                {3, "UNRECOGNIZED_ID"},
                                                {4, "UNOPENED"},
                                                {5, "VERSION_MISMATCH"},
                                                {6, "TOO_MANY_GROUPS"},
                                                {7, "NAME_UNRECOGNIZED"},
                                                {8, "TOO_MANY_EVENT_NAMES"},
                                                {9, "EVENT_ID_DUPLICATE"},
                                                {10, "TOO_MANY_MAPS"},
                                                {11, "TOO_MANY_OBJECTS"},
                                                {12, "TOO_MANY_REQUESTS"},
                                                {18, "INVALID_DATA_TYPE"},
                                                {19, "INVALID_DATA_SIZE"},
                                                {20, "DATA_ERROR"},
                                                {21, "INVALID_ARRAY"},
                                                {22, "CREATE_OBJECT_FAILED"},
                                                {24, "OPERATION_INVALID_FOR_OBJECT_TYPE"},
                                                {25, "ILLEGAL_OPERATION"},
                                                {27, "INVALID_ENUM"},
                                                {28, "DEFINITION_ERROR"},
                                                {29, "DUPLICATE_ID"},
                                                {30, "DATUM_ID"},
                                                {31, "OUT_OF_BOUNDS"},
                                                {32, "ALREADY_CREATED"},
                                                {33, "OBJECT_OUTSIDE_REALITY_BUBBLE"},
                                                {34, "OBJECT_CONTAINER"},
                                                {35, "OBJECT_AI"},
                                                {36, "OBJECT_ATC"},
                                                {37, "OBJECT_SCHEDULE"},
                                                {38, "JETWAY_DATA"},
                                                {44, "INTERNAL"}};
        for (quint32 code = 0; code < 50; ++code)
            QCOMPARE(exceptionName(code), named.value(code, "UNKNOWN"));
        QCOMPARE(exceptionName(0xFFFFFFFF), "UNKNOWN");
    }

    void actions_data()
    {
        QTest::addColumn<quint32>("code");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<bool>("used");
        QTest::addColumn<ExceptionAction>("action");
        const auto add = [](const char *name, quint32 code, bool enabled, bool used, ExceptionAction action) {
            QTest::newRow(name) << code << enabled << used << action;
        };
        add("3", 3, true, true, ExceptionAction::Ignore);
        add("20", 20, true, true, ExceptionAction::Ignore);
        add("22", 22, true, true, ExceptionAction::CreateFailed);
        add("7 with traffic in use", 7, true, true, ExceptionAction::DisableTraffic);
        add("7 with traffic only wanted", 7, true, false, ExceptionAction::Ignore);
        add("7 with traffic not wanted any more", 7, false, true, ExceptionAction::Ignore);
        add("28 with traffic wanted", 28, true, false, ExceptionAction::DisableTraffic);
        add("28 without", 28, false, true, ExceptionAction::Raise);
        add("30 with traffic wanted", 30, true, false, ExceptionAction::DisableTraffic);
        add("30 without", 30, false, false, ExceptionAction::Raise);
        add("29", 29, true, true, ExceptionAction::Raise);
        add("0", 0, true, true, ExceptionAction::Raise);
        add("beyond", 4711, true, true, ExceptionAction::Raise);
    }

    void actions()
    {
        QFETCH(quint32, code);
        QFETCH(bool, enabled);
        QFETCH(bool, used);
        QTEST(exceptionAction(code, enabled, used), "action");
    }
};

TARVO_TEST(SimConnectExceptionTest)
#include "SimConnectExceptionTest.moc"
