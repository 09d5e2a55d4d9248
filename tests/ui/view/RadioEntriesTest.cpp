#include "ComposingInput.h"
#include "SimulatorPageFixture.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

using tarvo::test::ComposingInput;
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
        const QString com = QStringLiteral("com1");
        const QString form = QStringLiteral("格式如 121.800");
        const QString range = QStringLiteral("范围 118.000 至 136.990");
        const QString code = QStringLiteral("transponder");
        QTest::newRow("COM, nothing") << com << QString() << QString() << QString();
        QTest::newRow("COM, blanks") << com << QStringLiteral("  ") << QString() << QString();
        QTest::newRow("COM, whole") << com << QStringLiteral("121.800") << QStringLiteral("121.800") << QString();
        QTest::newRow("COM, blanks around")
            << com << QStringLiteral(" 121.800 ") << QStringLiteral("121.800") << QString();
        QTest::newRow("COM, one decimal") << com << QStringLiteral("121.8") << QStringLiteral("121.800") << QString();
        QTest::newRow("COM, 8.33 channel")
            << com << QStringLiteral("118.005") << QStringLiteral("118.005") << QString();
        QTest::newRow("COM, lowest") << com << QStringLiteral("118.000") << QStringLiteral("118.000") << QString();
        QTest::newRow("COM, highest") << com << QStringLiteral("136.990") << QStringLiteral("136.990") << QString();
        QTest::newRow("COM, below") << com << QStringLiteral("117.995") << QString() << range;
        QTest::newRow("COM, above") << com << QStringLiteral("136.995") << QString() << range;
        QTest::newRow("COM, between the channels")
            << com << QStringLiteral("121.803") << QString() << QStringLiteral("末位只能是 0 或 5");
        QTest::newRow("COM, no point") << com << QStringLiteral("121800") << QString() << form;
        QTest::newRow("COM, four decimals") << com << QStringLiteral("121.8000") << QString() << form;
        QTest::newRow("COM, letters") << com << QStringLiteral("12l.800") << QString() << form;
        QTest::newRow("COM, minus") << com << QStringLiteral("-121.800") << QString() << form;
        QTest::newRow("COM, exponent") << com << QStringLiteral("1.2e2") << QString() << form;
        QTest::newRow("COM2's own example")
            << QStringLiteral("com2") << QStringLiteral("x") << QString() << QStringLiteral("格式如 124.550");
        QTest::newRow("code, whole") << code << QStringLiteral("7700") << QStringLiteral("7700") << QString();
        QTest::newRow("code, one digit") << code << QStringLiteral("0") << QStringLiteral("0") << QString();
        QTest::newRow("code, an eight") << code << QStringLiteral("8000") << QString()
                                        << QStringLiteral("只能用数字 0 至 7");
        QTest::newRow("code, five digits")
            << code << QStringLiteral("12345") << QString() << QStringLiteral("最多四位数字");
        QTest::newRow("code, a letter") << code << QStringLiteral("77o0") << QString()
                                        << QStringLiteral("只能用数字 0 至 7");
    }

    void entries()
    {
        QFETCH(QString, entry);
        QFETCH(QString, typed);
        QFETCH(QString, sent);
        QSignalSpy com1(&model(), &SimulatorPageViewModel::setCom1FrequencyRequested);
        QSignalSpy code(&model(), &SimulatorPageViewModel::setTransponderCodeRequested);
        QQuickItem *field = item(entry + QStringLiteral("Field"));
        field->forceActiveFocus();
        m_harness->type(typed);
        QTEST(item(entry + QStringLiteral("Hint"))->property("text").toString(), "hint");
        QCOMPARE(item(entry + QStringLiteral("Button"))->isEnabled(), !sent.isEmpty());
        QTest::keyClick(&m_harness->view, Qt::Key_Return);
        const QList<QVariantList> expected =
            sent.isEmpty() ? QList<QVariantList>() : QList<QVariantList>{{QVariant(sent)}};
        QCOMPARE(entry == QLatin1String("com1") ? com1 : code, expected);
        QCOMPARE(field->property("text").toString(), sent.isEmpty() ? typed : QString());
    }

    void fullWidthTextIsRead()
    {
        QSignalSpy com1(&model(), &SimulatorPageViewModel::setCom1FrequencyRequested);
        item(QStringLiteral("com1Field"))->setProperty("text", QStringLiteral("１２１。８"));
        QVERIFY(item(QStringLiteral("com1Button"))->isEnabled());
        m_harness->click(item(QStringLiteral("com1Button")));
        QCOMPARE(com1, (QList<QVariantList>{{QStringLiteral("121.800")}}));
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
        const QString form = QStringLiteral("格式如 121.800");
        item(QStringLiteral("com1Field"))->forceActiveFocus();
        m_harness->type(typed);
        QCOMPARE(hint(), begins ? QString() : form);
        QTest::keyClick(&m_harness->view, Qt::Key_Return); // so the pilot has done
        QCOMPARE(hint(), form);
        QTest::keyClick(&m_harness->view, Qt::Key_Backspace);
        m_harness->type(typed.right(1));
        QCOMPARE(hint(), begins ? QString() : form);
        item(QStringLiteral("transponderField"))->forceActiveFocus(); // and so, too
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
        QQuickItem *field = item(QStringLiteral("com2Field"));
        field->forceActiveFocus();
        m_harness->type(QStringLiteral("124"));
        QVERIFY(!item(QStringLiteral("com2Button"))->isEnabled());
        ComposingInput input;
        input.compose(QStringLiteral(".55"));
        QCOMPARE(field->property("preeditText").toString(), QStringLiteral(".55"));
        QVERIFY(item(QStringLiteral("com2Button"))->isEnabled());
        m_harness->grab(QStringLiteral("simulator-entry"));
        if (click)
            m_harness->click(item(QStringLiteral("com2Button")));
        else
            QTest::keyClick(&m_harness->view, Qt::Key_Return);
        QCOMPARE(com2, (QList<QVariantList>{{QStringLiteral("124.550")}}));
        QCOMPARE(field->property("text").toString(), QString());
        QCOMPARE(field->property("preeditText").toString(), QString());
    }

    void theFieldKeepsTheFocus()
    {
        QSignalSpy com2(&model(), &SimulatorPageViewModel::setCom2FrequencyRequested);
        m_harness->click(item(QStringLiteral("com2Field")));
        m_harness->type(QStringLiteral("124.55"));
        m_harness->click(item(QStringLiteral("com2Button")));
        m_harness->type(QStringLiteral("118.1\t "));
        QCOMPARE(com2, (QList<QVariantList>{{QStringLiteral("124.550")}, {QStringLiteral("118.100")}}));
        QVERIFY(item(QStringLiteral("com2Field"))->hasActiveFocus()); // after the button's own key as well
    }

    void withoutASimulatorNothingCanBeWritten()
    {
        const QStringList names{QStringLiteral("com1"), QStringLiteral("com2"), QStringLiteral("transponder")};
        for (const QString &name : names)
            item(name + QStringLiteral("Field"))->setProperty("text", name == names.last() ? u"2000"_qs : u"121.8"_qs);
        for (const QString &name : names)
            QVERIFY(item(name + QStringLiteral("Button"))->isEnabled());
        QSignalSpy com1(&model(), &SimulatorPageViewModel::setCom1FrequencyRequested);
        item(QStringLiteral("com1Field"))->forceActiveFocus();
        model().setSimulatorState(false, QStringLiteral("未连接"));
        for (const QString &name : names)
            QVERIFY(!item(name + QStringLiteral("Button"))->isEnabled());
        QVERIFY(!item(QStringLiteral("identButton"))->isEnabled());
        QVERIFY(!item(QStringLiteral("modeCButton"))->isEnabled());
        QTest::keyClick(&m_harness->view, Qt::Key_Return);
        QCOMPARE(com1.count(), 0);
        QCOMPARE(item(QStringLiteral("com1Field"))->property("text").toString(), QStringLiteral("121.8"));
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
        m_harness->settle();
        QVERIFY(!inSight(QStringLiteral("com1Field")));
        for (const char16_t *name : {u"com1Field", u"com2Field", u"modeCButton", u"identButton", u"transponderField"}) {
            QVERIFY(m_harness->tabTo(QString::fromUtf16(name)));
            QVERIFY2(inSight(QString::fromUtf16(name)), qPrintable(QString::fromUtf16(name)));
        }
        m_harness->type(QStringLiteral("2000\t"));
        QVERIFY(item(QStringLiteral("transponderButton"))->hasActiveFocus());
        m_harness->settle();
        QVERIFY(inSight(QStringLiteral("transponderButton")));
    }

    void theMouseMovesNothingAway()
    {
        open({1000, 700});
        QQuickItem *view = item(QStringLiteral("simulatorScroll"))->property("contentItem").value<QQuickItem *>();
        QQuickItem *field = item(QStringLiteral("com1Field"));
        // So that just its upper half can be seen.
        const qreal top = field->mapToItem(view, QPointF()).y();
        view->setProperty("contentY", top + field->height() / 2 - view->height());
        const qreal before = view->property("contentY").toReal();
        QTest::mouseClick(&m_harness->view, Qt::LeftButton, {}, field->mapToScene(QPointF(20, 4)).toPoint());
        QVERIFY(field->hasActiveFocus());
        m_harness->settle();
        QCOMPARE(view->property("contentY").toReal(), before);
    }

private:
    QString hint() { return item(QStringLiteral("com1Hint"))->property("text").toString(); }

    bool inSight(const QString &name)
    {
        const QQuickItem *field = item(name);
        const QQuickItem *view = item(QStringLiteral("simulatorScroll"));
        const QRectF box = field->mapRectToItem(view, QRectF(0, 0, field->width(), field->height()));
        return QRectF(0, 0, view->width(), view->height()).contains(box);
    }
};

TARVO_TEST(RadioEntriesTest)
#include "RadioEntriesTest.moc"
