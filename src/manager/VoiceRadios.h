#pragma once

#include "voice/client/VoiceClient.h"

#include <QObject>

namespace tarvo::model {
struct RadioStackState;
}

namespace tarvo::manager {

/// The voice client, and COM1 and COM2 as it knows them. Main thread only.
class VoiceRadios : public QObject
{
    Q_OBJECT

public:
    /// Parameters as VoiceClient's.
    VoiceRadios(AppConfig &config, std::shared_ptr<voice::SoundThread> sound, const ServiceEndpoints &endpoints,
                const common::Clock &clock, QObject *parent = nullptr);

    voice::VoiceClient &client() { return m_client; }

    /// Tells the voice client how the radios stand, if its session is ready. Only one of them transmits: COM1 wins.
    void tell(const model::RadioStackState &state);

signals:
    /// The voice session is ready: it must be told of the radios.
    void ready();

private:
    voice::VoiceClient m_client;
};

} // namespace tarvo::manager
