#include "AppConfig.h"
#include "support/TestRegistry.h"
#include "ui/MainStage.h"
#include "ui/MainWindow.h"
#include "ui/Sounds.h"

#include <QFile>
#include <QFileDialog>
#include <QGuiApplication>
#include <QScreen>
#include <QTest>

using namespace tarvo;
using test::headingFor;
using test::MainStage;

/// What the main window does around its pages: exports, the compact view, sounds, the first start's tour.
class MainWindowComfortTest : public QObject
{
    Q_OBJECT

private slots:
    void aChannelIsExportedToAFile_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("note");
        QTest::newRow("written") << u"messages.txt"_qs << u"已导出到 "_qs;
        QTest::newRow("refused") << u"nowhere/messages.txt"_qs << u"无法写入 "_qs;
    }
    void aChannelIsExportedToAFile()
    {
        QFETCH(QString, path);
        QFETCH(QString, note);
        MainStage stage;
        stage.window.show();
        stage.window.messages().addRadioSent(u"同意推出"_qs, {118500});
        stage.window.messages().requestExport();
        MainStage::answer();
        auto *dialog = stage.window.findChild<QFileDialog *>();
        QVERIFY(dialog);
        QCOMPARE(dialog->acceptMode(), QFileDialog::AcceptSave);
        emit dialog->fileSelected(stage.folder.filePath(path));
        dialog->reject();
        QVERIFY(stage.window.messages().exportNote().startsWith(note));
        QCOMPARE(stage.window.messages().exportFailed(), note != u"已导出到 "_qs);
        QCOMPARE(QFile::exists(stage.folder.filePath(path)), note == u"已导出到 "_qs);
    }

    void theCompactViewStandsForTheMainWindow()
    {
        MainStage stage;
        stage.window.show();
        stage.config.state().set(state::compactPlace, u"-5000,40,420,260"_qs); // a screen that is gone
        stage.window.compact().setOpen(true);
        QVERIFY(stage.window.isMinimized());
        QCOMPARE(stage.window.compact().place(), QRect(0, 40, 420, 260));
        emit stage.network->simulatorDataUpdated(headingFor(90)); // it is fed
        QCOMPARE(stage.window.simulator().heading(), 90.0);
        stage.window.compact().leftAt(12, 34);
        stage.window.compact().setOpen(false);
        QVERIFY(!stage.window.isMinimized());
        QVERIFY(stage.config.state().get(state::compactPlace).endsWith(u",420,260"_qs));
        stage.window.compact().setOpen(true);
        stage.window.hide(); // the session's end
        QVERIFY(!stage.window.compact().isOpen());
    }

    void theMainWindowComesBackInItsPlace()
    {
        MainStage stage;
        stage.window.show();
        stage.window.compact().setOpen(true);
        QVERIFY(stage.window.isMinimized());
        stage.window.setWindowState(stage.window.windowState() & ~Qt::WindowMinimized); // as the task bar does
        QVERIFY(!stage.window.compact().isOpen());
        stage.window.compact().setOpen(true); // the way there is open again
        QVERIFY(stage.window.isMinimized());
    }

    void theCompactViewOpensInTheCorner()
    {
        MainStage stage;
        stage.window.compact().setOpen(true);
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        QCOMPARE(stage.window.compact().place(), QRect(screen.width() - 436, screen.top() + 16, 420, 260));
    }

    void theFirstStartBeginsWithATour()
    {
        MainStage stage;
        stage.window.show();
        QCOMPARE(stage.window.tour().step(), 0); // this one isn't the first
        stage.config.state().set(state::tourSeen, false);
        stage.window.hide();
        stage.window.show();
        QCOMPARE(stage.window.tour().step(), 1);
        stage.window.onModeSelected(u"XPLANE"_qs);
        QCOMPARE(stage.window.tour().step(), 2);
    }

    void theSoundsFollowTheirSettings()
    {
        MainStage stage;
        ui::SoundPlayer &sounds = stage.window.sounds();
        stage.window.soundSettings().setVolume(50);
        stage.window.soundSettings().tryOut();
        QCOMPARE(sounds.source(), test::messageSound);
        QCOMPARE(sounds.volume(), 0.275F);
        stage.window.soundSettings().setOn(false);
        sounds.play(test::connectSound, 0.55F);
        QCOMPARE(sounds.source(), test::messageSound);
        QCOMPARE(stage.window.soundSettings().signText(), u"网络已连接"_qs);
    }
};

TARVO_TEST(MainWindowComfortTest)
#include "MainWindowComfortTest.moc"
