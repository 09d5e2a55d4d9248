#include "simulator/msfs/simvar/SimVarWire.h"
#include "simulator/msfs/simconnect/SimConnectApi.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <limits>
#include <vector>

using namespace tarvo::simulator::msfs;

namespace {

template <class Number>
QByteArray wireBytes(Number number)
{
    return {reinterpret_cast<const char *>(&number), sizeof number};
}

SimVarBinding bindingOf(SimVarType type, const char *dataKey, SimVarConversion conversion = SimVarConversion::None)
{
    return {.type = type, .dataKey = QLatin1String(dataKey), .conversion = conversion};
}

QString key(const char *name)
{
    return QLatin1String(name);
}

} // namespace

class SimVarWireTest : public QObject
{
    Q_OBJECT

private slots:
    void typesOnTheWire_data()
    {
        tarvo::test::columns<SimVarType, quint32, qsizetype>("type", "number", "size");
        QTest::newRow("float") << SimVarType::Float << quint32(SIMCONNECT_DATATYPE_FLOAT64) << qsizetype(8);
        QTest::newRow("int") << SimVarType::Int << quint32(SIMCONNECT_DATATYPE_INT32) << qsizetype(4);
        QTest::newRow("bool") << SimVarType::Bool << quint32(SIMCONNECT_DATATYPE_INT32) << qsizetype(4);
        QTest::newRow("string") << SimVarType::String << quint32(SIMCONNECT_DATATYPE_STRING256) << qsizetype(256);
    }

    void typesOnTheWire()
    {
        QFETCH(SimVarType, type);
        QTEST(wireDataType(type), "number");
        QTEST(wireSize(type), "size");
    }

    void sampleHasEveryType()
    {
        const QList bindings{bindingOf(SimVarType::Float, "float"), bindingOf(SimVarType::Int, "int"),
                             bindingOf(SimVarType::Bool, "bool"), bindingOf(SimVarType::String, "text"),
                             bindingOf(SimVarType::Float, "last")};
        const QByteArray text = QByteArray("Cessna \xC3\xA4\0behind", 16).leftJustified(256, 'x');
        const QByteArray data = wireBytes(1.5) + wireBytes(qint32(-7)) + wireBytes(qint32(256)) + text + wireBytes(2.5);
        const QVariantMap expected{{key("float"), 1.5},
                                   {key("int"), -7},
                                   {key("bool"), true},
                                   {key("text"), QString::fromUtf8("Cessna \xC3\xA4")},
                                   {key("last"), 2.5}};
        QCOMPARE(readSample(bindings, data), expected);
    }

    void sampleHasConvertedValues()
    {
        const QList bindings{bindingOf(SimVarType::Float, "mhz", SimVarConversion::FrequencyBcd16),
                             bindingOf(SimVarType::Int, "code", SimVarConversion::Bco16)};
        const QVariantMap sample = readSample(bindings, wireBytes(double(0x2285)) + wireBytes(qint32(0x7000)));
        QCOMPARE(sample.value(key("mhz")).toDouble(), 122.85);
        QCOMPARE(sample.value(key("code")), QVariant(7000));
    }

    void cutSampleLacksWhatIsBehind_data()
    {
        tarvo::test::columns<qsizetype, QStringList>("bytes", "keys");
        const QStringList all{key("a"), key("b"), key("c"), key("d")};
        QTest::newRow("nothing") << qsizetype(0) << QStringList();
        QTest::newRow("a byte short of the first") << qsizetype(3) << QStringList();
        QTest::newRow("one") << qsizetype(8) << all.first(1);
        QTest::newRow("two") << qsizetype(16) << all.first(2);
        QTest::newRow("three") << qsizetype(20) << all.first(3);
        QTest::newRow("a byte short of all") << qsizetype(23) << all.first(3);
        QTest::newRow("all") << qsizetype(24) << all;
        QTest::newRow("more than all") << qsizetype(60) << all;
        QTest::newRow("a shorter field takes the place") << qsizetype(12) << QStringList{key("a"), key("c")};
    }

