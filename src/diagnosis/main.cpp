#include "DataFolders.h"
#include "ServiceEndpoints.h"
#include "common/SecretMask.h"
#include "diagnosis/Arguments.h"
#include "diagnosis/Checkup.h"
#include "diagnosis/ConsoleWindow.h"
#include "diagnosis/MaskedText.h"
#include "diagnosis/SoundCheck.h"
#include "diagnosis/StoredSettings.h"
#include "diagnosis/SupportPack.h"

#include <QCoreApplication>
#include <QDir>
#include <QSysInfo>
#include <QTextStream>

#include <cstdlib>

using namespace tarvo;
using namespace tarvo::diagnosis;

namespace {

enum ExitCode
{
    AllGood = 0,
    FoundFaults = 1,
    CouldNotDo = 2 ///< wrong arguments, or an archive that could not be written
};

/// Says it, and remembers it for the report.
class Speaker
{
public:
    void say(const QString &line)
    {
        m_out << line << Qt::endl;
        m_said += line + QLatin1Char('\n');
    }
    QString said() const { return m_said; }

private:
    QTextStream m_out{stdout};
    QString m_said;
};

ExitCode pack(const PackContents &contents, const QString &file, Speaker &speaker)
{
    const QString failure = packSupport(contents, file);
    speaker.say(failure.isEmpty() ? Texts::tr("诊断信息已打包：%1").arg(QDir::toNativeSeparators(file)) : failure);
    return failure.isEmpty() ? AllGood : CouldNotDo;
}

ExitCode run(const Arguments &arguments)
{
    const DataFolders folders = findDataFolders(); // which makes none: that is left to the client
    const QString root = folders.root;
    const StoredSettings settings = readSettings(folders.settingsFrom.isEmpty() ? root : folders.settingsFrom);
    const ServiceEndpoints endpoints;
    Speaker speaker;
    speaker.say(
        Texts::tr("TarvoClient %1，%2").arg(QCoreApplication::applicationVersion(), QSysInfo::prettyProductName()));
    const Findings findings = checkUp({.program = QCoreApplication::applicationFilePath(),
                                       .dataRoot = root,
                                       .settings = settings,
                                       .endpoints = endpoints,
                                       .simulator = arguments.simulator},
                                      [&speaker](const Finding &finding) { speaker.say(shown(finding)); });
    const ExitCode code = allGood(findings) ? AllGood : FoundFaults;
    speaker.say(code == AllGood ? Texts::tr("全部正常。") : Texts::tr("请按上面的提示处理打 ✗ 的项目。"));
    if (arguments.packFile.isEmpty())
        return code;
    const common::SecretMask mask(secretsOf(settings, configSecret()));
    const PackContents contents{
        .dataRoot = root, .settings = settings, .report = maskedText(speaker.said(), mask), .mask = mask};
    return std::max(code, pack(contents, arguments.packFile, speaker));
}

ExitCode obey(const Arguments &arguments)
{
    QTextStream out(stdout);
    if (!arguments.information.isEmpty())
        out << arguments.information;
    else if (arguments.listSound)
        out << QString::fromUtf8(listSound());
    else
        return run(arguments);
    return AllGood;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("TarvoClient")); // whose data folder it looks at
    QCoreApplication::setApplicationVersion(QStringLiteral(TARVO_VERSION));
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {}); // findings alone
    openConsole();
    QString error;
    const std::optional<Arguments> arguments = readArguments(QCoreApplication::arguments(), &error);
    int code = CouldNotDo;
    if (arguments)
        code = obey(*arguments);
    else
        QTextStream(stderr) << "tarvo-support: " << error << Qt::endl;
    if (!arguments || !arguments->listSound) // nobody sees the window of that process
        keepConsole();
    std::_Exit(code); // a look-up or a sound system that hangs would hold the end
}
