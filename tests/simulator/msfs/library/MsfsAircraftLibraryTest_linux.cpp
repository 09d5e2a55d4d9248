#include "LibraryStage.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <pthread.h>

#include <system_error>

using namespace tarvo::test;

namespace {

/// As long as one lives, new threads want more memory than there is.
class NoThreads
{
public:
    NoThreads()
    {
        pthread_getattr_default_np(&m_before);
        pthread_attr_t greedy;
        pthread_attr_init(&greedy);
        pthread_attr_setstacksize(&greedy, std::size_t(1) << 46U);
        pthread_setattr_default_np(&greedy);
        pthread_attr_destroy(&greedy);
    }
    ~NoThreads()
    {
        pthread_setattr_default_np(&m_before);
        pthread_attr_destroy(&m_before);
    }
    NoThreads(const NoThreads &) = delete;
    NoThreads &operator=(const NoThreads &) = delete;

private:
    pthread_attr_t m_before;
};

} // namespace

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
