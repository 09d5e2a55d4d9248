#include "ServerPageFixture.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

using tarvo::test::columns;
using tarvo::test::ServerPageFixture;
using tarvo::ui::LinkState;
using tarvo::ui::ServerPageViewModel;

/// The connect form: its texts by mode, its rules, and what they allow.
class ServerPageFormTest : public QObject
{
    Q_OBJECT

private slots:
    void modeTexts_data()
    {
        columns<QString, bool, QString, QString, QString>("mode", "observer", "platform", "action", "hint");
        const auto row = [](const char *name, const char *mode, bool observer, const char16_t *platform,
                            const char16_t *action, const char16_t *hint) {
            QTest::newRow(name) << QString::fromLatin1(mode) << observer << QString::fromUtf16(platform)
                                << QString::fromUtf16(action) << QString::fromUtf16(hint);
        };
        const char16_t *const msfs = u"Microsoft Flight Simulator";
        row("MSFS", "MSFS", false, msfs, u"连接 MSFS 网络", u"MSFS 飞行模式需要填写呼号和机型代码。");
        row("MSFS, observer", "MSFS", true, msfs, u"以观察员连接 MSFS",
            u"观察员模式会自动规范呼号，并跳过机型代码要求。");
        row("X-Plane", "XPLANE", false, u"X-Plane", u"连接 X-Plane 网络",
            u"连接前建议先确认插件版本、CSL 配置和无线电状态。");
        row("X-Plane, observer", "XPLANE", true, u"X-Plane", u"以观察员连接 X-Plane",
            u"适合监听和观察，同时保持 X-Plane 插件在线。");
        row("none, observer", "NONE", true, u"未选择平台", u"连接网络", u"请先选择模拟器平台。");
        row("unknown", "FGFS", false, u"未选择平台", u"连接网络", u"请先选择模拟器平台。");
        row("empty", "", false, u"未选择平台", u"连接网络", u"请先选择模拟器平台。");
        row("lower case is another mode", "msfs", false, u"未选择平台", u"连接网络", u"请先选择模拟器平台。");
    }

    void modeTexts()
    {
        QFETCH(QString, mode);
        QFETCH(bool, observer);
        ServerPageFixture fixture;
        fixture.model.setCurrentMode(mode);
        fixture.model.setObserverMode(observer);
        QCOMPARE(fixture.model.currentMode(), mode);
        QTEST(fixture.model.platformLabel(), "platform");
        QTEST(fixture.model.connectActionLabel(), "action");
        QTEST(fixture.model.modeHintText(), "hint");
        QCOMPARE(fixture.model.typeCodeRequired(), !observer);
    }

    void aTypeThatNobodyKnows_data()
    {
        columns<QByteArray, QString, QString>("types", "typed", "hint");
        const QByteArray types = "BOEING\t737-800\tB738\tL2J\tM\n";
        QTest::newRow("known") << types << u"B738"_qs << QString();
        QTest::newRow("known, as typed") << types << u" b738 "_qs << QString();
        QTest::newRow("unknown") << types << u"b739"_qs << u"机型库中没有 B739。"_qs;
        QTest::newRow("nothing yet") << types << QString() << QString();
        QTest::newRow("one letter, so far") << types << u"B"_qs << QString();
        QTest::newRow("long") << types << QString(300, u'X') << u"机型库中没有 XXXXXXXX。"_qs;
        QTest::newRow("without type data") << QByteArray() << u"B739"_qs << QString();
    }

    void aTypeThatNobodyKnows()
    {
        QFETCH(QByteArray, types);
        QFETCH(QString, typed);
        ServerPageFixture fixture(types);
        fixture.model.setCurrentMode(u"XPLANE"_qs);
        fixture.model.setCallsign(u"CES2352"_qs);
        fixture.model.setTypeCode(typed);
        QTEST(fixture.model.typeCodeHint(), "hint");
        QCOMPARE(fixture.model.canConnect(), !typed.isEmpty()); // it is no refusal
    }

    void aSelcalThatLooksMistyped_data()
    {
        columns<QString, bool>("selcal", "hint");
        QTest::newRow("none") << QString() << false;
        QTest::newRow("pairs") << u"AB-CD"_qs << false;
        QTest::newRow("lower case, no dash") << u" abks "_qs << false;
        QTest::newRow("three letters") << u"ABC"_qs << true;
        QTest::newRow("beyond S") << u"AB-CT"_qs << true;
        QTest::newRow("a digit") << u"AB-C1"_qs << true;
        QTest::newRow("dash elsewhere") << u"A-BCD"_qs << true;
    }
    void aSelcalThatLooksMistyped()
    {
        QFETCH(QString, selcal);
        ServerPageFixture fixture;
        fixture.model.setCallsign(u"CES2352"_qs);
        fixture.model.setTypeCode(u"B738"_qs);
        fixture.model.setSelcal(selcal);
        QTEST(!fixture.model.selcalHint().isEmpty(), "hint");
        QVERIFY(fixture.model.canConnect()); // a hint, never a refusal
    }

