#include "diagnosis/Checkup.h"
#include "AppConfig.h"
#include "diagnosis/PracticeProgram.h"
#include "diagnosis/TestSettings.h"
#include "support/SoundServer.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo;
using namespace tarvo::diagnosis;
using tarvo::test::marksOf;

/// All checks, on a machine where the practice network runs and there is sound.
class CheckupTest : public QObject
{
    Q_OBJECT

    test::SoundServer m_sound;
    test::PracticeProgram m_practice;
    QTemporaryDir m_folder;

    QStringList check(const ServiceEndpoints &endpoints, std::optional<model::SimulatorMode> simulator = {})
    {
        const StoredSettings settings = readSettings(m_folder.path());
        Findings told;
        const Findings findings = checkUp({.program = QStringLiteral(TARVO_SUPPORT_PROGRAM),
                                           .dataRoot = m_folder.path(),
                                           .settings = settings,
                                           .endpoints = endpoints,
                                           .simulator = simulator},
                                          [&told](const Finding &finding) { told << finding; });
        return told == findings ? marksOf(findings) : QStringList();
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_sound.start() && m_practice.start());
        AppConfig(m_folder.path()).set(config::xplaneUdpPort, m_practice.xplanePort());
    }

    void whereAllIsWellAllIsGood()
    {
        const ServiceEndpoints endpoints = m_practice.endpoints();
        const QStringList marks = check(endpoints);
        const QString fsd = u"127.0.0.1:%1"_qs.arg(endpoints.fsdPort);
        const QStringList bad = marks.filter(u"✗"_qs);
        QVERIFY2(bad.isEmpty(), qPrintable(bad.join(u'\n')));
        for (const QString &title : {u"✓ 数据文件夹"_qs, u"✓ 设置文件 config.ini"_qs, u"✓ 网络服务器 "_qs + fsd,
                                     u"✓ X-Plane"_qs, u"✓ X-Plane 插件"_qs, u"✓ 麦克风"_qs, u"✓ 耳机和扬声器"_qs})
            QVERIFY2(marks.contains(title), qPrintable(title));
        QCOMPARE(marks.filter(u"✓ 本机"_qs).size(), 5);
        QCOMPARE(marks.last(), u"✓ 耳机和扬声器"_qs); // behind all others
    }

    void theSimulatorsAreChosen_data()
    {
        QTest::addColumn<model::SimulatorMode>("simulator");
        QTest::addColumn<qsizetype>("xplane");
        QTest::addColumn<qsizetype>("simConnect");
        QTest::newRow("X-Plane") << model::SimulatorMode::XPlane << qsizetype(3) << qsizetype(0);
        QTest::newRow("MSFS") << model::SimulatorMode::Msfs << qsizetype(0) << qsizetype(1);
        QTest::newRow("none") << model::SimulatorMode::None << qsizetype(0) << qsizetype(0);
    }
    void theSimulatorsAreChosen()
    {
        QFETCH(const model::SimulatorMode, simulator);
        const QStringList marks = check(m_practice.endpoints(), simulator);
        QTEST(marks.filter(u"X-Plane"_qs).size(), "xplane");
        QTEST(marks.filter(u"SimConnect"_qs).size(), "simConnect");
    }
};

TARVO_TEST(CheckupTest)
#include "CheckupTest.moc"
