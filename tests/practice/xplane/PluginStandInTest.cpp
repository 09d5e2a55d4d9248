#include "practice/xplane/PluginStandIn.h"

#include "PluginDialer.h"
#include "support/Patience.h"
#include "support/PipeStall.h"
#include "support/TestRegistry.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <memory>
#include <optional>
#include <thread>

using namespace tarvo::practice;
using tarvo::test::PluginDialer;

class PluginStandInTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    std::unique_ptr<PluginStandIn> m_plugin;
    std::unique_ptr<PluginDialer> m_client;

    QString url() const { return QStringLiteral("ipc://%1").arg(m_folder.filePath(QStringLiteral("p.ipc"))); }
    QByteArray next()
    {
        QByteArray bytes;
        const auto arrived = [&] {
            if (bytes.isEmpty())
                bytes = m_client->receive();
            return !bytes.isEmpty();
        };
        [&] { TRY_VERIFY(arrived()); }();
        return bytes;
    }

private slots:
    void init()
    {
        m_plugin = std::make_unique<PluginStandIn>();
        QVERIFY2(m_plugin->listen(url()), qPrintable(m_plugin->errorString()));
        m_client = std::make_unique<PluginDialer>(url());
    }

    void cleanup()
    {
        m_client.reset();
        m_plugin.reset();
    }

    void answers_data()
    {
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<QByteArray>("answer");
        QTest::newRow("VER") << QByteArray("\x92\xa3VER\x90") << QByteArray("\x92\xa3VER\x91\xce\x00\x01\x00\x00", 11);
        QTest::newRow("CSL") << QByteArray("\x92\xa3"
                                           "CSL\x92\x91\xa2/a\xc2")
                             << QByteArray("\x92\xa3"
                                           "CSL\x92\x91\xa2/a\xc3");
        QTest::newRow("ADD") << QByteArray("\x92\xa3"
                                           "ADD\x92\xa3"
                                           "AB1\xa0")
                             << QByteArray("\x92\xa5"
                                           "ADDED\x91\xa3"
                                           "AB1");
        QTest::newRow("DEL") << QByteArray("\x92\xa3"
                                           "DEL\x92\xa3"
                                           "AB1\xa5Stale")
                             << QByteArray("\x92\xa7"
                                           "DELETED\x91\xa3"
                                           "AB1");
    }

    void answers()
    {
        QFETCH(QByteArray, message);
        QFETCH(QByteArray, answer);
        QVERIFY(m_client->send(message));
        QCOMPARE(next(), answer);
    }

    void answersAsItIsTold()
    {
        m_plugin->setVersion(-1);
        m_plugin->setCslValid(false);
        QVERIFY(m_client->send("\x92\xa3VER\x90"));
        QCOMPARE(next(), QByteArray("\x92\xa3VER\x90"));
        QVERIFY(m_client->send("\x92\xa3"
                               "CSL\x92\x90\xc2"));
        QCOMPARE(next(), QByteArray("\x92\xa3"
                                    "CSL\x92\x90\xc2"));
    }

    void keepsQuietWhenMute()
    {
        m_plugin->setMute(true);
        QSignalSpy received(m_plugin.get(), &PluginStandIn::messageReceived);
        QSignalSpy sent(m_plugin.get(), &PluginStandIn::messageSent);
        QVERIFY(m_client->send("\x92\xa3VER\x90"));
        TRY_COMPARE(received.size(), 1);
        QCOMPARE(sent.size(), 0);
    }

    void handsOnEveryMessage()
    {
        QSignalSpy received(m_plugin.get(), &PluginStandIn::messageReceived);
        QVERIFY(m_client->send(QByteArray("\x92\xa3XYZ\x97\xc0\xc3\x2a\xff\xcb\x3f\xf8\0\0\0\0\0\0"
                                          "\xca\x3f\0\0\0\x91\xa1x",
                                          27)));
        TRY_COMPARE(received.size(), 1);
        QCOMPARE(received.at(0).at(0).toString(), QStringLiteral("XYZ"));
        const QVariantList arguments = received.at(0).at(1).toList();
        QCOMPARE(arguments.size(), 7);
        QVERIFY(!arguments.at(0).isValid());
        QCOMPARE(arguments.at(1), QVariant(true));
        QCOMPARE(arguments.at(2).toLongLong(), 42);
        QCOMPARE(arguments.at(3).toLongLong(), -1);
        QCOMPARE(arguments.at(4), QVariant(1.5));
        QCOMPARE(arguments.at(5), QVariant(0.5F));
        QCOMPARE(arguments.at(6).toList(), QVariantList{QStringLiteral("x")});
    }

    void speaksOfItsOwnAccord()
    {
        QVERIFY(m_client->send("\x92\xa3VER\x90"));
        next();
        QVERIFY(m_plugin->sendRadioMessage(QStringLiteral("hi")));
        QCOMPARE(next(), QByteArray("\x92\xa8RDIOSENT\x91\xa2hi"));
        QVERIFY(m_plugin->sendPrivateMessage(QStringLiteral("AB1"), QStringLiteral("你")));
        QCOMPARE(next(), QByteArray("\x92\xa8PRIVSENT\x92\xa3"
                                    "AB1\xa3\xe4\xbd\xa0"));
        QVERIFY(m_plugin->requestStation(QStringLiteral("ZBAA")));
        QCOMPARE(next(), QByteArray("\x92\xaaREQSTATION\x91\xa4ZBAA"));
        QVERIFY(m_plugin->forceDisconnect(QString()));
        QCOMPARE(next(), QByteArray("\x92\xa9"
                                    "FORCEDISC\x91\xa0"));
        QVERIFY(m_plugin->shutDown());
        QCOMPARE(next(), QByteArray("\x92\xa8SHUTDOWN\x90"));
        QVERIFY(m_plugin->sendRaw("junk"));
        QCOMPARE(next(), QByteArray("junk"));
    }

    void garbageIsDropped_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("one byte") << QByteArray("\xc1");
        QTest::newRow("no array") << QByteArray("\xa3VER");
        QTest::newRow("three parts") << QByteArray("\x93\xa3VER\x90\x90");
        QTest::newRow("name of a number") << QByteArray("\x92\x01\x90");
        QTest::newRow("arguments of text") << QByteArray("\x92\xa3VER\xa1x");
        QTest::newRow("cut off") << QByteArray("\x92\xa3VE");
        QTest::newRow("array of four thousand million") << QByteArray("\xdd\xff\xff\xff\xff");
        QTest::newRow("text of four thousand million") << QByteArray("\x92\xdb\xff\xff\xff\xff");
        QTest::newRow("a thousand levels") << QByteArray(1000, '\x91');
    }

    void garbageIsDropped()
    {
        QFETCH(QByteArray, bytes);
        QSignalSpy malformed(m_plugin.get(), &PluginStandIn::malformed);
        QVERIFY(m_client->send(bytes));
        TRY_COMPARE(malformed.size(), 1);
        QVERIFY(m_client->send("\x92\xa3VER\x90"));
        QVERIFY(next().startsWith("\x92\xa3VER"));
    }

    void anAddressInUseIsAnError()
    {
        PluginStandIn second;
        QVERIFY(!second.listen(url()));
        QVERIFY(second.errorString().contains(url()));
        QVERIFY(!second.sendRaw("x"));
    }

    void aLeftOverSocketFileIsNoHindrance()
    {
        m_client.reset();
        m_plugin->close();
        QVERIFY(m_plugin->listen(url()));
    }

    void closesUnderAFlood()
    {
        QVERIFY(m_client->send("\x92\xa3VER\x90"));
        next();
        int sent = 0;
        for (int i = 0; i < 20'000; ++i) // more than all buffers hold; nobody takes anything out meanwhile
            sent += m_client->send("\x92\xa3XYZ\x90") ? 1 : 0;
        QVERIFY(sent >= 4096);
        m_plugin->close();
        QVERIFY(m_plugin->listen(url()));
    }

    void closesUnderAFloodThatNeverEnds()
    {
        for (int round = 0; round < 3; ++round) {
            QVERIFY(m_client->send("\x92\xa3VER\x90"));
            QVERIFY(next().startsWith("\x92\xa3VER"));
            std::atomic_bool ended = false;
            std::thread flood([&] {
                while (!ended)
                    m_client->send("\x92\xa3XYZ\x90");
            });
            m_plugin->close();
            ended = true;
            flood.join();
            m_client.reset();
            QVERIFY(m_plugin->listen(url()));
            m_client = std::make_unique<PluginDialer>(url());
        }
    }

    void aCloseThatHangsDoesNotHoldItUp()
    {
        QVERIFY(m_client->send("\x92\xa3VER\x90"));
        next();
        std::optional<tarvo::test::PipeStall> stall(std::in_place);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("left behind")));
        QElapsedTimer closing;
        closing.start();
        m_plugin->close();
        QVERIFY(closing.elapsed() < 5000);
        QVERIFY2(m_plugin->listen(url()), qPrintable(m_plugin->errorString()));
        PluginDialer second(url());
        QSignalSpy received(m_plugin.get(), &PluginStandIn::messageReceived);
        const auto heard = [&] { // the first client may be the one that is served
            second.send("\x92\xa3VER\x90");
            m_client->send("\x92\xa3VER\x90");
            return !received.isEmpty();
        };
        TRY_VERIFY(heard());
        stall.reset();
    }

    void theNextClientIsServed()
    {
        QVERIFY(m_client->send("\x92\xa3VER\x90"));
        next();
        m_client.reset();
        m_client = std::make_unique<PluginDialer>(url());
        QByteArray answer;
        const auto asked = [&] { // again and again: what goes into a connection that is refused is lost
            if (answer.isEmpty()) {
                m_client->send("\x92\xa3VER\x90");
                answer = m_client->receive();
            }
            return !answer.isEmpty();
        };
        TRY_VERIFY(asked());
        QVERIFY(answer.startsWith("\x92\xa3VER"));
    }
};

TARVO_TEST(PluginStandInTest)
#include "PluginStandInTest.moc"
