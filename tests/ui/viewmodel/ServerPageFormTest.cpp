#include "ServerPageFixture.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

using tarvo::test::ServerPageFixture;
using tarvo::ui::ServerPageViewModel;

/// The connect form: its texts by mode, its rules, and what they allow.
class ServerPageFormTest : public QObject
{
    Q_OBJECT

private slots:
    void modeTexts_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<bool>("observer");
        QTest::addColumn<QString>("platform");
        QTest::addColumn<QString>("action");
        QTest::addColumn<QString>("hint");
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

    void theStartHintComesBackAsTheOtherText()
    {
        ServerPageFixture fixture;
        QCOMPARE(fixture.model.modeHintText(), QStringLiteral("请先选择模拟平台。"));
        fixture.model.setCurrentMode(QStringLiteral("NONE")); // no change
        QCOMPARE(fixture.model.modeHintText(), QStringLiteral("请先选择模拟平台。"));
        fixture.model.setCurrentMode(QStringLiteral("XPLANE"));
        fixture.model.setCurrentMode(QStringLiteral("NONE"));
        QCOMPARE(fixture.model.modeHintText(), QStringLiteral("请先选择模拟器平台。"));
    }

    void formErrors_data()
    {
        QTest::addColumn<QString>("status");
        QTest::addColumn<bool>("connected");
        QTest::addColumn<QString>("callsign");
        QTest::addColumn<QString>("type");
        QTest::addColumn<bool>("observer");
        QTest::addColumn<QString>("error");
        const QString idle = QStringLiteral("已断开");
        const QString connecting = QStringLiteral("正在连接服务器，请等待当前连接完成。");
        const QString empty = QStringLiteral("请先填写呼号。");
        const QString bad = QStringLiteral("呼号只能包含 A-Z、0-9 和下划线，长度 2-12 位，不能包含空格或中文。");
        const QString noType = QStringLiteral("飞行员模式需要填写机型代码。");
        const QString type = QStringLiteral("B738");
        const auto callsign = [&](const char *name, const QString &text, const QString &error) {
            QTest::newRow(name) << idle << false << text << type << false << error;
        };
        callsign("upper case", QStringLiteral("CCA1234"), {});
        callsign("lower case", QStringLiteral("cca1234"), {});
        callsign("underscore", QStringLiteral("ZBAA_TWR"), {});
        callsign("shortest", QStringLiteral("AB"), {});
        callsign("longest", QStringLiteral("ABCDEFGHIJKL"), {});
        callsign("empty", QString(), empty);
        callsign("one letter", QStringLiteral("A"), bad);
        callsign("thirteen letters", QStringLiteral("ABCDEFGHIJKLM"), bad);
        callsign("a blank inside", QStringLiteral("CCA 1234"), bad);
        callsign("a blank before", QStringLiteral(" CCA1234"), bad);
        callsign("a blank behind", QStringLiteral("CCA1234 "), bad);
        callsign("only a blank", QStringLiteral(" "), bad);
        callsign("a line feed behind", QStringLiteral("CCA1234\n"), bad);
        callsign("a hyphen", QStringLiteral("B-2352"), bad);
        callsign("a colon", QStringLiteral("CCA:1"), bad);
        callsign("Chinese", QStringLiteral("国航1234"), bad);
        callsign("full-width letters", QStringLiteral("ＣＣＡ"), bad);
        const QString good = QStringLiteral("CCA1234");
        QTest::newRow("pilot without a type") << idle << false << good << QString() << false << noType;
        QTest::newRow("observer without a type") << idle << false << good << QString() << true << QString();
        QTest::newRow("observer with a type") << idle << false << good << type << true << QString();
        QTest::newRow("connecting hides the rest")
            << QStringLiteral("连接中...") << false << QString() << QString() << false << connecting;
        QTest::newRow("connecting, good form")
            << QStringLiteral("连接中...") << false << good << type << false << connecting;
        QTest::newRow("disconnecting") << QStringLiteral("断开中...") << false << good << type << false
                                       << QStringLiteral("正在断开服务器，请稍后再连接。");
        QTest::newRow("connected checks nothing")
            << QStringLiteral("已连接") << true << QString() << QString() << false << QString();
        QTest::newRow("connected while disconnecting")
            << QStringLiteral("断开中...") << true << good << type << false << QString();
    }

    void formErrors()
    {
        QFETCH(QString, status);
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
        model.setServerState(connected, status);
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
        fixture.model.setSelcal(QStringLiteral("AB-CD"));
        QCOMPARE(fixture.model.formErrorText(), QStringLiteral("请先填写呼号。"));
    }

    void theServersStateIsPartOfTheForm()
    {
        ServerPageFixture fixture;
        ServerPageViewModel &model = fixture.model;
        model.setCallsign(QStringLiteral("CCA1"));
        model.setTypeCode(QStringLiteral("B738"));
        QVERIFY(model.canConnect());
        QSignalSpy form(&model, &ServerPageViewModel::formChanged);
        model.setServerState(false, QStringLiteral("连接中..."));
        QVERIFY(!model.canConnect());
        model.setServerState(true, QStringLiteral("已连接"));
        QVERIFY(!model.canConnect());
        model.setServerState(false, QStringLiteral("已断开"));
        QVERIFY(model.canConnect());
        QCOMPARE(form.count(), 3);
    }

    void requestConnectCarriesTheForm()
    {
        ServerPageFixture fixture;
        ServerPageViewModel &model = fixture.model;
        model.setCallsign(QStringLiteral("cca1234"));
        model.setTypeCode(QStringLiteral("b738"));
        model.setSelcal(QStringLiteral("AB-CD"));
        model.setObserverMode(true);
        QSignalSpy requested(&model, &ServerPageViewModel::connectRequested);
        model.requestConnect();
        QCOMPARE(requested, (QList<QVariantList>{
                                {QStringLiteral("cca1234"), QStringLiteral("b738"), QStringLiteral("AB-CD"), true}}));
    }

    void aFieldTellsOnlyAChange_data()
    {
        QTest::addColumn<QByteArray>("field");
        QTest::addColumn<QVariant>("value");
        for (const char *field : {"callsign", "typeCode", "selcal"})
            QTest::newRow(field) << QByteArray(field) << QVariant(QStringLiteral("AB"));
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
