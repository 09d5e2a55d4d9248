#include "MessagesPageFixture.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QObject>
#include <QTest>

using tarvo::test::fillMessages;
using tarvo::test::radioText;
using tarvo::test::stationCalled;

/// The list of messages: what it shows of long and hostile texts, and where it stands while messages come.
class MessageListTest : public QObject, protected tarvo::test::MessagesPageFixture
{
    Q_OBJECT

private slots:
    void init() { open(); }

    void cleanup()
    {
        QCOMPARE(m_harness->complaints().join(u'\n'), QString());
        m_harness.reset();
    }

    void aRightClickCopiesTheWholeMessage()
    {
        const QString text = u"CLEARED <b>TO</b> LAND "_qs.repeated(200) + u"END"_qs; // shown folded
        model().addRadioReceived(radioText(u"CCA1"_qs, text));
        m_harness->settle();
        QTest::mouseClick(&m_harness->view, Qt::RightButton, {}, field("body")->mapToScene(QPointF(30, 8)).toPoint());
        TRY_VERIFY(field("copyAction"));
        m_harness->settle();
        m_harness->grab(u"messages-copy"_qs);
        m_harness->click(field("copyAction"));
        QCOMPARE(QGuiApplication::clipboard()->text(), text);
        TRY_VERIFY(!field("copyAction"));
    }

    void theMouseSelectsAPart()
    {
        fillMessages(model());
        model().addRadioReceived(radioText(u"CCA1"_qs, u"ALPHA bravo CHARLIE"_qs));
        m_harness->settle();
        m_harness->type(u"half a line"_qs);
        QQuickItem *body = m_harness->itemWithText(u"ALPHA bravo CHARLIE"_qs);
        QVERIFY(body);
        const auto at = [body](qreal part) {
            return body->mapToScene({part * body->property("contentWidth").toReal(), body->height() / 2}).toPoint();
        };
        QTest::mouseMove(&m_harness->view, at(0.1));
        QTest::mouseClick(&m_harness->view, Qt::LeftButton, {}, at(0.1));
        QVERIFY(field("composeField")->hasActiveFocus()); // a click alone takes nothing away
        drag(at(0), at(1) + QPoint(20, 0));
        QCOMPARE(body->property("selectedText").toString(), u"ALPHA bravo CHARLIE"_qs);
        m_harness->grab(u"messages-selected"_qs);
        drag(at(0), at(0.45));
        const QString part = body->property("selectedText").toString();
        QVERIFY(part.startsWith(QLatin1String("ALPHA b")) && part.size() < 14);
        QTest::mouseMove(&m_harness->view, {5, 5});
        model().addRadioReceived(radioText(u"CCA1"_qs, u"more"_qs));
        m_harness->settle();
        QCOMPARE(body->property("selectedText").toString(), part);
        QTest::keySequence(&m_harness->view, QKeySequence::Copy);
        QCOMPARE(QGuiApplication::clipboard()->text(), part);
        QTest::mouseClick(&m_harness->view, Qt::RightButton, {}, at(0.1));
        TRY_VERIFY(field("copyAction"));
        m_harness->settle();
        m_harness->click(field("copyAction"));
        QCOMPARE(QGuiApplication::clipboard()->text(), part);
        TRY_VERIFY(!field("copyAction"));
        m_harness->click(field("composeField"));
        QCOMPARE(body->property("selectedText").toString(), QString());
        QCOMPARE(body->findChildren<QQuickItem *>().size(), 0); // a plain text again
        QCOMPARE(composed(), u"half a line"_qs);
    }

