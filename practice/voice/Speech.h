#pragma once

#include <QByteArray>
#include <QMap>
#include <QStringList>

#include <cstdint>
#include <memory>
#include <vector>

namespace tarvo::practice {

/// Opus frames of 20 ms, in their order.
using SpeechFrames = std::vector<std::vector<std::uint8_t>>;
using Speech = std::shared_ptr<const SpeechFrames>;

/// The frames of an Ogg Opus file, undecoded. Empty for anything else, and for a file whose frames aren't 20 ms long.
SpeechFrames readOggOpus(const QByteArray &file);

/// The phrases that scripts/make-assets has made, by name, such as "tower-greeting".
class SpeechBook
{
public:
    SpeechBook();

    /// Null when there is none.
    Speech find(const QString &name) const { return m_phrases.value(name); }
    QStringList names() const { return m_phrases.keys(); }

private:
    QMap<QString, Speech> m_phrases;
};

} // namespace tarvo::practice
