#include "e2e/Stage.h"
#include "e2e/TrafficLines.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using namespace tarvo::test;
using State = model::RemoteAircraft::State;

namespace {

practice::PracticeSettings settingsWithResidents()
{
    practice::PracticeSettings settings = Network::quietSettings();
    settings.residents.present = true;
    return settings;
}

/// A stage among the pilots and controllers whom the practice network has by default.
struct Field : Stage
{
    QStringList added; ///< callsigns, as the plugin says that it draws them

    explicit Field(Protocol protocol) : Stage(protocol, settingsWithResidents())
    {
        QObject::connect(&plugin(), &practice::PluginStandIn::messageSent, &plugin(),
                         [this](const QString &name, const QVariantList &arguments) {
                             if (name == u"ADDED"_qs)
                                 added << arguments.value(0).toString();
                         });
    }

    /// Half a second, in which the residents do what is due.
    bool pass()
    {
        simulatorClock.advance(500);
        network.practice.residents()->step();
        return settle();
    }

    /// Callsign, airline and type of each that is drawn, in alphabetical order.
    QStringList drawn()
    {
        QStringList list;
        for (const practice::DrawnAircraft &aircraft : plugin().aircraft())
            list << QStringList{aircraft.callsign, aircraft.airline, aircraft.type}.join(u' ');
        list.sort();
        return list;
    }

    bool allAreInTheList()
    {
        const QList<model::RemoteAircraft> list = client.traffic->aircraft();
        return list.size() == 4 && std::all_of(list.begin(), list.end(), [](const model::RemoteAircraft &aircraft) {
                   return aircraft.state == State::InSimulator;
               });
    }
};

} // namespace

/// What somebody meets who starts the program for the first time.
class DefaultResidentsTest : public QObject
{
    Q_OBJECT

private slots:
    void isThere_data()
    {
        QTest::addColumn<Protocol>("protocol");
        QTest::newRow("classic") << Protocol::Classic;
        QTest::newRow("token") << Protocol::Token;
    }

    void isThere()
    {
        QFETCH(Protocol, protocol);
        Field field(protocol);
        QVERIFY(field.open() && field.goOnline());
        for (int halfSeconds = 0; halfSeconds < 40 && !field.allAreInTheList(); ++halfSeconds)
            QVERIFY(field.pass());
        QVERIFY(field.allAreInTheList());

        const QStringList pilots{u"BAW38 BAW B789"_qs, u"CCA908 CCA A333"_qs, u"CES2117 CES B738"_qs,
                                 u"CHH7182 CHH E190"_qs};
        QCOMPARE(field.drawn(), pilots);
        for (const QString &pilot : pilots) {
            const QString callsign = pilot.section(u' ', 0, 0);
            QVERIFY(field.added.contains(callsign));
            QCOMPARE(field.inNetworkTable(callsign).state, State::InSimulator);
        }
        QCOMPARE(field.inTrafficList(u"CCA908"_qs).remoteModelHint, u"A333_CCA"_qs);
        QCOMPARE(field.inTrafficList(u"CCA908"_qs).livery, u"SWIFT_A333_CCA"_qs);
        knowsOneByHisPlanAlone(field, protocol);
        listsThreeStations(field);
    }

private:
    /// His client has no answer to the question for the type.
    static void knowsOneByHisPlanAlone(Field &field, Protocol protocol)
    {
        const QString asked = u"#SBAB1:BAW38:PIR"_qs;
        QVERIFY(field.network.linesOf(asked).size() >= 1);
        QVERIFY(field.network.linesOf(u"$CQAB1:SERVER:FP:BAW38"_qs).size() >= 1);
        QCOMPARE(!field.network.linesOf(u"#TMAB1:SERVER:FP:BAW38:GET"_qs).isEmpty(), protocol == Protocol::Token);
        QCOMPARE(field.inNetworkTable(u"BAW38"_qs).typeCode, u"B789"_qs);
    }

    static void listsThreeStations(Field &field)
    {
        QVERIFY(field.settle());
        field.takeMessages();
        QVERIFY(field.client.fire("controllerTimer") && field.settle());
        const QVariantList tower{u"ZBAA_TWR"_qs, u"Liu Fang"_qs, u"118.500"_qs, 118500};
        const QVariantList ground{u"ZBAA_GND"_qs, u"Sun Hao"_qs, u"121.900"_qs, 121900};
        const QVariantList approach{u"ZBAA_APP"_qs, u"Ma Li"_qs, u"119.000"_qs, 119000};
        const QStringList lists =
            field.takeMessages().filter(QRegularExpression(u"^ATC "_qs)); // the aircraft go on moving meanwhile
        QCOMPARE(lists, told({stations({QVariant(tower), QVariant(ground), QVariant(approach)})}));
    }
};

TARVO_TEST(DefaultResidentsTest)
#include "DefaultResidentsTest.moc"
