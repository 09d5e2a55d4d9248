// Crashes as its second argument says, with its log and crash file in the folder that is its first.
#include "LastWords.h"
#include "Logging.h"

#include <QByteArrayView>
#include <QDebug>
#include <QString>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <thread>
#include <vector>

#ifdef _WIN32
#define EXPORTED extern "C" __declspec(dllexport) __attribute__((noinline))
#else
#define EXPORTED extern "C" __attribute__((noinline))
#endif

EXPORTED void writeIntoNothing()
{
    int *volatile nowhere = reinterpret_cast<int *>(16);
    *nowhere = 1;
}

EXPORTED int callNothing()
{
    int (*volatile nothing)() = nullptr;
    return nothing() + 1; // a call that comes back, no jump
}

volatile bool hasBottom = false;

EXPORTED int goDeeper(int depth)
{
    if (hasBottom)
        return depth;
    volatile char room[4096];
    room[0] = static_cast<char>(depth);
    return goDeeper(depth + 1) + room[0];
}

namespace {

class OddError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

void crashTogether()
{
    std::atomic missing = 4; // no std::barrier: it hangs in what mingw builds
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&missing] {
            for (--missing; missing > 0;)
                std::this_thread::yield();
            writeIntoNothing();
        });
    for (std::thread &thread : threads)
        thread.join();
}

void crash(QByteArrayView how)
{
    if (how == "memory")
        writeIntoNothing();
    else if (how == "thread")
        std::thread(writeIntoNothing).join();
    else if (how == "threads")
        crashTogether();
    else if (how == "nothing")
        callNothing();
    else if (how == "stack")
        goDeeper(0);
    else if (how == "abort")
        std::abort();
    else if (how == "exception")
        throw OddError("what foreign text said: geheim123");
    else if (how == "fatal")
        qFatal("nothing goes any more");
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    const QString folder = QString::fromLocal8Bit(argv[1]);
    tarvo::logging::installHandler();
    tarvo::logging::openLogFile(folder + QStringLiteral("/a.log"));
    tarvo::lastwords::install(folder, QStringLiteral("9.8.7"));
    for (int i = 1; i <= 60; ++i)
        qInfo("line %d", i);
    for (const QString &before : {QStringLiteral("x"), QStringLiteral("xx")}) // one of them is cut within a character
        qInfo().noquote() << before + QString(400, u'航');
    crash(argv[2]);
    return 0;
}
