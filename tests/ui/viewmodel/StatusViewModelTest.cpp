#include "ui/viewmodel/StatusViewModel.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using tarvo::ui::LinkState;
using tarvo::ui::StatusViewModel;
using tarvo::ui::Tone;

/// What is always in sight, and until when.
class StatusViewModelTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_status = std::make_unique<StatusViewModel>();
        m_status->setCurrentSection(u"dashboard"_qs);
    }

    void atFirstNothingIsThere()
    {
        QCOMPARE(m_status->lines().size(), 3);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(line(i), QStringList({u"网络"_qs, u"模拟器"_qs, u"语音"_qs}).at(i) + u" 未连接"_qs);
        QCOMPARE(m_status->bannerText(), QString());
    }

    void aLostNetworkIsToldUntilItsPageIsOpened()
    {
        loseNetwork();
        QCOMPARE(line(0), u"! 网络 已断开 bye"_qs);
        QCOMPARE(m_status->bannerText(), u"网络已断开：bye"_qs);
        m_status->setCurrentSection(u"messages"_qs);
        QCOMPARE(m_status->bannerText(), u"网络已断开：bye"_qs);
        m_status->setCurrentSection(u"server"_qs);
        QCOMPARE(line(0), u"网络 已断开"_qs);
        QCOMPARE(m_status->bannerText(), QString());
    }

    void onItsOwnPageItIsToldUntilThatIsLeft()
    {
        m_status->setCurrentSection(u"server"_qs);
        loseNetwork();
        QCOMPARE(m_status->bannerText(), u"网络已断开：bye"_qs);
        m_status->setCurrentSection(u"messages"_qs);
        QCOMPARE(line(0), u"网络 已断开"_qs);
    }

    void theCrossEndsIt()
    {
        const QSignalSpy changed(m_status.get(), &StatusViewModel::bannerChanged);
        loseNetwork();
        m_status->dismissBanner();
        QCOMPARE(m_status->bannerText(), QString());
        QCOMPARE(line(0), u"网络 已断开"_qs);
        QCOMPARE(changed.size(), 2);
    }

    void aSeenLossIsNotToldAsALossAgain_data()
    {
        QTest::addColumn<QString>("section"); ///< none: the cross
        QTest::newRow("by the cross") << QString();
        QTest::newRow("by its page") << u"simulator"_qs;
    }
    void aSeenLossIsNotToldAsALossAgain()
    {
        QFETCH(const QString, section);
        loseSimulator();
        if (section.isEmpty())
            m_status->dismissBanner();
        else
            m_status->setCurrentSection(section);
        m_status->simulatorFailed(u"not there"_qs); // an attempt in the same outage
        QCOMPARE(m_status->bannerText(), QString());
        QCOMPARE(line(1), u"! 模拟器 未连接 not there"_qs);
        loseSimulator(); // it was back meanwhile
        QCOMPARE(m_status->bannerText(), u"模拟器已断开：gone"_qs);
    }

    void aServersReasonIsCut()
    {
        m_status->networkFailed(QString(9000, u'x') + u'\n');
        QCOMPARE(m_status->bannerText(), u"网络连接失败："_qs + QString(200, u'x'));
    }

    void aNewBeginningEndsIt()
    {
        loseNetwork();
        m_status->forgetNetwork();
        m_status->setNetwork(false, LinkState::Connecting);
        QCOMPARE(m_status->bannerText(), QString());
        QCOMPARE(line(0), u"网络 连接中..."_qs);
        m_status->setNetwork(false, LinkState::Ended);
        m_status->networkFailed(u"busy"_qs); // the attempt, not what was up before
        QCOMPARE(m_status->bannerText(), u"网络连接失败：busy"_qs);
    }

    void whatTheButtonDoes()
    {
        const QSignalSpy network(m_status.get(), &StatusViewModel::networkReconnectRequested);
        const QSignalSpy simulator(m_status.get(), &StatusViewModel::simulatorReconnectRequested);
        const QSignalSpy section(m_status.get(), &StatusViewModel::sectionRequested);
        m_status->act(); // there is no banner
        loseNetwork();
        m_status->act();
        QCOMPARE(network.size(), 1);
        QCOMPARE(m_status->bannerText(), QString());
        m_status->forgetNetwork();
        m_status->networkFailed(u"busy"_qs);
        m_status->act();
        QCOMPARE(section, (QList<QVariantList>{{u"server"_qs}}));
        loseSimulator();
        m_status->act();
        QCOMPARE(simulator.size(), 1);
        QCOMPARE(network.size(), 1);
    }

    void aLostSimulatorIsToldUntilItIsBack()
    {
        loseSimulator();
        QCOMPARE(m_status->bannerText(), u"模拟器已断开：gone"_qs);
        QCOMPARE(line(1), u"! 模拟器 未连接 gone"_qs);
        m_status->setSimulator(true, LinkState::Connected);
        QCOMPARE(m_status->bannerText(), QString());
        QCOMPARE(line(1), u"模拟器 已连接"_qs);
    }

    void theBannersCrossLeavesTheOtherFailure()
    {
        loseSimulator();
        loseNetwork();
        m_status->dismissBanner();
        QCOMPARE(m_status->bannerText(), u"模拟器已断开：gone"_qs);
        m_status->dismissBanner();
        QCOMPARE(m_status->bannerText(), QString());
    }

    void aSimulatorThatCannotBeReachedStaysRed()
    {
        m_status->setSimulator(false, LinkState::Failed);
        m_status->simulatorFailed(u"not started"_qs);
        m_status->setCurrentSection(u"simulator"_qs);
        m_status->setCurrentSection(u"dashboard"_qs);
        QCOMPARE(line(1), u"! 模拟器 连接失败 not started"_qs);
        QCOMPARE(m_status->bannerText(), QString());
        m_status->forgetSimulator();
        m_status->setSimulator(false, LinkState::Connecting);
        QCOMPARE(line(1), u"模拟器 连接中..."_qs);
    }

    void theCrossLeavesItRed()
    {
        loseSimulator();
        m_status->setSimulator(false, LinkState::Failed);
        m_status->simulatorFailed(u"not started"_qs);
        QCOMPARE(m_status->bannerText(), u"模拟器已断开：not started"_qs);
        m_status->dismissBanner();
        QCOMPARE(m_status->bannerText(), QString());
        QCOMPARE(line(1), u"! 模拟器 连接失败 not started"_qs);
    }

    void voiceHasItsLine()
    {
        m_status->setVoice(true, LinkState::Ready);
        QCOMPARE(line(2), u"语音 就绪"_qs);
        QCOMPARE(m_status->lines().at(2).tone, Tone::Good);
    }

    void aVoiceThatFailsIsRedUntilItsPageIsOpened()
    {
        const QSignalSpy voice(m_status.get(), &StatusViewModel::voiceReconnectRequested);
        m_status->setVoice(false, LinkState::Failed);
        m_status->voiceFailed(u"refused"_qs);
        QCOMPARE(line(2), u"! 语音 连接失败 refused"_qs);
        QCOMPARE(m_status->bannerText(), u"语音连接失败：refused"_qs);
        m_status->setCurrentSection(u"voice"_qs);
        QCOMPARE(line(2), u"语音 连接失败"_qs);
        m_status->setVoice(true, LinkState::Ready);
        m_status->setVoice(false, LinkState::Absent);
        m_status->voiceFailed(u"gone"_qs);
        QCOMPARE(m_status->bannerText(), u"语音已断开：gone"_qs);
        m_status->act();
        QCOMPARE(voice.size(), 1);
        QCOMPARE(line(2), u"语音 未连接"_qs);
    }

private:
    void loseNetwork()
    {
        m_status->setNetwork(true, LinkState::Connected);
        m_status->setNetwork(false, LinkState::Ended);
        m_status->networkFailed(u"bye"_qs);
    }

    void loseSimulator()
    {
        m_status->setSimulator(true, LinkState::Connected);
        m_status->setSimulator(false, LinkState::Absent);
        m_status->simulatorFailed(u"gone"_qs);
    }

    /// "! name word reason"; the mark for red.
    QString line(int row) const
    {
        const tarvo::ui::StatusLine &line = m_status->lines().at(row);
        const QString text = line.name + u' ' + line.word + u' ' + line.reason;
        return (line.tone == Tone::Failed ? u"! "_qs : QString()) + text.trimmed();
    }

    std::unique_ptr<StatusViewModel> m_status;
};

TARVO_TEST(StatusViewModelTest)
#include "StatusViewModelTest.moc"
