#include "simulator/msfs/session/DispatchMessage.h"
#include "practice/simconnect/Messages.h"
#include "simulator/msfs/simconnect/SimConnectApi.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <cstring>
#include <vector>

using namespace tarvo::simulator::msfs;
namespace wire = tarvo::practice::message;

namespace {

/// The value that the bytes are, of which the test knows the kind.
template <class Message>
Message parsed(const QByteArray &bytes)
{
    const auto message = parseMessage(bytes);
    if (!message || !std::holds_alternative<Message>(*message))
        return {};
    return std::get<Message>(*message);
}

/// The same bytes with another size in their head.
QByteArray saying(QByteArray bytes, quint32 size)
{
    std::memcpy(bytes.data(), &size, sizeof size);
    return bytes;
}

/// Nothing behind them, so that the sanitizer sees a look there.
bool isWhole(const QByteArray &bytes)
{
    const std::vector<char> exact(bytes.cbegin(), bytes.cend());
    return parseMessage(QByteArrayView(exact.data(), qsizetype(exact.size()))).has_value();
}

} // namespace

class DispatchMessageTest : public QObject
{
    Q_OBJECT

private slots:
    void exception()
    {
        const auto message = parsed<ExceptionMessage>(wire::exception(7, 12, 3));
        QCOMPARE(message.code, 7U);
        QCOMPARE(message.sendId, 12U);
        QCOMPARE(message.index, 3U);
    }

    void open()
    {
        const auto message = parsed<OpenMessage>(wire::open(
            {.name = "  Caf\xE9 2020 ", .version = {1, 2, 3, 4}, .simConnectVersion = {5, 6, 7, 4294967295}}));
        QCOMPARE(message.applicationName, QStringLiteral("Caf\u00e9 2020"));
        QCOMPARE(message.applicationVersion, QStringLiteral("1.2.3.4"));
        QCOMPARE(message.applicationMajor, 1U);
        QCOMPARE(message.simConnectVersion, QStringLiteral("5.6.7.4294967295"));
    }

    void nameOf256CharactersHasNoZeroBehindIt()
    {
        const auto message = parsed<OpenMessage>(
            wire::open({.name = QByteArray(256, 'n'), .version = {'A', 0, 0, 0}, .simConnectVersion = {}}));
        QCOMPARE(message.applicationName, QString(256, u'n'));
    }

    void quit() { QVERIFY(std::holds_alternative<QuitMessage>(*parseMessage(wire::quit()))); }

    void event()
    {
        const auto message = parsed<EventMessage>(wire::event(1, 20000, 3));
        QCOMPARE(message.event, 20000U);
        QCOMPARE(message.data, 3U);
    }

    void objectData()
    {
        const QByteArray bytes = wire::objectData({.request = 2, .object = 5, .define = 2}, "data");
        const auto message = parsed<ObjectDataMessage>(bytes);
        QCOMPARE(message.request, 2U);
        QCOMPARE(message.object, 5U);
        QCOMPARE(message.data, QByteArrayView("data"));
    }

    void objectDataWithoutData() { QVERIFY(parsed<ObjectDataMessage>(wire::objectData({}, {})).data.isEmpty()); }

    void typedObject()
    {
        const QByteArray bytes =
            wire::objectDataByType({.request = 40001, .object = 7, .entry = 1, .outOf = 3}, "data");
        const auto message = parsed<TypedObjectMessage>(bytes);
        QCOMPARE(message.request, 40001U);
        QCOMPARE(message.object, 7U);
        QCOMPARE(message.entry, 1U);
        QCOMPARE(message.outOf, 3U);
        QCOMPARE(message.data, QByteArrayView("data"));
    }

    void assignedObject()
    {
        const auto message = parsed<AssignedObjectMessage>(wire::assignedObject(4, 300));
        QCOMPARE(message.request, 4U);
        QCOMPARE(message.object, 300U);
    }

    void inputEventValue()
    {
        const auto message = parsed<InputEventValueMessage>(wire::inputEventValue(0xFFFFFFFF00000001, 0, 75.5));
        QCOMPARE(message.hash, 0xFFFFFFFF00000001U);
        QCOMPARE(message.type, 0U);
        QCOMPARE(message.value, 75.5);
    }

    void inputEvents_data()
    {
        QTest::addColumn<int>("stride");
        QTest::newRow("as today") << 76;
        QTest::newRow("longer ones of a later simulator") << 84;
    }

