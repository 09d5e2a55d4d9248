#pragma once

#include <QByteArray>
#include <QMessageLogContext>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <mutex>
#include <utility>
#include <vector>

namespace tarvo::test {

/// Takes every log message of all threads for as long as it lives, instead of the program's output. One at a time; its
/// members are for the main thread.
class LogCapture
{
public:
    struct Line
    {
        QtMsgType type;
        QString text;
        QByteArray category;
    };

    LogCapture() : m_outer(std::exchange(s_current, this)), m_previous(qInstallMessageHandler(&LogCapture::handle)) {}
    ~LogCapture()
    {
        s_current = m_outer;
        qInstallMessageHandler(m_previous);
    }
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    QList<Line> lines() const
    {
        const std::scoped_lock lock(m_mutex);
        return {m_lines.begin(), m_lines.end()};
    }

    /// The texts of all lines, or of those of one level.
    QStringList texts() const
    {
        QStringList result;
        for (const Line &line : lines())
            result.append(line.text);
        return result;
    }
    QStringList texts(QtMsgType type) const
    {
        QStringList result;
        for (const Line &line : lines()) {
            if (line.type == type)
                result.append(line.text);
        }
        return result;
    }
    QStringList ofCategory(const char *name) const
    {
        QStringList result;
        for (const Line &line : lines()) {
            if (line.category == name)
                result.append(line.text);
        }
        return result;
    }
    /// The lines that begin with `start`.
    QStringList startingWith(const QString &start) const
    {
        QStringList result;
        for (const Line &line : lines()) {
            if (line.text.startsWith(start))
                result.append(line.text);
        }
        return result;
    }
    bool contains(const QString &part) const { return texts().join(QLatin1Char('\n')).contains(part); }

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
    {
        const std::scoped_lock lock(s_current->m_mutex);
        s_current->m_lines.push_back({type, text, context.category});
    }

    static inline LogCapture *s_current = nullptr;

    LogCapture *m_outer;
    mutable std::mutex m_mutex; ///< guards m_lines
    QtMessageHandler m_previous;
    std::vector<Line> m_lines; // no QList: a copy would share its elements with the threads that log
};

} // namespace tarvo::test
