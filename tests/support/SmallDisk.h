#pragma once

#include <QString>
#include <QTemporaryDir>

namespace tarvo::test {

/// A file system of a test's own, in memory, which can be filled up and locked. No other process sees it. A program
/// that uses it leaves the system's mounts before main, while it has one thread.
class SmallDisk
{
public:
    explicit SmallDisk(int kilobytes = 256);
    ~SmallDisk();
    SmallDisk(const SmallDisk &) = delete;
    SmallDisk &operator=(const SmallDisk &) = delete;

    /// False where this user may not mount anything, not even in a user namespace.
    bool isThere() const { return m_mounted; }
    QString path() const { return m_folder.path(); }
    QString filePath(const QString &name) const { return m_folder.filePath(name); }

    /// Takes all the room that is left, by a file of its own. What is written behind the last full page of an earlier
    /// file still finds room.
    bool fill() const;
    /// Gives the room back.
    bool clear() const;
    /// Nothing can be written any more, not even by root.
    bool lock() const;

private:
    QTemporaryDir m_folder;
    bool m_mounted = false;
};

} // namespace tarvo::test
