#include "ComposingInput.h"
#include "SimulatorPageFixture.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>

using tarvo::test::ComposingInput;
using tarvo::ui::LinkState;
using tarvo::ui::SimulatorPageViewModel;

/// The entries for the radios and the transponder, under real keys, clicks and an input method.
class RadioEntriesTest : public QObject, protected tarvo::test::SimulatorPageFixture
{
    Q_OBJECT

private slots:
    void init() { open(); }

    void cleanup()
    {
        QCOMPARE(m_harness->complaints(), QStringList());
        m_harness.reset();
    }

    void entries_data()
    {
        QTest::addColumn<QString>("entry");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("sent");
        QTest::addColumn<QString>("hint");
        const QString com = u"com1"_qs;
        const QString form = u"格式如 121.800"_qs;
        const QString range = u"范围 118.000 至 136.990"_qs;
        const QString code = u"transponder"_qs;
        QTest::newRow("COM, nothing") << com << QString() << QString() << QString();
        QTest::newRow("COM, blanks") << com << u"  "_qs << QString() << QString();
        QTest::newRow("COM, whole") << com << u"121.800"_qs << u"121.800"_qs << QString();
        QTest::newRow("COM, blanks around") << com << u" 121.800 "_qs << u"121.800"_qs << QString();
        QTest::newRow("COM, one decimal") << com << u"121.8"_qs << u"121.800"_qs << QString();
        QTest::newRow("COM, 8.33 channel") << com << u"118.005"_qs << u"118.005"_qs << QString();
        QTest::newRow("COM, lowest") << com << u"118.000"_qs << u"118.000"_qs << QString();
        QTest::newRow("COM, highest") << com << u"136.990"_qs << u"136.990"_qs << QString();
        QTest::newRow("COM, below") << com << u"117.995"_qs << QString() << range;
        QTest::newRow("COM, above") << com << u"136.995"_qs << QString() << range;
        QTest::newRow("COM, between the channels") << com << u"121.803"_qs << QString() << u"末位只能是 0 或 5"_qs;
        QTest::newRow("COM, no point") << com << u"121800"_qs << QString() << form;
        QTest::newRow("COM, four decimals") << com << u"121.8000"_qs << QString() << form;
        QTest::newRow("COM, letters") << com << u"12l.800"_qs << QString() << form;
        QTest::newRow("COM, minus") << com << u"-121.800"_qs << QString() << form;
        QTest::newRow("COM, exponent") << com << u"1.2e2"_qs << QString() << form;
        QTest::newRow("COM2's own example") << u"com2"_qs << u"x"_qs << QString() << u"格式如 124.550"_qs;
        QTest::newRow("code, whole") << code << u"7700"_qs << u"7700"_qs << QString();
        QTest::newRow("code, one digit") << code << u"0"_qs << u"0"_qs << QString();
        QTest::newRow("code, an eight") << code << u"8000"_qs << QString() << u"只能用数字 0 至 7"_qs;
        QTest::newRow("code, five digits") << code << u"12345"_qs << QString() << u"最多四位数字"_qs;
        QTest::newRow("code, a letter") << code << u"77o0"_qs << QString() << u"只能用数字 0 至 7"_qs;
    }

    void entries()
    {
        QFETCH(QString, entry);
        QFETCH(QString, typed);
        QFETCH(QString, sent);
        QSignalSpy com1(&model(), &SimulatorPageViewModel::setCom1FrequencyRequested);
        QSignalSpy code(&model(), &SimulatorPageViewModel::setTransponderCodeRequested);
        QQuickItem *field = item(entry + u"Field"_qs);
        field->forceActiveFocus();
        m_harness->type(typed);
        QTEST(item(entry + u"Hint"_qs)->property("text").toString(), "hint");
        QCOMPARE(item(entry + u"Button"_qs)->isEnabled(), !sent.isEmpty());
        QTest::keyClick(&m_harness->view, Qt::Key_Return);
        const QList<QVariantList> expected =
            sent.isEmpty() ? QList<QVariantList>() : QList<QVariantList>{{QVariant(sent)}};
        QCOMPARE(entry == QLatin1String("com1") ? com1 : code, expected);
        QCOMPARE(field->property("text").toString(), sent.isEmpty() ? typed : QString());
    }

    void fullWidthTextIsRead()
    {
        QSignalSpy com1(&model(), &SimulatorPageViewModel::setCom1FrequencyRequested);
        item(u"com1Field"_qs)->setProperty("text", u"１２１。８"_qs);
        QVERIFY(item(u"com1Button"_qs)->isEnabled());
        m_harness->click(item(u"com1Button"_qs));
        QCOMPARE(com1, (QList<QVariantList>{{u"121.800"_qs}}));
    }

