#include "MessagesFixture.h"
#include "model/Controller.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QAbstractItemModelTester>
#include <QObject>
#include <QTest>

#include <memory>
#include <random>
#include <vector>

using namespace tarvo::test;
using tarvo::ui::MessagesPageViewModel;
using tarvo::ui::StationList;

namespace {

/// One row, by role.
QVariantMap rowOf(const QAbstractListModel &model, int row)
{
    QVariantMap values;
    const QHash<int, QByteArray> names = model.roleNames();
    for (auto name = names.cbegin(); name != names.cend(); ++name)
        values.insert(QString::fromLatin1(name.value()), model.index(row).data(name.key()));
    return values;
}

QVariantList rowsOf(const QAbstractListModel &model)
{
    QVariantList rows;
    for (int i = 0; i < model.rowCount(); ++i)
        rows << rowOf(model, i);
    return rows;
}

/// Of each map only these keys.
QVariantList only(const QStringList &keys, const QVariantList &maps)
{
    QVariantList rows;
    for (const QVariant &map : maps) {
        QVariantMap row;
        for (const QString &key : keys)
            row.insert(key, map.toMap().value(key));
        rows << row;
    }
    return rows;
}

QVariantList fixedOf(QVariantList channels)
{
    channels.removeIf([](const QVariant &channel) { return !channel.toMap().value(u"fixed"_qs).toBool(); });
    return channels;
}

/// What a model tells of its rows, as a short text: "+3" a row inserted at 3, "-0" removed, "~2" changed, "!" all.
class Told
{
public:
    explicit Told(QAbstractListModel &model)
    {
        QObject::connect(&model, &QAbstractListModel::rowsInserted, &m_scope,
                         [this](const QModelIndex &, int first, int last) { note(u'+', first, last); });
        QObject::connect(&model, &QAbstractListModel::rowsRemoved, &m_scope,
                         [this](const QModelIndex &, int first, int last) { note(u'-', first, last); });
        QObject::connect(
            &model, &QAbstractListModel::dataChanged, &m_scope,
            [this](const QModelIndex &first, const QModelIndex &last) { note(u'~', first.row(), last.row()); });
        QObject::connect(&model, &QAbstractListModel::modelReset, &m_scope, [this] { m_told << u"!"_qs; });
    }

    QString take() { return std::exchange(m_told, {}).join(u' '); }

private:
    void note(QChar what, int first, int last)
    {
        for (int row = first; row <= last; ++row)
            m_told << what + QString::number(row);
    }

    QStringList m_told;
    QObject m_scope;
};

tarvo::model::Controller stationAt(const QString &callsign, quint32 frequency = 118000)
{
    return {.callsign = callsign, .frequency = frequency, .normalisedFrequency = frequency};
}

} // namespace

/// The page's lists: the same as the properties tell, and changed by the row.
class MessagesListsTest : public QObject
{
    Q_OBJECT

private slots:
    void theListsShowWhatThePropertiesTell()
    {
        MessagesFixture fixture;
        MessagesPageViewModel &model = fixture.model;
        std::vector<std::unique_ptr<QAbstractItemModelTester>> testers;
        for (QAbstractListModel *list : lists(model))
            testers.push_back(std::make_unique<QAbstractItemModelTester>(list));
        std::mt19937 dice(7);
        for (int i = 0; i < 3000; ++i) {
            step(model, dice);
            if (i % 7 == 0)
                compare(model);
            if (QTest::currentTestFailed())
                return;
        }
        QCOMPARE(model.messages().size(), 300);
        QVERIFY(model.stationList()->rowCount() > 5);
        QVERIFY(model.sessionList()->rowCount() > 1);
    }

