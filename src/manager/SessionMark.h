#pragma once

#include <QtGlobal>

#include <memory>
#include <utility>

namespace tarvo::manager {

/// Answers one question: is it still the same session? Take a mark before anything is raised, sent or told to the
/// simulator: whoever hears it may end the session, begin another or destroy the caller.
class SessionMark
{
public:
    SessionMark(std::shared_ptr<const quint64> now, quint64 then) : m_now(std::move(now)), m_then(then) {}

    /// True while the session lasts in which the mark was taken. May be asked when the owner of the session is gone.
    bool holds() const { return *m_now == m_then; }

private:
    std::shared_ptr<const quint64> m_now;
    quint64 m_then;
};

/// Counts the sessions of its owner.
class SessionCounter
{
public:
    SessionCounter() = default;
    ~SessionCounter() { next(); }
    SessionCounter(const SessionCounter &) = delete;
    SessionCounter &operator=(const SessionCounter &) = delete;

    SessionMark mark() const { return {m_count, *m_count}; }
    /// A session begins or ends: no mark that was taken before holds from now on.
    void next() { ++*m_count; }

private:
    std::shared_ptr<quint64> m_count = std::make_shared<quint64>(0);
};

} // namespace tarvo::manager
