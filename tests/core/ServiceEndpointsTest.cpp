#include "ServiceEndpoints.h"
#include "support/TestRegistry.h"

#include <QTest>
#include <QUrl>

class ServiceEndpointsTest : public QObject
{
    Q_OBJECT

private slots:
    void theBuildNamesEveryService()
    {
        const tarvo::ServiceEndpoints endpoints;
        QVERIFY(QUrl(endpoints.apiBaseUrl).isValid());
        QVERIFY(endpoints.apiBaseUrl.endsWith(QStringLiteral("/api")));
        QVERIFY(!endpoints.fsdHost.isEmpty());
        QCOMPARE(endpoints.fsdPort, quint16(6809));
        QVERIFY(!endpoints.voiceHost.isEmpty());
        QVERIFY(!endpoints.registerUrl.isEmpty());
        QCOMPARE(endpoints.localPluginUrl, QStringLiteral("ipc:///tmp//tarvoclient.ipc"));
    }

    void theSecretHas32Bytes() { QCOMPARE(tarvo::configSecret().size(), 32); }
};

TARVO_TEST(ServiceEndpointsTest)
#include "ServiceEndpointsTest.moc"
