#include "ComposingInput.h"
#include "PageHarness.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using tarvo::test::ComposingInput;
using tarvo::test::PageHarness;
namespace config = tarvo::config;

/// The settings page under real keys and clicks.
class SettingsPageTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_harness = std::make_unique<PageHarness>(u"XPLANE"_qs, QSize(1280, 1500)); // all of it is in sight
        m_harness->fillVoiceSettings();
        m_harness->openSection(u"设置"_qs);
    }

    void cleanup()
    {
        QCOMPARE(m_harness->complaints(), QStringList());
        m_harness.reset();
    }

    void theSoundsAreSetAtOnce()
    {
        tarvo::ui::SoundsViewModel &sounds = m_harness->sounds();
        const QSignalSpy trial(&sounds, &tarvo::ui::SoundsViewModel::trialRequested);
        QVERIFY(m_harness->tabTo(u"soundTrialButton"_qs)); // which brings it into sight
        QTest::keyClick(&m_harness->view, Qt::Key_Return);
        QCOMPARE(trial.size(), 1);
        QVERIFY(m_harness->tabTo(u"soundVolumeSlider"_qs));
        QTest::keyClick(&m_harness->view, Qt::Key_Left);
        QCOMPARE(sounds.volume(), 95);
        m_harness->grab(u"settings-sound"_qs);
        m_harness->click(m_harness->item(u"soundBell"_qs));
        QVERIFY(!m_harness->item(u"soundsOnBox"_qs)->property("checked").toBool());
        QVERIFY(!m_harness->item(u"soundTrialButton"_qs)->isEnabled());
        m_harness->click(m_harness->item(u"soundsOnBox"_qs));
        QVERIFY(sounds.isOn());
        sounds.showSign(QUrl(u"qrc:/resources/sounds/manager.mp3"_qs));
        QVERIFY(m_harness->item(u"soundSign"_qs));
        m_harness->grab(u"sound-sign"_qs);
    }

    void aFieldIsTypedAndSaved_data()
    {
        QTest::addColumn<QString>("fieldName");
        QTest::addColumn<QByteArray>("property");
        const auto row = [](const char *fieldName, const char *property) {
            QTest::newRow(property) << QString::fromLatin1(fieldName) << QByteArray(property);
        };
        row("usernameField", "username");
        row("passwordField", "password");
        row("realnameField", "realname");
        row("homeAirportField", "homeAirport");
        row("xplaneNetworkAddressField", "xplaneNetworkAddress");
        row("xplaneUdpPortField", "xplaneUdpPortText");
        row("xplaneCslPathsTextArea", "xplaneCslPathsText");
        for (const char *name :
             {"msfsPackagesPath2020", "msfsCommunityPath2020", "msfsPackagesPath2024", "msfsCommunityPath2024"})
            row((QByteArray(name) + "Field").constData(), name);
        row("msfsCustomMappingPaths2020Area", "msfsCustomMappingPaths2020");
        row("msfsCustomMappingPaths2024Area", "msfsCustomMappingPaths2024");
    }
    void aFieldIsTypedAndSaved()
    {
        QFETCH(QString, fieldName);
        QFETCH(QByteArray, property);
        m_harness->settings().setProperty(property, QString());
        edit(fieldName, u"4321"_qs);
        QCOMPARE(m_harness->settings().property(property), u"4321"_qs);
        QCOMPARE(text(fieldName), u"4321"_qs);
        QVERIFY(item("editedMark"));
        m_harness->click(item("saveButton"));
        QVERIFY(!item("editedMark"));
        QCOMPARE(text(u"saveStatus"_qs), u"已保存到 config.ini"_qs);
        m_harness->settings().setProperty(property, u"1234"_qs);
        QCOMPARE(text(fieldName), u"1234"_qs); // still follows
        m_harness->settings().saveAll();
    }

    void reloadDiscards()
    {
        edit(u"homeAirportField"_qs, u"x"_qs);
        edit(u"xplaneCslPathsTextArea"_qs, u"y"_qs);
        m_harness->click(item("reloadButton"));
        QCOMPARE(text(u"homeAirportField"_qs), u"ZBAA"_qs);
        QCOMPARE(text(u"xplaneCslPathsTextArea"_qs), QString());
        QCOMPARE(text(u"saveStatus"_qs), u"已从 config.ini 加载"_qs);
        QVERIFY(!item("editedMark"));
    }

    void theBoxes_data()
    {
        QTest::addColumn<QByteArray>("box");
        QTest::addColumn<QByteArray>("property");
        QTest::newRow("remember") << QByteArray("rememberBox") << QByteArray("rememberPassword");
        QTest::newRow("log in") << QByteArray("autoLoginBox") << QByteArray("autoLogin");
        QTest::newRow("protocol") << QByteArray("vatsimBox") << QByteArray("vatsimProtocol");
    }
    void theBoxes()
    {
        QFETCH(QByteArray, box);
        QFETCH(QByteArray, property);
        const bool before = m_harness->settings().property(property).toBool();
        m_harness->click(item(box.constData()));
        QCOMPARE(m_harness->settings().property(property), !before);
        m_harness->settings().reload();
        QCOMPARE(item(box.constData())->property("checked"), before);
    }

    void thePasswordIsDots()
    {
        QQuickItem *field = item("passwordField");
        m_harness->settings().setProperty("password", u"secret"_qs);
        QCOMPARE(field->property("displayText").toString(), QString(6, QChar(0x25CF)));
        m_harness->click(item("lookButton"));
        QCOMPARE(field->property("displayText"), u"secret"_qs);
        m_harness->click(item("lookButton"));
        QCOMPARE(field->property("displayText").toString(), QString(6, QChar(0x25CF)));
        m_harness->settings().reload();
    }

    void aWrongPortIsMarked()
    {
        QVERIFY(!item("xplaneUdpPortHint"));
        edit(u"xplaneUdpPortField"_qs, u"490000"_qs);
        QCOMPARE(text(u"xplaneUdpPortHint"_qs), u"应为 1 到 65535，仍用 49000"_qs);
        edit(u"xplaneUdpPortField"_qs, u"49010"_qs);
        QVERIFY(!item("xplaneUdpPortHint"));
        QCOMPARE(m_harness->settings().udpPort(), 49010);
    }

    void aMissingFolderIsMarkedAndSaved()
    {
        edit(u"msfsCommunityPath2024Field"_qs, u"/nowhere"_qs);
        TRY_VERIFY(item("msfsCommunityPath2024Hint"));
        QCOMPARE(text(u"msfsCommunityPath2024Hint"_qs), u"找不到文件夹：/nowhere"_qs);
        QVERIFY(!item("msfsPackagesPath2024Hint"));
        m_harness->click(item("saveButton"));
        QCOMPARE(m_harness->config().get(config::msfsCommunityPath2024), u"/nowhere"_qs);
        edit(u"msfsCommunityPath2024Field"_qs, m_harness->config().dataRoot());
        TRY_VERIFY(!item("msfsCommunityPath2024Hint"));
    }

    void whatIsComposedIsSaved()
    {
        ComposingInput input;
        item("realnameField")->forceActiveFocus();
        input.compose(u"王小明"_qs);
        QTest::mouseClick(&m_harness->view, Qt::LeftButton, Qt::NoModifier, centre("saveButton"));
        QCOMPARE(m_harness->config().get(config::profileRealname), u"王小明"_qs);
    }

    void tabLeavesAList()
    {
        item("xplaneCslPathsTextArea")->forceActiveFocus();
        QTest::keyClick(&m_harness->view, Qt::Key_Tab);
        QVERIFY(item("reloadLibrary2020")->hasActiveFocus());
        QTest::keyClick(&m_harness->view, Qt::Key_Backtab);
        QVERIFY(item("xplaneCslPathsTextArea")->hasActiveFocus());
        QTest::keyClick(&m_harness->view, Qt::Key_Backtab);
        QVERIFY(item("xplaneUdpPortField")->hasActiveFocus());
        QCOMPARE(text(u"xplaneCslPathsTextArea"_qs), QString());
    }

    void theKeyboardReachesEverything()
    {
        for (const char *name :
             {"saveButton", "usernameField", "lookButton", "vatsimBox", "xplaneCslPathsTextArea", "reloadLibrary2024",
              "msfsCustomMappingPaths2024Area", "driverBox", "pttKeyButton", "micGainSlider", "conflictDeviceBox"})
            QVERIFY2(m_harness->tabTo(QString::fromLatin1(name)), name);
    }

    void theLibraryIsReadAnew()
    {
        m_harness->click(item("reloadLibrary2020"));
        QCOMPARE(m_harness->config().get(config::msfsLibraryReloadToken), 1);
        QCOMPARE(text(u"saveStatus"_qs), u"已触发 MSFS 机模库重载"_qs);
        m_harness->click(item("reloadLibrary2024"));
        QCOMPARE(m_harness->config().get(config::msfsLibraryReloadToken), 2);
    }

    void aKeyHeldDownPressesOnce_data()
    {
        QTest::addColumn<int>("key");
        QTest::newRow("Return") << int(Qt::Key_Return);
        QTest::newRow("Enter") << int(Qt::Key_Enter);
        QTest::newRow("Space") << int(Qt::Key_Space);
    }
    void aKeyHeldDownPressesOnce()
    {
        QFETCH(int, key);
        item("reloadLibrary2020")->forceActiveFocus();
        m_harness->hold(Qt::Key(key));
        QCOMPARE(m_harness->config().get(config::msfsLibraryReloadToken), 1);
        if (key == Qt::Key_Enter) // the pad's turns no box
            return;
        item("rememberBox")->forceActiveFocus();
        m_harness->hold(Qt::Key(key));
        QCOMPARE(m_harness->settings().property("rememberPassword"), true);
        QCOMPARE(item("rememberBox")->property("checked"), true);
    }

    void aDeviceIsPicked_data()
    {
        QTest::addColumn<QByteArray>("box");
        QTest::addColumn<QByteArray>("index");
        QTest::newRow("input") << QByteArray("inputBox") << QByteArray("inputIndex");
        QTest::newRow("headphone") << QByteArray("headphoneBox") << QByteArray("outputHeadphoneIndex");
        QTest::newRow("speaker") << QByteArray("speakerBox") << QByteArray("outputSpeakerIndex");
    }
    void aDeviceIsPicked()
    {
        QFETCH(QByteArray, box);
        QFETCH(QByteArray, index);
        QCOMPARE(shown(box.constData()), u"Default"_qs);
        item(box.constData())->forceActiveFocus();
        QTest::keyClick(&m_harness->view, Qt::Key_Down);
        QCOMPARE(m_harness->voiceSettings().property(index), 1);
        QCOMPARE(shown(box.constData()), u"USB Headset"_qs);
        QTest::keyClick(&m_harness->view, Qt::Key_Up);
        QCOMPARE(m_harness->voiceSettings().property(index), 0);
        QCOMPARE(shown(box.constData()), u"Default"_qs);
    }

    void aDriverIsPicked()
    {
        m_harness->voiceSettings().setInput(1);
        QCOMPARE(shown("inputBox"), u"USB Headset"_qs);
        m_harness->voiceSettings().setDriver(1);
        QCOMPARE(shown("driverBox"), u"JACK"_qs);
        QCOMPARE(shown("inputBox"), u"Default"_qs);
        QCOMPARE(item("inputBox")->property("count"), 2);
        item("driverBox")->forceActiveFocus();
        QTest::keyClick(&m_harness->view, Qt::Key_Up);
        QCOMPARE(m_harness->voiceSettings().driverIndex(), 0);
        QCOMPARE(item("headphoneBox")->property("count"), 3);
    }

    void aWrongDeviceIsNamed()
    {
        QVERIFY(!item("inputHint"));
        m_harness->config().set(config::voiceInputDevice, u"Old mic"_qs);
        m_harness->fillVoiceSettings();
        QCOMPARE(text(u"inputHint"_qs), u"找不到设备“Old mic”，使用默认设备"_qs);
        QVERIFY(!item("headphoneHint"));
        item("inputBox")->forceActiveFocus();
        QTest::keyClick(&m_harness->view, Qt::Key_Down);
        QVERIFY(!item("inputHint"));
    }

    void theToneOutputs()
    {
        QCOMPARE(shown("pttDeviceBox"), u"耳机"_qs);
        item("pttDeviceBox")->forceActiveFocus();
        QTest::keyClick(&m_harness->view, Qt::Key_Down);
        QVERIFY(m_harness->voiceSettings().pttDevice());
        item("conflictDeviceBox")->forceActiveFocus();
        QTest::keyClick(&m_harness->view, Qt::Key_Down);
        QVERIFY(m_harness->voiceSettings().conflictDevice());
        QCOMPARE(shown("conflictDeviceBox"), u"扬声器"_qs);
    }

    void theSliders_data()
    {
        QTest::addColumn<QByteArray>("slider");
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<double>("lower"); ///< one step down
        QTest::addColumn<QString>("figure");
        QTest::newRow("gain") << QByteArray("micGainSlider") << QByteArray("micGain") << -0.5 << u"-0.5 dB"_qs;
        QTest::newRow("tone") << QByteArray("pttVolumeSlider") << QByteArray("pttVolume") << 0.95 << u"95 %"_qs;
        QTest::newRow("conflict") << QByteArray("conflictVolumeSlider") << QByteArray("conflictVolume") << 0.95
                                  << u"95 %"_qs;
    }
    void theSliders()
    {
        QFETCH(QByteArray, slider);
        QFETCH(QByteArray, property);
        QFETCH(double, lower);
        QFETCH(QString, figure);
        item(slider.constData())->forceActiveFocus();
        QTest::keyClick(&m_harness->view, Qt::Key_Left);
        QCOMPARE(m_harness->voiceSettings().property(property).toDouble(), lower);
        QVERIFY(m_harness->itemWithText(figure));
        QTest::keyClick(&m_harness->view, Qt::Key_Right);
        QVERIFY(!m_harness->itemWithText(figure));
    }

    void theTones()
    {
        QQuickItem *box = item("pttPressFreqBox");
        QCOMPARE(box->property("displayText"), u"1500"_qs);
        box->forceActiveFocus();
        QTest::keyClick(&m_harness->view, Qt::Key_Up);
        QCOMPARE(m_harness->voiceSettings().pttPressFreq(), 1510.0);
        m_harness->voiceSettings().setPttReleaseFreq(440);
        QCOMPARE(item("pttReleaseFreqBox")->property("displayText"), u"440"_qs);
        m_harness->config().set(config::voicePttReleaseFreq, 9000);
        emit m_harness->voiceSettings().settingsChanged();
        QCOMPARE(item("pttReleaseFreqBox")->property("displayText"), u"4000"_qs);
        QCOMPARE(m_harness->config().get(config::voicePttReleaseFreq), 9000.0); // only shown within the range
    }

    void aKeyIsBound()
    {
        QCOMPARE(text(u"pttKeyButton"_qs), u"Control_R"_qs);
        m_harness->click(item("pttKeyButton"));
        QVERIFY(m_harness->voiceSettings().pttListening());
        QCOMPARE(text(u"pttKeyButton"_qs), u"请按下要使用的按键或按钮…"_qs);
        QCOMPARE(text(u"pttKeyNote"_qs), u"键盘、鼠标或手柄均可，按 Esc 取消"_qs);
        m_harness->input().buttonDown(8);
        QCOMPARE(text(u"pttKeyButton"_qs), u"鼠标侧键1"_qs);
        QCOMPARE(m_harness->config().get(config::voicePttKey), u"ms:8"_qs);
    }

    void theBoundMouseButtonDoesNotPressTheButton_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<int>("mask");
        QTest::newRow("left") << int(Qt::LeftButton) << 1;
        QTest::newRow("second side") << int(Qt::ForwardButton) << 16;
    }
    void theBoundMouseButtonDoesNotPressTheButton()
    {
        QFETCH(int, button);
        QFETCH(int, mask);
        m_harness->click(item("pttKeyButton"));
        m_harness->input().buttonDown(mask);
        m_harness->input().buttonUp(mask);
        QTest::mouseClick(&m_harness->view, Qt::MouseButton(button), Qt::NoModifier, centre("pttKeyButton"));
        QVERIFY(!m_harness->voiceSettings().pttListening());
        listen(); // again, a moment later
    }

    /// The desktop's events and the window's come on two roads, in any order.
    void theBoundKeyDoesNotPressTheButton_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("virtualKey");
        QTest::newRow("Space") << int(Qt::Key_Space) << 0x20;
        QTest::newRow("Return") << int(Qt::Key_Return) << 0x0D;
        QTest::newRow("Tab") << int(Qt::Key_Tab) << 0x09;
    }
    void theBoundKeyDoesNotPressTheButton()
    {
        QFETCH(int, key);
        QFETCH(int, virtualKey);
        m_harness->click(item("pttKeyButton"));
        QTest::keyPress(&m_harness->view, Qt::Key(key));
        m_harness->input().keyDown(virtualKey);
        QTest::keyRelease(&m_harness->view, Qt::Key(key));
        QVERIFY(!m_harness->voiceSettings().pttListening());
        QVERIFY(item("pttKeyButton")->hasActiveFocus());
        listen();
        m_harness->input().keyDown(virtualKey);
        if (key != Qt::Key_Tab) // with which the pilot goes on, then
            QTest::keyPress(&m_harness->view, Qt::Key(key));
        QTest::keyRelease(&m_harness->view, Qt::Key(key));
        QVERIFY(!m_harness->voiceSettings().pttListening());
        QVERIFY(item("pttKeyButton")->hasActiveFocus());
    }

    void bindingByKeyboard_data()
    {
        QTest::addColumn<int>("key");
        QTest::newRow("Return") << int(Qt::Key_Return);
        QTest::newRow("Enter") << int(Qt::Key_Enter);
        QTest::newRow("Space") << int(Qt::Key_Space);
    }
    void bindingByKeyboard()
    {
        QFETCH(int, key);
        QVERIFY(m_harness->tabTo(u"pttKeyButton"_qs));
        QTest::keyPress(&m_harness->view, Qt::Key(key));
        QVERIFY(!m_harness->voiceSettings().pttListening()); // or this press would be bound
        QTest::keyRelease(&m_harness->view, Qt::Key(key));
        QVERIFY(m_harness->voiceSettings().pttListening());
    }

    void escapeLeavesTheBinding_data()
    {
        QTest::addColumn<bool>("heardOnTheDesktop");
        QTest::newRow("by the window alone") << false;
        QTest::newRow("by the desktop first") << true;
    }
    void escapeLeavesTheBinding()
    {
        QFETCH(bool, heardOnTheDesktop);
        m_harness->click(item("pttKeyButton"));
        if (heardOnTheDesktop)
            m_harness->input().keyDown(0x1B);
        QTest::keyClick(&m_harness->view, Qt::Key_Escape);
        QVERIFY(!m_harness->voiceSettings().pttListening());
        QCOMPARE(text(u"pttKeyButton"_qs), u"Control_R"_qs);
        QCOMPARE(m_harness->config().get(config::voicePttKey), u"kb:163"_qs);
    }

    void leavingThePageEndsTheListening()
    {
        m_harness->click(item("pttKeyButton"));
        m_harness->openSection(u"总览"_qs);
        QVERIFY(!m_harness->voiceSettings().pttListening());
    }

    void nothingReachesOutOfItsCard_data()
    {
        QTest::addColumn<int>("width");
        for (const int width : {1000, 1280, 1920})
            QTest::addRow("%d", width) << width;
    }
    void nothingReachesOutOfItsCard()
    {
        QFETCH(int, width);
        m_harness->view.resize(width, 1500);
        m_harness->settle();
        for (const char *name : {"usernameField", "lookButton", "vatsimBox", "xplaneUdpPortField", "driverBox",
                                 "pttKeyButton", "micGainSlider", "pttReleaseFreqBox", "reloadLibrary2024"}) {
            QQuickItem *control = item(name);
            QQuickItem *card = control;
            while (!card->inherits("QQuickPane"))
                card = card->parentItem();
            const QRectF box = control->mapRectToItem(card, control->boundingRect());
            QVERIFY2(box.left() >= 19 && box.right() <= card->width() - 19, name);
        }
    }

