#include "ui/viewmodel/RowList.h"
#include "support/TestRegistry.h"
#include "ui/viewmodel/ShownText.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using tarvo::ui::RowList;
using tarvo::ui::shownText;

namespace {

/// A row for each letter.
QVariantList rowsOf(const QString &letters)
{
    QVariantList rows;
    for (const QChar letter : letters)
        rows << QVariantMap{{QStringLiteral("name"), QString(letter)}};
    return rows;
}

QString lettersOf(const RowList &list)
{
    QString letters;
    for (int row = 0; row < list.rowCount(); ++row)
        letters += list.data(list.index(row), Qt::UserRole).toString();
    return letters;
}

} // namespace

/// What a page's list is told of a change, and what a text from outside may be.
class RowListTest : public QObject
{
    Q_OBJECT

private slots:
    void tellsOnlyWhatDiffers_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        QTest::addColumn<int>("changed");
        QTest::addColumn<int>("inserted");
        QTest::addColumn<int>("removed");
        QTest::addColumn<bool>("told");
        QTest::newRow("nothing") << u"ABC"_qs << u"ABC"_qs << 0 << 0 << 0 << false;
        QTest::newRow("one row") << u"ABC"_qs << u"AXC"_qs << 1 << 0 << 0 << true;
        QTest::newRow("longer") << u"A"_qs << u"ABC"_qs << 0 << 1 << 0 << true;
        QTest::newRow("shorter") << u"ABC"_qs << u"A"_qs << 0 << 0 << 1 << true;
        QTest::newRow("emptied") << u"ABC"_qs << QString() << 0 << 0 << 1 << true;
        QTest::newRow("filled") << QString() << u"ABC"_qs << 0 << 1 << 0 << true;
        QTest::newRow("empty, still") << QString() << QString() << 0 << 0 << 0 << false;
        QTest::newRow("other and longer") << u"AB"_qs << u"XYZ"_qs << 2 << 1 << 0 << true;
    }
    void tellsOnlyWhatDiffers()
    {
        QFETCH(QString, before);
        QFETCH(QString, after);
        QFETCH(bool, told);
        RowList list({"name"});
        const QAbstractItemModelTester tester(&list, QAbstractItemModelTester::FailureReportingMode::QtTest);
        list.setRows(rowsOf(before));
        const QSignalSpy changed(&list, &RowList::dataChanged);
        const QSignalSpy inserted(&list, &RowList::rowsInserted);
        const QSignalSpy removed(&list, &RowList::rowsRemoved);
        const QSignalSpy counted(&list, &RowList::countChanged);
        QCOMPARE(list.setRows(rowsOf(after)), told);
        QCOMPARE(lettersOf(list), after);
        QCOMPARE(list.toList(), rowsOf(after));
        QTEST(int(changed.size()), "changed");
        QTEST(int(inserted.size()), "inserted");
        QTEST(int(removed.size()), "removed");
        QCOMPARE(counted.size(), before.size() == after.size() ? 0 : 1);
    }

    void aNewRowComesInFrontAndTheLastGo_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        QTest::newRow("room") << u"B"_qs << u"XB"_qs;
        QTest::newRow("full") << u"ABC"_qs << u"XAB"_qs;
        QTest::newRow("more than full") << u"ABCDE"_qs << u"XAB"_qs;
    }
    void aNewRowComesInFrontAndTheLastGo()
    {
        QFETCH(QString, before);
        RowList list({"name"});
        const QAbstractItemModelTester tester(&list, QAbstractItemModelTester::FailureReportingMode::QtTest);
        list.setRows(rowsOf(before));
        const QSignalSpy inserted(&list, &RowList::rowsInserted);
        list.prepend(rowsOf(u"X"_qs).constFirst().toMap(), 3);
        QTEST(lettersOf(list), "after");
        QCOMPARE(inserted.size(), 1);
        QCOMPARE(inserted.at(0).at(1).toInt(), 0);
    }

    void aKeyThatARowLacksIsEmpty()
    {
        RowList list({"name", "note"});
        list.setRows({QVariantMap{{QStringLiteral("name"), 7}}, QVariant(7)});
        QCOMPARE(list.roleNames().value(Qt::UserRole + 1), QByteArray("note"));
        QCOMPARE(list.data(list.index(0), Qt::UserRole), QVariant(7));
        QCOMPARE(list.data(list.index(0), Qt::UserRole + 1), QVariant(QString()));
        QCOMPARE(list.data(list.index(1), Qt::UserRole), QVariant(QString()));
        QCOMPARE(list.data(list.index(0), Qt::UserRole + 2), QVariant());
        QCOMPARE(list.data(list.index(0), Qt::DisplayRole), QVariant());
    }

    void aTextIsCutToItsPlace_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");
        QTest::newRow("short") << u"ABC"_qs << u"ABC"_qs;
        QTest::newRow("fits") << u"ABCD"_qs << u"ABCD"_qs;
        QTest::newRow("too long") << u"ABCDE"_qs << u"ABCD"_qs;
        QTest::newRow("lines") << u"A\r\nB"_qs << u"A  B"_qs;
        QTest::newRow("a pair at the cut") << u"ABC\U0001F6E9"_qs << u"ABC"_qs;
        QTest::newRow("a pair before the cut") << u"AB\U0001F6E9E"_qs << u"AB\U0001F6E9"_qs;
        QTest::newRow("half a pair as it came")
            << QString(u"ABC"_qs + QChar(0xd83d)) << QString(u"ABC"_qs + QChar(0xd83d));
        QTest::newRow("empty") << QString() << QString();
    }
    void aTextIsCutToItsPlace()
    {
        QFETCH(QString, text);
        QTEST(shownText(text, 4), "shown");
    }
};

TARVO_TEST(RowListTest)
#include "RowListTest.moc"
