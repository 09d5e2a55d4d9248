#pragma once

#include <QFile>
#include <QMap>

#include <archive.h>
#include <archive_entry.h>

namespace tarvo::test {

using Entries = QMap<QString, QByteArray>;

/// What is in a zip file, read by libarchive.
inline Entries unpacked(const QString &path)
{
    Entries entries;
    archive *reader = archive_read_new();
    archive_read_support_format_zip(reader);
    archive_entry *entry = nullptr;
    if (archive_read_open_filename(reader, QFile::encodeName(path).constData(), 10240) == ARCHIVE_OK) {
        while (archive_read_next_header(reader, &entry) == ARCHIVE_OK) {
            QByteArray bytes(archive_entry_size(entry), '\0');
            if (archive_read_data(reader, bytes.data(), static_cast<size_t>(bytes.size())) != bytes.size())
                bytes = "not whole";
            entries.insert(QString::fromUtf8(archive_entry_pathname_utf8(entry)), bytes);
        }
    }
    archive_read_free(reader);
    return entries;
}

} // namespace tarvo::test
