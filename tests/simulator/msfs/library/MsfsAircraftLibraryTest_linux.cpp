#include "LibraryStage.h"
#include "support/NoThreads_linux.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <system_error>

using namespace tarvo::test;

/// Linux only: how a system without threads is made there.
class MsfsAircraftLibraryWithoutThreadTest : public QObject
{
    Q_OBJECT

private slots:
    void aScanThatCannotStartIsAnError()
    {
        LibraryStage stage;
        stage.addModel(LibraryStage::Profile::Msfs2020, QStringLiteral("A"), "A320");
        {
            const NoThreads noThreads;
            try {
                stage.library().ensureLoaded();
                QFAIL("it started");
            } catch (const std::system_error &error) {
                QVERIFY(QByteArray(error.what()).startsWith("thread constructor failed"));
            }
            QVERIFY(!stage.library().isReady());
        }
        stage.library().ensureLoaded();
        TRY_VERIFY(stage.library().isReady());
        QCOMPARE(stage.library().modelCount(LibraryStage::Profile::Msfs2020), 1);
    }
};

TARVO_TEST(MsfsAircraftLibraryWithoutThreadTest)
#include "MsfsAircraftLibraryTest_linux.moc"
