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
        PageHarness harness(QStringLiteral("NONE"), {1280, 800}, backends);
        QVERIFY(harness.itemWithText(QStringLiteral("请选择飞行模拟平台")));
        QVERIFY(harness.itemWithText(QStringLiteral("CID：--")));
        harness.click(harness.item(QStringLiteral("xplaneCard"))); // nobody listens; nothing breaks
        QCOMPARE(harness.complaints(), QStringList());
    }

    void withoutBackendsTheSectionsShowPlaceholders_data()
    {
        QTest::addColumn<QString>("section");
        QTest::newRow("overview") << QStringLiteral("dashboard");
        QTest::newRow("simulator") << QStringLiteral("simulator");
        QTest::newRow("server") << QStringLiteral("server");
        QTest::newRow("messages") << QStringLiteral("messages");
    }

    void withoutBackendsTheSectionsShowPlaceholders()
    {
        QFETCH(QString, section);
        QQuickView view;
        QStringList complaints;
        connect(view.engine(), &QQmlEngine::warnings, this, [&](const QList<QQmlError> &errors) {
            for (const QQmlError &error : errors)
                complaints << error.toString();
        });
        view.setInitialProperties({{QStringLiteral("dashboard"), QVariant::fromValue(nullptr)},
                                   {QStringLiteral("simulator"), QVariant::fromValue(nullptr)},
                                   {QStringLiteral("server"), QVariant::fromValue(nullptr)},
                                   {QStringLiteral("messages"), QVariant::fromValue(nullptr)},
                                   {QStringLiteral("currentSection"), section}});
        view.setSource(QUrl(QStringLiteral("qrc:/src/ui/view/pages/MainDashboard.qml")));
        QVERIFY(view.rootObject());
        int placeholders = 0;
        const QList<QQuickItem *> items = view.rootObject()->findChildren<QQuickItem *>();
        for (const QQuickItem *item : items)
            placeholders += item->property("text").toString() == QLatin1String("--");
        QVERIFY(placeholders >= 2);
        QCOMPARE(complaints, QStringList());
    }

    void aModelThatGoesLeavesPlaceholders()
    {
        auto dashboard = std::make_unique<DashboardViewModel>();
        dashboard->setCurrentMode(QStringLiteral("XPLANE"));
        QQuickView view;
        QStringList complaints;
        connect(view.engine(), &QQmlEngine::warnings, this, [&](const QList<QQmlError> &errors) {
            for (const QQmlError &error : errors)
                complaints << error.toString();
        });
        view.rootContext()->setContextProperty(QStringLiteral("dashboardBackend"), dashboard.get());
        view.setSource(QUrl(QStringLiteral("qrc:/src/ui/view/Dashboard.qml")));
        QVERIFY(view.rootObject()->findChild<QObject *>(QStringLiteral("sectionLoader")));
        dashboard.reset();
        QVERIFY(view.rootObject()->findChild<QObject *>(QStringLiteral("xplaneCard")));
        QCOMPARE(complaints, QStringList());
    }

    void theModeChoosesTheRootPage_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<bool>("main");
        QTest::newRow("X-Plane") << QStringLiteral("XPLANE") << true;
        QTest::newRow("MSFS") << QStringLiteral("MSFS") << true;
        QTest::newRow("none") << QStringLiteral("NONE") << false;
        QTest::newRow("unknown") << QStringLiteral("xplane") << false;
    }

    void theModeChoosesTheRootPage()
    {
        QFETCH(QString, mode);
        QFETCH(bool, main);
        PageHarness harness;
        harness.dashboard().setCurrentMode(mode);
        QCOMPARE(harness.item(QStringLiteral("sectionLoader")) != nullptr, main);
        QCOMPARE(harness.item(QStringLiteral("xplaneCard")) != nullptr, !main);
        harness.dashboard().setCurrentMode(QStringLiteral("NONE"));
        QVERIFY(harness.item(QStringLiteral("xplaneCard")));
    }

    void theCardAsksForTheMode_data()
    {
        QTest::addColumn<int>("key");
        QTest::newRow("click") << 0;
        QTest::newRow("Enter") << int(Qt::Key_Return);
        QTest::newRow("space") << int(Qt::Key_Space);
    }

    void theCardAsksForTheMode()
    {
        QFETCH(int, key);
        PageHarness harness;
        QSignalSpy asked(&harness.dashboard(), &DashboardViewModel::modeChangedRequest);
        if (key == 0)
            harness.click(harness.item(QStringLiteral("xplaneCard")));
        else
            QTest::keyClick(&harness.view, Qt::Key(key));
        QCOMPARE(asked, (QList<QVariantList>{{QStringLiteral("XPLANE")}}));
    }

    void logoutReachesTheRoot_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<bool>("main");
        QTest::newRow("mode page") << QStringLiteral("logoutButton") << false;
        QTest::newRow("sidebar") << QStringLiteral("logoutItem") << true;
    }

    void logoutReachesTheRoot()
    {
        QFETCH(QString, button);
        QFETCH(bool, main);
        PageHarness harness(main ? QStringLiteral("XPLANE") : QStringLiteral("NONE"));
        const auto spy = spyOn(harness.view.rootObject(), "logoutRequested()");
        harness.click(harness.item(button));
        QCOMPARE(spy->count(), 1);
    }

    void theCidHasOnePrefix_data()
    {
        QTest::addColumn<QString>("cid");
        QTest::addColumn<QString>("shown");
        QTest::newRow("with a prefix") << QStringLiteral("CID: 1001") << QStringLiteral("CID：1001");
        QTest::newRow("bare") << QStringLiteral("1001") << QStringLiteral("CID：1001");
        QTest::newRow("full-width colon") << QStringLiteral("CID：1001") << QStringLiteral("CID：1001");
        QTest::newRow("none yet") << QStringLiteral("--") << QStringLiteral("CID：--");
        QTest::newRow("empty") << QString() << QStringLiteral("CID：--");
    }

    void theCidHasOnePrefix()
    {
        QFETCH(QString, cid);
        QFETCH(QString, shown);
        PageHarness harness;
        harness.dashboard().setUserInfo(QStringLiteral("甲"), cid, QStringLiteral("S1"));
        QVERIFY(harness.itemWithText(shown));
    }

    void theOverviewShowsTheFlight()
    {
        PageHarness harness(QStringLiteral("XPLANE"));
        harness.fillFlight();
        for (const QString &text : {QStringLiteral("052"), QStringLiteral("452"), QStringLiteral("32,150"),
                                    QStringLiteral("N40°04.8′  E116°35.1′")})
            QVERIFY2(harness.itemWithText(text), qPrintable(text));
        harness.dashboard().setFlightData(-33.99999, -0.5, qQNaN(), 359.7, 0);
        QVERIFY(harness.itemWithText(QStringLiteral("360")));
        QVERIFY(harness.itemWithText(QStringLiteral("S34°00.0′  W000°30.0′")));
        QCOMPARE(harness.complaints(), QStringList());
    }

    void theOverviewShowsTheFormsCallsign()
    {
        PageHarness harness(QStringLiteral("XPLANE"));
        harness.server().setCallsign(QStringLiteral(" cca1234"));
        QVERIFY(harness.itemWithText(QStringLiteral("CCA1234")));
    }

    void aSectionShowsCurrentDataAgain()
    {
        PageHarness harness(QStringLiteral("XPLANE"));
        harness.openSection(QStringLiteral("服务器"));
        harness.server().setCallsign(QStringLiteral("CCA1"));
        harness.openSection(QStringLiteral("总览"));
        QVERIFY(harness.itemWithText(QStringLiteral("CCA1")));
        harness.server().setCallsign(QStringLiteral("CCA2"));
        harness.openSection(QStringLiteral("服务器"));
        QCOMPARE(harness.item(QStringLiteral("callsignField"))->property("text").toString(), QStringLiteral("CCA2"));
    }

    void whatComesFromOutsideIsPlainText()
    {
        PageHarness harness(QStringLiteral("XPLANE"));
        const QString hostile = QStringLiteral("<b>甲</b><img src='file:///etc/passwd'>");
        harness.dashboard().setUserInfo(hostile, hostile, hostile);
        harness.dashboard().setRecentFlights({{hostile}, {}});
        harness.dashboard().setLeaderboard({{.name = hostile}}, {{}});
        QVERIFY(harness.itemWithText(hostile));
        allPlain(harness);
        harness.openSection(QStringLiteral("服务器"));
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
