#include "diagnosis/SoundCheck.h"

#include "diagnosis/Arguments.h"
#include "diagnosis/StoredSettings.h"
#include "voice/engine/SoundSystem.h"

#include <QProcess>

namespace tarvo::diagnosis {

namespace {

constexpr QByteArrayView inputWord = "in ";
constexpr QByteArrayView outputWord = "out ";

QByteArray linesOf(QByteArrayView word, const QList<voice::DeviceInfo> &devices)
{
    QByteArray lines;
    for (const voice::DeviceInfo &device : devices)
        lines.append(word).append(QByteArray(device.name).replace('\n', ' ')).append('\n');
    return lines;
}

/// The devices of one direction, and those of them that the settings choose.
Finding judgeDirection(const QString &title, const QStringList &devices, QStringList chosen, const QString &advice)
{
    chosen.removeIf([](const QString &name) { return name.isEmpty() || name == QLatin1StringView("Default"); });
    if (devices.isEmpty())
        return {Mark::Bad, title, Texts::tr("没有设备"), advice};
    for (const QString &name : std::as_const(chosen)) {
        if (!devices.contains(name))
            return {Mark::Bad, title, Texts::tr("所选的“%1”不在").arg(name),
                    Texts::tr("接上设备，或在“设置”页另选一个。")};
    }
    return {Mark::Good, title, Texts::tr("%1 个设备").arg(devices.size())};
}

} // namespace

QByteArray listSound()
{
    const voice::SoundSession session; // one search for both
    return linesOf(inputWord, voice::getVoiceInputDevices()) + linesOf(outputWord, voice::getVoiceOutputDevices());
}

SoundFacts readSound(const QByteArray &lines)
{
    SoundFacts facts;
    for (QByteArray text : lines.split('\n')) {
        if (text.endsWith('\r')) // as Windows ends lines
            text.chop(1);
        if (text.startsWith(inputWord))
            facts.inputs << QString::fromUtf8(text.mid(inputWord.size()));
        else if (text.startsWith(outputWord))
            facts.outputs << QString::fromUtf8(text.mid(outputWord.size()));
    }
    return facts;
}

std::optional<SoundFacts> lookAtSound(const QString &program, std::chrono::milliseconds limit)
{
    QProcess process;
    process.start(program, {QLatin1StringView(soundOption)});
    const bool isDone = process.waitForFinished(static_cast<int>(limit.count()));
    if (!isDone)
        process.kill();
    const bool isWell = isDone && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return isWell ? std::optional(readSound(process.readAllStandardOutput())) : std::nullopt;
}

Findings judgeSound(const std::optional<SoundFacts> &facts, const StoredSettings &settings)
{
    if (!facts)
        return {{Mark::Bad, Texts::tr("声音"), Texts::tr("声音系统没有应答"),
                 Texts::tr("重新启动声音服务或电脑，然后再试。")}};
    return {judgeDirection(Texts::tr("麦克风"), facts->inputs, {settings.text(config::voiceInputDevice)},
                           Texts::tr("接上麦克风，并允许程序使用它。")),
            judgeDirection(
                Texts::tr("耳机和扬声器"), facts->outputs,
                {settings.text(config::voiceOutputHeadphoneDevice), settings.text(config::voiceOutputSpeakerDevice)},
                Texts::tr("接上耳机或扬声器，并检查声音驱动程序。"))};
}

} // namespace tarvo::diagnosis
