#include "fsd/LineSplitter.h"
#include "fsd/pdu/AnyPdu.h"
#include "fsd/pdu/AuthResponse.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/MetarRequest.h"
#include "fsd/pdu/PDUFormatException.h"
#include "support/SourceFolder.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QTest>

#include <stdexcept>

using namespace tarvo::fsd;

namespace {

/// Reads a line as the class of a golden file and writes it back, with its line end.
using Replay = QString (*)(const QString &line);

template <class Pdu>
QString replayThroughParseLine(const QString &line)
{
    const AnyPdu any = parseLine(line);
    const auto *pdu = std::get_if<Pdu>(&any);
    if (!pdu)
        throw std::runtime_error("the line was read as another class");
    return toLine(*pdu);
}

/// This client only ever sends it.
template <class Pdu>
QString replaySent(const QString &line)
{
    return toLine(Pdu::parse(line.sliced(Pdu::identifier.size()).split(u':')));
}

/// Has no identifier.
QString replayMetarRequest(const QString &line)
{
    return pdu::MetarRequest::parse(line.split(u':')).serialize().join(u':') + QLatin1StringView("\r\n");
}

const QHash<QString, Replay> replays{
    {QStringLiteral("PilotPosition"), replayThroughParseLine<pdu::PilotPosition>},
    {QStringLiteral("FastPilotPosition"), replayThroughParseLine<pdu::FastPilotPosition>},
    {QStringLiteral("ATCPosition"), replayThroughParseLine<pdu::ATCPosition>},
    {QStringLiteral("ServerIdentification"), replayThroughParseLine<pdu::ServerIdentification>},
    {QStringLiteral("ClientIdentification"), replayThroughParseLine<pdu::ClientIdentification>},
    {QStringLiteral("AddATC"), replayThroughParseLine<pdu::AddATC>},
    {QStringLiteral("DeleteATC"), replayThroughParseLine<pdu::DeleteATC>},
    {QStringLiteral("AddPilot"), replayThroughParseLine<pdu::AddPilot>},
    {QStringLiteral("DeletePilot"), replayThroughParseLine<pdu::DeletePilot>},
    {QStringLiteral("BroadcastMessage"), replayThroughParseLine<pdu::BroadcastMessage>},
    {QStringLiteral("Wallop"), replayThroughParseLine<pdu::Wallop>},
    {QStringLiteral("RadioMessage"), replayThroughParseLine<pdu::RadioMessage>},
    {QStringLiteral("TextMessage"), replayThroughParseLine<pdu::TextMessage>},
    {QStringLiteral("MetarRequest"), replayMetarRequest},
    {QStringLiteral("MetarResponse"), replayThroughParseLine<pdu::MetarResponse>},
    {QStringLiteral("FlightPlan"), replayThroughParseLine<pdu::FlightPlan>},
    {QStringLiteral("PlaneInfoRequest"), replayThroughParseLine<pdu::PlaneInfoRequest>},
    {QStringLiteral("PlaneInfoResponse"), replayThroughParseLine<pdu::PlaneInfoResponse>},
    {QStringLiteral("Ping"), replayThroughParseLine<pdu::Ping>},
    {QStringLiteral("Pong"), replayThroughParseLine<pdu::Pong>},
    {QStringLiteral("ClientQuery"), replayThroughParseLine<pdu::ClientQuery>},
    {QStringLiteral("ClientQueryResponse"), replayThroughParseLine<pdu::ClientQueryResponse>},
    {QStringLiteral("AuthChallenge"), replayThroughParseLine<pdu::AuthChallenge>},
    {QStringLiteral("AuthResponse"), replaySent<pdu::AuthResponse>},
    {QStringLiteral("KillRequest"), replayThroughParseLine<pdu::KillRequest>},
    {QStringLiteral("ProtocolError"), replayThroughParseLine<pdu::ProtocolError>},
    {QStringLiteral("SendFast"), replayThroughParseLine<pdu::SendFast>},
    {QStringLiteral("ChangeServer"), replayThroughParseLine<pdu::ChangeServer>},
    {QStringLiteral("Mute"), replayThroughParseLine<pdu::Mute>},
};

/// The bytes of a cell: `\xE9` stands for the byte 0xE9.
QByteArray bytesOf(const QByteArray &cell)
{
    QByteArray bytes = cell.trimmed();
    for (qsizetype at = bytes.indexOf("\\x"); at >= 0; at = bytes.indexOf("\\x", at + 1))
        bytes.replace(at, 4, QByteArray::fromHex(bytes.sliced(at + 2, 2)));
    return bytes;
}

QString folder()
{
    return tarvo::test::sourceFile(QStringLiteral("tests/fsd/golden"));
}

/// The rows of one file, four cells each.
QList<QByteArrayList> rowsOf(const QString &className)
{
    QList<QByteArrayList> rows;
    QFile file(folder() + u'/' + className + QLatin1StringView(".txt"));
    if (!file.open(QIODevice::ReadOnly))
        return rows;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (!line.trimmed().isEmpty() && !line.startsWith(';'))
            rows.append(line.split('|'));
    }
    return rows;
}

} // namespace

class GoldenLinesTest : public QObject
{
    Q_OBJECT

private slots:
    void everyClassHasSixRows_data()
    {
        QTest::addColumn<QString>("className");
        for (auto it = replays.begin(); it != replays.end(); ++it)
            QTest::newRow(qUtf8Printable(it.key())) << it.key();
    }
    void everyClassHasSixRows()
    {
        QFETCH(QString, className);
        QVERIFY(rowsOf(className).size() >= 6);
    }

    void everyFileIsReplayed()
    {
        for (const QString &name : QDir(folder()).entryList({QStringLiteral("*.txt")}))
            QVERIFY2(replays.contains(name.chopped(4)), qUtf8Printable(name));
    }

    void lines_data()
    {
        QTest::addColumn<QString>("className");
        QTest::addColumn<QByteArray>("in");
        QTest::addColumn<QByteArray>("out");
        QTest::addColumn<QByteArray>("error");
        for (auto it = replays.begin(); it != replays.end(); ++it) {
            for (const QByteArrayList &row : rowsOf(it.key())) {
                QVERIFY2(row.size() == 4, row.join('|').constData());
                QTest::addRow("%s: %s", qUtf8Printable(it.key()), row[0].trimmed().constData())
                    << it.key() << bytesOf(row[1]) << bytesOf(row[2]) << bytesOf(row[3]);
            }
        }
    }
    void lines()
    {
        QFETCH(QString, className);
        QFETCH(QByteArray, in);
        QFETCH(QByteArray, out);
        QFETCH(QByteArray, error);
        LineSplitter splitter;
        splitter.feed(QString::fromLatin1(in + "\r\n"));
        const std::optional<QString> received = splitter.take();
        QVERIFY(received);

        QByteArray written;
        QByteArray failure;
        try {
            written = replays[className](*received).toLatin1();
        } catch (const PDUFormatException &exception) {
            failure =
                (exception.error() + QLatin1StringView(" (Raw packet: ") + exception.rawMessage() + u')').toLatin1();
        } catch (const std::runtime_error &wrong) {
            failure = wrong.what();
        }
        QCOMPARE(failure, error);
        QCOMPARE(written, error.isEmpty() ? out + "\r\n" : QByteArray());
    }
};

TARVO_TEST(GoldenLinesTest)
#include "GoldenLinesTest.moc"
