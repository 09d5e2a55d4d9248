#include "voice/sound/SoundStage.h"

#include "support/Patience.h"
#include "voice/sound/Hearing.h"

#include <QCoreApplication>

#include <algorithm>
#include <span>

namespace tarvo::test {

SoundServer &soundServer()
{
    static std::unique_ptr<SoundServer> server;
    if (!server) {
        server = std::make_unique<SoundServer>();
        qAddPostRoutine([] { server.reset(); });
        if (!server->start())
            qFatal("PulseAudio doesn't start");
    }
    return *server;
}

SoundStage::SoundStage()
{
    audio.emplace(config, sound);
    QObject::connect(&*audio, &voice::AudioHandler::deviceEvent, &*audio,
                     [this](voice::DeviceEvent event) { events.push_back(event); });
    audio->setInputDevice(device("mic_a"));
    audio->setHeadphoneDevice(device("spk_a"));
    audio->setSpeakerDevice(device("spk_b"));
}

int SoundStage::device(const char *name) const
{
    QList<voice::DeviceInfo> devices;
    sound->post([&devices] { devices = voice::getVoiceDevices([](const voice::DeviceInfo &) { return true; }); });
    sound->waitUntilIdle(std::chrono::milliseconds(patienceMs));
    const auto found =
        std::find_if(devices.begin(), devices.end(), [name](const voice::DeviceInfo &one) { return one.name == name; });
    return found == devices.end() ? -1 : found->index;
}

bool SoundStage::startAll()
{
    bool isTried = false;
    audio->startAll([&isTried] { isTried = true; });
    return waitFor([&isTried] { return isTried; }) && audio->headphoneStream().isRunning() &&
           audio->speakerStream().isRunning();
}

double SoundStage::likenessOfSpeech()
{
    const voice::Transmitter radio{.receive = true};
    audio->addChannel(radio);
    SoundRecorder recorder(server, "spk_a");
    waitFor([&] { return !recorder.samples().empty(); });
    const std::vector<float> said = chirp(0.5);
    const auto packets = packetsOf(said);
    double best = 0;
    for (Patience patience; best <= heardWell && patience.goesOn();) {
        const std::size_t before = recorder.samples().size();
        for (const auto &packet : packets)
            audio->playVoice(radio, packet, false);
        waitFor([&] { return recorder.samples().size() > before + soundRate; });
        // From before the last time on, for what comes late.
        const std::span<const float> heard =
            std::span(recorder.samples()).subspan(before - std::min(before, said.size()));
        best = std::max(best, likeness(said, heard).back());
    }
    return best;
}

} // namespace tarvo::test
