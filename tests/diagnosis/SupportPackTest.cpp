#include "diagnosis/SupportPack.h"
#include "ServiceEndpoints.h"
#include "common/SecretMask.h"
#include "diagnosis/TestSettings.h"
#include "diagnosis/Unpacked.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>
#include <QUrl>

using namespace tarvo;
using namespace tarvo::diagnosis;
using test::Entries;
using test::unpacked;

namespace {

/// One way in which a secret may stand somewhere.
struct Form
{
    QByteArray written;
    QByteArray searched; ///< what of it tells the secret: of Base64 the letters in which neighbours have no part
};

/// Told here once more, not by what masks it.
QByteArray allPercent(const QByteArray &text)
{
    QByteArray percent;
    for (const char c : text)
        percent += '%' + QByteArray(1, c).toHex();
    return percent;
}

/// Of what isn't text, too.
QList<Form> base64FormsOf(const QByteArray &clear)
{
    QList<Form> forms;
    for (const char *before : {"", "x", "xy"}) { // each of them shifts the letters
        for (const auto option : {QByteArray::Base64Encoding, QByteArray::Base64UrlEncoding}) {
            const QByteArray all = (before + clear + "z").toBase64(option | QByteArray::OmitTrailingEquals);
            forms << Form{all, all.mid(4, (clear.size() - 4) / 3 * 4)};
        }
    }
    return forms;
}

QList<Form> formsOf(const QString &secret)
{
    const QByteArray clear = secret.toUtf8();
    const QByteArray percent = allPercent(clear);
    QList<Form> forms = base64FormsOf(clear);
    for (const QByteArray &form :
         {clear, percent, percent.toUpper(), percent.toPercentEncoding(), QUrl::toPercentEncoding(secret)})
        forms << Form{form, form};
    // Base64 within something else.
    const QByteArray base64 = clear.toBase64();
    for (const QByteArray &form :
         {base64.toPercentEncoding(), base64.toPercentEncoding().toPercentEncoding(), allPercent(base64),
          QByteArray(base64).replace('/', "\\/"), QByteArray(base64).replace('/', "\\\\\\/"), percent.toBase64()})
        forms << Form{form, form};
    return forms;
}

/// Of the build's secret, or of a stored value's bytes.
QList<Form> formsOfBytes(const QByteArray &bytes)
{
    QList<Form> forms = base64FormsOf(bytes);
    for (const QByteArray &form : {bytes.toHex(), bytes.toHex().toUpper(), bytes.toBase64()})
        forms << Form{form, form};
    return forms;
}

} // namespace

class SupportPackTest : public QObject
{
    Q_OBJECT

    const QString m_password = u"Pä\"ss&wort/1"_qs;
    const QString m_token = u"eyJhbGciOiJIUzI1NiJ9.token+with/all=signs"_qs;

    std::unique_ptr<QTemporaryDir> m_folder;

