#include "ui/viewmodel/RowsModel.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"
#include "ui/viewmodel/ShownText.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using tarvo::test::columns;
using tarvo::ui::Role;
using tarvo::ui::RowsModel;
using tarvo::ui::shownText;

namespace {

struct Lettered
{
    QString letter;
    int note = 0;

    bool operator==(const Lettered &) const = default;
};

constexpr Role<Lettered> letteredRoles[] = {
    {"letter", tarvo::ui::member<&Lettered::letter>},
    {"double", [](const Lettered &row) -> QVariant { return 2 * row.note; }},
};

/// A row for each letter.
QList<Lettered> lettered(const QString &letters)
{
    QList<Lettered> rows;
    for (const QChar letter : letters)
        rows << Lettered{.letter = letter};
    return rows;
}

/// Rows that start like this, and their checker.
struct LetterList
{
    RowsModel<Lettered> model{letteredRoles};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::QtTest};
    QSignalSpy changed{&model, &QAbstractItemModel::dataChanged};
    QSignalSpy inserted{&model, &QAbstractItemModel::rowsInserted};
    QSignalSpy removed{&model, &QAbstractItemModel::rowsRemoved};

    explicit LetterList(const QString &letters) { model.reset(lettered(letters)); }

    QString letters() const
    {
        QString found;
        for (int row = 0; row < model.rowCount(); ++row)
            found += model.data(model.index(row), Qt::UserRole).toString();
        return found;
    }
};

} // namespace

/// What a page's list is told of a change, and what a text from outside may be.
class RowsModelTest : public QObject
{
    Q_OBJECT

private slots:
    void tellsOnlyWhatDiffers_data()
    {
        columns<QString, QString, int, int, int, bool>("before", "after", "changed", "inserted", "removed", "told");
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
        LetterList list(before);
        QCOMPARE(list.model.setRows(lettered(after)), told);
        QCOMPARE(list.letters(), after);
        QTEST(int(list.changed.size()), "changed");
        QTEST(int(list.inserted.size()), "inserted");
        QTEST(int(list.removed.size()), "removed");
    }

    void aNewRowComesInFrontAndTheLastGo_data()
    {
        columns<QString, QString>("before", "after");
        QTest::newRow("room") << u"B"_qs << u"XB"_qs;
        QTest::newRow("full") << u"ABC"_qs << u"XAB"_qs;
        QTest::newRow("more than full") << u"ABCDE"_qs << u"XAB"_qs;
    }
    void aNewRowComesInFrontAndTheLastGo()
    {
        QFETCH(QString, before);
        LetterList list(before);
        list.model.prepend({.letter = u"X"_qs}, 3);
        QTEST(list.letters(), "after");
        QCOMPARE(list.inserted.size(), 1);
        QCOMPARE(list.inserted.at(0).at(1).toInt(), 0);
    }

    void rolesAreReadByNumberAndByName()
    {
        LetterList list(u"AB"_qs);
        QVERIFY(list.model.replace(1, {.letter = u"C"_qs, .note = 4}));
        QVERIFY(!list.model.replace(1, {.letter = u"C"_qs, .note = 4}));
        QCOMPARE(list.changed.size(), 1);
        QCOMPARE(list.model.roleNames(),
                 (QHash<int, QByteArray>{{Qt::UserRole, "letter"}, {Qt::UserRole + 1, "double"}}));
        const QModelIndex second = list.model.index(1);
        QCOMPARE(second.data(Qt::UserRole), QVariant(u"C"_qs));
        QCOMPARE(second.data(Qt::UserRole + 1), QVariant(8));
        QCOMPARE(second.data(Qt::UserRole + 2), QVariant());
        QCOMPARE(second.data(Qt::DisplayRole), QVariant());
        QCOMPARE(list.model.data({}, Qt::UserRole), QVariant());
        const QVariantMap row{{u"letter"_qs, u"C"_qs}, {u"double"_qs, 8}};
        QCOMPARE(list.model.toList(), (QVariantList{QVariantMap{{u"letter"_qs, u"A"_qs}, {u"double"_qs, 0}}, row}));
    }

    void aTextIsCutToItsPlace_data()
    {
        columns<QString, QString>("text", "shown");
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

TARVO_TEST(RowsModelTest)
#include "RowsModelTest.moc"
