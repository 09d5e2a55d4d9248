// The bytes of config.ini, read as at start-up: INI reader, defaults, every key, the cipher.
#include "AppConfig.h"
#include "ConfigCipher.h"
#include "ServiceEndpoints.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdlib>
#include <variant>

namespace {

constexpr int fewRounds = 1; // the real count would leave no time for anything else

void ignoreMessage(QtMsgType, const QMessageLogContext &, const QString &) {}

/// Every input has a folder of its own, because QSettings keeps what it read of a path.
QString makeFolder(const QTemporaryDir &parent)
{
    static quint64 count = 0;
    const QString folder = parent.filePath(QString::number(++count));
    if (!QDir().mkpath(folder))
        std::abort();
    return folder;
}

void readEveryKey(const tarvo::AppConfig &settings)
{
    for (const tarvo::config::AnyKey &anyKey : tarvo::config::storedKeys) {
        std::visit(
            [&](auto key) {
                if constexpr (std::is_same_v<decltype(key), tarvo::StringKey>)
                    key.isEncrypted = false; // decrypted below
                (void)settings.get(key);
            },
            anyKey);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    static const QtMessageHandler previous = qInstallMessageHandler(ignoreMessage);
    static const QTemporaryDir parent;
    (void)previous;
    const QString folder = makeFolder(parent);
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    {
        QFile file(folder + QStringLiteral("/config.ini"));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            std::abort();
    }
    const tarvo::AppConfig settings(folder);
    readEveryKey(settings);
    tarvo::StringKey asStored = tarvo::config::authPassword;
    asStored.isEncrypted = false;
    (void)tarvo::cipher::decrypt(settings.get(asStored), tarvo::configSecret(), fewRounds);
    (void)tarvo::cipher::decrypt(QString::fromUtf8(bytes), tarvo::configSecret(), fewRounds);
    QDir(folder).removeRecursively();
    return 0;
}
