#include "ui/SimulatorFeed.h"

#include "manager/Session.h"
#include "support/TestRegistry.h"
#include "ui/viewmodel/SimulatorPageViewModel.h"

#include <functional>

using namespace tarvo;
using test::Session;
using ui::viewmodel::SimulatorPageViewModel;

namespace {

/// The simulator page's model over a session.
struct Desk
{
    Session session;
    SimulatorPageViewModel page;
    ui::SimulatorFeed feed{session.manager, page};

    QTimer &trafficTimer() { return *feed.findChild<QTimer *>(u"trafficTimer"_qs); }
};

} // namespace

using Wish = std::function<void(SimulatorPageViewModel &)>;
Q_DECLARE_METATYPE(Wish)

class SimulatorFeedTest : public QObject
{
    Q_OBJECT

private slots:
    void readsMegahertz_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<quint32>("kilohertz"); // 0: refused
        QTest::newRow("as the page hints") << u"121.800"_qs << 121800U;
        QTest::newRow("blanks around it") << u" 118.275 "_qs << 118275U;
        QTest::newRow("one decimal") << u"124.5"_qs << 124500U;
        QTest::newRow("no decimals") << u"122"_qs << 122000U;
        QTest::newRow("rounded, not cut") << u"118.025"_qs << 118025U;
        QTest::newRow("empty") << QString() << 0U;
        QTest::newRow("letters") << u"tower"_qs << 0U;
        QTest::newRow("a comma") << u"121,800"_qs << 0U;
        QTest::newRow("zero") << u"0"_qs << 0U;
        QTest::newRow("negative") << u"-121.8"_qs << 0U;
        QTest::newRow("kHz instead") << u"121800"_qs << 0U;
        QTest::newRow("not a number") << u"nan"_qs << 0U;
        QTest::newRow("infinite") << u"inf"_qs << 0U;
    }
    void readsMegahertz()
    {
        QFETCH(QString, text);
        QFETCH(quint32, kilohertz);
        QCOMPARE(ui::comFrequencyKhz(text).value_or(0), kilohertz);
    }

    void readsTransponderCodes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("code"); // -1: refused
        QTest::newRow("emergency") << u"7700"_qs << 7700;
        QTest::newRow("blanks around it") << u" 2000\n"_qs << 2000;
        QTest::newRow("two digits") << u"07"_qs << 7;
        QTest::newRow("zeros") << u"0000"_qs << 0;
        QTest::newRow("an eight") << u"8000"_qs << -1;
        QTest::newRow("five digits") << u"12345"_qs << -1;
        QTest::newRow("a letter") << u"77a"_qs << -1;
        QTest::newRow("a sign") << u"-1"_qs << -1;
        QTest::newRow("empty") << QString() << -1;
    }
    void readsTransponderCodes()
    {
        QFETCH(QString, text);
        QFETCH(int, code);
        QCOMPARE(ui::transponderCode(text).value_or(-1), code);
    }

    void wishesReachTheSimulator_data()
    {
        using Page = SimulatorPageViewModel;
        QTest::addColumn<Wish>("wish");
        QTest::addColumn<QStringList>("calls");
        QTest::newRow("reconnect") << Wish([](Page &page) { page.requestReconnect(); })
                                   << QStringList{u"reconnectSimulator"_qs};
        QTest::newRow("COM1") << Wish([](Page &page) { page.requestSetCom1Frequency(u"121.800"_qs); })
                              << QStringList{u"setCom1Frequency 121800"_qs};
        QTest::newRow("COM2") << Wish([](Page &page) { page.requestSetCom2Frequency(u"124.550"_qs); })
                              << QStringList{u"setCom2Frequency 124550"_qs};
        QTest::newRow("COM1, no number") << Wish([](Page &page) { page.requestSetCom1Frequency(u"12x"_qs); })
                                         << QStringList();
        QTest::newRow("transponder") << Wish([](Page &page) { page.requestSetTransponderCode(u"7000"_qs); })
                                     << QStringList{u"setTransponderCode 7000"_qs};
        QTest::newRow("transponder, no code")
            << Wish([](Page &page) { page.requestSetTransponderCode(u"9"_qs); }) << QStringList();
        QTest::newRow("ident") << Wish([](Page &page) { page.requestTransponderIdent(); })
                               << QStringList{u"transponderIdent"_qs};
        QTest::newRow("mode C") << Wish([](Page &page) { page.requestTransponderModeToggle(); })
                                << QStringList{u"transponderModeToggle"_qs};
    }
    void wishesReachTheSimulator()
    {
        QFETCH(Wish, wish);
        QFETCH(QStringList, calls);
        Desk desk;
        wish(desk.page); // there is no simulator yet: nothing to do, and nothing to fall over
        desk.session.addSimulator();
        wish(desk.page);
        QCOMPARE(desk.session.sim->calls, calls);
    }

    void thePageShowsTheSession()
    {
        Desk desk;
        desk.session.addSimulator();
        model::UserAircraftData aircraft = Session::standing();
        aircraft.heading = 271;
        emit desk.session.sim->userAircraftDataChanged(aircraft);
        QCOMPARE(desk.page.heading(), 271.0);
        emit desk.session.sim->pluginVersionChecked(true);
        emit desk.session.sim->cslValidationChecked(false);
        emit desk.session.sim->trafficMappingStatusChanged(u"12 个模型"_qs);
        emit desk.session.sim->xplaneVersionUpdated(120100);
        QCOMPARE(desk.page.pluginStatusText(), u"有效"_qs);
        QCOMPARE(desk.page.cslStatusText(), u"无效"_qs);
        QCOMPARE(desk.page.trafficMappingStatusText(), u"12 个模型"_qs);
        QCOMPARE(desk.page.xplaneVersionText(), u"X-Plane 120100"_qs);
        const QVariantList contacts{QVariantMap{{u"label"_qs, u"CES1"_qs}}};
        emit desk.session.sim->trafficSnapshotChanged(contacts);
        QCOMPARE(desk.page.trafficContacts(), contacts);

        desk.session.manager->setSimulator(std::make_shared<test::FakeSimulator>());
        QCOMPARE(desk.page.pluginStatusText(), u"未知"_qs);
        QCOMPARE(desk.page.xplaneVersionText(), u"未获取"_qs);
    }

    void trafficIsLookedAtWhileConnected()
    {
        Desk desk;
        QVERIFY(!desk.trafficTimer().isActive());
        emit desk.session.manager->networkConnected(u"AB1"_qs);
        QVERIFY(desk.trafficTimer().isActive());
        emit desk.session.manager->networkDisconnected(false);
        QVERIFY(!desk.trafficTimer().isActive());
    }
};

TARVO_TEST(SimulatorFeedTest)
#include "SimulatorFeedTest.moc"