    void inputEvents()
    {
        QFETCH(int, stride);
        const auto message = parsed<InputEventsMessage>(
            wire::inputEvents(60000, {{"FIRST", 1, 0}, {QByteArray(64, 'n'), 2, 1}}, stride));
        QCOMPARE(message.request, 60000U);
        QCOMPARE(message.events.size(), 2);
        QCOMPARE(message.events.at(0).name, QStringLiteral("FIRST"));
        QCOMPARE(message.events.at(0).hash, 1U);
        QCOMPARE(message.events.at(0).type, 0U);
        QCOMPARE(message.events.at(1).name, QString(64, u'n'));
        QCOMPARE(message.events.at(1).hash, 2U);
        QCOMPARE(message.events.at(1).type, 1U);
    }

    void noInputEvents() { QVERIFY(parsed<InputEventsMessage>(wire::inputEvents(60000, {})).events.isEmpty()); }

    void otherKinds_data()
    {
        QTest::addColumn<quint32>("id");
        for (const quint32 id : {0U, 5U, 7U, 10U, 35U, 37U, 4294967295U})
            QTest::addRow("%u", id) << id;
    }

    void otherKinds()
    {
        QFETCH(quint32, id);
        QVERIFY(std::holds_alternative<OtherMessage>(*parseMessage(wire::any(id, "whatever"))));
    }

    void shortOnesAreBroken_data()
    {
        QTest::addColumn<QByteArray>("whole");
        QTest::newRow("exception") << wire::exception(1, 2, 3);
        QTest::newRow("open") << wire::open({});
        QTest::newRow("quit") << wire::quit();
        QTest::newRow("event") << wire::event(1, 2, 3);
        QTest::newRow("data") << wire::objectData({}, {});
        QTest::newRow("data by type") << wire::objectDataByType({}, {});
        QTest::newRow("assigned object") << wire::assignedObject(1, 2);
        QTest::newRow("no input events") << wire::inputEvents(60000, {});
        QTest::newRow("one input event") << wire::inputEvents(60000, {{"A", 1, 0}});
        QTest::newRow("input event value") << wire::inputEventValue(1, 0, 2.0);
    }

    void shortOnesAreBroken()
    {
        QFETCH(QByteArray, whole);
        QVERIFY(isWhole(whole));
        QVERIFY(isWhole(whole + "more was handed over"));
        QVERIFY2(!isWhole(saying(whole, quint32(whole.size()) + 1)), "a size beyond what was handed over");
        QVERIFY(!isWhole(saying(whole, 0xFFFFFFFF)));
        QVERIFY(!isWhole(saying(whole, 11)));
        QVERIFY(!isWhole(saying(whole, 0)));
        for (qsizetype size = 0; size < whole.size(); ++size) {
            const QByteArray cut = whole.first(size);
            QVERIFY2(!isWhole(cut), qPrintable(QString::number(size)));
            QVERIFY2(size < 12 || !isWhole(saying(cut, quint32(size))), qPrintable(QString::number(size)));
        }
    }

    void whatIsBehindTheSizeIsNotRead()
    {
        const QByteArray bytes = wire::objectData({}, "data");
        QCOMPARE(parsed<ObjectDataMessage>(bytes + "behind").data, QByteArrayView("data"));
    }

    void moreInputEventsThanFit_data()
    {
        QTest::addColumn<quint32>("count");
        for (const quint32 count : {3U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
            QTest::addRow("%u", count) << count;
    }

    void moreInputEventsThanFit()
    {
        QFETCH(quint32, count);
        QByteArray bytes = wire::inputEvents(60000, {{"A", 1, 0}, {"B", 2, 0}});
        std::memcpy(bytes.data() + 16, &count, sizeof count);
        QVERIFY(!isWhole(bytes));
    }

    void fewerInputEventsThanFitAreLongerOnes()
    {
        QByteArray bytes = wire::inputEvents(60000, {{"A", 1, 0}, {"B", 2, 0}});
        const quint32 count = 1;
        std::memcpy(bytes.data() + 16, &count, sizeof count);
        QCOMPARE(parsed<InputEventsMessage>(bytes).events.size(), 1);
    }
};

TARVO_TEST(DispatchMessageTest)
#include "DispatchMessageTest.moc"
