#pragma once

#include "input/PttHandler.h"
#include "input/PttKey.h"

#include <QObject>
#include <QStringList>

#include <utility>

namespace tarvo::test {

/// What a handler tells, in order.
class Witness : public QObject
{
public:
    explicit Witness(const input::PttHandler &handler)
    {
        connect(&handler, &input::PttHandler::activeChanged, this,
                [this](bool active) { m_words << (active ? u"down"_qs : u"up"_qs); });
        connect(&handler, &input::PttHandler::listeningChanged, this,
                [this](bool listening) { m_words << (listening ? u"listens"_qs : u"listens no more"_qs); });
        connect(&handler, &input::PttHandler::bindingCaptured, this,
                [this](const input::PttBinding &binding) { m_words << u"captured "_qs + pttKeyOf(binding); });
    }

    const QStringList &words() const { return m_words; }
    QStringList take() { return std::exchange(m_words, {}); }

private:
    QStringList m_words;
};

} // namespace tarvo::test
