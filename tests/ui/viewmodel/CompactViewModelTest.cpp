#include "ui/viewmodel/CompactViewModel.h"

#include "MessagesFixture.h"
#include "support/ManualClock.h"
#include "support/TestRegistry.h"
#include "ui/viewmodel/MessagesPageViewModel.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using tarvo::ui::CompactViewModel;
using tarvo::ui::MessagesPageViewModel;

/// What the compact view tells, and where its line goes.
class CompactViewModelTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_messages = std::make_unique<MessagesPageViewModel>(nullptr, m_clock);
        m_compact = std::make_unique<CompactViewModel>(*m_messages);
        m_messages->setNetworkConnected(true);
    }

    void theNewestMessageIsShown_data()
    {
        QTest::addColumn<tarvo::test::Event>("happen");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("target");
        const auto row = [](const char *name, const tarvo::test::Event &happen, const QString &shown,
                            const QString &target) { QTest::newRow(name) << happen << shown << target; };
        row(
            "none", [](auto &) {}, u"|"_qs, u"RADIO"_qs);
        row(
            "private", [](auto &page) { page.addPrivateReceived(u"zbaa_twr"_qs, u"hello\nyou"_qs); },
            u"ZBAA_TWR|hello you"_qs, u"ZBAA_TWR"_qs);
        row(
            "private, own", [](auto &page) { page.addPrivateSent(u"ZBAA_TWR"_qs, u"roger"_qs); },
            u"我 → ZBAA_TWR|roger"_qs, u"ZBAA_TWR"_qs);
        row(
            "radio", [](auto &page) { page.addRadioReceived(onRadio(u"CCA1"_qs)); }, u"CCA1|on the radio"_qs,
            u"RADIO"_qs);
        row(
            "radio, own", [](auto &page) { page.addRadioSent(u"roger"_qs, {118500}); }, u"我 → 118.500|roger"_qs,
            u"RADIO"_qs);
        row(
            "call", [](auto &page) { page.addSelcal(u"ZBAA_CTR"_qs, {118500}); }, u"ZBAA_CTR|收到 SELCAL 呼叫"_qs,
            u"RADIO"_qs);
        row(
            "broadcast", [](auto &page) { page.addBroadcast(u"SUP"_qs, u"good evening"_qs); }, u"SUP|good evening"_qs,
            u"RADIO"_qs);
        row(
            "system's note",
            [](auto &page) {
                page.addServerMessage(u"welcome"_qs);
                page.addSystemNote(u"Connected to network."_qs);
            },
            u"服务器|welcome"_qs, u"RADIO"_qs);
        row(
            "a name of two lines", [](auto &page) { page.addBroadcast(u"S\nUP"_qs, u"one"_qs); }, u"S UP|one"_qs,
            u"RADIO"_qs);
        row(
            "of blanks", [](auto &page) { page.addPrivateReceived(u"CCA1"_qs, u"  "_qs); }, u"CCA1|"_qs, u"CCA1"_qs);
        row(
            "nobody can be answered there", [](auto &page) { page.addPrivateReceived(u"@18500"_qs, u"all"_qs); },
            u"@18500|all"_qs, u"RADIO"_qs);
        row(
            "cleared",
            [](auto &page) {
                page.addPrivateReceived(u"ZBAA_TWR"_qs, u"hello"_qs);
                page.clearMessages();
            },
            u"|"_qs, u"RADIO"_qs);
    }
    void theNewestMessageIsShown()
    {
        QFETCH(tarvo::test::Event, happen);
        happen(*m_messages);
        QTEST(m_compact->messageHead() + u'|' + m_compact->messageText(), "shown");
        QTEST(m_compact->target(), "target");
    }

    void aLongTextIsCut()
    {
        m_messages->addPrivateReceived(u"CCA1"_qs, QString(5000, u'W'));
        QCOMPARE(m_compact->messageText().size(), 400);
        m_messages->addPrivateReceived(u"CCA1"_qs, QString(399, u'W') + u"😀😀"_qs); // no half of one
        QCOMPARE(m_compact->messageText(), QString(399, u'W'));
    }

    void whatIsBeingWrittenGoesWhereItWasMeantTo()
    {
        const QSignalSpy sent(m_messages.get(), &MessagesPageViewModel::privateMessageRequested);
        m_messages->addPrivateReceived(u"CCA1"_qs, u"where are you?"_qs);
        m_compact->setDraft(u"over Beijing"_qs);
        m_messages->addPrivateReceived(u"CSN2"_qs, u"hello"_qs);
        QCOMPARE(m_compact->messageHead(), u"CSN2"_qs);
        QCOMPARE(m_compact->placeholder(), u"回复 CCA1..."_qs);
        m_compact->send();
        QCOMPARE(sent, (QList<QVariantList>{{u"CCA1"_qs, u"over Beijing"_qs}}));
        QCOMPARE(m_compact->target(), u"CSN2"_qs);
    }

    void whatIsBeingComposedGoesWhereItWasMeantTo()
    {
        m_messages->addPrivateReceived(u"CCA1"_qs, u"where are you?"_qs);
        QCOMPARE(m_compact->targetName(), u"CCA1"_qs);
        m_compact->setWriting(true); // an input method has the text, not the draft
        m_messages->addRadioReceived(onRadio(u"CSN2"_qs));
        QCOMPARE(m_compact->targetName(), u"CCA1"_qs);
        m_compact->setDraft(u"ok"_qs);
        m_compact->setDraft({}); // sent; the line itself is emptied later
        QCOMPARE(m_compact->target(), u"CCA1"_qs);
        m_compact->setWriting(false);
        QCOMPARE(m_compact->targetName(), u"电台"_qs);
    }

    void theRadioNeedsATransmitter()
    {
        const QSignalSpy sent(m_messages.get(), &MessagesPageViewModel::radioMessageRequested);
        m_messages->setTransmitting(false);
        m_compact->setDraft(u"request pushback"_qs);
        QVERIFY(!m_compact->canSend());
        QVERIFY(!m_compact->note().isEmpty());
        m_compact->send();
        QCOMPARE(m_compact->draft(), u"request pushback"_qs);
        m_messages->setTransmitting(true);
        QVERIFY(m_compact->note().isEmpty());
        m_compact->send();
        QCOMPARE(sent, QList<QVariantList>{{u"request pushback"_qs}});
        QCOMPARE(m_compact->draft(), QString());
    }

    void theOtherPagesDraftsStay()
    {
        m_messages->setDraftMessage(u"half a sentence"_qs);
        m_compact->setDraft(u"roger"_qs);
        m_compact->send();
        QCOMPARE(m_messages->draftMessage(), u"half a sentence"_qs);
    }

    void withoutANetworkNothingIsSent()
    {
        const QSignalSpy sent(m_messages.get(), &MessagesPageViewModel::radioMessageRequested);
        m_messages->setNetworkConnected(false);
        QCOMPARE(m_compact->placeholder(), u"网络未连接"_qs);
        m_compact->setDraft(u"你好"_qs);
        QCOMPARE(m_compact->note(), QString()); // the placeholder says enough
        m_compact->setDraft(u"roger"_qs);
        m_compact->send();
        QCOMPARE(sent.size(), 0);
        QCOMPARE(m_compact->draft(), u"roger"_qs);
    }

    void charactersThatGetLostAreToldBefore()
    {
        m_compact->setDraft(u"你好"_qs);
        QVERIFY(!m_compact->note().isEmpty());
    }

    void itIsPlacedBeforeItOpens()
    {
        connect(m_compact.get(), &CompactViewModel::openingSoon, this, [this] { m_compact->setPlace({1, 2, 3, 4}); });
        const QSignalSpy opened(m_compact.get(), &CompactViewModel::openChanged);
        m_compact->setOpen(true);
        m_compact->setOpen(true);
        QCOMPARE(opened.size(), 1);
        QCOMPARE(m_compact->place(), QRect(1, 2, 3, 4));
        const QSignalSpy left(m_compact.get(), &CompactViewModel::placeLeft);
        m_compact->leftAt(7, 8);
        QCOMPARE(left, QList<QVariantList>{{QRect(QPoint(7, 8), CompactViewModel::size)}});
    }

private:
    static tarvo::network::RadioMessageReceived onRadio(const QString &from)
    {
        return {.from = from, .message = u"on the radio"_qs, .frequencies = {}, .direct = false, .dualReceive = false};
    }

    tarvo::test::ManualClock m_clock;
    std::unique_ptr<MessagesPageViewModel> m_messages;
    std::unique_ptr<CompactViewModel> m_compact;
};

TARVO_TEST(CompactViewModelTest)
#include "CompactViewModelTest.moc"
