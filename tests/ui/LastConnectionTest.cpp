#include "ui/LastConnection.h"

#include "StateFile.h"
#include "model/ConnectInfo.h"
#include "support/TestRegistry.h"
#include "ui/MainStage.h"

#include <QTemporaryDir>
#include <QTest>

using tarvo::StateFile;
using tarvo::StringKey;
using tarvo::test::MainStage;
using tarvo::ui::MainWindow;
using tarvo::ui::rememberConnection;
using tarvo::ui::ServerPageViewModel;

namespace {

QStringList formOf(const ServerPageViewModel &form)
{
    return {form.callsign(), form.typeCode(), form.selcal()};
}

} // namespace

/// The connect form begins with what the pilot last flew as.
class LastConnectionTest : public QObject
{
    Q_OBJECT

private slots:
    void isOfferedAgain_data()
    {
        QTest::addColumn<QStringList>("last");
        QTest::addColumn<bool>("observer");
        QTest::addColumn<QStringList>("offered");
        const auto row = [](const char *name, bool observer, const QStringList &last, const QStringList &offered) {
            QTest::newRow(name) << last << observer << offered;
        };
        row("a pilot", false, {u"CCA1"_qs, u"B738"_qs, u"AB-CD"_qs}, {u"CCA1"_qs, u"B738"_qs, u"AB-CD"_qs});
        row("no SELCAL", false, {u"CCA1"_qs, u"B738"_qs, {}}, {u"CCA1"_qs, u"B738"_qs, {}});
        row("an observer keeps the type", true, {u"CCA1"_qs, {}, {}}, {u"CCA1"_qs, u"A320"_qs, {}});
        row("an observer with a type", true, {u"CCA1"_qs, u"B738"_qs, {}}, {u"CCA1"_qs, u"B738"_qs, {}});
        row("a type that is written out", false, {u"CCA1"_qs, u"CESSNA SKYHAWK"_qs, {}},
            {u"CCA1"_qs, u"CESSNA SKYHAWK"_qs, {}});
        row("a file that somebody has written", false, {QString(900, u'X'), QString(900, u'Y'), QString(900, u'Z')},
            {QString(12, u'X'), QString(40, u'Y'), QString(12, u'Z')});
    }

    void isOfferedAgain()
    {
        QFETCH(const QStringList, last);
        QFETCH(const bool, observer);
        QFETCH(const QStringList, offered);
        const QTemporaryDir folder;
        tarvo::AppConfig config(folder.path());
        tarvo::network::SwiftAircraftIcaoService icao(config);
        StateFile state(folder.path());
        rememberConnection({u"CES2352"_qs, u"A320"_qs, u"EF-GH"_qs, false}, state);
        rememberConnection({last[0], last[1], last[2], observer}, state);
        ServerPageViewModel form(icao);
        tarvo::ui::offerConnection(form, StateFile(folder.path()));
        QCOMPARE(formOf(form), offered);
    }

    void theWindowNotesWhatWasAccepted()
    {
        MainStage stage;
        QCOMPARE(formOf(stage.server()), (QStringList{QString(), QString(), QString()}));
        stage.observe(u"CES2352"_qs); // an attempt alone isn't
        QCOMPARE(stage.config.state().get(StringKey{.key = "Connection/Callsign"}), QString());
        emit stage.network->networkConnected(u"CES2352"_qs);
        MainWindow next(stage.network, stage.controllers, stage.config, stage.api, stage.icao, stage.endpoints);
        QCOMPARE(formOf(next.server()), (QStringList{u"CES2352"_qs, u"B738"_qs, u"AB-CD"_qs}));
    }
};

TARVO_TEST(LastConnectionTest)
#include "LastConnectionTest.moc"
