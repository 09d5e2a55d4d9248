#include "model/RadioStackState.h"
#include "support/LogCapture.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"
#include "ui/MainStage.h"
#include "voice/client/VoiceClient.h"
#include "voice/engine/AudioHandler.h"

#include <QGuiApplication>
#include <QObject>
#include <QQmlContext>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <optional>

using namespace tarvo;
using test::headingFor;
using test::LogCapture;
using test::MainStage;

/// Voice in the main window, and its small window.
class MainWindowVoiceTest : public QObject
{
    Q_OBJECT

private slots:
    void thePagesFindItUnderBothNames_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("short") << u"voiceBackend"_qs;
        QTest::newRow("long") << u"voiceServiceBackend"_qs;
    }

    void thePagesFindItUnderBothNames()
    {
        QFETCH(QString, name);
        MainStage stage;
        QCOMPARE(stage.window.view()->rootContext()->contextProperty(name).value<QObject *>(), &stage.window.voice());
    }

    void theSessionReachesThePage()
    {
        MainStage stage;
        emit stage.network->radioStatesUpdate({.com1Frequency = 118500, .com1StandbyFrequency = 121500});
        QCOMPARE(stage.window.voice().com1Freq(), u"118.5 MHz / 121.5 MHz"_qs);
        stage.window.voice().setPtt(true);
        emit stage.network->disableVoiceTransmit();
        QVERIFY(!stage.window.voice().pttActive());
        QCOMPARE(stage.window.voice().eventLog().size(), 1);
    }

    void theEngineGetsTheDevicesOfALateSoundServer()
    {
        MainStage stage;
        const QString asked = u"No input device selected and no default device found"_qs;
        std::optional<LogCapture> log(std::in_place);
        voice::AudioHandler *audio = stage.network->voiceClient().audioHandler();
        TRY_VERIFY(log->contains(asked));
        log.emplace();
        emit audio->devicesChanged();
        TRY_VERIFY(log->contains(asked));
    }

    void theSmallWindowIsFedWhileTheMainOneIsMinimised()
    {
        MainStage stage;
        stage.window.show();
        emit stage.network->simulatorDataUpdated(headingFor(1));
        stage.window.voice().setMiniMode(true);
        stage.window.showMinimized();
        emit stage.network->simulatorDataUpdated(headingFor(2));
        TRY_COMPARE(stage.window.simulator().heading(), 2.0);
        TRY_VERIFY(smallWindow());
        stage.window.voice().setMiniMode(false);
        emit stage.network->simulatorDataUpdated(headingFor(3));
        QCOMPARE(stage.window.simulator().heading(), 2.0);
        TRY_VERIFY(!smallWindow());
    }

    void theSpeakersAreShownWhileAWindowIsSeen()
    {
        MainStage stage;
        stage.window.show();
        const QSignalSpy shown(&stage.window.voice(), &ui::VoiceServiceViewModel::receivingChanged);
        const auto hear = [&stage] { emit stage.network->voiceClient().voiceDataReceived(u"TWR"_qs, 118500, {}); };
        hear();
        QCOMPARE(shown.size(), 1);
        stage.window.showMinimized();
        hear();
        QCOMPARE(shown.size(), 1);
        stage.window.voice().setMiniMode(true); // tells of the one before
        hear();
        QCOMPARE(shown.size(), 3);
    }

    void theSmallWindowOpensInTheCorner()
    {
        MainStage stage;
        stage.window.show();
        for (const QPoint &draggedTo : {QPoint(10, 10), QPoint(20, 20)}) { // it remembers nothing
            stage.window.voice().setMiniMode(true);
            TRY_VERIFY(smallWindow());
            const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
            TRY_COMPARE(smallWindow()->position(), QPoint(screen.width() - 280 - 16, screen.height() - 150 - 16));
            smallWindow()->setPosition(draggedTo);
            stage.window.voice().setMiniMode(false);
            TRY_VERIFY(!smallWindow());
        }
    }

    void theSmallWindowKeepsNoProgramAlive()
    {
        MainStage stage;
        stage.window.show();
        stage.window.voice().setMiniMode(true);
        TRY_VERIFY(smallWindow());
        // Qt looks for the last window only while it runs.
        QTimer::singleShot(0, &stage.window, &QWidget::close);
        QTimer::singleShot(5000, &stage.window, [] { QCoreApplication::exit(1); });
        QCOMPARE(QGuiApplication::exec(), 0);
        QVERIFY(!stage.window.voice().miniMode());
    }

    void theSmallWindowGoesWithTheSession()
    {
        {
            MainStage stage;
            stage.window.show();
            stage.window.voice().setMiniMode(true);
            TRY_VERIFY(smallWindow());
        }
        QVERIFY(!smallWindow());
    }

private:
    static QWindow *smallWindow()
    {
        for (QWindow *window : QGuiApplication::topLevelWindows()) {
            if (window->objectName() == QLatin1String("voiceMiniWindow") && window->isVisible())
                return window;
        }
        return nullptr;
    }
};

TARVO_TEST(MainWindowVoiceTest)
#include "MainWindowVoiceTest.moc"
