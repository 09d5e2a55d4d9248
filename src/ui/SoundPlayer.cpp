#include "ui/SoundPlayer.h"

#include "common/Worker.h"
#include "ui/MediaSoundOutput.h"

#include <QCoreApplication>

#include <mutex>
#include <optional>
#include <utility>

namespace tarvo::ui {

namespace {

/// A player leaves one wish at a time, and its own end.
constexpr std::size_t mostTasks = 100;

/// A sound system that hangs keeps the program's end no longer than this.
constexpr std::chrono::milliseconds longestWaitAtExit{5000};

/// One for the whole program, not one for each player: the sound system's own objects stay on the thread that first
/// used it, and whoever destroys a player must not wait until that has come to its end.
common::Worker &soundWorker()
{
    static std::unique_ptr<common::Worker> worker;
    if (!worker) {
        worker = std::make_unique<common::Worker>("sounds", mostTasks, common::Worker::Between::HandleEvents);
        // The windows are gone by then. Nearly always it ends at once; were it left at work without need, it could
        // crash when Qt goes from under it.
        qAddPostRoutine([] {
            worker->finish(longestWaitAtExit);
            worker.reset();
        });
    }
    return *worker;
}

} // namespace

/// Where wishes are left for the sounds' thread.
class SoundPlayer::Desk
{
public:
    explicit Desk(SoundOutput::Factory makeOutput) : m_makeOutput(std::move(makeOutput)) {}

    /// True when it took the place of one that has not begun.
    bool put(const QUrl &url, float volume)
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_wish, Wish{url, volume}).has_value();
    }

    /// Forgets what has not begun.
    void clear() { take(); }

    /// Begins the wish, on the sounds' thread.
    void serve()
    {
        if (!hasWish())
            return;
        if (!m_output)
            m_output = m_makeOutput();
        if (const std::optional<Wish> wish = take()) // only now: making the output may have taken long
            m_output->begin(wish->url, wish->volume);
    }

private:
    struct Wish
    {
        QUrl url;
        float volume;
    };

    bool hasWish() const
    {
        const std::lock_guard lock(m_mutex);
        return m_wish.has_value();
    }

    std::optional<Wish> take()
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_wish, std::nullopt);
    }

    SoundOutput::Factory m_makeOutput;
    std::unique_ptr<SoundOutput> m_output; ///< the sounds' thread's own
    mutable std::mutex m_mutex;            ///< held for moments only, guards what follows
    std::optional<Wish> m_wish;
};

SoundPlayer::SoundPlayer(QObject *parent) : SoundPlayer([] { return std::make_unique<MediaSoundOutput>(); }, parent) {}

SoundPlayer::SoundPlayer(SoundOutput::Factory makeOutput, QObject *parent)
    : QObject(parent), m_makeOutput(std::move(makeOutput))
{
}

SoundPlayer::~SoundPlayer()
{
    if (!m_desk)
        return;
    m_desk->clear();
    soundWorker().post([desk = std::exchange(m_desk, nullptr)]() mutable { desk.reset(); }); // with its output
}

void SoundPlayer::play(const QUrl &url, float volume)
{
    if (!m_desk)
        m_desk = std::make_shared<Desk>(m_makeOutput);
    m_source = url;
    m_volume = volume;
    const bool isLeft = m_desk->put(url, volume) || soundWorker().post([desk = m_desk] { desk->serve(); });
    if (!isLeft)
        m_desk->clear();
    emit played(url);
}

} // namespace tarvo::ui
