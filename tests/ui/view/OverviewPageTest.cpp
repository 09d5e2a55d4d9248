#include "PageHarness.h"
#include "support/TestRegistry.h"

#include <QDesktopServices>
#include <QObject>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

#include <memory>

using tarvo::test::PageHarness;
using tarvo::ui::LeaveQuestion;
using tarvo::ui::ServerPageViewModel;

/// Takes the web addresses that would open in the browser.
class WebCatcher : public QObject
{
    Q_OBJECT

public slots:
    void open(const QUrl &url) { opened = url; }

public:
    QUrl opened;
};

/// What the overview begins with, its buttons, the question before leaving, and the keys that scroll.
class OverviewPageTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_harness = std::make_unique<PageHarness>(u"XPLANE"_qs, QSize(1000, 700));
        m_harness->fillAccount();
    }

    void cleanup()
    {
        QCOMPARE(m_harness->complaints(), QStringList());
        m_harness.reset();
    }

    void itBeginsWithTheFlight()
    {
        m_harness->overview().show({.callsign = u"CES2352"_qs, .com1 = u"118.500"_qs, .com1Station = u"ZBAA_TWR"_qs});
        m_harness->settle();
        QVERIFY(m_harness->itemWithText(u"ZBAA_TWR"_qs));
        QVERIFY(top(u"CES2352"_qs) < top(u"你好，欧阳靖远"_qs));
    }

    void theUnreadButtonOpensTheMessages()
    {
        m_harness->messages().addPrivateReceived(u"CCA1"_qs, u"hello"_qs);
        m_harness->settle();
        QQuickItem *button = m_harness->item(u"overviewUnread"_qs);
        QCOMPARE(button->property("text").toString(), u"1 条未读"_qs);
        m_harness->click(button);
        QVERIFY(m_harness->item(u"composeField"_qs));
    }

    void theWebPagesOpenInTheBrowser()
    {
        WebCatcher catcher;
        QDesktopServices::setUrlHandler(u"https"_qs, &catcher, "open");
        m_harness->dashboard().setWebPages(u"https://example.net/new"_qs, {});
        m_harness->openSection(u"消息"_qs);
        m_harness->openSection(u"总览"_qs); // the pages read it when they are made
        QVERIFY(!m_harness->item(u"docsButton"_qs));
        QQuickItem *button = m_harness->item(u"updateButton"_qs);
        QVERIFY(button);
        QMetaObject::invokeMethod(button, "clicked");
        QDesktopServices::unsetUrlHandler(u"https"_qs);
        QCOMPARE(catcher.opened, QUrl(u"https://example.net/new"_qs));
    }

    void withoutAddressesThereAreNoButtons()
    {
        QVERIFY(!m_harness->item(u"updateButton"_qs));
        QVERIFY(!m_harness->item(u"docsButton"_qs));
    }

    void disconnectingIsAskedFor()
    {
        goOnline();
        m_harness->openSection(u"服务器"_qs);
        const QSignalSpy ends(&m_harness->server(), &ServerPageViewModel::disconnectRequested);
        m_harness->click(m_harness->item(u"connectButton"_qs));
        QVERIFY(m_harness->leave().isOpen());
        QCOMPARE(ends.size(), 0);
        m_harness->settle();
        m_harness->grab(u"leave-1000"_qs);
        m_harness->click(m_harness->item(u"leaveReject"_qs));
        QVERIFY(!m_harness->leave().isOpen());
        m_harness->click(m_harness->item(u"connectButton"_qs));
        m_harness->settle();
        m_harness->click(m_harness->item(u"leaveAccept"_qs));
        QCOMPARE(ends.size(), 1);
    }

    void theQuestionIsAnsweredByKeys_data()
    {
        QTest::addColumn<QList<int>>("keys");
        QTest::addColumn<bool>("leaves");
        QTest::newRow("Escape stays") << QList<int>{Qt::Key_Escape} << false;
        QTest::newRow("Enter stays: the quiet button has the focus") << QList<int>{Qt::Key_Return} << false;
        QTest::newRow("Tab, Enter leaves") << QList<int>{Qt::Key_Tab, Qt::Key_Return} << true;
    }
    void theQuestionIsAnsweredByKeys()
    {
        QFETCH(QList<int>, keys);
        goOnline();
        const QSignalSpy confirmed(&m_harness->leave(), &LeaveQuestion::logOutConfirmed);
        m_harness->click(m_harness->item(u"logoutItem"_qs));
        m_harness->settle();
        for (const int key : keys)
            QTest::keyClick(&m_harness->view, Qt::Key(key));
        QVERIFY(!m_harness->leave().isOpen());
        QCOMPARE(confirmed.size(), leaves() ? 1 : 0);
    }

    void neverAgainIsTaken()
    {
        goOnline();
        m_harness->click(m_harness->item(u"logoutItem"_qs));
        m_harness->settle();
        m_harness->click(m_harness->item(u"leaveNeverAgain"_qs));
        m_harness->click(m_harness->item(u"leaveAccept"_qs));
        QVERIFY(!m_harness->leave().mustAsk());
    }

    void theKeysScrollThePage()
    {
        m_harness->settle();
        const qreal before = top(u"你好，欧阳靖远"_qs);
        QTest::keyClick(&m_harness->view, Qt::Key_PageDown);
        m_harness->settle();
        QVERIFY(top(u"你好，欧阳靖远"_qs) < before - 200);
        QTest::keyClick(&m_harness->view, Qt::Key_Home);
        m_harness->settle();
        QCOMPARE(top(u"你好，欧阳靖远"_qs), before);
    }

private:
    static bool leaves()
    {
        QFETCH(bool, leaves);
        return leaves;
    }

    void goOnline()
    {
        m_harness->connectToNetwork();
        m_harness->leave().setOnline(u"CES2352"_qs);
    }

    qreal top(const QString &text) const
    {
        const QQuickItem *item = m_harness->itemWithText(text);
        return item ? item->mapToScene({}).y() : -1;
    }

    std::unique_ptr<PageHarness> m_harness;
};

TARVO_TEST(OverviewPageTest)
#include "OverviewPageTest.moc"
