#include "PageHarness.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QMetaMethod>
#include <QObject>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlError>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using tarvo::test::PageHarness;
using tarvo::ui::DashboardViewModel;
using tarvo::ui::ServerPageViewModel;

namespace {

/// Spies on a signal that only QML knows.
std::unique_ptr<QSignalSpy> spyOn(QObject *object, const char *signature)
{
    return std::make_unique<QSignalSpy>(object,
                                        object->metaObject()->method(object->metaObject()->indexOfSignal(signature)));
}

} // namespace

/// What the pages do when somebody clicks and types.
class PageBehaviourTest : public QObject
{
    Q_OBJECT

private slots:
    void resourcesAreThere_data()
    {
        QTest::addColumn<QString>("path");
        for (const char *path :
             {":/src/ui/view/Dashboard.qml", ":/src/ui/view/qmldir", ":/resources/logo.png", ":/resources/signpic.jpg",
              ":/resources/2020.jpg", ":/resources/xplane.png", ":/resources/theme/noise.png",
              ":/resources/sounds/connect.mp3", ":/resources/sounds/disconnect.mp3", ":/resources/sounds/manager.mp3"})
            QTest::newRow(path) << QString::fromLatin1(path);
    }

    void resourcesAreThere()
    {
        QFETCH(QString, path);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.size() > 100);
    }

    void withoutBackendsTheModePageShowsPlaceholders_data()
    {
        QTest::addColumn<PageHarness::Backends>("backends");
        QTest::newRow("null") << PageHarness::Backends::Null;
        QTest::newRow("not named") << PageHarness::Backends::Absent;
    }

    void withoutBackendsTheModePageShowsPlaceholders()
    {
        QFETCH(PageHarness::Backends, backends);
        PageHarness harness(u"NONE"_qs, {1280, 800}, backends);
        QVERIFY(harness.itemWithText(u"请选择飞行模拟平台"_qs));
        QVERIFY(harness.itemWithText(u"CID：--"_qs));
        harness.click(harness.item(u"xplaneCard"_qs)); // nobody listens; nothing breaks
        QCOMPARE(harness.complaints(), QStringList());
    }

    void withoutBackendsTheSectionsShowPlaceholders_data()
    {
        QTest::addColumn<QString>("section");
        QTest::newRow("overview") << u"dashboard"_qs;
        QTest::newRow("simulator") << u"simulator"_qs;
        QTest::newRow("server") << u"server"_qs;
        QTest::newRow("voice") << u"voice"_qs;
        QTest::newRow("messages") << u"messages"_qs;
        QTest::newRow("settings") << u"settings"_qs;
    }

    void withoutBackendsTheSectionsShowPlaceholders()
    {
        QFETCH(QString, section);
        QQuickView view;
        const QSignalSpy complaints(view.engine(), &QQmlEngine::warnings);
        view.setInitialProperties({{u"dashboard"_qs, QVariant::fromValue(nullptr)},
                                   {u"simulator"_qs, QVariant::fromValue(nullptr)},
                                   {u"server"_qs, QVariant::fromValue(nullptr)},
                                   {u"messages"_qs, QVariant::fromValue(nullptr)},
                                   {u"voice"_qs, QVariant::fromValue(nullptr)},
                                   {u"settings"_qs, QVariant::fromValue(nullptr)},
                                   {u"voiceSettings"_qs, QVariant::fromValue(nullptr)},
                                   {u"status"_qs, QVariant::fromValue(nullptr)},
                                   {u"sounds"_qs, QVariant::fromValue(nullptr)},
                                   {u"tour"_qs, QVariant::fromValue(nullptr)},
                                   {u"leave"_qs, QVariant::fromValue(nullptr)},
                                   {u"overview"_qs, QVariant::fromValue(nullptr)},
                                   {u"currentSection"_qs, section}});
        view.setSource(QUrl(u"qrc:/src/ui/view/pages/MainDashboard.qml"_qs));
        QVERIFY(view.rootObject());
        int placeholders = 0;
        const QList<QQuickItem *> items = view.rootObject()->findChildren<QQuickItem *>();
        for (const QQuickItem *item : items)
            placeholders += item->property("text").toString() == QLatin1String("--");
        QVERIFY(placeholders >= 2);
        QCOMPARE(complaints.size(), 0);
    }

    void aModelThatGoesLeavesPlaceholders()
    {
        auto dashboard = std::make_unique<DashboardViewModel>();
        dashboard->setCurrentMode(u"XPLANE"_qs);
        QQuickView view;
        const QSignalSpy complaints(view.engine(), &QQmlEngine::warnings);
        view.rootContext()->setContextProperty(u"dashboardBackend"_qs, dashboard.get());
        view.setSource(QUrl(u"qrc:/src/ui/view/Dashboard.qml"_qs));
        QVERIFY(view.rootObject()->findChild<QObject *>(u"sectionLoader"_qs));
        dashboard.reset();
        QVERIFY(view.rootObject()->findChild<QObject *>(u"xplaneCard"_qs));
        QCOMPARE(complaints.size(), 0);
    }

    void theModeChoosesTheRootPage_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<bool>("main");
        QTest::newRow("X-Plane") << u"XPLANE"_qs << true;
        QTest::newRow("MSFS") << u"MSFS"_qs << true;
        QTest::newRow("none") << u"NONE"_qs << false;
        QTest::newRow("unknown") << u"xplane"_qs << false;
    }

    void theModeChoosesTheRootPage()
    {
        QFETCH(QString, mode);
        QFETCH(bool, main);
        PageHarness harness;
        harness.dashboard().setCurrentMode(mode);
        QCOMPARE(harness.item(u"sectionLoader"_qs) != nullptr, main);
        QCOMPARE(harness.item(u"xplaneCard"_qs) != nullptr, !main);
        harness.dashboard().setCurrentMode(u"NONE"_qs);
        QVERIFY(harness.item(u"xplaneCard"_qs));
    }

    void theCardAsksForTheMode_data()
    {
        QTest::addColumn<QString>("card");
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("mode");
        QTest::newRow("X-Plane, click") << u"xplaneCard"_qs << 0 << u"XPLANE"_qs;
        QTest::newRow("X-Plane, Enter") << u"xplaneCard"_qs << int(Qt::Key_Return) << u"XPLANE"_qs;
        QTest::newRow("X-Plane, space") << u"xplaneCard"_qs << int(Qt::Key_Space) << u"XPLANE"_qs;
        QTest::newRow("MSFS, click") << u"msfsCard"_qs << 0 << u"MSFS"_qs;
        QTest::newRow("MSFS, Enter") << u"msfsCard"_qs << int(Qt::Key_Return) << u"MSFS"_qs;
    }

    void theCardAsksForTheMode()
    {
        QFETCH(QString, card);
        QFETCH(int, key);
        QFETCH(QString, mode);
        PageHarness harness;
        QSignalSpy asked(&harness.dashboard(), &DashboardViewModel::modeChangedRequest);
        if (key == 0) {
            harness.click(harness.item(card));
        } else {
            harness.item(card)->forceActiveFocus();
            QTest::keyClick(&harness.view, Qt::Key(key));
        }
        QCOMPARE(asked, (QList<QVariantList>{{mode}}));
    }

    void logoutReachesTheRoot_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<bool>("main");
        QTest::newRow("mode page") << u"logoutButton"_qs << false;
        QTest::newRow("sidebar") << u"logoutItem"_qs << true;
    }

    void logoutReachesTheRoot()
    {
        QFETCH(QString, button);
        QFETCH(bool, main);
        PageHarness harness(main ? u"XPLANE"_qs : u"NONE"_qs);
        const auto spy = spyOn(harness.view.rootObject(), "logoutRequested()");
        harness.click(harness.item(button));
        QCOMPARE(spy->count(), 1);
    }

    void theCidHasOnePrefix_data()
    {
        QTest::addColumn<QString>("cid");
        QTest::addColumn<QString>("shown");
        QTest::newRow("with a prefix") << u"CID: 1001"_qs << u"CID：1001"_qs;
        QTest::newRow("bare") << u"1001"_qs << u"CID：1001"_qs;
        QTest::newRow("full-width colon") << u"CID：1001"_qs << u"CID：1001"_qs;
        QTest::newRow("none yet") << u"--"_qs << u"CID：--"_qs;
        QTest::newRow("empty") << QString() << u"CID：--"_qs;
    }

    void theCidHasOnePrefix()
    {
        QFETCH(QString, cid);
        QFETCH(QString, shown);
        PageHarness harness;
        harness.dashboard().setUserInfo(u"甲"_qs, cid, u"S1"_qs);
        QVERIFY(harness.itemWithText(shown));
    }

    void theOverviewShowsTheFlight()
    {
        PageHarness harness(u"XPLANE"_qs);
        harness.fillFlight();
        for (const QString &text : {u"052"_qs, u"452"_qs, u"32,150"_qs, u"N40°04.8′  E116°35.1′"_qs})
            QVERIFY2(harness.itemWithText(text), qPrintable(text));
        harness.dashboard().setFlightData(-33.99999, -0.5, qQNaN(), 359.7, 0);
        QVERIFY(harness.itemWithText(u"360"_qs));
        QVERIFY(harness.itemWithText(u"S34°00.0′  W000°30.0′"_qs));
        QCOMPARE(harness.complaints(), QStringList());
    }

    void theOverviewShowsTheFormsCallsign()
    {
        PageHarness harness(u"XPLANE"_qs);
        harness.server().setCallsign(u" cca1234"_qs);
        QVERIFY(harness.itemWithText(u"CCA1234"_qs));
    }

    void aSectionShowsCurrentDataAgain()
    {
        PageHarness harness(u"XPLANE"_qs);
        harness.openSection(u"服务器"_qs);
        harness.server().setCallsign(u"CCA1"_qs);
        harness.openSection(u"总览"_qs);
        QVERIFY(harness.itemWithText(u"CCA1"_qs));
        harness.server().setCallsign(u"CCA2"_qs);
        harness.openSection(u"服务器"_qs);
        QCOMPARE(harness.item(u"callsignField"_qs)->property("text").toString(), u"CCA2"_qs);
    }

    void whatComesFromOutsideIsPlainText()
    {
        PageHarness harness(u"XPLANE"_qs);
        const QString hostile = u"<b>甲</b><img src='file:///etc/passwd'>"_qs;
        harness.dashboard().setUserInfo(hostile, hostile, hostile);
        harness.dashboard().setRecentFlights({{hostile}, {}});
        harness.dashboard().setLeaderboard({{.name = hostile}}, {{}});
        QVERIFY(harness.itemWithText(hostile));
        allPlain(harness);
        harness.openSection(u"服务器"_qs);
        harness.server().addRecentEvent(hostile, hostile, hostile);
        harness.server().appendLog(hostile);
        QVERIFY(harness.itemWithText(hostile));
        allPlain(harness);
        QCOMPARE(harness.complaints(), QStringList());
    }

private:
    static void allPlain(const PageHarness &harness)
    {
        const QList<QQuickItem *> texts = harness.texts();
        for (const QQuickItem *text : texts)
            if (!text->inherits("QQuickPlaceholderText")) // hints are the program's own
                QCOMPARE(text->property("textFormat").toInt(), int(Qt::PlainText));
    }
};

TARVO_TEST(PageBehaviourTest)
#include "PageBehaviourTest.moc"
