#include "model/AircraftConfiguration.h"
#include "support/TestRegistry.h"

#include <QTest>

using tarvo::model::AircraftConfiguration;
using tarvo::model::AircraftConfigurationMessage;

namespace {

AircraftConfiguration full()
{
    AircraftConfiguration c;
    c.isFullData = true;
    c.lights = {
        .strobeOn = true, .landingOn = false, .taxiOn = true, .beaconOn = false, .navOn = true, .present = true};
    c.engines.present = true;
    for (auto &engine : c.engines.engine)
        engine = {.on = true, .isReversing = false};
    c.gearDown = true;
    c.flapsPct = 25;
    c.spoilersOut = false;
    c.onGround = true;
    return c;
}

const QString fullText =
    uR"({"config":{"is_full_data":true,"lights":{"strobe_on":true,"landing_on":false,"taxi_on":true,)"
    uR"("beacon_on":false,"nav_on":true},"engines":{"1":{"on":true,"is_reversing":false},)"
    uR"("2":{"on":true,"is_reversing":false},"3":{"on":true,"is_reversing":false},)"
    uR"("4":{"on":true,"is_reversing":false}},"gear_down":true,"flaps_pct":25,"spoilers_out":false,"on_ground":true}})"_qs;

QString composed(const AircraftConfiguration &configuration)
{
    return AircraftConfigurationMessage{.requestFull = {}, .configuration = configuration}.compose();
}

} // namespace

class AircraftConfigurationTest : public QObject
{
    Q_OBJECT

private slots:
    void composesInTheOrderOfTheFields() { QCOMPARE(composed(full()), fullText); }

