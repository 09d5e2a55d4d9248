#include "ui/LastConnection.h"

#include "StateFile.h"
#include "model/ConnectInfo.h"
#include "support/TestRegistry.h"
#include "ui/MainStage.h"

#include <QTemporaryDir>
#include <QTest>

using tarvo::StateFile;
using tarvo::StringKey;
using tarvo::model::ConnectInfo;
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
        QTest::addColumn<ConnectInfo>("last");
        QTest::addColumn<QStringList>("offered");
        QTest::newRow("a pilot") << ConnectInfo{u"CCA1"_qs, u"B738"_qs, u"AB-CD"_qs, false}
                                 << QStringList{u"CCA1"_qs, u"B738"_qs, u"AB-CD"_qs};
        QTest::newRow("no SELCAL") << ConnectInfo{u"CCA1"_qs, u"B738"_qs, {}, false}
                                   << QStringList{u"CCA1"_qs, u"B738"_qs, QString()};
        QTest::newRow("an observer keeps the type")
            << ConnectInfo{u"CCA1"_qs, {}, {}, true} << QStringList{u"CCA1"_qs, u"A320"_qs, QString()};
        QTest::newRow("an observer with a type")
            << ConnectInfo{u"CCA1"_qs, u"B738"_qs, {}, true} << QStringList{u"CCA1"_qs, u"B738"_qs, QString()};
        QTest::newRow("a file that somebody has written") << ConnectInfo{QString(900, u'X'), u"B738"_qs, {}, false}
                                                          << QStringList{QString(12, u'X'), u"B738"_qs, QString()};
    }

    void isOfferedAgain()
    {
        QFETCH(const ConnectInfo, last);
        QFETCH(const QStringList, offered);
        const QTemporaryDir folder;
        tarvo::AppConfig config(folder.path());
        tarvo::network::SwiftAircraftIcaoService icao(config);
        StateFile state(folder.path());
        rememberConnection({u"CES2352"_qs, u"A320"_qs, u"EF-GH"_qs, false}, state);
        rememberConnection(last, state);
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
