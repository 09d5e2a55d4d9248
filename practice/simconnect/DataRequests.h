#pragma once

#include <QByteArray>
#include <QMap>

namespace tarvo::practice {

/// What a client wants to be told again and again.
class DataRequests
{
public:
    static constexpr qsizetype mostRequests = 1000;

    struct Request
    {
        quint32 define = 0;
        quint32 object = 0;
        bool onChange = false; ///< only when something in it has changed
        QByteArray told;       ///< the data told last
    };

    /// Takes the place of one with the same number. False when there are too many.
    bool add(quint32 number, const Request &request);
    void remove(quint32 number) { m_requests.remove(number); }
    void clear() { m_requests.clear(); }
    /// By number.
    QMap<quint32, Request> &all() { return m_requests; }

private:
    QMap<quint32, Request> m_requests;
};

inline bool DataRequests::add(quint32 number, const Request &request)
{
    if (!m_requests.contains(number) && m_requests.size() >= mostRequests)
        return false;
    m_requests.insert(number, request);
    return true;
}

} // namespace tarvo::practice
