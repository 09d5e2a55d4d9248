#include "ui/viewmodel/ComposeRules.h"
#include "MessagesFixture.h"
#include "support/TestRegistry.h"
#include "ui/viewmodel/UnreadFirst.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

using namespace tarvo::ui;
using tarvo::test::MessagesFixture;

/// What is told of a text before it is sent, where drafts stay, and which sessions come first.
class ComposeRulesTest : public QObject
{
    Q_OBJECT

private slots:
    void onTheWire_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("sent");
        QTest::newRow("plain") << u"hello"_qs << u"hello"_qs;
        QTest::newRow("western") << u"Grüße ÿ"_qs << u"Grüße ÿ"_qs;
        QTest::newRow("Chinese") << u"你好 CES"_qs << u"?? CES"_qs;
        QTest::newRow("nothing") << QString() << QString();
    }
    void onTheWire()
    {
        QFETCH(QString, typed);
        QTEST(textOnTheWire(typed), "sent");
    }

    void notes_data()
    {
        QTest::addColumn<QString>("draft");
        QTest::addColumn<bool>("silent");
        QTest::addColumn<QString>("note");
        QTest::newRow("all well") << u"hello"_qs << false << QString();
        QTest::newRow("lost characters") << u"你好 A"_qs << false << u"2 个字符无法传送，对方将看到：?? A"_qs;
        QTest::newRow("a pattern that means nothing")
            << u"%2 你"_qs << false << u"1 个字符无法传送，对方将看到：%2 ?"_qs;
        QTest::newRow("no radio transmits")
            << u"你好"_qs << true << u"没有电台处于发射状态，文本不会发出。请先在模拟器中选择发射电台。"_qs;
    }
    void notes()
    {
        QFETCH(QString, draft);
        QFETCH(bool, silent);
        QTEST(composeNote(draft, silent), "note");
    }

    void onlyTheRadioCanBeSilent()
    {
        MessagesFixture fixture;
        auto &model = fixture.model;
        model.setNetworkConnected(false);
        model.setTransmitting(false);
        QCOMPARE(model.composeNote(), QString()); // the line says already that there is no network
        model.setNetworkConnected(true);
        QVERIFY(!model.composeNote().isEmpty() && model.composeBlocked());
        model.setActiveChannel(u"WALLOP"_qs);
        QVERIFY(model.composeNote().isEmpty() && !model.composeBlocked());
        model.setActiveChannel(u"RADIO"_qs);
        const QSignalSpy told(&model, &MessagesPageViewModel::composeChanged);
        model.setTransmitting(true);
        model.setTransmitting(true);
        QCOMPARE(told.size(), 1);
        QVERIFY(model.composeNote().isEmpty() && !model.composeBlocked());
    }

    void draftsStayInTheirChannel()
    {
        MessagesFixture fixture;
        auto &model = fixture.model;
        model.setDraftMessage(u"on the radio"_qs);
        model.openPrivateSession(u"CCA1"_qs);
        QCOMPARE(model.draftMessage(), QString());
        model.setDraftMessage(u"between us"_qs);
        model.setActiveChannel(u"RADIO"_qs);
        QCOMPARE(model.draftMessage(), u"on the radio"_qs);
        model.setActiveChannel(u"CCA1"_qs);
        QCOMPARE(model.draftMessage(), u"between us"_qs);
        model.closePrivateSession(u"CCA1"_qs);
        QCOMPARE(model.draftMessage(), u"on the radio"_qs);
        model.openPrivateSession(u"CCA1"_qs);
        QCOMPARE(model.draftMessage(), QString());
    }

    void sessionsWithUnreadComeFirst()
    {
        MessagesFixture fixture;
        auto &model = fixture.model;
        UnreadFirst shown(*model.sessionList());
        const auto order = [&shown] {
            QStringList callsigns;
            for (int i = 0; i < shown.rowCount(); ++i)
                callsigns << shown.index(i, 0).data(shown.roleNames().key("callsign")).toString();
            return callsigns.join(u' ');
        };
        for (const char16_t *callsign : {u"A1", u"B2", u"C3"})
            model.openPrivateSession(QString::fromUtf16(callsign));
        QCOMPARE(order(), u"A1 B2 C3"_qs);
        model.addPrivateReceived(u"B2"_qs, u"hello"_qs);
        QCOMPARE(order(), u"B2 A1 C3"_qs);
        model.openPrivateSession(u"B2"_qs);
        QCOMPARE(order(), u"A1 B2 C3"_qs);
        QCOMPARE(model.privateSessions().first().toMap().value(u"callsign"_qs), u"A1"_qs); // the list itself stays
    }

    void eachMessageHasItsDay()
    {
        MessagesFixture fixture;
        fixture.model.setActiveChannel(u"SERVER"_qs);
        fixture.model.addServerMessage(u"hello"_qs);
        const ShownMessages &rows = *fixture.model.shownMessages();
        const QString day = rows.data(rows.index(0), rows.roleNames().key("day")).toString();
        QVERIFY2(day.contains(u'月') && day.contains(u'日'), qPrintable(day));
    }
};

TARVO_TEST(ComposeRulesTest)
#include "ComposeRulesTest.moc"