    void theOneButton_data()
    {
        columns<bool, LinkState, QString, bool, bool>("connected", "state", "text", "ends", "enabled");
        QTest::newRow("connects") << false << LinkState::Absent << u"连接 X-Plane 网络"_qs << false << true;
        QTest::newRow("calls off") << false << LinkState::Connecting << u"取消连接"_qs << true << true;
        QTest::newRow("disconnects") << true << LinkState::Connected << u"断开连接"_qs << true << true;
        QTest::newRow("waits for the end")
            << false << LinkState::Disconnecting << u"连接 X-Plane 网络"_qs << false << false;
    }
    void theOneButton()
    {
        QFETCH(bool, connected);
        QFETCH(LinkState, state);
        ServerPageFixture fixture;
        fixture.model.setCurrentMode(u"XPLANE"_qs);
        fixture.model.setCallsign(u"CES2352"_qs);
        fixture.model.setTypeCode(u"B738"_qs);
        fixture.model.setServerState(connected, state);
        QTEST(fixture.model.buttonText(), "text");
        QTEST(fixture.model.buttonEnds(), "ends");
        QTEST(fixture.model.buttonEnabled(), "enabled");
    }

    void onlyWhatIsWrongIsRed_data()
    {
        columns<QString, LinkState, bool>("callsign", "state", "hint");
        QTest::newRow("nothing typed") << QString() << LinkState::Absent << true;
        QTest::newRow("wrong characters") << u"CES-2352"_qs << LinkState::Absent << false;
        QTest::newRow("the type is still to come") << u"CES2352"_qs << LinkState::Absent << true;
        QTest::newRow("connecting") << u"CES-2352"_qs << LinkState::Connecting << true;
        QTest::newRow("disconnecting") << u"CES-2352"_qs << LinkState::Disconnecting << true;
    }
    void onlyWhatIsWrongIsRed()
    {
        QFETCH(QString, callsign);
        QFETCH(LinkState, state);
        ServerPageFixture fixture;
        fixture.model.setCallsign(u"C"_qs);
        fixture.model.setCallsign(callsign);
        fixture.model.setServerState(false, state);
        QVERIFY(!fixture.model.formErrorText().isEmpty());
        QTEST(fixture.model.formErrorIsHint(), "hint");
    }