private:
    QQuickItem *item(const char *name) { return m_harness->item(QString::fromLatin1(name)); }
    QString text(const QString &name)
    {
        QQuickItem *found = m_harness->item(name);
        return found ? found->property("text").toString() : u"(not to be seen)"_qs;
    }
    /// Clicks until the button listens: for a moment after a capture it takes no click.
    void listen() { TRY_VERIFY((m_harness->click(item("pttKeyButton")), m_harness->voiceSettings().pttListening())); }
    QString shown(const char *box) { return item(box)->property("displayText").toString(); }
    QPoint centre(const char *name)
    {
        QQuickItem *target = item(name);
        return target->mapToScene(QPointF(target->width() / 2, target->height() / 2)).toPoint();
    }
    /// Types this in place of what a field holds.
    void edit(const QString &name, const QString &typed)
    {
        QQuickItem *field = m_harness->item(name);
        QVERIFY(field);
        field->forceActiveFocus();
        QTest::keySequence(&m_harness->view, QKeySequence::SelectAll);
        QTest::keyClick(&m_harness->view, Qt::Key_Delete);
        m_harness->type(typed);
    }

    std::unique_ptr<PageHarness> m_harness;
};

TARVO_TEST(SettingsPageTest)
#include "SettingsPageTest.moc"
