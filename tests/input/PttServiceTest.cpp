#include "input/PttService.h"

#include "input/PttHandler.h"
#include "input/Witness.h"
#include "support/ScriptedInput.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace tarvo::input;
using tarvo::test::ScriptedInput;
using tarvo::test::Witness;

namespace {

struct ServiceStage
{
    ServiceStage()
    {
        QObject::connect(&service, &PttService::boundKeyChanged, &service,
                         [this](const PttKey &key) { words << u"bound "_qs + key; });
        QObject::connect(&service, &PttService::keyCaptured, &service,
                         [this](const PttKey &key) { words << u"captured "_qs + key; });
        QObject::connect(&service, &PttService::listeningChanged, &service,
                         [this](bool listening) { words << (listening ? u"listens"_qs : u"listens no more"_qs); });
        QObject::connect(&service, &PttService::activeChanged, &service,
                         [this](bool active) { words << (active ? u"down"_qs : u"up"_qs); });
    }

    ScriptedInput input;
    PttHandler handler{input.source()};
    PttService service{handler};
    QStringList words;
};

} // namespace

class PttServiceTest : public QObject
{
    Q_OBJECT

private slots:
    void bindsByText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("kept"); ///< what it holds and tells
        for (const char *text : {"kb:163", "ms:8", "js:0:3", "js:1:2:3", "kb:-5"})
            QTest::addRow("%s", text) << QString::fromLatin1(text) << QString::fromLatin1(text);
        for (const char *text : {"", "ms:abc", "js:1", "js:a:b", "KB:163", "nonsense"})
            QTest::addRow("\"%s\" binds nothing", text) << QString::fromLatin1(text) << QString();
    }
    void bindsByText()
    {
        QFETCH(QString, text);
        QFETCH(QString, kept);
        ServiceStage stage;
        stage.service.setBoundKey(text);
        QCOMPARE(stage.service.boundKey(), kept);
        QCOMPARE(stage.words, QStringList{u"bound "_qs + kept});
    }

    void keys()
    {
        ServiceStage stage;
        stage.service.setBoundKey(u"kb:163"_qs);
        stage.words.clear();
        stage.input.keyDown(163);
        stage.input.keyUp(163);
        QCOMPARE(stage.words, (QStringList{u"down"_qs, u"up"_qs}));
    }

    void aTextThatNamesNothingClears()
    {
        ServiceStage stage;
        stage.service.setBoundKey(u"kb:65"_qs);
        stage.input.keyDown(65);
        stage.words.clear();
        stage.service.setBoundKey(u"ms:abc"_qs);
        QCOMPARE(stage.words, (QStringList{u"up"_qs, u"bound "_qs}));
        stage.input.keyDown(65);
        QCOMPARE(stage.words.size(), 2);
    }

    void clears()
    {
        ServiceStage stage;
        stage.service.setBoundKey(u"kb:65"_qs);
        stage.words.clear();
        stage.service.clearBinding();
        QCOMPARE(stage.words, QStringList{u"bound "_qs});
        QCOMPARE(stage.service.boundKey(), QString());
        stage.input.keyDown(65);
        QCOMPARE(stage.words.size(), 1);
    }

    void captures()
    {
        ServiceStage stage;
        stage.service.startListening();
        stage.input.buttonDown(8);
        QCOMPARE(stage.words,
                 (QStringList{u"listens"_qs, u"listens no more"_qs, u"bound ms:8"_qs, u"captured ms:8"_qs}));
        QCOMPARE(stage.service.boundKey(), u"ms:8"_qs);
        stage.words.clear();
        stage.input.buttonDown(8); // the handler has applied it
        QCOMPARE(stage.words, QStringList{u"down"_qs});
    }

    void stopsListening()
    {
        ServiceStage stage;
        stage.service.startListening();
        stage.service.stopListening();
        stage.input.keyDown(65);
        QCOMPARE(stage.words, (QStringList{u"listens"_qs, u"listens no more"_qs}));
        QCOMPARE(stage.service.boundKey(), QString());
    }

    void itsEndLeavesNothingBehind()
    {
        ScriptedInput input;
        PttHandler handler(input.source());
        auto service = std::make_unique<PttService>(handler);
        QSignalSpy told(service.get(), &PttService::activeChanged);
        service->setBoundKey(u"kb:65"_qs);
        input.keyDown(65);
        service->startListening();
        Witness witness(handler);
        service.reset();
        QCOMPARE(told.size(), 1); // who listened to it may be half gone
        input.keyDown(66);        // captured by nobody
        input.keyDown(65);
        QCOMPARE(witness.take(), (QStringList{u"listens no more"_qs, u"up"_qs}));
    }

    void names_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("name");
        QTest::newRow("left") << u"ms:1"_qs << u"鼠标左键"_qs;
        QTest::newRow("right") << u"ms:2"_qs << u"鼠标右键"_qs;
        QTest::newRow("middle") << u"ms:4"_qs << u"鼠标中键"_qs;
        QTest::newRow("first side") << u"ms:8"_qs << u"鼠标侧键1"_qs;
        QTest::newRow("second side") << u"ms:16"_qs << u"鼠标侧键2"_qs;
        QTest::newRow("another") << u"ms:32"_qs << u"鼠标键 32"_qs;
        QTest::newRow("two at once") << u"ms:3"_qs << u"鼠标键 3"_qs;
        QTest::newRow("joystick") << u"js:0:3"_qs << u"手柄 0 按钮 3"_qs;
        QTest::newRow("joystick and more") << u"js:1:2:3"_qs << u"手柄 1 按钮 2"_qs;
        QTest::newRow("the system's name") << u"kb:163"_qs << u"Right %1 Ctrl"_qs;
        QTest::newRow("without a name") << u"kb:171"_qs << u"键 0xAB"_qs;
        QTest::newRow("two digits") << u"kb:7"_qs << u"键 0x07"_qs;
        QTest::newRow("three digits") << u"kb:4095"_qs << u"键 0xFFF"_qs;
        QTest::newRow("below 0") << u"kb:-1"_qs << u"键 0xFFFFFFFF"_qs;
        QTest::newRow("none") << QString() << QString();
        QTest::newRow("nonsense") << u"js:1"_qs << QString();
    }
    void names()
    {
        QFETCH(QString, key);
        ServiceStage stage;
        stage.input.names.insert(163, u"Right %1 Ctrl"_qs);
        stage.service.setBoundKey(key);
        QTEST(stage.service.boundKeyName(), "name");
    }

    void normalizes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("key");
        for (const char *text : {"kb:163", "KB:163", "Ms:8", "js:", "jS:nonsense"})
            QTest::addRow("%s", text) << QString::fromLatin1(text) << QString::fromLatin1(text);
        for (const char *text : {"", "kb", "k:1", " kb:1", "163"})
            QTest::addRow("\"%s\" to nothing", text) << QString::fromLatin1(text) << QString();
    }
    void normalizes()
    {
        QFETCH(QString, text);
        QTEST(PttService::normalizeKey(text), "key");
    }
};

TARVO_TEST(PttServiceTest)
#include "PttServiceTest.moc"