    void whatMayBecomeRightIsNotWrongYet_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("begins");
        for (const char *typed : {"1", "11", "118", "12", "13", "136", "121."})
            QTest::newRow(typed) << QString::fromLatin1(typed) << true;
        for (const char *typed : {"2", "10", "14", "117", "117.", "137", "12.", "1180", "."})
            QTest::newRow(typed) << QString::fromLatin1(typed) << false;
    }

    void whatMayBecomeRightIsNotWrongYet()
    {
        QFETCH(QString, typed);
        QFETCH(bool, begins);
        const QString form = u"格式如 121.800"_qs;
        item(u"com1Field"_qs)->forceActiveFocus();
        m_harness->type(typed);
        QCOMPARE(hint(), begins ? QString() : form);
        QTest::keyClick(&m_harness->view, Qt::Key_Return); // so the pilot has done
        QCOMPARE(hint(), form);
        QTest::keyClick(&m_harness->view, Qt::Key_Backspace);
        m_harness->type(typed.right(1));
        QCOMPARE(hint(), begins ? QString() : form);
        item(u"transponderField"_qs)->forceActiveFocus(); // and so, too
        QCOMPARE(hint(), form);
    }

    void aComposedTextCountsAsTyped_data()
    {
        QTest::addColumn<bool>("click");
        QTest::newRow("Enter") << false;
        QTest::newRow("button") << true;
    }

    void aComposedTextCountsAsTyped()
    {
        QFETCH(bool, click);
        QSignalSpy com2(&model(), &SimulatorPageViewModel::setCom2FrequencyRequested);
        QQuickItem *field = item(u"com2Field"_qs);
        field->forceActiveFocus();
        m_harness->type(u"124"_qs);
        QVERIFY(!item(u"com2Button"_qs)->isEnabled());
        ComposingInput input;
        input.compose(u".55"_qs);
        QCOMPARE(field->property("preeditText").toString(), u".55"_qs);
        QVERIFY(item(u"com2Button"_qs)->isEnabled());
        m_harness->grab(u"simulator-entry"_qs);
        if (click)
            m_harness->click(item(u"com2Button"_qs));
        else
            QTest::keyClick(&m_harness->view, Qt::Key_Return);
        QCOMPARE(com2, (QList<QVariantList>{{u"124.550"_qs}}));
        QCOMPARE(field->property("text").toString(), QString());
        QCOMPARE(field->property("preeditText").toString(), QString());
    }

    void theFieldKeepsTheFocus()
    {
        QSignalSpy com2(&model(), &SimulatorPageViewModel::setCom2FrequencyRequested);
        m_harness->click(item(u"com2Field"_qs));
        m_harness->type(u"124.55"_qs);
        m_harness->click(item(u"com2Button"_qs));
        m_harness->type(u"118.1\t "_qs);
        QCOMPARE(com2, (QList<QVariantList>{{u"124.550"_qs}, {u"118.100"_qs}}));
        QVERIFY(item(u"com2Field"_qs)->hasActiveFocus()); // after the button's own key as well
    }

    void withoutASimulatorNothingCanBeWritten()
    {
        const QStringList names{u"com1"_qs, u"com2"_qs, u"transponder"_qs};
        for (const QString &name : names)
            item(name + u"Field"_qs)->setProperty("text", name == names.last() ? u"2000"_qs : u"121.8"_qs);
        for (const QString &name : names)
            QVERIFY(item(name + u"Button"_qs)->isEnabled());
        QSignalSpy com1(&model(), &SimulatorPageViewModel::setCom1FrequencyRequested);
        item(u"com1Field"_qs)->forceActiveFocus();
        model().setSimulatorState(false, LinkState::Absent);
        for (const QString &name : names)
            QVERIFY(!item(name + u"Button"_qs)->isEnabled());
        QVERIFY(!item(u"identButton"_qs)->isEnabled());
        QVERIFY(!item(u"modeCButton"_qs)->isEnabled());
        QTest::keyClick(&m_harness->view, Qt::Key_Return);
        QCOMPARE(com1.count(), 0);
        QCOMPARE(item(u"com1Field"_qs)->property("text").toString(), u"121.8"_qs);
    }

    void theKeyboardBringsTheEntriesIntoSight_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("small") << QSize(1000, 700);
        QTest::newRow("usual") << QSize(1280, 800);
    }

    void theKeyboardBringsTheEntriesIntoSight()
    {
        QFETCH(QSize, size);
        open(size);
        scrollTo(10'000);
        m_harness->settle();
        QVERIFY(!inSight(u"com1Field"_qs));
        for (const char16_t *name : {u"com1Field", u"com2Field", u"modeCButton", u"identButton", u"transponderField"}) {
            QVERIFY(m_harness->tabTo(QString::fromUtf16(name)));
            QVERIFY2(inSight(QString::fromUtf16(name)), qPrintable(QString::fromUtf16(name)));
        }
        m_harness->type(u"2000\t"_qs);
        QVERIFY(item(u"transponderButton"_qs)->hasActiveFocus());
        m_harness->settle();
        QVERIFY(inSight(u"transponderButton"_qs));
    }

    void theMouseMovesNothingAway()
    {
        open({1000, 700});
        QQuickItem *view = item(u"simulatorScroll"_qs)->property("contentItem").value<QQuickItem *>();
        QQuickItem *field = item(u"com1Field"_qs);
        // So that just its lower half can be seen.
        scrollTo(field->mapToItem(view, QPointF()).y() + field->height() / 2);
        const qreal before = view->property("contentY").toReal();
        QTest::mouseClick(&m_harness->view, Qt::LeftButton, {},
                          field->mapToScene(QPointF(20, field->height() - 4)).toPoint());
        QVERIFY(field->hasActiveFocus());
        m_harness->settle();
        QCOMPARE(view->property("contentY").toReal(), before);
    }

private:
    QString hint() { return item(u"com1Hint"_qs)->property("text").toString(); }

    /// Not beyond the page's end.
    void scrollTo(qreal contentY)
    {
        QQuickItem *view = item(u"simulatorScroll"_qs)->property("contentItem").value<QQuickItem *>();
        const qreal last = view->property("contentHeight").toReal() - view->height();
        view->setProperty("contentY", std::min(contentY, last));
    }

    bool inSight(const QString &name)
    {
        const QQuickItem *field = item(name);
        const QQuickItem *view = item(u"simulatorScroll"_qs);
        const QRectF box = field->mapRectToItem(view, QRectF(0, 0, field->width(), field->height()));
        return QRectF(0, 0, view->width(), view->height()).contains(box);
    }
};

TARVO_TEST(RadioEntriesTest)
#include "RadioEntriesTest.moc"
