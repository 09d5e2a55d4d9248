#include "diagnosis/ZipWriter.h"

#include <QIODevice>

#include <archive.h>
#include <archive_entry.h>

namespace tarvo::diagnosis {

namespace {

la_ssize_t writeTo(archive *, void *target, const void *bytes, size_t size)
{
    return static_cast<QIODevice *>(target)->write(static_cast<const char *>(bytes), static_cast<qint64>(size));
}

struct FreeEntry
{
    void operator()(archive_entry *entry) const { archive_entry_free(entry); }
};

} // namespace

void ZipWriter::Free::operator()(archive *writer) const
{
    archive_write_free(writer);
}

ZipWriter::ZipWriter(QIODevice &target) : m_writer(archive_write_new())
{
    archive *writer = m_writer.get();
    m_isWhole = archive_write_set_format_zip(writer) == ARCHIVE_OK &&
                archive_write_set_options(writer, "zip:compression=deflate,zip:hdrcharset=UTF-8") == ARCHIVE_OK &&
                archive_write_set_bytes_in_last_block(writer, 1) == ARCHIVE_OK && // nothing behind the end
                archive_write_open(writer, &target, nullptr, writeTo, nullptr) == ARCHIVE_OK;
}

ZipWriter::~ZipWriter() = default;

void ZipWriter::add(const QString &name, const QByteArray &bytes, const QDateTime &modified)
{
    constexpr int readableByOwner = 0600;
    const std::unique_ptr<archive_entry, FreeEntry> entry(archive_entry_new());
    archive_entry_set_pathname_utf8(entry.get(), name.toUtf8().constData());
    archive_entry_set_size(entry.get(), bytes.size());
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_perm(entry.get(), readableByOwner);
    archive_entry_set_mtime(entry.get(), modified.toSecsSinceEpoch(), 0);
    m_isWhole =
        m_isWhole && archive_write_header(m_writer.get(), entry.get()) >= ARCHIVE_WARN && // of this entry alone
        archive_write_data(m_writer.get(), bytes.constData(), static_cast<size_t>(bytes.size())) == bytes.size();
}

QString ZipWriter::finish()
{
    const bool isClosed = archive_write_close(m_writer.get()) == ARCHIVE_OK;
    if (m_isWhole && isClosed)
        return {};
    const char *reason = archive_error_string(m_writer.get());
    return reason ? QString::fromUtf8(reason) : QStringLiteral("libarchive");
}

} // namespace tarvo::diagnosis
