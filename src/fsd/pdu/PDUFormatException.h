#pragma once

#include <QString>

#include <exception>

namespace tarvo::fsd {

/// A line that is no PDU. Thrown only by parse operations and parseLine(), caught only by FsdClient.
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