    void aFailureIsToldOnceAndCut()
    {
        ServerPageFixture fixture;
        const QSignalSpy changed(&fixture.model, &ServerPageViewModel::failureChanged);
        fixture.model.setFailure(u"bye\nbye"_qs);
        fixture.model.setFailure(u"bye\nbye"_qs);
        QCOMPARE(changed.size(), 1);
        QVERIFY(!fixture.model.failureText().contains(u'\n'));
        fixture.model.setFailure(QString(100'000, u'x'));
        QVERIFY(fixture.model.failureText().size() <= 501);
    }

    void theStartHintComesBackAsTheOtherText()
    {
        ServerPageFixture fixture;
        QCOMPARE(fixture.model.modeHintText(), u"请先选择模拟平台。"_qs);
        fixture.model.setCurrentMode(u"NONE"_qs); // no change
        QCOMPARE(fixture.model.modeHintText(), u"请先选择模拟平台。"_qs);
        fixture.model.setCurrentMode(u"XPLANE"_qs);
        fixture.model.setCurrentMode(u"NONE"_qs);
        QCOMPARE(fixture.model.modeHintText(), u"请先选择模拟器平台。"_qs);
    }

    void formErrors_data()
    {
        columns<LinkState, bool, QString, QString, bool, QString>("state", "connected", "callsign", "type", "observer",
                                                                  "error");
        const LinkState idle = LinkState::Ended;
        const QString connecting = u"正在连接服务器，请等待当前连接完成。"_qs;
        const QString empty = u"请先填写呼号。"_qs;
        const QString bad = u"呼号只能包含 A-Z、0-9 和下划线，长度 2-12 位，不能包含空格或中文。"_qs;
        const QString noType = u"飞行员模式需要填写机型代码。"_qs;
        const QString type = u"B738"_qs;
        const auto callsign = [&](const char *name, const QString &text, const QString &error) {
            QTest::newRow(name) << idle << false << text << type << false << error;
        };
        callsign("upper case", u"CCA1234"_qs, {});
        callsign("lower case", u"cca1234"_qs, {});
        callsign("underscore", u"ZBAA_TWR"_qs, {});
        callsign("shortest", u"AB"_qs, {});
        callsign("longest", u"ABCDEFGHIJKL"_qs, {});
        callsign("empty", QString(), empty);
        callsign("one letter", u"A"_qs, bad);
        callsign("thirteen letters", u"ABCDEFGHIJKLM"_qs, bad);
        callsign("a blank inside", u"CCA 1234"_qs, bad);
        callsign("a blank before", u" CCA1234"_qs, bad);
        callsign("a blank behind", u"CCA1234 "_qs, bad);
        callsign("only a blank", u" "_qs, bad);
        callsign("a line feed behind", u"CCA1234\n"_qs, bad);
        callsign("a hyphen", u"B-2352"_qs, bad);
        callsign("a colon", u"CCA:1"_qs, bad);
        callsign("Chinese", u"国航1234"_qs, bad);
        callsign("full-width letters", u"ＣＣＡ"_qs, bad);
        const QString good = u"CCA1234"_qs;
        QTest::newRow("pilot without a type") << idle << false << good << QString() << false << noType;
        QTest::newRow("observer without a type") << idle << false << good << QString() << true << QString();
        QTest::newRow("observer with a type") << idle << false << good << type << true << QString();
        QTest::newRow("connecting hides the rest")
            << LinkState::Connecting << false << QString() << QString() << false << connecting;
        QTest::newRow("connecting, good form") << LinkState::Connecting << false << good << type << false << connecting;
        QTest::newRow("disconnecting") << LinkState::Disconnecting << false << good << type << false
                                       << u"正在断开服务器，请稍后再连接。"_qs;
        QTest::newRow("connected checks nothing")
            << LinkState::Connected << true << QString() << QString() << false << QString();
        QTest::newRow("connected while disconnecting")
            << LinkState::Disconnecting << true << good << type << false << QString();
    }

    void formErrors()
    {
        QFETCH(LinkState, state);
        QFETCH(bool, connected);
        QFETCH(QString, callsign);
        QFETCH(QString, type);
        QFETCH(bool, observer);
        QFETCH(QString, error);
        ServerPageFixture fixture;
        ServerPageViewModel &model = fixture.model;
        model.setCallsign(callsign);
        model.setTypeCode(type);
        model.setObserverMode(observer);
        model.setServerState(connected, state);
        QCOMPARE(model.formErrorText(), error);
        QCOMPARE(model.canConnect(), error.isEmpty() && !connected);
        QCOMPARE(model.callsign(), callsign); // as typed

        QSignalSpy requested(&model, &ServerPageViewModel::connectRequested);
        model.requestConnect();
        QCOMPARE(requested.count(), model.canConnect() ? 1 : 0);
    }

    void nothingIsCheckedBeforeTheFirstChange()
    {
        ServerPageFixture fixture;
        QCOMPARE(fixture.model.formErrorText(), QString());
        QVERIFY(!fixture.model.canConnect());
        fixture.model.setCallsign(QString()); // no change
        QCOMPARE(fixture.model.formErrorText(), QString());
        fixture.model.setSelcal(u"AB-CD"_qs);
        QCOMPARE(fixture.model.formErrorText(), u"请先填写呼号。"_qs);
    }

    void theServersStateIsPartOfTheForm()
    {
        ServerPageFixture fixture;
        ServerPageViewModel &model = fixture.model;
        model.setCallsign(u"CCA1"_qs);
        model.setTypeCode(u"B738"_qs);
        QVERIFY(model.canConnect());
        QSignalSpy form(&model, &ServerPageViewModel::formChanged);
        model.setServerState(false, LinkState::Connecting);
        QVERIFY(!model.canConnect());
        model.setServerState(true, LinkState::Connected);
        QVERIFY(!model.canConnect());
        model.setServerState(false, LinkState::Ended);
        QVERIFY(model.canConnect());
        QCOMPARE(form.count(), 3);
    }

    void requestConnectCarriesTheForm()
    {
        ServerPageFixture fixture;
        ServerPageViewModel &model = fixture.model;
        model.setCallsign(u"cca1234"_qs);
        model.setTypeCode(u"b738"_qs);
        model.setSelcal(u"AB-CD"_qs);
        model.setObserverMode(true);
        QSignalSpy requested(&model, &ServerPageViewModel::connectRequested);
        model.requestConnect();
        QCOMPARE(requested, (QList<QVariantList>{{u"cca1234"_qs, u"b738"_qs, u"AB-CD"_qs, true}}));
    }

    void aFieldTellsOnlyAChange_data()
    {
        columns<QByteArray, QVariant>("field", "value");
        for (const char *field : {"callsign", "typeCode", "selcal"})
            QTest::newRow(field) << QByteArray(field) << QVariant(u"AB"_qs);
        for (const char *field : {"observerMode", "coordinatedVoice"})
            QTest::newRow(field) << QByteArray(field) << QVariant(true);
    }

    void aFieldTellsOnlyAChange()
    {
        QFETCH(QByteArray, field);
        QFETCH(QVariant, value);
        ServerPageFixture fixture;
        QSignalSpy form(&fixture.model, &ServerPageViewModel::formChanged);
        QVERIFY(fixture.model.setProperty(field.constData(), value));
        QCOMPARE(form.count(), 1);
        QCOMPARE(fixture.model.property(field.constData()), value);
        QVERIFY(fixture.model.setProperty(field.constData(), value));
        QCOMPARE(form.count(), 1);
    }
};

TARVO_TEST(ServerPageFormTest)
#include "ServerPageFormTest.moc"
