#include "model/RatingList.h"
#include "support/TestRegistry.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using tarvo::model::RatingEntry;
using tarvo::model::RatingList;

Q_DECLARE_METATYPE(tarvo::model::RatingList)

class RatingListTest : public QObject
{
    Q_OBJECT

private slots:
    void parse_data()
    {
        const RatingEntry first{1001, QStringLiteral("pilot"), QStringLiteral("/a.png"), 3600};
        const RatingEntry second{1002, QStringLiteral("tower"), QString(), 60};

        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<RatingList>("expected");
        QTest::newRow("object with both lists")
            << QByteArray(R"({"pilots":[{"cid":1001,"username":"pilot","avatar_url":"/a.png","time":3600}],
                              "controllers":[{"cid":1002,"username":"tower","time":60}]})")
            << RatingList{{first}, {second}};
        QTest::newRow("bare array counts as pilots")
            << QByteArray(R"([{"cid":1001,"username":"pilot","avatar_url":"/a.png","time":3600}])")
            << RatingList{{first}, {}};
        QTest::newRow("order is kept") << QByteArray(R"([{"cid":1002,"username":"tower","time":60},
                              {"cid":1001,"username":"pilot","avatar_url":"/a.png","time":3600}])")
                                       << RatingList{{second, first}, {}};
        QTest::newRow("unknown keys are ignored")
            << QByteArray(R"({"controllers":[{"cid":1002,"username":"tower","time":60,"rank":1}],"drivers":[{}]})")
            << RatingList{{}, {second}};
        QTest::newRow("rows that are no objects are dropped")
            << QByteArray(R"([1,null,"x",[],{"cid":1}])") << RatingList{{RatingEntry{1, {}, {}, 0}}, {}};
        QTest::newRow("mistyped keys leave defaults")
            << QByteArray(R"([{"cid":"1001","username":5,"avatar_url":{},"time":1e300}])") << RatingList{{{}}, {}};
        QTest::newRow("mistyped lists") << QByteArray(R"({"pilots":{},"controllers":3})") << RatingList{};
        QTest::newRow("empty object") << QByteArray("{}") << RatingList{};
        QTest::newRow("null") << QByteArray("null") << RatingList{};
        QTest::newRow("text") << QByteArray("\"pilots\"") << RatingList{};
        QTest::newRow("number") << QByteArray("7") << RatingList{};
    }

    void parse()
    {
        QFETCH(QByteArray, data);
        QFETCH(RatingList, expected);
        const QByteArray json = "{\"data\":" + data + "}";
        const QJsonDocument document = QJsonDocument::fromJson(json);
        QVERIFY(!document.isNull());
        QCOMPARE(RatingList::parse(document.object().value(QLatin1String("data"))), expected);
    }

    void absentDataIsAnEmptyBoard() { QCOMPARE(RatingList::parse(QJsonValue(QJsonValue::Undefined)), RatingList()); }
};

TARVO_TEST(RatingListTest)
#include "RatingListTest.moc"