    void whatAStepTellsOfTheRows_data()
    {
        columns<Event, QString, QString, QString, QString>("event", "messages", "channels", "sessions", "stations");
        const auto add = [](const char *name, const Event &event, const char *messages, const char *channels,
                            const char *sessions, const char *stations) {
            QTest::newRow(name) << event << QString::fromLatin1(messages) << QString::fromLatin1(channels)
                                << QString::fromLatin1(sessions) << QString::fromLatin1(stations);
        };
        const auto to = [](const char *channel) { return QString::fromLatin1(channel); };
        const QString text = u"text"_qs;
        // The radio is active and holds 298 messages; before them stand one of the server's and one of CCA1's, unread.
        // Stations: B_TWR, D_TWR.
        add(
            "radio", [=](auto &m) { m.addRadioSent(text, {}); }, "+298", "~0", "", "");
        add(
            "another channel", [=](auto &m) { m.addWallopSent(text); }, "", "~0", "", "");
        add(
            "unread", [=](auto &m) { m.addBroadcast(to("SUP"), text); }, "", "~0 ~3", "", "");
        add(
            "private", [=](auto &m) { m.addPrivateReceived(to("CCA1"), text); }, "", "~0", "~0 ~0", "");
        add(
            "a new session", [=](auto &m) { m.addPrivateSent(to("CCA2"), text); }, "", "~0", "+1 ~1", "");
        add(
            "a channel is entered", [=](auto &m) { m.setActiveChannel(to("SERVER")); }, "!", "~0", "", "");
        add(
            "the same channel", [=](auto &m) { m.setActiveChannel(to("RADIO")); }, "", "", "", "");
        add(
            "a session is entered", [=](auto &m) { m.openPrivateSession(to("CCA1")); }, "!", "", "~0", "");
        add(
            "a session is closed", [=](auto &m) { m.closePrivateSession(to("CCA1")); }, "", "", "~0 -0", "");
        add(
            "all cleared", [=](auto &m) { m.clearMessages(); }, "!", "~0", "~0", "");
        add(
            "a station", [=](auto &m) { m.setNearbyController(stationAt(to("C_TWR"))); }, "", "", "", "+1");
        add(
            "one that moved", [=](auto &m) { m.setNearbyController(stationAt(to("D_TWR"), 119000)); }, "", "", "",
            "~1");
        add(
            "the same one", [=](auto &m) { m.setNearbyController(stationAt(to("D_TWR"))); }, "", "", "", "");
        add(
            "one that went", [=](auto &m) { m.removeNearbyController(to("B_TWR")); }, "", "", "", "-0");
        add(
            "no stations", [=](auto &m) { m.clearNearby(); }, "", "", "", "!");
    }

    void whatAStepTellsOfTheRows()
    {
        QFETCH(Event, event);
        MessagesFixture fixture;
        MessagesPageViewModel &model = fixture.model;
        model.addServerMessage(u"first"_qs);
        model.addPrivateReceived(u"CCA1"_qs, u"hi"_qs);
        for (int i = 0; i < 298; ++i)
            model.addRadioSent(QString(), {});
        model.setNearbyController(stationAt(u"D_TWR"_qs));
        model.setNearbyController(stationAt(u"B_TWR"_qs));
        Told messages(*model.shownMessages());
        Told channels(*model.channelList());
        Told sessions(*model.sessionList());
        Told stations(*model.stationList());
        event(model);
        QTEST(messages.take(), "messages");
        QTEST(channels.take(), "channels");
        QTEST(sessions.take(), "sessions");
        QTEST(stations.take(), "stations");
        compare(model);
    }

    void theOldestRowGoes()
    {
        MessagesFixture fixture;
        for (int i = 0; i < 300; ++i)
            fixture.model.addRadioSent(QString::number(i), {});
        Told messages(*fixture.model.shownMessages());
        fixture.model.addRadioSent(u"300"_qs, {});
        QCOMPARE(messages.take(), u"+300 -0"_qs);
        compare(fixture.model);
    }

    void anUnreadMessageThatReplacesAReadOneChangesTheCounts()
    {
        MessagesFixture fixture;
        fixture.model.addServerMessage(u"read"_qs);
        fixture.model.setActiveChannel(u"SERVER"_qs);
        fixture.model.setActiveChannel(u"RADIO"_qs);
        for (int i = 0; i < 299; ++i)
            fixture.model.addRadioSent(QString(), {});
        fixture.told();
        fixture.model.addServerMessage(u"unread"_qs);
        QCOMPARE(fixture.told(), u"messages stats unread sound server 1"_qs);
    }

    /// Whatever their order and number: one row's step for each.
    void eachStationThatGoesIsOneRow()
    {
        MessagesFixture fixture;
        StationList &stations = *fixture.model.stationList();
        for (int i = 0; i < 2000; ++i)
            fixture.model.setNearbyController(stationAt(u"S%1_TWR"_qs.arg(i * 7919 % 2003)));
        QCOMPARE(stations.rowCount(), 2000);
        int rows = 0;
        int others = 0;
        connect(&stations, &QAbstractListModel::rowsRemoved, this,
                [&rows](const QModelIndex &, int first, int last) { rows += last - first + 1; });
        connect(&stations, &QAbstractListModel::dataChanged, this, [&others] { ++others; });
        connect(&stations, &QAbstractListModel::modelReset, this, [&others] { ++others; });
        for (int i = 0; i < 2000; ++i)
            fixture.model.removeNearbyController(u"S%1_TWR"_qs.arg(i));
        QCOMPARE(rows + stations.rowCount(), 2000);
        QVERIFY(stations.rowCount() < 4); // numbers beyond the first 2,000
        QCOMPARE(others, 0);
    }

    void aStationHasANameAmongTheMetaTypes()
    {
        const MessagesFixture fixture;
        QCOMPARE(QMetaType::fromName("model::NearbyAtc"), QMetaType::fromType<tarvo::model::NearbyAtc>());
    }

