#include "ui/viewmodel/SoundsViewModel.h"

#include "StateFile.h"
#include "support/Columns.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

using tarvo::StateFile;
using tarvo::test::columns;
using tarvo::ui::SoundsViewModel;

/// The sounds' switch, volume and signs.
class SoundsViewModelTest : public QObject
{
    Q_OBJECT

private slots:
    void whatIsSetIsRemembered()
    {
        const QTemporaryDir folder;
        StateFile state(folder.path());
        SoundsViewModel sounds(state);
        const QSignalSpy changed(&sounds, &SoundsViewModel::changed);
        QVERIFY(sounds.isOn());
        QCOMPARE(sounds.volume(), 100);
        sounds.toggle();
        sounds.setVolume(35);
        sounds.setVolume(35);
        QCOMPARE(changed.size(), 2);
        auto *timer = sounds.findChild<QTimer *>(u"saveTimer"_qs);
        QVERIFY(timer && timer->isActive()); // a slider's steps are not written one by one
        QCOMPARE(state.get(tarvo::state::soundsVolume), 100);
        timer->start(0);
        TRY_COMPARE(state.get(tarvo::state::soundsVolume), 35);
        StateFile nextStart(folder.path());
        const SoundsViewModel next(nextStart);
        QVERIFY(!next.isOn());
        QCOMPARE(next.volume(), 35);
    }

    void theEndKeepsTheVolume()
    {
        const QTemporaryDir folder;
        StateFile state(folder.path());
        {
            SoundsViewModel sounds(state);
            sounds.setVolume(20);
        }
        QCOMPARE(state.get(tarvo::state::soundsVolume), 20);
    }

    void whenSoundsAreHeard_data()
    {
        columns<bool, int, bool>("on", "volume", "audible");
        QTest::newRow("on") << true << 5 << true;
        QTest::newRow("no volume") << true << 0 << false;
        QTest::newRow("off") << false << 100 << false;
    }
    void whenSoundsAreHeard()
    {
        QFETCH(bool, on);
        QFETCH(int, volume);
        const QTemporaryDir folder;
        StateFile state(folder.path());
        SoundsViewModel sounds(state);
        sounds.setOn(on);
        sounds.setVolume(volume);
        QTEST(sounds.isAudible(), "audible");
    }

    void aVolumeIsAPercentage_data()
    {
        columns<QString, int>("stored", "volume");
        QTest::newRow("above") << u"250"_qs << 100;
        QTest::newRow("below") << u"-3"_qs << 0;
        QTest::newRow("no number") << u"loud"_qs << 100;
        QTest::newRow("silence") << u"0"_qs << 0;
    }
    void aVolumeIsAPercentage()
    {
        QFETCH(QString, stored);
        const QTemporaryDir folder;
        StateFile state(folder.path());
        state.set(tarvo::StringKey{.key = "Sounds/Volume"}, stored);
        SoundsViewModel sounds(state);
        QTEST(sounds.volume(), "volume");
        sounds.setVolume(120);
        QCOMPARE(sounds.volume(), 100);
    }

    void eachSoundHasItsSign_data()
    {
        columns<QString, QString, QString>("sound", "text", "tone");
        QTest::newRow("message") << u"qrc:/resources/sounds/manager.mp3"_qs << u"新消息"_qs << u"pending"_qs;
        QTest::newRow("connected") << u"qrc:/resources/sounds/connect.mp3"_qs << u"网络已连接"_qs << u"good"_qs;
        QTest::newRow("disconnected") << u"qrc:/resources/sounds/disconnect.mp3"_qs << u"网络已断开"_qs << u"failed"_qs;
        QTest::newRow("unknown") << u"qrc:/other.mp3"_qs << QString() << QString();
    }
    void eachSoundHasItsSign()
    {
        QFETCH(QString, sound);
        const QTemporaryDir folder;
        StateFile state(folder.path());
        SoundsViewModel sounds(state);
        sounds.setOn(false); // seen even when it isn't heard
        sounds.showSign(QUrl(sound));
        QTEST(sounds.signText(), "text");
        QTEST(sounds.signTone(), "tone");
    }

    void aSignGoesByItself()
    {
        const QTemporaryDir folder;
        StateFile state(folder.path());
        SoundsViewModel sounds(state);
        const QSignalSpy shown(&sounds, &SoundsViewModel::signShown);
        sounds.showSign(QUrl(u"qrc:/resources/sounds/manager.mp3"_qs));
        sounds.showSign(QUrl(u"qrc:/resources/sounds/manager.mp3"_qs)); // is seen again
        QCOMPARE(shown.size(), 2);
        auto *timer = sounds.findChild<QTimer *>(u"signTimer"_qs);
        QVERIFY(timer && timer->isActive());
        QCOMPARE(timer->interval(), 2500);
        timer->start(0);
        TRY_COMPARE(sounds.signText(), QString());
    }
};

TARVO_TEST(SoundsViewModelTest)
#include "SoundsViewModelTest.moc"
