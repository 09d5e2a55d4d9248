#include "Contrast.h"
#include "PageHarness.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QJSValue>
#include <QObject>
#include <QTest>

using tarvo::test::PageHarness;
using tarvo::test::paleTexts;
using tarvo::ui::LinkState;

/// The pages as drawn: at every size, with and without data, nothing is cut and nothing complains.
class PageLookTest : public QObject
{
    Q_OBJECT

private slots:
    void everySizeShowsTheWholeText_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QSize>("size");
        const QSize sizes[] = {{1000, 700}, {1280, 800}, {1920, 1080}};
        const char *const pages[] = {"modes",     "overview",          "overview-offline", "overview-failed",
                                     "server",    "server-connected",  "server-error",     "server-failed",
                                     "simulator", "simulator-offline", "simulator-msfs",   "simulator-crowd",
                                     "voice",     "voice-offline",     "settings",         "settings-wrong"};
        for (const char *page : pages)
            for (const QSize &size : sizes)
                QTest::addRow("%s %dx%d", page, size.width(), size.height()) << QString::fromLatin1(page) << size;
    }

    void everySizeShowsTheWholeText()
    {
        QFETCH(QString, page);
        QFETCH(QSize, size);
        PageHarness harness(page == QLatin1String("modes") ? u"NONE"_qs : u"XPLANE"_qs, size);
        harness.fillAccount();
        harness.dashboard().setSimulatorState(false, LinkState::Connecting);
        if (page == QLatin1String("overview") || page == QLatin1String("server-connected")) {
            harness.fillFlight();
            harness.connectToNetwork();
        }
        if (page == QLatin1String("overview-failed"))
            failEverything(harness);
        if (page.startsWith(QLatin1String("server")))
            harness.openSection(u"服务器"_qs);
        if (page.startsWith(QLatin1String("simulator")))
            showSimulator(harness, page);
        if (page == QLatin1String("voice"))
            harness.fillVoice();
        if (page.startsWith(QLatin1String("voice")))
            harness.openSection(u"语音服务"_qs);
        if (page == QLatin1String("server-error"))
            harness.server().setCallsign(u"呼号 有空格"_qs);
        if (page == QLatin1String("server-failed")) {
            harness.server().setCallsign(u"CES2352"_qs);
            harness.server().setFailure(u"服务器报告：Callsign already in use: CES2352"_qs);
            harness.status().networkFailed(u"服务器报告：Callsign already in use: CES2352"_qs);
        }
        if (page.startsWith(QLatin1String("settings")))
            showSettings(harness, page.endsWith(QLatin1String("wrong")));
        const QImage picture = harness.grab(u"%1-%2"_qs.arg(page).arg(size.width()));
        QVERIFY(!picture.isNull());
        if (page != QLatin1String("modes")) // which stands on photographs
            seeNothingPale(harness.texts(), picture);
        for (const QString &name : {u"simulatorScroll"_qs, u"voiceScroll"_qs, u"settingsScroll"_qs}) {
            QQuickItem *scroll = harness.item(name);
            if (!scroll)
                continue;
            auto *flickable = scroll->property("contentItem").value<QQuickItem *>();
            flickable->setProperty("contentY", flickable->property("contentHeight").toReal() - flickable->height());
            harness.grab(u"%1-%2-end"_qs.arg(page).arg(size.width()));
        }
        const QList<QQuickItem *> texts = harness.texts();
        QVERIFY(texts.size() > 3);
        for (QQuickItem *text : texts)
            QVERIFY2(isWhole(text) || text->objectName() == QLatin1String("statusReason"),
                     qPrintable(text->property("text").toString()));
        QCOMPARE(harness.complaints(), QStringList());
    }

private:
    /// The longest status texts, beside a long name.
    static void failEverything(PageHarness &harness)
    {
        harness.dashboard().setUserInfo(u"Alexander von Humboldt"_qs, u"CID: 1001"_qs, u"高级教员 (I3)"_qs);
        harness.dashboard().setSimulatorState(false, LinkState::Failed);
        harness.dashboard().setSimulatorFailure(u"模拟器未启动或连接服务异常，请联系TARVO技术部"_qs);
        harness.dashboard().setServerState(false, LinkState::ForcedOut);
        harness.status().setSimulator(false, LinkState::Failed);
        harness.status().simulatorFailed(u"模拟器未启动或连接服务异常，请联系TARVO技术部"_qs);
        harness.status().setNetwork(true, LinkState::Connected);
        harness.status().setNetwork(false, LinkState::ForcedOut);
        harness.status().networkFailed(
            u"被强制断开：You have been removed from the network by a supervisor: unattended connection"_qs);
    }

    static void showSimulator(PageHarness &harness, const QString &page)
    {
        if (page == QLatin1String("simulator-offline")) {
            harness.simulator().setMode(u"XPLANE"_qs);
            harness.simulator().setSimulatorState(false, LinkState::Connecting);
        } else {
            harness.fillSimulator(page.endsWith(QLatin1String("msfs")) ? u"MSFS"_qs : u"XPLANE"_qs);
            harness.fillTraffic(page.endsWith(QLatin1String("crowd")) ? 300 : 6);
        }
        harness.openSection(u"模拟器"_qs);
    }

    static void showSettings(PageHarness &harness, bool wrong)
    {
        if (wrong)
            harness.config().set(tarvo::config::voiceInputDevice, u"A microphone that was here yesterday (hw:7,1)"_qs);
        harness.fillVoiceSettings();
        harness.settings().setProperty("username", u"1001"_qs);
        harness.settings().setProperty("password", u"practice"_qs);
        harness.settings().setProperty("realname", u"欧阳靖远"_qs);
        if (wrong) {
            harness.settings().setUdpPortText(u"490000"_qs);
            harness.settings().setProperty(
                "xplaneCslPathsText",
                u"/home/pilot/X-Plane 12/Resources/plugins/CSL/Bluebell_with_a_very_long_name\n/nowhere"_qs);
            harness.settings().setProperty("msfsCommunityPath2024", u"D:/Community"_qs);
            harness.voiceSettings().startPttListening();
        } else {
            harness.settings().saveAll();
        }
        harness.openSection(u"设置"_qs);
        if (wrong)
            TRY_COMPARE(harness.settings().hints().size(), 3);
    }

    void seeNothingPale(const QList<QQuickItem *> &texts, const QImage &picture) const
    {
        const QStringList pale = paleTexts(texts, picture, muted);
        QVERIFY2(pale.isEmpty(), qPrintable(pale.join(u"; "_qs)));
    }

    static bool isWhole(QQuickItem *text)
    {
        return !text->property("truncated").toBool() &&
               text->property("contentWidth").toReal() <= text->width() + 1.0 && pixelSize(text) >= smallestReadable;
    }

    /// As drawn: a text may shrink to fit.
    static int pixelSize(QQuickItem *text)
    {
        return text->property("fontInfo").value<QJSValue>().property(u"pixelSize"_qs).toInt();
    }

    static constexpr int smallestReadable = 10;
    const QColor muted = u"#94A3B8"_qs;
};

TARVO_TEST(PageLookTest)
#include "PageLookTest.moc"