    void sameTextAfterParseAndCompose_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("all") << fullText;
        QTest::newRow("request") << uR"({"request":"full"})"_qs;
        QTest::newRow("one flag") << uR"({"config":{"gear_down":true}})"_qs;
        QTest::newRow("one light") << uR"({"config":{"lights":{"nav_on":true}}})"_qs;
        QTest::newRow("one engine") << uR"({"config":{"engines":{"1":{"on":true}}}})"_qs;
        QTest::newRow("last engine reversing") << uR"({"config":{"engines":{"4":{"is_reversing":true}}}})"_qs;
        QTest::newRow("nothing in it") << uR"({"config":{}})"_qs;
        QTest::newRow("negative flaps") << uR"({"config":{"flaps_pct":-5}})"_qs;
    }

    void sameTextAfterParseAndCompose()
    {
        QFETCH(QString, text);
        QCOMPARE(AircraftConfigurationMessage::parse(text).compose(), text);
    }

    void composesEmptyAndDoubledMessages()
    {
        AircraftConfigurationMessage message;
        QCOMPARE(message.compose(), u"{}"_qs);
        message.requestFull = true;
        message.configuration = full();
        QCOMPARE(message.compose(), uR"({"request":"full"})"_qs);
    }

    void leavesOutBlocksThatAreEmptyOrNotPresent()
    {
        AircraftConfiguration c;
        c.lights.present = true;
        c.engines.present = true;
        QCOMPARE(composed(c), uR"({"config":{}})"_qs);
        c = {};
        c.lights.navOn = true;
        c.engines.engine[0].on = true;
        QCOMPARE(composed(c), uR"({"config":{}})"_qs);
    }

    void aRequestHasNoConfiguration()
    {
        const auto message = AircraftConfigurationMessage::parse(uR"({"request":"full"})"_qs);
        QCOMPARE(message.requestFull, std::optional(true));
        QVERIFY(!message.configuration);
    }

    void anythingElseIsAnEmptyMessage_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("no JSON") << u"hello"_qs;
        QTest::newRow("cut short") << uR"({"config":{"gear_down":true})"_qs;
        QTest::newRow("array") << uR"([{"request":"full"}])"_qs;
        QTest::newRow("number") << u"7"_qs;
        QTest::newRow("other request") << uR"({"request":"FULL"})"_qs;
        QTest::newRow("request of another type") << uR"({"request":true})"_qs;
        QTest::newRow("configuration is an array") << uR"({"config":[]})"_qs;
        QTest::newRow("configuration is null") << uR"({"config":null})"_qs;
        QTest::newRow("unknown key") << uR"({"hello":1})"_qs;
        QTest::newRow("nested too deep") << QString(100'000, u'[');
        QTest::newRow("objects nested too deep") << uR"({"config":)"_qs.repeated(50'000);
    }

    void anythingElseIsAnEmptyMessage()
    {
        QFETCH(QString, text);
        QCOMPARE(AircraftConfigurationMessage::parse(text), AircraftConfigurationMessage());
    }

    void leavesWrongTypesAbsent_data()
    {
        QTest::addColumn<QString>("config");
        QTest::newRow("flag as number") << uR"("gear_down":1)"_qs;
        QTest::newRow("flag as text") << uR"("on_ground":"true")"_qs;
        QTest::newRow("flag as null") << uR"("spoilers_out":null)"_qs;
        QTest::newRow("full as object") << uR"("is_full_data":{})"_qs;
        QTest::newRow("flaps as flag") << uR"("flaps_pct":true)"_qs;
        QTest::newRow("flaps as text") << uR"("flaps_pct":"5")"_qs;
        QTest::newRow("flaps with a fraction") << uR"("flaps_pct":5.5)"_qs;
        QTest::newRow("flaps beyond 32 bits") << uR"("flaps_pct":3000000000)"_qs;
        QTest::newRow("flaps below 32 bits") << uR"("flaps_pct":-3000000000)"_qs;
        QTest::newRow("flaps beyond everything") << uR"("flaps_pct":1e300)"_qs;
        QTest::newRow("lights as flag") << uR"("lights":true)"_qs;
        QTest::newRow("engines as array") << uR"("engines":[])"_qs;
        QTest::newRow("unknown") << uR"("wings":2)"_qs;
    }

    void leavesWrongTypesAbsent()
    {
        QFETCH(QString, config);
        const auto message = AircraftConfigurationMessage::parse(uR"({"config":{%1}})"_qs.arg(config));
        QVERIFY(message.configuration);
        QCOMPARE(*message.configuration, AircraftConfiguration());
    }

    void anObjectMakesItsBlockPresent()
    {
        const auto message = AircraftConfigurationMessage::parse(
            uR"({"config":{"lights":{"nav_on":1},"engines":{"1":true,"5":{"on":true}}}})"_qs);
        QVERIFY(message.configuration->lights.present);
        QVERIFY(!message.configuration->lights.hasValue());
        QVERIFY(message.configuration->engines.present);
        QVERIFY(!message.configuration->engines.hasValue());
    }

    void differsFieldByField_data()
    {
        QTest::addColumn<QString>("change");
        QTest::addColumn<bool>("expected");
        QTest::newRow("nothing") << u"{}"_qs << false;
        QTest::newRow("full data flag") << uR"({"is_full_data":false})"_qs << false;
        QTest::newRow("empty block") << uR"({"lights":{}})"_qs << false;
        QTest::newRow("gear") << uR"({"gear_down":false})"_qs << true;
        QTest::newRow("flaps") << uR"({"flaps_pct":0})"_qs << true;
        QTest::newRow("spoilers") << uR"({"spoilers_out":false})"_qs << true;
        QTest::newRow("ground") << uR"({"on_ground":false})"_qs << true;
        QTest::newRow("strobe") << uR"({"lights":{"strobe_on":false}})"_qs << true;
        QTest::newRow("nav") << uR"({"lights":{"nav_on":true}})"_qs << true;
        QTest::newRow("engine") << uR"({"engines":{"3":{"on":false}}})"_qs << true;
        QTest::newRow("reverser") << uR"({"engines":{"4":{"is_reversing":false}}})"_qs << true;
    }

    void differsFieldByField()
    {
        QFETCH(QString, change);
        QFETCH(bool, expected);
        const AircraftConfiguration changed =
            *AircraftConfigurationMessage::parse(uR"({"config":%1})"_qs.arg(change)).configuration;
        QCOMPARE(differs(AircraftConfiguration(), changed), expected);
        QCOMPARE(differs(changed, AircraftConfiguration()), expected);
        QVERIFY(!differs(changed, changed));
        AircraftConfiguration fields = changed;
        fields.isFullData.reset(); // tells of the message, not of the aircraft
        QCOMPARE(composed(incrementOf(AircraftConfiguration(), changed)), composed(fields));
        AircraftConfiguration record;
        merge(record, changed);
        QCOMPARE(composed(record), composed(fields));
    }

    void differsInValue()
    {
        AircraftConfiguration other = full();
        QVERIFY(!differs(full(), other));
        other.flapsPct = 30;
        QVERIFY(differs(full(), other));
    }

    void incrementHoldsOnlyWhatChanged()
    {
        AircraftConfiguration now = full();
        now.gearDown = false;
        now.lights.navOn = false;
        now.engines.engine[1].on = false;
        const AircraftConfiguration increment = incrementOf(full(), now);
        QVERIFY(increment.lights.present && increment.engines.present);
        QCOMPARE(composed(incrementOf(now, now)), uR"({"config":{}})"_qs);
        QVERIFY(!increment.isFullData);
        QCOMPARE(composed(increment),
                 uR"({"config":{"lights":{"nav_on":false},"engines":{"2":{"on":false}},"gear_down":false}})"_qs);
    }

    void incrementTakesAPresenceThatChanged()
    {
        AircraftConfiguration now = full();
        now.flapsPct.reset();
        QVERIFY(!incrementOf(full(), now).flapsPct);
        QCOMPARE(incrementOf(now, full()).flapsPct, std::optional(25));
    }

    void mergeTakesWhatIsPresent()
    {
        AircraftConfiguration record = full();
        AircraftConfiguration message;
        message.isFullData = false;
        message.flapsPct = 100;
        merge(record, message);
        AircraftConfiguration expected = full();
        expected.flapsPct = 100;
        QCOMPARE(record, expected);
    }

    void mergeOfOneLightClearsTheOthers()
    {
        AircraftConfiguration record = full();
        merge(record,
              *AircraftConfigurationMessage::parse(uR"({"config":{"lights":{"nav_on":true}}})"_qs).configuration);
        QCOMPARE(record.lights.navOn, std::optional(true));
        QVERIFY(!record.lights.strobeOn && !record.lights.landingOn && !record.lights.taxiOn &&
                !record.lights.beaconOn);
        QCOMPARE(record.engines, full().engines);
    }

    void mergeOfOneEngineCopiesTheBlock()
    {
        AircraftConfiguration record = full();
        merge(record,
              *AircraftConfigurationMessage::parse(uR"({"config":{"engines":{"1":{"on":false}}}})"_qs).configuration);
        QCOMPARE(record.engines.engine[0].on, std::optional(false));
        QVERIFY(!record.engines.engine[1].on);
        QCOMPARE(record.lights, full().lights);
    }

    void mergeOfEmptyBlocksChangesNothing()
    {
        AircraftConfiguration record = full();
        AircraftConfiguration message;
        message.lights.present = true;
        message.engines.present = true;
        merge(record, message);
        QCOMPARE(record, full());
    }
};

TARVO_TEST(AircraftConfigurationTest)
#include "AircraftConfigurationTest.moc"
