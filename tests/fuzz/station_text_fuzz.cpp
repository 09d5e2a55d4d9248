// Texts of stations: ATIS lines in any order, SELCAL calls, frequencies on the radio. The first line is the own SELCAL
// code; of the others each is a step: its first character picks what happens, the rest is the text.
#include "manager/AtisBuffers.h"
#include "manager/RadioReception.h"
#include "manager/SelcalCode.h"
#include "model/RadioStackState.h"

#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace tarvo;
using namespace tarvo::manager;

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

void checkSelcal(const QString &text, const QString &own)
{
    const std::optional<QString> called = calledSelcal(text);
    require(!called || (called->size() == 4 && *called == called->toUpper() && text.startsWith(u"SELCAL ")));
    if (called)
        require(isOwnSelcal(*called, *called) && (!isOwnSelcal(*called, own) || !own.isEmpty()));
}

void checkFrequencies(const QString &text)
{
    model::RadioStackState radio;
    radio.com1Frequency = 118500;
    radio.com2Frequency = 121700;
    radio.com1ReceiveEnabled = text.size() % 2 == 0;
    radio.com2ReceiveEnabled = text.size() % 3 == 0;
    QList<quint32> frequencies;
    for (const QString &part : text.split(QLatin1Char('&')))
        frequencies.append(part.toUInt());
    const QList<uint> heard = heardFrequencies(frequencies, radio);
    require(heard.size() <= 2 && (heard.size() < 2 || heard[0] != heard[1]));
    require(radio.com1ReceiveEnabled || !heard.contains(radio.com1Frequency));
    require(radio.com2ReceiveEnabled || !heard.contains(radio.com2Frequency));
}

void takeAtis(AtisBuffers &buffers, const QString &callsign)
{
    const std::optional<QStringList> lines = buffers.take(callsign);
    require(!lines || lines->size() <= AtisBuffers::maximumLines);
    require(!lines || lines->join(QString()).size() <= AtisBuffers::maximumCharacters);
    require(!buffers.take(callsign));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString input = QString::fromLatin1(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const QStringList lines = input.split(QLatin1Char('\n'));
    const QString own = lines.first();
    AtisBuffers buffers;
    for (const QString &line : lines) {
        const QString callsign = line.mid(1).section(QLatin1Char(':'), 0, 0);
        const QString text = line.mid(1).section(QLatin1Char(':'), 1);
        checkSelcal(line, own);
        checkFrequencies(line);
        if (line.startsWith(QLatin1Char('A')))
            buffers.begin(callsign);
        else if (line.startsWith(QLatin1Char('E')))
            takeAtis(buffers, callsign);
        else
            buffers.append(callsign, text);
    }
    return 0;
}
