#include "practice/voice/Speech.h"

#include <QDir>

#include <opus/opusfile.h>

namespace tarvo::practice {

namespace {
constexpr int samplesPerFrame = 960; // 20 ms at 48 kHz

struct Collected
{
    SpeechFrames frames;
    bool odd = false; ///< one of them isn't 20 ms long
};

/// Takes the packet as it is, and leaves silence in the place of what would be decoded.
int collect(void *context, OpusMSDecoder *, void *samples, const ogg_packet *packet, int count, int channels, int, int)
{
    auto &collected = *static_cast<Collected *>(context);
    collected.odd |= count != samplesPerFrame;
    collected.frames.emplace_back(packet->packet, packet->packet + packet->bytes);
    std::fill_n(static_cast<float *>(samples), static_cast<std::size_t>(count) * static_cast<std::size_t>(channels),
                0.0F);
    return 0;
}
} // namespace

SpeechFrames readOggOpus(const QByteArray &file)
{
    int error = 0;
    const std::unique_ptr<OggOpusFile, decltype(&op_free)> opened(
        op_open_memory(reinterpret_cast<const unsigned char *>(file.constData()), static_cast<std::size_t>(file.size()),
                       &error),
        &op_free);
    if (!opened)
        return {};
    Collected collected;
    op_set_decode_callback(opened.get(), &collect, &collected);
    std::vector<float> silence(static_cast<std::size_t>(samplesPerFrame) * 8); // room for eight channels
    int read = 0;
    do {
        read = op_read_float(opened.get(), silence.data(), static_cast<int>(silence.size()), nullptr);
    } while (read > 0);
    return read < 0 || collected.odd ? SpeechFrames() : collected.frames;
}

SpeechBook::SpeechBook()
{
    const QDir folder(QStringLiteral(":/practice/speech"));
    for (const QFileInfo &info : folder.entryInfoList(QDir::Files)) {
        QFile file(info.filePath());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        SpeechFrames frames = readOggOpus(file.readAll());
        if (!frames.empty())
            m_phrases.insert(info.completeBaseName(), std::make_shared<const SpeechFrames>(std::move(frames)));
    }
}

} // namespace tarvo::practice