    void aTextIsUnfoldedByThePage()
    {
        MessagesFixture fixture;
        fixture.model.addRadioSent(u"a"_qs, {});
        fixture.model.addRadioSent(u"b"_qs, {});
        QAbstractListModel &list = *fixture.model.shownMessages();
        Told told(list);
        const int expanded = list.roleNames().key("expanded");
        QVERIFY(list.setData(list.index(1), true, expanded));
        QCOMPARE(told.take(), u"~1"_qs);
        QCOMPARE(column(rowsOf(list), "expanded"), u"false true"_qs);
        QVERIFY(!list.setData(list.index(1), u"x"_qs, list.roleNames().key("message")));
        QVERIFY(!list.setData(list.index(2), true, expanded));
        fixture.model.setActiveChannel(u"SERVER"_qs);
        fixture.model.setActiveChannel(u"RADIO"_qs);
        QCOMPARE(column(rowsOf(list), "expanded"), u"false false"_qs);
    }

    void aSessionShowsOneLine_data()
    {
        columns<QString, QString>("message", "line");
        QTest::newRow("usual") << u"hi there"_qs << u"hi there"_qs;
        QTest::newRow("several lines") << u" one\n\ttwo\r\n"_qs << u"one two"_qs;
        QTest::newRow("long") << QString(16384, u'W') << QString(200, u'W');
    }

    void aSessionShowsOneLine()
    {
        QFETCH(QString, message);
        MessagesFixture fixture;
        fixture.model.addPrivateReceived(u"CCA1"_qs, message);
        const QVariantMap row = rowOf(*fixture.model.sessionList(), 0);
        QTEST(row.value(u"lastText"_qs).toString(), "line");
        const QString time = fixture.last().value(u"time"_qs).toString();
        QCOMPARE(row.value(u"time"_qs).toString() + time.right(3), time);
    }

private:
    static QList<QAbstractListModel *> lists(MessagesPageViewModel &model)
    {
        return {model.shownMessages(), model.channelList(), model.sessionList(), model.stationList()};
    }

    static void step(MessagesPageViewModel &model, std::mt19937 &dice)
    {
        const QString somebody = u"CCA%1"_qs.arg(dice() % 8);
        const QString station = u"S%1_TWR"_qs.arg(dice() % 20);
        const QString text = QString::number(dice() % 1000);
        const Event events[] = {
            [&](auto &m) { m.addPrivateReceived(somebody, text); },
            [&](auto &m) { m.addPrivateSent(somebody, text); },
            [&](auto &m) { m.addRadioReceived(heardText(text)); },
            [&](auto &m) { m.addRadioSent(text, {}); },
            [&](auto &m) { m.addServerMessage(text); },
            [&](auto &m) { m.addBroadcast(somebody, text); },
            [&](auto &m) { m.setNearbyController(stationAt(station, 118000 + dice() % 3 * 25)); },
            [&](auto &m) { m.setNearbyController(stationAt(station)); },
            [&](auto &m) { m.removeNearbyController(station); },
            [&](auto &m) { m.setActiveChannel(dice() % 4 == 0 ? u"ALL"_qs : u"RADIO"_qs); },
            [&](auto &m) { m.openPrivateSession(somebody); },
            [&](auto &m) { m.closePrivateSession(somebody); },
        };
        events[dice() % std::size(events)](model);
    }

    /// The lists against the properties, which are put together in another way.
    static void compare(MessagesPageViewModel &model)
    {
        QCOMPARE(rowsOf(*model.stationList()), model.nearbyClients());
        const QStringList channels{u"key"_qs, u"label"_qs, u"unread"_qs};
        QCOMPARE(rowsOf(*model.channelList()), only(channels, fixedOf(model.channels())));
        const QStringList sessions{u"callsign"_qs, u"unread"_qs};
        QCOMPARE(only(sessions, rowsOf(*model.sessionList())), only(sessions, model.privateSessions()));
        for (int i = 0; i < model.sessionList()->rowCount(); ++i) // unread of a session stands in its channel, too
            QCOMPARE(model.unreadForChannel(rowOf(*model.sessionList(), i)[u"callsign"_qs].toString()),
                     rowOf(*model.sessionList(), i)[u"unread"_qs].toInt());
        QStringList messages;
        for (const char *key : {"type", "direction", "directionLabel", "from", "to", "time", "message", "meta",
                                "frequencies", "isDirect"})
            messages << QString::fromLatin1(key);
        QCOMPARE(only(messages, rowsOf(*model.shownMessages())), only(messages, model.activeMessages()));
    }
};

TARVO_TEST(MessagesListsTest)
#include "MessagesListsTest.moc"
