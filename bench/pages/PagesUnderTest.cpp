#include "pages/Role.h"
#include "pages/WindowsUnderTest.h"

#include "AppConfig.h"
#include "Application.h"
#include "Logging.h"
#include "StateFile.h"
#include "manager/NetworkManager.h"
#include "network/ApiService.h"
#include "network/SwiftAircraftIcaoService.h"
#include "ui/MainWindow.h"
#include "ui/ThemeManager.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QQuickView>
#include <QSGRendererInterface>
#include <QTemporaryDir>

#include <atomic>
#include <cstdio>
#include <functional>

namespace tarvo::bench {

namespace {

constexpr int patienceMs = 60'000;
constexpr int lookEveryMs = 20;

bool waitUntil(const char *what, const std::function<bool()> &holds)
{
    const QDeadlineTimer deadline(patienceMs);
    while (!holds() && !deadline.hasExpired())
        pass(lookEveryMs);
    const bool held = holds();
    if (!held)
        std::fprintf(stderr, "the client still waits for %s\n", what);
    return held;
}

ServiceEndpoints endpointsOf(const PagesArguments &arguments)
{
    ServiceEndpoints endpoints;
    endpoints.apiBaseUrl = arguments.apiBaseUrl;
    endpoints.fsdHost = endpoints.voiceHost = QStringLiteral("127.0.0.1");
    endpoints.fsdPort = arguments.fsdPort;
    endpoints.voiceTcpPort = arguments.voiceTcpPort;
    endpoints.voiceUdpPort = arguments.voiceUdpPort;
    endpoints.localPluginUrl = arguments.pluginUrl;
    return endpoints;
}

class Client
{
public:
    explicit Client(const PagesArguments &arguments)
        : m_config(m_folder.path()),
          m_api(m_config, endpointsOf(arguments)),
          m_icao(m_config),
          m_application(m_config, m_api, m_icao, endpointsOf(arguments))
    {
        logging::installHandler();
        logging::openLogFile(QDir(m_config.logsFolder()).filePath(QStringLiteral("client.log")));
        m_config.set(config::xplaneUdpPort, arguments.xplanePort);
        m_config.set(config::authVatsim, false);
        m_config.state().set(state::tourSeen, true);
    }

    QByteArray answer(const QByteArray &question)
    {
        if (question == "begin")
            return signIn() && connectSimulator() && connectNetwork() ? painter() : QByteArray();
        if (question == "frames")
            return QByteArray::number(m_frames.load());
        if (question == "voice")
            return connectVoice() ? "done" : "";
        if (question == "minimise")
            window().showMinimized();
        else if (question == "restore")
            window().showNormal();
        else
            emit window().status().sectionRequested(QString::fromLatin1(question.mid(question.indexOf(' ') + 1)));
        return "done";
    }

private:
    ui::MainWindow &window() { return *m_application.mainWindow(); }

    bool signIn()
    {
        bool accepted = false;
        m_api.login(QStringLiteral("1001"), QStringLiteral("practice"),
                    [&accepted](bool success, const QString &) { accepted = success; });
        if (!waitUntil("the sign-in", [&accepted] { return accepted; }))
            return false;
        m_config.set(config::sessionUsername, QStringLiteral("1001"));
        m_config.set(config::sessionPassword, QStringLiteral("practice"));
        emit m_application.loginWindow().loginSuccess();
        if (!waitUntil("its window", [this] { return m_application.mainWindow() != nullptr; }))
            return false;
        window().resize(1280, 800);
        QObject::connect(
            window().view(), &QQuickWindow::frameSwapped, window().view(), [this] { ++m_frames; },
            Qt::DirectConnection);
        return true;
    }

    bool connectSimulator()
    {
        window().dashboard().requestModeChange(QStringLiteral("XPLANE"));
        return waitUntil("X-Plane", [this] { return window().simulator().simulatorConnected(); });
    }

    bool connectNetwork()
    {
        ui::ServerPageViewModel &server = window().server();
        server.setCallsign(QStringLiteral("CES2352"));
        server.setTypeCode(QStringLiteral("B738"));
        return waitUntil("the server", [&] {
            if (!server.serverConnected() && !m_application.networkManager()->isBusy())
                server.requestConnect(); // again, if the simulator had told nothing yet
            return server.serverConnected();
        });
    }

    bool connectVoice()
    {
        window().voice().connectToVoiceServer();
        return waitUntil("a voice", [this] { return window().voice().receiving(); });
    }

    QByteArray painter()
    {
        const bool software = window().view()->rendererInterface()->graphicsApi() == QSGRendererInterface::Software;
        return software ? "Qt's software renderer" : "GL";
    }

    QTemporaryDir m_folder;
    AppConfig m_config;
    network::ApiService m_api;
    network::SwiftAircraftIcaoService m_icao;
    std::atomic<int> m_frames = 0; ///< swapped in a thread of Qt's own, maybe
    Application m_application;
};

} // namespace

QStringList PagesArguments::toWords() const
{
    return {apiBaseUrl,
            QString::number(fsdPort),
            QString::number(xplanePort),
            QString::number(voiceTcpPort),
            QString::number(voiceUdpPort),
            pluginUrl};
}

PagesArguments PagesArguments::fromWords(const QStringList &words)
{
    return {.apiBaseUrl = words.value(0),
            .fsdPort = words.value(1).toUShort(),
            .xplanePort = words.value(2).toUShort(),
            .voiceTcpPort = words.value(3).toUShort(),
            .voiceUdpPort = words.value(4).toUShort(),
            .pluginUrl = words.value(5)};
}

int runPages(const PagesArguments &arguments)
{
    ui::ThemeManager::instance().applyTheme(ui::ThemeManager::Theme::Light);
    Client client(arguments);
    return answerQuestions([&client](const QByteArray &question) { return client.answer(question); });
}

} // namespace tarvo::bench
