#include "app/SingleInstance.h"

#include "support/TestRegistry.h"

#include <QDir>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>

using namespace std::chrono_literals;
using tarvo::app::SingleInstance;

/// The socket by which another start is heard can't be made.
class InstanceSocketTest : public QObject
{
    Q_OBJECT

private slots:
    void aSocketThatCannotBeMadeIsForTheLog()
    {
        const QTemporaryDir root;
        const QTemporaryDir folder;
        const QString tooLong = folder.filePath(QString(110, u'x')); // for the address of a socket
        QVERIFY(QDir().mkdir(tooLong));
        QVERIFY(QFile::setPermissions(tooLong, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        const QByteArray before = qgetenv("XDG_RUNTIME_DIR");
        const auto restore = qScopeGuard([&before] {
            if (before.isNull())
                qunsetenv("XDG_RUNTIME_DIR");
            else
                qputenv("XDG_RUNTIME_DIR", before);
        });
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(tooLong));
        SingleInstance instance(root.path());
        QCOMPARE(instance.start(0ms), SingleInstance::Outcome::First);
        QVERIFY2(instance.warning().startsWith(u"Another start can't bring this one forward: "_qs),
                 qPrintable(instance.warning()));
    }
};

TARVO_TEST(InstanceSocketTest)
#include "InstanceSocketTest_posix.moc"
