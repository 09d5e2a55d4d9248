#include "support/SmallDisk.h"

#include <QByteArray>
#include <QFile>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace tarvo::test {

namespace {

bool writeLine(const char *path, const QByteArray &line)
{
    const int file = open(path, O_WRONLY);
    const bool written = file >= 0 && write(file, line.constData(), static_cast<size_t>(line.size())) == line.size();
    if (file >= 0)
        close(file);
    return written;
}

QByteArray onlySelf(unsigned id)
{
    const QByteArray number = QByteArray::number(id);
    return number + ' ' + number + " 1\n";
}

/// Where this process is not root it becomes able to mount in a user namespace, in which it stays who it is.
bool enterOwnMounts()
{
    const unsigned user = geteuid();
    const unsigned group = getegid();
    if (unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return false;
    if (user != 0 && !(writeLine("/proc/self/setgroups", "deny") && writeLine("/proc/self/uid_map", onlySelf(user)) &&
                       writeLine("/proc/self/gid_map", onlySelf(group))))
        return false;
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

const bool hasOwnMounts = enterOwnMounts(); // a user namespace takes a process of one thread

} // namespace

SmallDisk::SmallDisk(int kilobytes)
{
    const QByteArray options = "mode=0700,size=" + QByteArray::number(kilobytes) + 'k';
    m_mounted =
        hasOwnMounts && mount("tmpfs", QFile::encodeName(path()).constData(), "tmpfs", 0, options.constData()) == 0;
}

SmallDisk::~SmallDisk()
{
    if (m_mounted)
        umount2(QFile::encodeName(path()).constData(), MNT_DETACH);
}

bool SmallDisk::fill() const
{
    QFile filler(filePath(QStringLiteral("filler")));
    if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return false;
    const QByteArray page(4096, 'x');
    while (filler.write(page) == page.size()) {
    }
    return true;
}

bool SmallDisk::clear() const
{
    return QFile::remove(filePath(QStringLiteral("filler")));
}

bool SmallDisk::lock() const
{
    return mount(nullptr, QFile::encodeName(path()).constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
}

} // namespace tarvo::test