    /// What is selected is drawn where the text was.
    void theEditorBreaksLinesAsTheTextDoes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("Chinese") << u"浦东塔台，跑道 17L，修正海压 1013。"_qs.repeated(9);
        QTest::newRow("Latin") << u"cleared for the ILS approach of runway 17L "_qs.repeated(9);
        QTest::newRow("lines") << u"one\ntwo\n\nthree"_qs;
        QTest::newRow("without a break") << QString(300, u'W');
    }

    void theEditorBreaksLinesAsTheTextDoes()
    {
        QFETCH(QString, text);
        model().addRadioReceived(radioText(u"CCA1"_qs, text));
        m_harness->settle();
        QQuickItem *body = m_harness->itemWithText(text);
        QVERIFY(body);
        QTest::mouseMove(&m_harness->view, body->mapToScene({10, 10}).toPoint());
        m_harness->settle();
        auto *editor = body->property("editor").value<QQuickItem *>();
        QVERIFY(editor);
        QCOMPARE(editor->property("lineCount").toInt(), body->property("lineCount").toInt());
        QVERIFY(qAbs(editor->property("contentHeight").toReal() - body->property("contentHeight").toReal()) < 1);
    }

    void aRowIsCopiedByKeys()
    {
        fillMessages(model());
        addRadioTexts(40); // "0" to "39"
        m_harness->settle();
        QVERIFY(m_harness->tabTo(u"messagePane"_qs, true));
        const auto copied = [this] {
            QTest::keySequence(&m_harness->view, QKeySequence::Copy);
            return QGuiApplication::clipboard()->text();
        };
        press(Qt::Key_Up);
        QCOMPARE(copied(), u"39"_qs);
        press(Qt::Key_Up);
        press(Qt::Key_Up);
        QCOMPARE(copied(), u"37"_qs);
        QVERIFY(atEnd());
        model().addRadioReceived(radioText(u"CCA1"_qs, u"next"_qs));
        m_harness->settle();
        QCOMPARE(copied(), u"37"_qs); // the row, wherever it has gone
        for (int i = 0; i < 37; ++i)
            press(Qt::Key_Up);
        QCOMPARE(copied(), u"0"_qs);
        QVERIFY(!atEnd());
        QVERIFY(field("newestButton"));
        press(Qt::Key_Down);
        QCOMPARE(copied(), u"1"_qs);
        press(Qt::Key_End);
        QVERIFY(atEnd());
        press(Qt::Key_Up); // among those in sight
        QCOMPARE(copied(), u"next"_qs);
        m_harness->grab(u"messages-row"_qs);
    }

    /// A row that is longer than the list is read to its end.
    void aLongRowIsWalkedByLines()
    {
        model().addRadioReceived(radioText(u"CCA1"_qs, u"before"_qs));
        model().addRadioReceived(radioText(u"CCA1"_qs, u"word "_qs.repeated(2000)));
        model().addRadioReceived(radioText(u"CCA1"_qs, u"after"_qs));
        m_harness->settle();
        m_harness->click(field("foldControl"));
        TRY_VERIFY(list()->property("contentHeight").toReal() > 1500);
        m_harness->settle();
        QVERIFY(m_harness->tabTo(u"messagePane"_qs, true));
        press(Qt::Key_Home);
        press(Qt::Key_Down);
        press(Qt::Key_Down);
        // By what is seen: a list that learns how long its rows are counts its content anew.
        const QQuickItem *row = m_harness->view.activeFocusItem();
        QVERIFY(row && row->height() > 1500);
        const qreal begun = row->mapToItem(list(), QPointF()).y();
        press(Qt::Key_Down);
        QCOMPARE(m_harness->view.activeFocusItem(), row);
        const qreal moved = begun - row->mapToItem(list(), QPointF()).y();
        QVERIFY2(moved > 0 && moved < list()->height() / 2, qPrintable(QString::number(moved)));
        for (int i = 0; i < 200 && !atEnd(); ++i)
            press(Qt::Key_Down);
        QTest::keySequence(&m_harness->view, QKeySequence::Copy);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"after"_qs);
    }

    void theListStaysAtTheNewest()
    {
        fillMessages(model());
        for (int i = 0; i < 320; ++i) {
            model().addRadioReceived(radioText(u"CCA1"_qs, u"%1 "_qs.arg(i).repeated(1 + 7 * (i % 9))));
            if (i % 40 == 0)
                m_harness->settle();
        }
        TRY_COMPARE(list()->property("count").toInt(), int(model().activeMessages().size()));
        m_harness->settle();
        QVERIFY(atEnd());
        QVERIFY(!field("newestButton"));
        m_harness->grab(u"messages-full"_qs);
    }

    void aReaderWhoScrolledUpIsLeftThere()
    {
        fillMessages(model());
        addRadioTexts(290);
        m_harness->settle();
        QVERIFY(atEnd());
        wheel(+480);
        TRY_VERIFY(field("newestButton"));
        TRY_VERIFY(!list()->property("moving").toBool());
        QQuickItem *anchor = bodyInSight();
        QVERIFY(anchor);
        const QString text = anchor->property("text").toString();
        const qreal y = anchor->mapToScene({}).y();
        for (int i = 0; i < 15; ++i) // some of the oldest go
            model().addRadioReceived(radioText(u"CCA2"_qs, u"new %1"_qs.arg(i)));
        TRY_VERIFY(m_harness->itemWithText(u"15 条新消息 ↓"_qs));
        m_harness->settle();
        anchor = m_harness->itemWithText(text);
        QVERIFY(anchor);
        QVERIFY(qAbs(anchor->mapToScene({}).y() - y) < 2);
        m_harness->grab(u"messages-scrolled"_qs);
        m_harness->click(field("newestButton"));
        m_harness->settle();
        QVERIFY(atEnd());
        QVERIFY(!field("newestButton"));
        model().addRadioReceived(radioText(u"CCA2"_qs, u"the last"_qs));
        TRY_VERIFY(m_harness->itemWithText(u"the last"_qs));
        m_harness->settle();
        QVERIFY(atEnd());
    }

    void scrollingBackToTheEndFollowsAgain()
    {
        addRadioTexts(100);
        m_harness->settle();
        wheel(+240);
        TRY_VERIFY(field("newestButton"));
        TRY_VERIFY(!list()->property("moving").toBool());
        wheel(-2400);
        TRY_VERIFY(!field("newestButton"));
    }

    void hostileTextsAreShownAsTheyAre_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("markup") << u"<b>bold</b><img src='file:///etc/passwd'>&amp;"_qs;
        QTest::newRow("right to left override") << u"abc \u202Efdp.exe\u202C def \u200F\u2067x"_qs;
        QTest::newRow("Arabic and Hebrew") << u"مرحبا بالعالم שלום עולם"_qs;
        QTest::newRow("line breaks") << u"one\ntwo\r\nthree\u2028four\n\n\n\nfive"_qs;
        QTest::newRow("many line breaks") << QString(10000, u'\n');
        QTest::newRow("10,000 letters without a break") << QString(10000, u'W');
        QTest::newRow("10,000 Chinese characters") << QString(10000, u'测');
        QTest::newRow("10,000 words") << u"word "_qs.repeated(2000);
        QTest::newRow("marks upon marks") << u"Z"_qs + QString(500, QChar(0x0336)) + QString(500, QChar(0x030D));
        QTest::newRow("control characters") << u"a\tb\x01\x07\x1b[31mred"_qs;
        QTest::newRow("replacement codes") << u"%1 %2 %n %L1"_qs;
        QTest::newRow("lone surrogates") << QString(QChar(0xD83D)).repeated(2500);
    }

    void hostileTextsAreShownAsTheyAre()
    {
        QFETCH(QString, text);
        fillMessages(model());
        model().addRadioReceived(radioText(u"EVIL"_qs, text));
        model().addPrivateReceived(u"EVIL"_qs, text);
        model().addPrivateReceived(text.left(3000), text);
        model().setNearbyController(stationCalled(u"EVIL_"_qs + text.left(3000), 118000, text));
        m_harness->settle();
        QCOMPARE(m_harness->textsOutOfBounds(), QStringList());
        QVERIFY(atEnd());
        m_harness->grab(u"messages-hostile-%1"_qs.arg(QString::fromUtf8(QTest::currentDataTag())));
        const QList<QQuickItem *> texts = m_harness->texts();
        for (const QQuickItem *item : texts)
            if (!item->property("text").toString().isEmpty())
                QCOMPARE(item->property("textFormat").toInt(), int(Qt::PlainText));
        model().openPrivateSession(text.left(3000));
        m_harness->settle();
        QCOMPARE(m_harness->textsOutOfBounds(), QStringList());
    }

    void aLongTextIsFoldedUntilAskedFor()
    {
        const QString text = u"word "_qs.repeated(2000).trimmed();
        fillMessages(model());
        model().addRadioReceived(radioText(u"CCA1"_qs, text));
        m_harness->settle();
        TRY_VERIFY(field("foldControl"));
        QVERIFY(!m_harness->itemWithText(text));
        const qreal folded = list()->property("contentHeight").toReal();
        m_harness->click(field("foldControl"));
        TRY_VERIFY(m_harness->itemWithText(text));
        TRY_VERIFY(list()->property("contentHeight").toReal() > folded + 500);
        m_harness->settle();
        const QQuickItem *body = m_harness->itemWithText(text);
        QVERIFY(body->mapToItem(list(), QPointF()).y() > 0); // one reads on where one was
        QVERIFY(field("newestButton"));
        QCOMPARE(m_harness->textsOutOfBounds(), QStringList());
        m_harness->grab(u"messages-unfolded"_qs);
        m_harness->click(field("newestButton"));
        m_harness->settle();
        m_harness->click(field("foldControl"));
        TRY_VERIFY(!m_harness->itemWithText(text));
        m_harness->settle();
        QVERIFY(atEnd());
        TRY_VERIFY(!field("newestButton"));
    }

    void theLineScrollsTheList()
    {
        fillMessages(model());
        addRadioTexts(200);
        m_harness->settle();
        QVERIFY(field("composeField")->hasActiveFocus());
        const qreal end = contentY();
        press(Qt::Key_PageUp);
        const qreal up = contentY();
        QVERIFY(up < end - list()->height() / 2);
        press(Qt::Key_PageUp);
        press(Qt::Key_PageDown);
        QVERIFY(qAbs(contentY() - up) < 2);
        QVERIFY(field("newestButton"));
        press(Qt::Key_End); // the line's own
        QVERIFY(!atEnd());
        press(Qt::Key_End, Qt::ControlModifier);
        QVERIFY(atEnd());
        QVERIFY(!field("newestButton"));
        QVERIFY(field("composeField")->hasActiveFocus());
    }

    void theListScrollsByKeys_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("back");
        QTest::newRow("lines") << int(Qt::Key_Up) << int(Qt::Key_Down);
        QTest::newRow("pages") << int(Qt::Key_PageUp) << int(Qt::Key_PageDown);
        QTest::newRow("ends") << int(Qt::Key_Home) << int(Qt::Key_End);
    }

    void theListScrollsByKeys()
    {
        QFETCH(int, key);
        QFETCH(int, back);
        fillMessages(model());
        addRadioTexts(100);
        m_harness->settle();
        QVERIFY(m_harness->tabTo(u"messagePane"_qs, true));
        QVERIFY(field("messagePane")->property("visualFocus").toBool());
        for (int i = 0; i < 20 && atEnd(); ++i) // as long as the row before is in sight, nothing need move
            press(Qt::Key(key));
        QVERIFY(!atEnd());
        QVERIFY(field("newestButton"));
        for (int i = 0; i < 20 && !atEnd(); ++i)
            press(Qt::Key(back));
        QVERIFY(atEnd());
        QVERIFY(!field("newestButton"));
    }

    void aReadOnlyChannelIsReadByKeysAtOnce()
    {
        fillMessages(model());
        for (int i = 0; i < 100; ++i)
            model().addServerMessage(QString::number(i));
        m_harness->click(field("channel-SERVER"));
        m_harness->settle();
        QVERIFY(atEnd());
        press(Qt::Key_PageUp);
        QVERIFY(!atEnd());
        m_harness->click(field("channel-RADIO"));
        QVERIFY(field("composeField")->hasActiveFocus());
    }

    void aSenderIsAnsweredByAKey()
    {
        fillMessages(model());
        m_harness->settle();
        QQuickItem *sender = senderOf(u"CCA1831"_qs);
        QVERIFY(tabToItem(sender));
        QVERIFY(sender->property("visualFocus").toBool());
        press(Qt::Key_Return);
        QCOMPARE(model().activeChannel(), u"CCA1831"_qs);
        QVERIFY(field("composeField")->hasActiveFocus());
    }

    /// Else it would be a long way past a list of hundreds.
    void theKeyboardGoesToWhatIsInSight()
    {
        fillMessages(model());
        addRadioTexts(100);
        m_harness->settle();
        int senders = 0;
        while (!field("messagePane")->hasActiveFocus()) {
            QTest::keyClick(&m_harness->view, Qt::Key_Backtab);
            m_harness->settle();
            const QQuickItem *focused = m_harness->view.activeFocusItem();
            QVERIFY(focused);
            if (focused->objectName() != QLatin1String("sender"))
                continue;
            QVERIFY(++senders < 20);
            const QRectF box = focused->mapRectToItem(list(), QRectF(0, 0, focused->width(), focused->height()));
            QVERIFY2(box.top() >= 0 && box.bottom() <= list()->height(), qPrintable(QString::number(box.top())));
        }
        QVERIFY(senders > 3);
        QVERIFY(atEnd());
    }

    void foldAndNewestWorkByKeys()
    {
        const QString text = u"word "_qs.repeated(2000).trimmed();
        fillMessages(model());
        model().addRadioReceived(radioText(u"CCA1"_qs, text));
        m_harness->settle();
        QVERIFY(m_harness->tabTo(u"foldControl"_qs, true));
        QVERIFY(field("foldControl")->property("visualFocus").toBool());
        m_harness->hold(Qt::Key_Return); // it isn't folded again
        m_harness->settle();
        QVERIFY(m_harness->itemWithText(text));
        QVERIFY(m_harness->tabTo(u"newestButton"_qs));
        press(Qt::Key_Space);
        QVERIFY(atEnd());
        QVERIFY(!field("newestButton"));
        QVERIFY(field("messagePane")->hasActiveFocus()); // the button is gone
        press(Qt::Key_PageUp);
        QVERIFY(!atEnd());
    }

private:
    void drag(QPoint from, QPoint to)
    {
        QTest::mouseMove(&m_harness->view, from);
        QTest::mousePress(&m_harness->view, Qt::LeftButton, {}, from);
        QTest::mouseMove(&m_harness->view, (from + to) / 2);
        QTest::mouseMove(&m_harness->view, to);
        QTest::mouseRelease(&m_harness->view, Qt::LeftButton, {}, to, 1000); // no double click
        m_harness->settle();
    }

    qreal contentY() { return list()->property("contentY").toReal(); }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&m_harness->view, key, modifiers);
        m_harness->settle();
    }

    bool tabToItem(const QQuickItem *item)
    {
        for (int i = 0; i < 100 && !item->hasActiveFocus(); ++i)
            QTest::keyClick(&m_harness->view, Qt::Key_Tab);
        return item->hasActiveFocus();
    }
};

TARVO_TEST(MessageListTest)
#include "MessageListTest.moc"
