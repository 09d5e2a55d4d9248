#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <memory>

class QIODevice;
struct archive;

namespace tarvo::diagnosis {

/// Writes a zip archive. What fails once makes all that follows do nothing.
class ZipWriter
{
public:
    /// `target`: open for writing; outlives it.
    explicit ZipWriter(QIODevice &target);
    ~ZipWriter();
    ZipWriter(const ZipWriter &) = delete;
    ZipWriter &operator=(const ZipWriter &) = delete;

    /// `name`: with forward slashes.
    void add(const QString &name, const QByteArray &bytes, const QDateTime &modified);
    /// Ends the archive. Empty, or why it isn't whole, as libarchive has it.
    QString finish();

private:
    struct Free
    {
        void operator()(archive *writer) const;
    };

    std::unique_ptr<archive, Free> m_writer;
    bool m_isWhole;
};

} // namespace tarvo::diagnosis
