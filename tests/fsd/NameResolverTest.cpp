#include "fsd/NameResolver.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTest>

using tarvo::fsd::NameResolver;

namespace {

const QString noName = u"not..a.name"_qs; // has no address, and no name server is asked

/// Starts the next look-up when the answer to the first is on its way.
class Overtaker : public QObject
{
public:
    explicit Overtaker(NameResolver &resolver) : m_resolver(resolver) { resolver.installEventFilter(this); }

    int answersSent = 0;
    int answerTaken = 0; ///< the one that the next look-up took for its own

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::MetaCall && ++answersSent == 1)
            m_resolver.lookUp(noName, [this](const QString &) { answerTaken = answersSent; });
        return false;
    }

private:
    NameResolver &m_resolver;
};

} // namespace

/// Names that have an address are looked up in tests/e2e, at a name server.
class NameResolverTest : public QObject
{
    Q_OBJECT

private slots:
    void aLateAnswerIsNotTheNextOnes()
    {
        NameResolver resolver;
        Overtaker overtaker(resolver);
        bool isFirstAnswered = false;
        resolver.lookUp(noName, [&](const QString &) { isFirstAnswered = true; });
        TRY_COMPARE(overtaker.answerTaken, 2);
        QVERIFY(!isFirstAnswered);
    }

    void anAbortRightBehindTheAnswerEndsTheLookUp()
    {
        NameResolver resolver;
        QMetaObject::invokeMethod(
            &resolver,
            [&] {
                connect(&resolver, &NameResolver::requestEnded, &resolver, &NameResolver::abort,
                        Qt::SingleShotConnection);
            },
            Qt::QueuedConnection);
        QVERIFY(!resolver.resolve(noName));
        QCOMPARE(resolver.resolve(noName), QString()); // without the abort
    }
};

TARVO_TEST(NameResolverTest)
#include "NameResolverTest.moc"