    void cutSampleLacksWhatIsBehind()
    {
        QFETCH(qsizetype, bytes);
        const QList bindings{bindingOf(SimVarType::Float, "a"), bindingOf(SimVarType::Float, "b"),
                             bindingOf(SimVarType::Bool, "c"), bindingOf(SimVarType::Bool, "d")};
        // Its own size in memory, so that a look behind it is seen by the sanitizer.
        const std::vector<char> data(static_cast<std::size_t>(bytes), '\0');
        QTEST(readSample(bindings, QByteArrayView(data.data(), bytes)).keys(), "keys");
    }

    void numbersThatAreNoneAreLeftOut()
    {
        const QList bindings{bindingOf(SimVarType::Float, "nan"), bindingOf(SimVarType::Float, "infinite"),
                             bindingOf(SimVarType::Float, "number")};
        const QByteArray data = wireBytes(std::numeric_limits<double>::quiet_NaN()) +
                                wireBytes(std::numeric_limits<double>::infinity()) + wireBytes(3.0);
        QCOMPARE(readSample(bindings, data), (QVariantMap{{key("number"), 3.0}}));
    }

    void textEndsAtItsZeroOrItsField_data()
    {
        tarvo::test::columns<QByteArray, QString>("field", "text");
        QTest::newRow("zero") << QByteArray("ab\0cd", 5) << QStringLiteral("ab");
        QTest::newRow("zero first") << QByteArray("\0ab", 3) << QString();
        QTest::newRow("no zero") << QByteArray("abcd") << QStringLiteral("abcd");
        QTest::newRow("no field") << QByteArray() << QString();
    }

    void textEndsAtItsZeroOrItsField()
    {
        QFETCH(QByteArray, field);
        QTEST(wireText(field), "text");
    }

    void fieldsAreWritten_data()
    {
        tarvo::test::columns<SimVarType, SimVarConversion, QVariant, QByteArray>("type", "conversion", "value",
                                                                                 "bytes");
        const auto add = [](const char *name, SimVarType type, const QVariant &value, const QByteArray &bytes,
                            SimVarConversion conversion = SimVarConversion::None) {
            QTest::newRow(name) << type << conversion << value << bytes;
        };
        add("float", SimVarType::Float, 0.25, wireBytes(0.25));
        add("float of a whole number", SimVarType::Float, 75, wireBytes(75.0));
        add("float as frequency", SimVarType::Float, 122.85, wireBytes(double(0x2285)),
            SimVarConversion::FrequencyBcd16);
        add("int", SimVarType::Int, -2, wireBytes(qint32(-2)));
        add("int as code", SimVarType::Int, 7000, wireBytes(qint32(0x7000)), SimVarConversion::Bco16);
        add("true", SimVarType::Bool, true, wireBytes(qint32(1)));
        add("a number as true", SimVarType::Bool, 17, wireBytes(qint32(1)));
        add("false", SimVarType::Bool, false, wireBytes(qint32(0)));
        add("text", SimVarType::String, QStringLiteral("abc"), QByteArray("abc") + QByteArray(253, '\0'));
        add("longest text", SimVarType::String, QString(255, u'x'), QByteArray(255, 'x') + QByteArray(1, '\0'));
        add("too long a text", SimVarType::String, QString(256, u'x'), QByteArray(255, 'x') + QByteArray(1, '\0'));
        add("a character that doesn't fit whole", SimVarType::String, QString(254, u'x') + u"空客"_qs,
            QByteArray(254, 'x') + QByteArray(2, '\0'));
    }

    void fieldsAreWritten()
    {
        QFETCH(SimVarType, type);
        QFETCH(SimVarConversion, conversion);
        QFETCH(QVariant, value);
        QTEST(writtenField(bindingOf(type, "", conversion), value), "bytes");
    }
};

TARVO_TEST(SimVarWireTest)
#include "SimVarWireTest.moc"
