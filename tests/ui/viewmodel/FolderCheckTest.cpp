#include "ui/viewmodel/FolderCheck.h"

#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using tarvo::ui::viewmodel::FolderCheck;

class FolderCheckTest : public QObject
{
    Q_OBJECT

private slots:
    void namesThoseThatAreNoFolders()
    {
        const QTemporaryDir folder;
        const QString file = folder.filePath(u"file"_qs);
        QVERIFY(QFile(file).open(QIODevice::WriteOnly));
        FolderCheck check;
        const QSignalSpy answered(&check, &FolderCheck::answered);
        check.ask({folder.path(), file, folder.filePath(u"nothing"_qs)});
        TRY_COMPARE(answered.size(), 1);
        QCOMPARE(answered[0][0].toStringList(), (QStringList{file, folder.filePath(u"nothing"_qs)}));
    }

    void onlyTheNewestQuestionIsAnswered()
    {
        FolderCheck check;
        const QSignalSpy answered(&check, &FolderCheck::answered);
        for (int i = 0; i < 50; ++i)
            check.ask({u"/nowhere/%1"_qs.arg(i)});
        TRY_COMPARE(answered.size(), 1);
        QCOMPARE(answered[0][0].toStringList(), QStringList{u"/nowhere/49"_qs});
        check.ask({});
        TRY_COMPARE(answered.size(), 2);
        QCOMPARE(answered[1][0].toStringList(), QStringList());
    }

    void theSameQuestionIsAnsweredAnew()
    {
        const QTemporaryDir folder;
        const QString later = folder.filePath(u"later"_qs);
        FolderCheck check;
        const QSignalSpy answered(&check, &FolderCheck::answered);
        check.ask({later});
        TRY_COMPARE(answered.size(), 1);
        QCOMPARE(answered[0][0].toStringList(), QStringList{later});
        QVERIFY(QDir().mkpath(later));
        check.ask({later});
        TRY_COMPARE(answered.size(), 2);
        QCOMPARE(answered[1][0].toStringList(), QStringList());
    }

    void itMayGoBeforeTheAnswer()
    {
        for (int i = 0; i < 20; ++i) {
            FolderCheck check;
            check.ask({u"/nowhere/%1"_qs.arg(i)});
        }
    }
};

TARVO_TEST(FolderCheckTest)
#include "FolderCheckTest.moc"
