#include "ui/SoundPlayer.h"

#include "ui/MediaSoundOutput.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QThread>

#include <mutex>
#include <optional>
#include <utility>

namespace tarvo::ui {

namespace {

/// One for the whole program, not one for each player: the sound system's own objects stay on the thread that first
/// used it, and whoever destroys a player must not wait until that has come to its end.
QThread *soundThread()
{
    static QPointer<QThread> thread;
    if (thread)
        return thread;
    thread = new QThread(QCoreApplication::instance());
    thread->setObjectName(QStringLiteral("sounds"));
    thread->start();
    // Waits however long it takes. The windows are gone by then, so nobody is kept; the sound system gives up by itself
    // when a server doesn't answer; and a thread left at work would crash when the toolkit goes from under it.
    qAddPostRoutine([] {
        thread->quit();
        thread->wait();
    });
    return thread;
}

} // namespace

/// Where wishes are left for the sounds' thread.
class SoundPlayer::Desk : public QObject
{
public:
    explicit Desk(SoundOutput::Factory makeOutput) : m_makeOutput(std::move(makeOutput)) {}

    ~Desk() override { clear(); } // under the lock: the player, on its own thread, was the last at it

    /// Replaces a wish that has not begun. From any thread, and never waits.
    void leave(const QUrl &url, float volume)
    {
        if (!put({url, volume}))
            QCoreApplication::postEvent(this, new QEvent(QEvent::User)); // which the queue owns
    }

    /// Forgets what has not begun.
    void clear() { take(); }

protected:
    void customEvent(QEvent *) override
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

    /// True when it took the place of another.
    bool put(const Wish &wish)
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_wish, wish).has_value();
    }

    std::optional<Wish> take()
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_wish, std::nullopt);
    }

    SoundOutput::Factory m_makeOutput;
    std::unique_ptr<SoundOutput> m_output;
    mutable std::mutex m_mutex; ///< held for moments only, guards what follows
    std::optional<Wish> m_wish;
};

SoundPlayer::SoundPlayer(QObject *parent) : SoundPlayer([] { return std::make_unique<MediaSoundOutput>(); }, parent) {}

SoundPlayer::SoundPlayer(SoundOutput::Factory makeOutput, QObject *parent)
    : QObject(parent), m_makeOutput(std::move(makeOutput))
{
}

SoundPlayer::~SoundPlayer()
{
    if (m_desk)
        m_desk->clear();
}

void SoundPlayer::play(const QUrl &url, float volume)
{
    if (!m_desk) {
        m_desk.reset(new Desk(m_makeOutput));
        m_desk->moveToThread(soundThread());
    }
    m_source = url;
    m_volume = volume;
    m_desk->leave(url, volume);
    emit played(url);
}

} // namespace tarvo::ui
