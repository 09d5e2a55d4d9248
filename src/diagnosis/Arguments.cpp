#include "diagnosis/Arguments.h"

#include "diagnosis/Finding.h"

#include <QCommandLineParser>

namespace tarvo::diagnosis {

namespace {

using model::SimulatorMode;

void describe(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        Texts::tr("检查 TarvoClient 的设置、网络、模拟器和声音，并说明怎么办。全部正常时返回 0。"));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption({QStringLiteral("pack"), Texts::tr("把日志、崩溃记录和设置打包，其中没有密码和令牌。"),
                      QStringLiteral("FILE.zip")});
    parser.addOption(
        {QStringLiteral("simulator"), Texts::tr("只检查这一个：xplane、msfs 或 none。"), QStringLiteral("NAME")});
    QCommandLineOption sound(QLatin1StringView(soundOption).mid(2));
    sound.setFlags(QCommandLineOption::HiddenFromHelp);
    parser.addOption(sound);
}

bool readSimulator(const QString &name, std::optional<SimulatorMode> &mode)
{
    mode = model::modeFromText(name.toUpper());
    return model::modeText(*mode) == name.toUpper();
}

} // namespace

std::optional<Arguments> readArguments(const QStringList &words, QString *error)
{
    QCommandLineParser parser;
    describe(parser);
    const bool parsed = parser.parse(words);
    Arguments arguments{.packFile = parser.value(QStringLiteral("pack"))};
    if (!parsed || !parser.positionalArguments().isEmpty()) {
        *error =
            parsed ? Texts::tr("不认识的参数：%1").arg(parser.positionalArguments().constFirst()) : parser.errorText();
        return std::nullopt;
    }
    if (parser.isSet(QStringLiteral("pack")) && arguments.packFile.isEmpty()) {
        *error = Texts::tr("--pack 需要一个文件名。");
        return std::nullopt;
    }
    const QString simulator = parser.value(QStringLiteral("simulator"));
    if (parser.isSet(QStringLiteral("simulator")) && !readSimulator(simulator, arguments.simulator)) {
        *error = Texts::tr("--simulator：不认识“%1”。").arg(simulator);
        return std::nullopt;
    }
    arguments.listSound = parser.isSet(QLatin1StringView(soundOption).mid(2));
    if (parser.isSet(QStringLiteral("help")))
        arguments.information = parser.helpText();
    else if (parser.isSet(QStringLiteral("version")))
        arguments.information = QStringLiteral("tarvo-support %1\n").arg(QCoreApplication::applicationVersion());
    return arguments;
}

} // namespace tarvo::diagnosis
