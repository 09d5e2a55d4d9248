#pragma once

#include <QString>

#include <exception>

namespace tarvo::fsd {

/// A line that is no PDU. Thrown by the parse operations and parseLine(), and caught by whoever calls them.
class PDUFormatException : public std::exception
{
public:
    PDUFormatException(QString error, QString rawMessage)
        : m_error(std::move(error)), m_rawMessage(std::move(rawMessage))
    {
    }

    const char *what() const noexcept override { return "malformed PDU"; }
    const QString &error() const { return m_error; }
    /// The line, or its fields joined again with ":".
    const QString &rawMessage() const { return m_rawMessage; }

private:
    QString m_error;
    QString m_rawMessage;
};

} // namespace tarvo::fsd
