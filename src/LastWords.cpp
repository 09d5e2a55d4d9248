#include "LastWords.h"

#include "CrashReport.h"
#include "StateFile.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <typeinfo>

namespace tarvo::lastwords {

namespace {

constexpr size_t linesKept = 50;
constexpr size_t longestLine = 400; ///< bytes

/// A ring that is never destroyed, and written without a lock of its own: the crash of one thread may find a line
/// half written by another, which is all that can go wrong.
std::array<std::array<char, longestLine + 1>, linesKept> ring{};
std::atomic<size_t> noted{0};
std::atomic_flag reported = ATOMIC_FLAG_INIT;

BoundedText version;
/// The type of the exception that nobody caught. Not its text, which may quote what came from outside.
BoundedText exceptionType;

[[noreturn]] void endByException()
{
    if (const std::exception_ptr current = std::current_exception()) {
        try {
            std::rethrow_exception(current);
        } catch (const std::exception &exception) {
            exceptionType << typeid(exception).name();
        } catch (...) {
            exceptionType << "of a type without a name";
        }
    }
    std::abort(); // and from there to the report
}

/// The form of a name, so that a copy or a note of somebody's doesn't count.
bool isCrashFile(const QString &name)
{
    return QDateTime::fromString(name, QStringLiteral("'crash-'yyyy-MM-dd_HH-mm-ss'.txt'")).isValid();
}

} // namespace

void install(const QString &folder, const QString &programVersion)
{
    version << programVersion.toUtf8().constData();
    std::set_terminate(endByException);
    catchCrashes(QDir::toNativeSeparators(folder).toUtf8().constData());
}

void note(QByteArrayView line)
{
    std::array<char, longestLine + 1> &place = ring[noted.load() % linesKept];
    const auto whole = static_cast<size_t>(line.size());
    size_t size = whole;
    if (whole > longestLine) {
        size = longestLine - cutMark.size();
        // Not within a character: its first byte is the last that doesn't begin with the bits 10.
        while (size > 0 && (static_cast<unsigned char>(line[static_cast<qsizetype>(size)]) & 0xC0U) == 0x80U)
            --size;
    }
    std::memcpy(place.data(), line.data(), size);
    char *end = place.data() + size;
    if (size < whole)
        end = std::copy(cutMark.begin(), cutMark.end(), end);
    *end = '\0';
    ++noted;
}

QStringList filesAfter(const QString &folder, const QString &lastTold, qint64 now)
{
    const QString latest = QString::fromLatin1(fileName(now / 1000).data());
    // What is told last must not hide what comes later; names sort by their time.
    const QString told = isCrashFile(lastTold) && lastTold <= latest ? lastTold : QString();
    QStringList names = QDir(folder).entryList({QStringLiteral("crash-*.txt")}, QDir::Files, QDir::Name);
    names.removeIf([&](const QString &name) { return name <= told || name > latest || !isCrashFile(name); });
    return names;
}

void tellOfEarlierCrashes(const QString &folder, StateFile &state)
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const QStringList names = filesAfter(folder, state.get(state::lastCrashTold), now);
    for (const QString &name : names)
        qWarning().noquote() << "An earlier run crashed; what it left is" << QDir(folder).filePath(name);
    if (!names.isEmpty())
        state.set(state::lastCrashTold, names.last());
}

bool isFirstReport()
{
    return !reported.test_and_set();
}

void writeHead(Write write, const BoundedText &what, const BoundedText &thread)
{
    BoundedText head;
    head << "TarvoClient " << version.data() << "\n" << what.data() << "\n";
    if (exceptionType.size() > 0)
        head << "Exception: " << exceptionType.data() << "\n";
    head << "Thread: " << thread.data() << "\n\nLast lines of the log:\n";
    write(head.data(), head.size());
    const size_t end = noted.load();
    for (size_t i = end - std::min(end, linesKept); i < end; ++i) {
        const char *line = ring[i % linesKept].data();
        write(line, std::strlen(line));
        write("\n", 1);
    }
    write("\nCalls, the last one first:\n", 28);
}

} // namespace tarvo::lastwords
