// The form of config.ini: whatever QSettings reads and writes without harm is read and written alike, and what is read
// stands a round trip.
#include "IniFormat.h"

#include <QFile>
#include <QStringDecoder>
#include <QStringList>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

namespace ini = tarvo::ini;
using Values = QSettings::SettingsMap;

bool hasHalfCharacter(const QString &text)
{
    return !text.isValidUtf16();
}

/// QSettings makes something else of these words, or has no way to tell such a text.
bool isPlain(const QVariant &value)
{
    const QStringList texts = value.toStringList();
    return std::none_of(texts.begin(), texts.end(), [](const QString &text) {
        const char *const words[] = {"@Variant(", "@DateTime(", "@Rect(", "@Size(", "@Point("};
        return hasHalfCharacter(text) || std::any_of(std::begin(words), std::end(words), [&text](const char *word) {
                   return text.contains(QLatin1String(word));
               });
    });
}

/// A key that QSettings hands out as it stands in the file.
bool isOrdinary(const QString &key)
{
    return !key.isEmpty() && !key.startsWith(u'/') && !key.endsWith(u'/') && !key.contains(QStringLiteral("//")) &&
           !hasHalfCharacter(key) && !key.startsWith(QStringLiteral("General/"), Qt::CaseInsensitive);
}

/// False for bytes on which QSettings' own reader differs on purpose: broken UTF-8, which it reads across escapes, and
/// byte order marks, which it drops; and a NUL behind "%", at which it ends the number.
bool isHarmless(const QByteArray &bytes, const Values &values)
{
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8(bytes);
    if (utf8.hasError() || bytes.contains("\xEF\xBB\xBF"))
        return false;
    for (qsizetype at = bytes.indexOf('\\'); at >= 0; at = bytes.indexOf('\\', at + 1)) {
        if (at + 1 < bytes.size() && static_cast<unsigned char>(bytes.at(at + 1)) >= 0x80)
            return false;
    }
    for (qsizetype at = bytes.indexOf('%'); at >= 0; at = bytes.indexOf('%', at + 1)) {
        if (bytes.mid(at, 6).contains('\0'))
            return false;
    }
    return std::all_of(values.begin(), values.end(), isPlain) &&
           std::all_of(values.keyBegin(), values.keyEnd(), isOrdinary);
}

bool alike(const QVariant &a, const QVariant &b)
{
    return a == b || (a.isValid() && b.isValid() && a.toStringList() == b.toStringList());
}

void require(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "ini_format: %s\n", what);
    std::abort();
}

/// A file of its own for every input, because QSettings keeps what it read of a path.
QString newPath()
{
    static const QTemporaryDir folder;
    static quint64 count = 0;
    return folder.filePath(QString::number(++count));
}

void compareReading(const QByteArray &bytes, const Values &values)
{
    QFile file(newPath());
    require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(), "no file");
    file.close();
    {
        const QSettings settings(file.fileName(), QSettings::IniFormat);
        require(settings.allKeys() == QStringList(values.keys()), "other keys than QSettings reads");
        for (auto it = values.begin(); it != values.end(); ++it)
            require(alike(it.value(), settings.value(it.key())), "another value than QSettings reads");
    }
    file.remove();
}

void compareWriting(const Values &values)
{
    QFile file(newPath());
    {
        QSettings settings(file.fileName(), QSettings::IniFormat);
        for (auto it = values.begin(); it != values.end(); ++it)
            settings.setValue(it.key(), it.value());
    }
    require(values.isEmpty() || file.open(QIODevice::ReadOnly | QIODevice::Text), "no file");
    require(!file.isOpen() || file.readAll() == ini::print(values), "other bytes than QSettings writes");
    file.remove();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const Values values = ini::parse(bytes);
    const QByteArray printed = ini::print(values);
    const Values again = ini::parse(printed);
    if (std::all_of(values.keyBegin(), values.keyEnd(), isOrdinary))
        require(again == values, "a round trip changes a value");
    if (isHarmless(bytes, values)) {
        compareReading(bytes, values);
        compareWriting(values);
    }
    return 0;
}
