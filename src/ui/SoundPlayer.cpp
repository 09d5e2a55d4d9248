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

/// One for the whole program. The sound system's objects stay on the thread that used it first, and destroying a player
/// must not wait for that thread's end.
common::Worker &soundWorker()
{
    static std::unique_ptr<common::Worker> worker;
    if (!worker) {
        worker = std::make_unique<common::Worker>("sounds", mostTasks, common::Worker::Between::HandleEvents);
        // The windows are gone by then. It nearly always ends at once. It is waited for, because a sound that still
        // uses Qt could crash when Qt is unloaded.
        qAddPostRoutine([] {
            worker->finish(longestWaitAtExit);
            worker.reset();
        });
    }
    return *worker;
}

} // namespace

/// Where wishes are left for the sounds' thread.
class SoundPlayer::Wishes
{
public:
    explicit Wishes(SoundOutput::Factory makeOutput) : m_makeOutput(std::move(makeOutput)) {}

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
    if (!m_wishes)
        return;
    m_wishes->clear();
    soundWorker().post([wishes = std::exchange(m_wishes, nullptr)]() mutable { wishes.reset(); }); // with its output
}

void SoundPlayer::play(const QUrl &url, float volume)
{
    emit wanted(url);
    if (!m_on || m_level <= 0.0F)
        return;
    if (!m_wishes)
        m_wishes = std::make_shared<Wishes>(m_makeOutput);
    m_source = url;
    m_volume = volume * m_level;
    const bool isLeft = m_wishes->put(url, m_volume) || soundWorker().post([wishes = m_wishes] { wishes->serve(); });
    if (!isLeft)
        m_wishes->clear();
    emit played(url);
}

} // namespace tarvo::ui
