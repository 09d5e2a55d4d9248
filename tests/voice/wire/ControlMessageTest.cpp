#include "voice/wire/ControlMessage.h"

#include "support/TestRegistry.h"

#include <QTest>

#include <nlohmann/json.hpp>

#include <limits>

using namespace tarvo::voice;
using Type = ControlMessageType;

Q_DECLARE_METATYPE(tarvo::voice::ControlMessage)

class ControlMessageTest : public QObject
{
    Q_OBJECT

private slots:
    void golden_data()
    {
        QTest::addColumn<ControlMessage>("message");
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("channel") << ControlMessage{Type::Channel, 1001, "CCA1234", 1, "118700:1"}
                                 << QByteArray(R"({"callsign":"CCA1234","cid":1001,"data":"118700:1","transmitter":1,)"
                                               R"("type":"channel"})");
        QTest::newRow("disconnect") << ControlMessage{Type::Disconnect, 1001, "", 0, ""}
                                    << QByteArray(R"({"callsign":"","cid":1001,"data":"","transmitter":0,)"
                                                  R"("type":"disconnect"})");
        QTest::newRow("Chinese as it is, controls escaped")
            << ControlMessage{Type::Message, -1, "国航", 0, "你好:\"\\\n"}
            << QByteArray(R"({"callsign":"国航","cid":-1,"data":"你好:\"\\\n","transmitter":0,"type":"message"})");
        for (const auto &[type, word] : {std::pair{Type::Ping, "ping"},
                                         {Type::Pong, "pong"},
                                         {Type::Error, "error"},
                                         {Type::TextReceive, "text_receive"},
                                         {Type::VoiceReceive, "voice_receive"}})
            QTest::newRow(word) << ControlMessage{type, 0, "", 0, ""}
                                << QByteArray(R"({"callsign":"","cid":0,"data":"","transmitter":0,"type":")") + word +
                                       "\"}";
    }

    void golden()
    {
        QFETCH(ControlMessage, message);
        QFETCH(QByteArray, line);
        QCOMPARE(QByteArray::fromStdString(serializeControlMessage(message)), line);
        QVERIFY(parseControlMessage(line.toStdString()) == message);
    }

    void typeBeyondTheLastIsWrittenAsDisconnect()
    {
        const ControlMessage message{static_cast<Type>(8), 0, "", 0, ""};
        QVERIFY(parseControlMessage(serializeControlMessage(message)).type == Type::Disconnect);
    }

    void textThatIsNotUtf8IsNotWritten()
    {
        QVERIFY_THROWS_EXCEPTION(nlohmann::json::exception, serializeControlMessage({Type::Message, 0, "\xff", 0, ""}));
    }

    void read_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<ControlMessage>("message");
        QTest::newRow("type alone") << QByteArray(R"({"type":"ping"})") << ControlMessage{Type::Ping, 0, "", 0, ""};
        QTest::newRow("unknown word") << QByteArray(R"({"type":"nonsense"})") << ControlMessage{};
        QTest::newRow("empty word") << QByteArray(R"({"type":""})") << ControlMessage{};
        QTest::newRow("another case") << QByteArray(R"({"type":"Ping"})") << ControlMessage{};
        QTest::newRow("no type") << QByteArray(R"({})") << ControlMessage{};
        QTest::newRow("blanks, a carriage return and keys that nobody knows")
            << QByteArray(" {\"x\":[1], \"cid\" : 7 , \"type\":\"pong\"}\r")
            << ControlMessage{Type::Pong, 7, "", 0, ""};
        QTest::newRow("the last of two keys")
            << QByteArray(R"({"cid":1,"cid":2})") << ControlMessage{Type::Disconnect, 2, "", 0, ""};
        QTest::newRow("least") << QByteArray(R"({"cid":-2147483648})")
                               << ControlMessage{Type::Disconnect, std::numeric_limits<qint32>::min(), "", 0, ""};
        QTest::newRow("most") << QByteArray(R"({"cid":2147483647})")
                              << ControlMessage{Type::Disconnect, std::numeric_limits<qint32>::max(), "", 0, ""};
        QTest::newRow("unsigned") << QByteArray(R"({"cid":4294967295})")
                                  << ControlMessage{Type::Disconnect, -1, "", 0, ""};
    }

    void read()
    {
        QFETCH(QByteArray, line);
        QFETCH(ControlMessage, message);
        QVERIFY(parseControlMessage(line.toStdString()) == message);
    }

    void refused_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no JSON") << QByteArray("not json");
        QTest::newRow("cut short") << QByteArray(R"({"type":"ping")");
        QTest::newRow("two objects") << QByteArray("{}{}");
        QTest::newRow("list") << QByteArray("[]");
        QTest::newRow("number") << QByteArray("1");
        QTest::newRow("null") << QByteArray("null");
        QTest::newRow("not UTF-8") << QByteArray("{\"callsign\":\"\xff\"}");
        QTest::newRow("type is a number") << QByteArray(R"({"type":1})");
        QTest::newRow("cid is a text") << QByteArray(R"({"cid":"1"})");
        QTest::newRow("cid is a fraction") << QByteArray(R"({"cid":1e300})");
        QTest::newRow("cid is too large") << QByteArray(R"({"cid":4294967296})");
        QTest::newRow("cid is too small") << QByteArray(R"({"cid":-2147483649})");
        QTest::newRow("transmitter has 64 bits") << QByteArray(R"({"transmitter":18446744073709551615})");
        QTest::newRow("cid is true") << QByteArray(R"({"cid":true})");
        QTest::newRow("cid is null") << QByteArray(R"({"cid":null})");
        QTest::newRow("callsign is a number") << QByteArray(R"({"callsign":1})");
        QTest::newRow("transmitter is a text") << QByteArray(R"({"transmitter":"1"})");
        QTest::newRow("data is a list") << QByteArray(R"({"data":[]})");
        QTest::newRow("deep") << QByteArray(60000, '[');
    }

    void refused()
    {
        QFETCH(QByteArray, line);
        QVERIFY_THROWS_EXCEPTION(nlohmann::json::exception, parseControlMessage(line.toStdString()));
    }

    void channelDataNamesFrequencyAndReceive()
    {
        QCOMPARE(channelData(118700, true), std::string("118700:1"));
        QCOMPARE(channelData(0, false), std::string("0:0"));
    }

    void greeting_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QByteArray>("callsign"); // null: no greeting
        QTest::newRow("whole") << QByteArray("SERVER:CCA1234:Welcome to the voice network") << QByteArray("CCA1234");
        QTest::newRow("no second colon") << QByteArray("SERVER:Welcome") << QByteArray("Welcome");
        QTest::newRow("empty callsign") << QByteArray("SERVER::Welcome") << QByteArray("");
        QTest::newRow("blanks stay") << QByteArray("SERVER: a :Welcome") << QByteArray(" a ");
        QTest::newRow("the word within another") << QByteArray("SERVER:A1:UnWelcomed") << QByteArray("A1");
        QTest::newRow("prefix alone") << QByteArray("SERVER:") << QByteArray();
        QTest::newRow("no word") << QByteArray("SERVER:A1:welcome") << QByteArray();
        QTest::newRow("prefix in another case") << QByteArray("Server:A1:Welcome") << QByteArray();
        QTest::newRow("prefix further on") << QByteArray(" SERVER:A1:Welcome") << QByteArray();
        QTest::newRow("six bytes") << QByteArray("SERVER") << QByteArray();
        QTest::newRow("empty") << QByteArray("") << QByteArray();
    }

    void greeting()
    {
        QFETCH(QByteArray, data);
        QFETCH(QByteArray, callsign);
        const std::optional<std::string> found = callsignOfGreeting(data.toStdString());
        QCOMPARE(found.has_value(), !callsign.isNull());
        QCOMPARE(found.value_or(std::string()), callsign.toStdString());
    }
};

TARVO_TEST(ControlMessageTest)
#include "ControlMessageTest.moc"
