// Bytes from the server: any text, cut anywhere, must be split, parsed and written again without harm.
#include "fsd/LineSplitter.h"
#include "fsd/pdu/AnyPdu.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/PDUFormatException.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace tarvo::fsd;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

/// What was written must be readable text: one line, whatever the values are.
void handleLine(const QString &line)
{
    if (line.isEmpty())
        return;
    try {
        const AnyPdu any = parseLine(line);
        const QString written = std::visit([](const auto &pdu) { return toLine(pdu); }, any);
        require(written.endsWith(QLatin1StringView("\r\n")));
        require(written.indexOf(QLatin1StringView("\r\n")) == written.size() - 2);
    } catch (const PDUFormatException &exception) {
        require(!exception.error().isEmpty());
        require(line.endsWith(exception.rawMessage()));
    }
}

} // namespace

/// The first byte says how many bytes each read brings; 0 brings all at once.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char *>(data + 1), static_cast<qsizetype>(size - 1));
    const qsizetype step = data[0] > 0 ? data[0] : bytes.size();
    LineSplitter splitter;
    for (qsizetype at = 0; at < bytes.size(); at += step) {
        splitter.feed(QString::fromLatin1(bytes.mid(at, step)));
        while (const std::optional<QString> line = splitter.take()) {
            require(line->size() <= LineSplitter::longestLine && !line->contains(QLatin1StringView("\r\n")));
            handleLine(*line);
        }
        require(splitter.waiting() <= LineSplitter::longestLine + 1);
    }
    return 0;
}
