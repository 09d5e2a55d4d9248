#include "model/RadioMessageReceived.h"
#include "support/ManualClock.h"
#include "support/TestRegistry.h"
#include "ui/viewmodel/ExportedText.h"
#include "ui/viewmodel/MessagesPageViewModel.h"

#include <QDateTime>
#include <QSignalSpy>
#include <QTest>

using tarvo::ui::MessagesPageViewModel;

/// Looking for messages of a channel, and writing a channel down.
class MessagesSearchTest : public QObject
{
    Q_OBJECT

private slots:
    void whatIsFound_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("found");
        QTest::newRow("nothing wanted") << QString() << 3;
        QTest::newRow("body, Chinese") << u"推出"_qs << 1;
        QTest::newRow("body, other case") << u"ROGER"_qs << 1;
        QTest::newRow("sender") << u"cca1"_qs << 1;
        QTest::newRow("frequency") << u"118.5"_qs << 2;
        QTest::newRow("of another channel") << u"private"_qs << 0;
        QTest::newRow("nowhere") << u"xyz"_qs << 0;
    }
    void whatIsFound()
    {
        QFETCH(QString, text);
        MessagesPageViewModel page;
        fill(page);
        page.setSearchText(text);
        QTEST(page.shownMessages()->rowCount(), "found");
        QCOMPARE(page.activeMessages().size(), 3); // the channel itself stays
    }

    void newMessagesAreLookedAtToo()
    {
        MessagesPageViewModel page;
        fill(page);
        page.setSearchText(u"roger"_qs);
        hear(page, u"nothing of it"_qs);
        QCOMPARE(page.shownMessages()->rowCount(), 1);
        hear(page, u"Roger that"_qs);
        QCOMPARE(page.shownMessages()->rowCount(), 2);
        for (int i = 0; i < 300; ++i) // the found ones go with the oldest
            page.addServerMessage(u"text"_qs);
        QCOMPARE(page.shownMessages()->rowCount(), 0);
    }

    void whatTheSearchHidesIsCounted()
    {
        MessagesPageViewModel page;
        fill(page);
        QSignalSpy search(&page, &MessagesPageViewModel::searchChanged);
        hear(page, u"before"_qs);
        page.setSearchText(u"roger"_qs);
        QCOMPARE(page.hiddenNews(), 0);
        hear(page, u"nothing of it"_qs);
        hear(page, u"roger that"_qs);
        page.addServerMessage(u"elsewhere"_qs);
        QCOMPARE(page.hiddenNews(), 1);
        QCOMPARE(search.size(), 3);
        page.setSearchText(u"nothing"_qs); // the same search
        QCOMPARE(page.hiddenNews(), 1);
        QCOMPARE(page.activeCount(), 6);
        page.setActiveChannel(u"ALL"_qs);
        QCOMPARE(page.activeCount(), page.shownMessages()->rowCount());
        page.setActiveChannel(u"RADIO"_qs);
        page.setSearchText({});
        QCOMPARE(page.hiddenNews(), 0);
        hear(page, u"between"_qs);
        page.setSearchText(u"roger"_qs);
        QCOMPARE(page.hiddenNews(), 0);
    }

    void whatThePilotSendsEndsTheSearch_data()
    {
        QTest::addColumn<QString>("channel");
        QTest::addColumn<QString>("stays");
        QTest::newRow("into the channel") << u"RADIO"_qs << QString();
        QTest::newRow("elsewhere") << u"SERVER"_qs << u"hello"_qs;
    }
    void whatThePilotSendsEndsTheSearch()
    {
        QFETCH(QString, channel);
        MessagesPageViewModel page;
        fill(page);
        page.setActiveChannel(channel);
        page.setSearchText(u"hello"_qs);
        page.addRadioSent(u"wilco"_qs, {118500});
        QTEST(page.searchText(), "stays");
        QCOMPARE(page.shownMessages()->rowCount(), channel == u"RADIO"_qs ? 4 : 0);
    }

    void anotherChannelEndsTheSearch()
    {
        MessagesPageViewModel page;
        fill(page);
        page.setSearchText(u"xyz"_qs);
        page.setExportNote(u"written"_qs, false);
        const QSignalSpy search(&page, &MessagesPageViewModel::searchChanged);
        page.setActiveChannel(u"SERVER"_qs);
        QCOMPARE(page.searchText(), QString());
        QCOMPARE(page.exportNote(), QString());
        QCOMPARE(search.size(), 1);
        page.setActiveChannel(u"RADIO"_qs);
        QCOMPARE(page.shownMessages()->rowCount(), 3);
    }

    void whoSeesTheLastRowMayClearTheList()
    {
        MessagesPageViewModel page;
        for (int i = 0; i < 300; ++i)
            hear(page, u"text"_qs);
        connect(page.shownMessages(), &QAbstractItemModel::rowsInserted, &page, &MessagesPageViewModel::clearMessages);
        hear(page, u"one too many"_qs);
        QCOMPARE(page.shownMessages()->rowCount(), 0);
    }

    void aChannelIsWrittenDown()
    {
        tarvo::test::ManualClock clock;
        MessagesPageViewModel page(nullptr, clock);
        fill(page);
        page.setSearchText(u"roger"_qs); // the file has all
        page.setExportNote(u"the last one's"_qs, true);
        const QSignalSpy asked(&page, &MessagesPageViewModel::exportRequested);
        page.requestExport();
        QCOMPARE(page.exportNote(), QString());
        QVERIFY(!page.exportFailed());
        const QDateTime now = QDateTime::fromMSecsSinceEpoch(clock.wallMs());
        const QString time = now.toString(u"yyyy-MM-dd hh:mm:ss"_qs);
        QCOMPARE(asked[0][0].toString(), u"TARVO 无线电 %1.txt"_qs.arg(now.toString(u"yyyy-MM-dd"_qs)));
        QCOMPARE(asked[0][1].toString(), u"%1  已发送  CES2352 -> 118.500  同意推出\n"
                                         "%1  收到  CCA1 -> 118.500  roger\n    second line\n"
                                         "%1  收到  CSN2  hello\n"_qs.arg(time));
    }

    void noTextForgesALine_data()
    {
        QTest::addColumn<QString>("lineBreak");
        QTest::newRow("carriage return, line feed") << u"\r\n"_qs;
        for (const char16_t lineBreak : {u'\r', u'\n', u'\v', u'\f', u'\u0085', u'\u2028', u'\u2029'})
            QTest::addRow("U+%04X", lineBreak) << QString(QChar(lineBreak));
    }
    void noTextForgesALine()
    {
        QFETCH(QString, lineBreak);
        MessagesPageViewModel page;
        hear(page, u"one"_qs + lineBreak + u"two"_qs, {}, u"A"_qs + lineBreak + u"B"_qs);
        const QSignalSpy asked(&page, &MessagesPageViewModel::exportRequested);
        page.requestExport();
        QVERIFY(asked[0][1].toString().endsWith(u"  A B  one\n    two\n"_qs));
    }

    void aCallIsWrittenDownToo()
    {
        MessagesPageViewModel page;
        page.addSelcal(u"ZBAA_CTR"_qs, {118500});
        page.setActiveChannel(u"SELCAL"_qs);
        const QSignalSpy asked(&page, &MessagesPageViewModel::exportRequested);
        page.requestExport();
        QVERIFY(asked[0][1].toString().endsWith(u"ZBAA_CTR -> 118.500  收到 SELCAL 呼叫\n"_qs));
    }

    void everySystemTakesTheFileName_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("name");
        QTest::newRow("session") << u"私聊 ZBAA_TWR"_qs << u"TARVO 私聊 ZBAA_TWR 1970-01-0"_qs;
        QTest::newRow("a path") << u"..\\../A:B"_qs << u"TARVO ------A-B 1970-01-0"_qs;
    }
    void everySystemTakesTheFileName()
    {
        QFETCH(QString, title);
        QFETCH(QString, name);
        QVERIFY2(tarvo::ui::exportFileName(title, 43'200'000).startsWith(name),
                 qPrintable(tarvo::ui::exportFileName(title, 43'200'000)));
    }

private:
    static void hear(MessagesPageViewModel &page, const QString &text, const QList<uint> &frequencies = {},
                     const QString &from = u"CCA7"_qs)
    {
        page.addRadioReceived({.from = from,
                               .message = text,
                               .frequencies = QVariant::fromValue(frequencies),
                               .direct = false,
                               .dualReceive = false});
    }
    static void fill(MessagesPageViewModel &page)
    {
        page.setOwnCallsign(u"CES2352"_qs);
        page.addRadioSent(u"同意推出"_qs, {118500});
        hear(page, u"roger\nsecond line"_qs, {118500}, u"CCA1"_qs);
        hear(page, u"hello"_qs, {}, u"CSN2"_qs);
        page.addPrivateReceived(u"CHH3"_qs, u"private"_qs);
    }
};

TARVO_TEST(MessagesSearchTest)
#include "MessagesSearchTest.moc"