    QString at(const QString &name) const { return m_folder->filePath(name); }
    void write(const QString &name, const QByteArray &bytes) const
    {
        QVERIFY(QDir().mkpath(QFileInfo(at(name)).path()));
        QFile file(at(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    Entries packed(const QString &report = {}) const
    {
        const StoredSettings settings = readSettings(m_folder->path());
        const common::SecretMask mask(secretsOf(settings, configSecret()));
        const QString path = at(u"support.zip"_qs);
        const QString failure =
            packSupport({.dataRoot = m_folder->path(), .settings = settings, .report = report, .mask = mask}, path);
        return failure.isEmpty() ? unpacked(path) : Entries{{failure, {}}};
    }

private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void takesReportSettingsAndLogs()
    {
        AppConfig(m_folder->path()).state().set(state::soundsOn, false);
        write(u"logs/2026-01-01_00-00-00.log"_qs, "a line\n");
        write(u"logs/crash-2026-01-02_00-00-00.txt"_qs, "what happened\n");
        write(u"logs/network/network-2026-01-01_00-00-00.log"_qs, "[00:00:00.000] <<< $DI\n");
        write(u"logs/机场.log"_qs, "Chinese\n");
        write(u"cache/other"_qs, "not this\n");
        const Entries entries = packed(u"✓ 报告\n"_qs);
        QCOMPARE(entries.keys(), (QStringList{u"config.ini"_qs, u"logs/2026-01-01_00-00-00.log"_qs,
                                              u"logs/crash-2026-01-02_00-00-00.txt"_qs,
                                              u"logs/network/network-2026-01-01_00-00-00.log"_qs, u"logs/机场.log"_qs,
                                              u"report.txt"_qs, u"state.ini"_qs}));
        QCOMPARE(entries.value(u"report.txt"_qs), u"✓ 报告\n"_qs.toUtf8());
        QCOMPARE(entries.value(u"logs/crash-2026-01-02_00-00-00.txt"_qs), QByteArray("what happened\n"));
        QVERIFY(entries.value(u"config.ini"_qs).contains("HomeAirport=ZBAA\n"));
        QVERIFY(entries.value(u"state.ini"_qs).contains("On=false\n"));
    }

    void anEmptyFolderGivesAReport() { QCOMPARE(packed(u"x"_qs), (Entries{{u"report.txt"_qs, "x"}})); }

    void ofAHugeLogTheEndIsPacked()
    {
        write(u"logs/a.log"_qs, QByteArray(99, '-') + '\n' + (QByteArray(99, '.') + '\n').repeated(40'000));
        const QByteArray log = packed().value(u"logs/a.log"_qs);
        QVERIFY(log.startsWith("[200 bytes before this are left out]\n"));
        QCOMPARE(log.count('\n'), 40'000); // the one line less is the one that was cut at its very beginning
    }

    void noSecretIsInIt()
    {
        QList<Form> forms;
        {
            AppConfig config(m_folder->path());
            config.set(config::authUsername, u"1001"_qs);
            config.set(config::authPassword, m_password);
            config.set(config::authRefreshToken, m_token);
        }
        const StoredSettings settings = readSettings(m_folder->path());
        for (const char *key : {"Auth/Password", "Auth/RefreshToken"}) {
            const QString stored = settings.values.value(QLatin1StringView(key)).toString();
            forms << formsOf(stored) << formsOfBytes(QByteArray::fromBase64(stored.toLatin1()));
        }
        forms << formsOf(m_password) << formsOf(m_token) << formsOfBytes(configSecret());
        // As JSON may have it.
        for (const QByteArray &form : {QByteArray("P\\u00e4\\\"ss&wort\\/1"), QByteArray("P\\u00E4\\\"ss&wort/1")})
            forms << Form{form, form};
        // Each form by itself, between words and beside letters that belong to no secret.
        QByteArray log;
        for (const auto &[form, searched] : std::as_const(forms))
            log += "said " + form + " here\nand (" + form + "):" + form + "\n";
        write(u"logs/a.log"_qs, log);
        write(u"logs/crash-2026.txt"_qs, log);
        write(u"logs/network/network-2026.log"_qs, log);
        write(u"state.ini"_qs, log);

        const QString report = common::SecretMask(secretsOf(settings, configSecret())).applied(QString::fromUtf8(log));
        const Entries entries = packed(report);
        QCOMPARE(entries.size(), 6);
        QFile archive(at(u"support.zip"_qs));
        QVERIFY(archive.open(QIODevice::ReadOnly));
        const QByteArray raw = archive.readAll();
        for (const auto &[written, form] : std::as_const(forms)) {
            QVERIFY2(log.contains(form), form.constData());
            QVERIFY2(!raw.contains(form), form.constData());
            for (auto it = entries.begin(); it != entries.end(); ++it)
                QVERIFY2(!it.value().contains(form), qPrintable(it.key() + u": "_qs + QString::fromUtf8(form)));
        }
        QVERIFY(entries.value(u"config.ini"_qs).contains("Password=******\nRefreshToken=******\n"));
        QVERIFY(entries.value(u"config.ini"_qs).contains("Username=1001\n"));
        QVERIFY(entries.value(u"logs/a.log"_qs).startsWith("said ****** here\n"));
    }

    void noSecretIsInAName()
    {
        AppConfig(m_folder->path()).set(config::authPassword, m_password);
        write(u"logs/Pä\"ss&wort%2F1 a.log"_qs, "a\n");
        write(u"logs/Pä\"ss%26wort%2F1 a.log"_qs, "b\n");
        const Entries entries = packed();
        QVERIFY(entries.contains(u"logs/****** a.log"_qs));
        QVERIFY(entries.contains(u"logs/****** a.log (2)"_qs));
        QCOMPARE(entries.size(), 4);
    }

    void onlyTheOwnerReadsTheArchive()
    {
        (void)packed();
        QCOMPARE(QFile::permissions(at(u"support.zip"_qs)) & (QFile::ReadGroup | QFile::ReadOther),
                 QFile::Permissions());
    }

    void aLinkInThePlaceIsFollowed()
    {
        write(u"elsewhere.zip"_qs, "before");
        QVERIFY(QFile::link(at(u"elsewhere.zip"_qs), at(u"support.zip"_qs)));
        QCOMPARE(packed(u"x"_qs), (Entries{{u"report.txt"_qs, "x"}}));
        QCOMPARE(unpacked(at(u"elsewhere.zip"_qs)), (Entries{{u"report.txt"_qs, "x"}}));
    }

    void aFailureLeavesTheFileAlone_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("no such folder") << u"none/support.zip"_qs;
        QTest::newRow("a folder in its place") << u"logs"_qs;
    }
    void aFailureLeavesTheFileAlone()
    {
        QFETCH(const QString, path);
        write(u"logs/a.log"_qs, "a line\n");
        const StoredSettings settings;
        const common::SecretMask mask({});
        const QString failure =
            packSupport({.dataRoot = m_folder->path(), .settings = settings, .report = {}, .mask = mask}, at(path));
        QVERIFY2(failure.contains(QDir::toNativeSeparators(at(path))), qPrintable(failure));
        QVERIFY(QFileInfo::exists(at(u"logs/a.log"_qs)));
        QVERIFY(!QFileInfo::exists(at(u"none"_qs)));
    }
};

TARVO_TEST(SupportPackTest)
#include "SupportPackTest.moc"
