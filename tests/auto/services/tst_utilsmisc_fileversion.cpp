#include <UtilsMisc.h>

#include "PeFileBuilder.h"

#include <UniProgTest.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <functional>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using Damage = std::function<void(QByteArray &file, const PeFileBuilder &pe)>;
Q_DECLARE_METATYPE(Damage)
Q_DECLARE_METATYPE(PeFileBuilder)

/// Collects the debug lines that are written while it lives.
class DebugLines
{
public:
    DebugLines()
    {
        lines().clear();
        previous = qInstallMessageHandler(collect);
    }
    ~DebugLines()
    {
        qInstallMessageHandler(previous);
    }
    static QStringList &lines()
    {
        static QStringList collected;
        return collected;
    }

private:
    Q_DISABLE_COPY_MOVE(DebugLines)

    static void collect(QtMsgType type, const QMessageLogContext &, const QString &text)
    {
        lines().append(type == QtDebugMsg ? text : QStringLiteral("not a debug line: ") + text);
    }
    QtMessageHandler previous;
};

#ifdef Q_OS_WIN
static const char SystemReadsDamagedFiles[]
    = "On Windows the system reads the file; what it makes of damage is its own.";
#endif
static const char NoRootBlock[] = "error in VerQueryValue";

static QString noVersionInfo(int error)
{
    return QStringLiteral("error in GetFileVersionInfo: %1").arg(error);
}

class tst_UtilsMisc_fileversion : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void fileVersionIsRead_data();
    void fileVersionIsRead();
    void anyPathIsRead_data();
    void anyPathIsRead();
    void theLibraryTellsItsVersion();
    void fileVersionFailsWithADebugLine_data();
    void fileVersionFailsWithADebugLine();
    void aFileThatIsNoProgramHasNoVersion_data();
    void aFileThatIsNoProgramHasNoVersion();
    void aTruncatedFileHasNoVersion_data();
    void aTruncatedFileHasNoVersion();
    void noDamageLeadsOutOfTheFile();

private:
    QString writeFile(const QByteArray &bytes);

    QTemporaryDir folder;
    QFile file;
};

void tst_UtilsMisc_fileversion::initTestCase()
{
    QVERIFY(folder.isValid());
}

QString tst_UtilsMisc_fileversion::writeFile(const QByteArray &bytes)
{
    file.setFileName(folder.filePath(QStringLiteral("program.exe")));
    // Not emptied first: file systems take that for a replacement and write it to the disk at once.
    if (!file.open(QIODevice::ReadWrite) || file.write(bytes) != bytes.size() || !file.resize(bytes.size()))
        qFatal("The test's file cannot be written.");
    file.close();
    return file.fileName();
}

void tst_UtilsMisc_fileversion::fileVersionIsRead_data()
{
    QTest::addColumn<PeFileBuilder>("pe");
    QTest::addColumn<QString>("version");

    for (const bool is64Bit : {false, true}) {
        const QByteArray bits = is64Bit ? "64 bit, " : "32 bit, ";
        PeFileBuilder pe;
        pe.is64Bit = is64Bit;
        QTest::newRow(bits + "2.10.3.0") << pe << "2.10.3.0";
        pe.versionMost = 0x00010004;
        pe.versionLeast = 0x0000000C;
        QTest::newRow(bits + "1.4.0.12") << pe << "1.4.0.12";
        pe.versionMost = 0;
        pe.versionLeast = 0;
        QTest::newRow(bits + "0.0.0.0") << pe << "0.0.0.0";
        pe.versionMost = 0xFFFF8000;
        pe.versionLeast = 0xFFFEFFFF;
        QTest::newRow(bits + "the largest numbers") << pe << "65535.32768.65534.65535";
        pe = PeFileBuilder();
        pe.is64Bit = is64Bit;
#ifndef Q_OS_WIN
        // Windows takes the resource with the name 1 only.
        pe.namesBefore = {0x80000010U, 7};
        QTest::newRow(bits + "other names before") << pe << "2.10.3.0";
        pe.namesBefore.clear();
        pe.versionName = 5;
        QTest::newRow(bits + "an unusual name") << pe << "2.10.3.0";
        pe.versionName = 1;
#endif
        pe.valueLength = 60;
        QTest::newRow(bits + "a longer fixed part") << pe << "2.10.3.0";
        pe.valueLength = 52;
        pe.directoryCount = 3;
        QTest::newRow(bits + "just enough data directories") << pe << "2.10.3.0";
        pe.directoryCount = 0xFFFFFFFFU;
        QTest::newRow(bits + "as many data directories as can be claimed") << pe << "2.10.3.0";
    }
}

void tst_UtilsMisc_fileversion::fileVersionIsRead()
{
    QFETCH(PeFileBuilder, pe);
    QFETCH(QString, version);
    const QString path = writeFile(pe.build());
    const DebugLines debug;
    QCOMPARE(UtilsMisc::GetFileVersion(path), version);
    QCOMPARE(DebugLines::lines(), QStringList());
}

void tst_UtilsMisc_fileversion::anyPathIsRead_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("blanks") << QStringLiteral("the library of the suite.dll");
    QTest::newRow("Cyrillic and Chinese letters")
        << QStringLiteral("\u043F\u0440\u043E\u0448\u0438\u0432\u043A\u0430 \u56FA\u4EF6.dll");
    QTest::newRow("beyond the first plane") << QStringLiteral("\U0001F50C.dll");
#ifndef Q_OS_WIN
    // Windows allows it where the system and the application are set up for it.
    QTest::newRow("longer than 260 characters") << QStringLiteral("%1/%1/%1.dll").arg(QString(200, QLatin1Char('n')));
#endif
}

void tst_UtilsMisc_fileversion::anyPathIsRead()
{
    QFETCH(QString, name);
    const QString path = folder.filePath(name);
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QVERIFY(QFile::copy(writeFile(PeFileBuilder().build()), path));
    const DebugLines debug;
    QCOMPARE(UtilsMisc::GetFileVersion(path), QStringLiteral("2.10.3.0"));
    QCOMPARE(UtilsMisc::GetFileVersion(QDir::toNativeSeparators(path)), QStringLiteral("2.10.3.0"));
    QCOMPARE(DebugLines::lines(), QStringList());
}

void tst_UtilsMisc_fileversion::theLibraryTellsItsVersion()
{
#ifdef UNIPROG_LIBRARY
    const DebugLines debug;
    QCOMPARE(UtilsMisc::GetFileVersion(QStringLiteral(UNIPROG_LIBRARY)), QStringLiteral(UNIPROG_VERSION ".0"));
    QCOMPARE(DebugLines::lines(), QStringList());
#else
    QSKIP("Only the libraries of Windows carry their version.");
#endif
}

void tst_UtilsMisc_fileversion::fileVersionFailsWithADebugLine_data()
{
#ifdef Q_OS_WIN
    QSKIP(SystemReadsDamagedFiles);
#endif
    using Pe = PeFileBuilder;
    QTest::addColumn<Damage>("damage");
    QTest::addColumn<QString>("line");

    const auto row
        = [](const char *name, const Damage &damage, const QString &line) { QTest::newRow(name) << damage << line; };
    constexpr quint32 Huge = 0xFFFFFFFFU;
    const QString none = noVersionInfo(1812);

    row(
        "no DOS signature", [](auto &f, auto &) { Pe::put16(f, Pe::DosHeader, 0x4D5A); }, none);
    row(
        "NT header behind the end", [](auto &f, auto &) { Pe::put32(f, Pe::NtHeaderPosition, quint32(f.size())); },
        none);
    row(
        "NT header far away", [](auto &f, auto &) { Pe::put32(f, Pe::NtHeaderPosition, Huge); }, none);
    row(
        "NT header in the DOS header", [](auto &f, auto &) { Pe::put32(f, Pe::NtHeaderPosition, 0); }, none);
    row(
        "no NT signature", [](auto &f, auto &) { Pe::put32(f, Pe::NtHeader, 0x0000454E); }, none);
    row(
        "no optional header", [](auto &f, auto &) { Pe::put16(f, Pe::OptionalHeaderSize, 0); }, none);
    row(
        "optional header of a byte", [](auto &f, auto &) { Pe::put16(f, Pe::OptionalHeaderSize, 1); }, none);
    row(
        "optional header too short", [](auto &f, auto &) { Pe::put16(f, Pe::OptionalHeaderSize, 119); }, none);
    row(
        "optional header too long", [](auto &f, auto &) { Pe::put16(f, Pe::OptionalHeaderSize, 0xFFFF); }, none);
    row(
        "unknown optional header", [](auto &f, auto &) { Pe::put16(f, Pe::OptionalHeader, 0x0107); }, none);
    row(
        "two data directories", [](auto &f, auto &pe) { Pe::put32(f, pe.directoryCountPlace(), 2); }, none);
    row(
        "no resources", [](auto &f, auto &pe) { Pe::put32(f, pe.resourceDirectoryPlace(), 0); }, none);
    row(
        "no sections", [](auto &f, auto &) { Pe::put16(f, Pe::SectionCount, 0); }, none);
    row(
        "more sections than the file holds", [](auto &f, auto &) { Pe::put16(f, Pe::SectionCount, 0xFFFF); }, none);

    const QString noType = noVersionInfo(1813);
    row(
        "resources in no section", [](auto &f, auto &pe) { Pe::put32(f, pe.resourceDirectoryPlace(), 0x9000); },
        noType);
    row(
        "resources far away", [](auto &f, auto &pe) { Pe::put32(f, pe.resourceDirectoryPlace(), Huge); }, noType);
    row(
        "section behind the end", [](auto &f, auto &pe) { Pe::put32(f, pe.resourceSection() + 20, Huge); }, noType);
    row(
        "section of no bytes", [](auto &f, auto &pe) { Pe::put32(f, pe.resourceSection() + 16, 0); }, noType);
    row(
        "section shorter than the directory", [](auto &f, auto &pe) { Pe::put32(f, pe.resourceSection() + 16, 20); },
        noType);
    row(
        "no types", [](auto &f, auto &) { Pe::put16(f, Pe::Types + 14, 0); }, noType);
    row(
        "another type", [](auto &f, auto &) { Pe::put32(f, Pe::Types + 24, 10); }, noType);
    row(
        "too many types", [](auto &f, auto &) { Pe::put32(f, Pe::Types + 12, Huge); }, noType);
    row(
        "a type that is data", [](auto &f, auto &) { Pe::put32(f, Pe::Types + 28, 32); }, noType);

    const QString noName = noVersionInfo(1814);
    row(
        "names far away", [](auto &f, auto &) { Pe::put32(f, Pe::Types + 28, Huge); }, noName);
    row(
        "no names", [](auto &f, auto &) { Pe::put16(f, Pe::Names + 14, 0); }, noName);
    row(
        "too many names", [](auto &f, auto &) { Pe::put16(f, Pe::Names + 12, 0xFFFF); }, noName);
    row(
        "a name that is data", [](auto &f, auto &) { Pe::put32(f, Pe::Names + 20, 80); }, noName);

    const QString noLanguage = noVersionInfo(1815);
    row(
        "languages far away", [](auto &f, auto &) { Pe::put32(f, Pe::Names + 20, Huge); }, noLanguage);
    row(
        "no languages", [](auto &f, auto &) { Pe::put16(f, Pe::Languages + 14, 0); }, noLanguage);
    row(
        "a language that is a directory", [](auto &f, auto &) { Pe::put32(f, Pe::Languages + 20, 0x80000000U); },
        noLanguage);
    row(
        "types that are their own names and languages",
        [](auto &f, auto &) { Pe::put32(f, Pe::Types + 28, 0x80000000U); }, noLanguage);

    row(
        "data entry far away", [](auto &f, auto &) { Pe::put32(f, Pe::Languages + 20, 0x7FFFFFFFU); }, none);
    row(
        "data in no section", [](auto &f, auto &) { Pe::put32(f, Pe::DataEntry, 0x100); }, none);
    row(
        "data far away", [](auto &f, auto &) { Pe::put32(f, Pe::DataEntry, Huge); }, none);
    row(
        "data past the end", [](auto &f, auto &) { Pe::put32(f, Pe::DataEntry + 4, 93); }, none);
    row(
        "data of 4 GB", [](auto &f, auto &) { Pe::put32(f, Pe::DataEntry + 4, Huge); }, none);
    row(
        "data past the end in a section past the end",
        [](auto &f, auto &pe) {
            Pe::put32(f, Pe::DataEntry + 4, 93);
            Pe::put32(f, pe.resourceSection() + 16, Huge);
        },
        none);

    row(
        "no data", [](auto &f, auto &) { Pe::put32(f, Pe::DataEntry + 4, 0); }, NoRootBlock);
    row(
        "data too short", [](auto &f, auto &) { Pe::put32(f, Pe::DataEntry + 4, 91); }, NoRootBlock);
    row(
        "another key", [](auto &f, auto &) { Pe::put16(f, Pe::VersionInfo + 6, 'W'); }, NoRootBlock);
    row(
        "a longer key", [](auto &f, auto &) { Pe::put16(f, Pe::VersionInfo + 36, 'S'); }, NoRootBlock);
    row(
        "no fixed part", [](auto &f, auto &) { Pe::put16(f, Pe::VersionInfo + 2, 0); }, NoRootBlock);
    row(
        "a short fixed part", [](auto &f, auto &) { Pe::put16(f, Pe::VersionInfo + 2, 51); }, NoRootBlock);
    row(
        "another signature", [](auto &f, auto &) { Pe::put32(f, Pe::VersionInfo + 40, 0xFEEF04BCU); }, NoRootBlock);
}

void tst_UtilsMisc_fileversion::fileVersionFailsWithADebugLine()
{
    QFETCH(Damage, damage);
    QFETCH(QString, line);
    for (const bool is64Bit : {false, true}) {
        PeFileBuilder pe;
        pe.is64Bit = is64Bit;
        QByteArray bytes = pe.build();
        damage(bytes, pe);
        const QString path = writeFile(bytes);
        const DebugLines debug;
        QCOMPARE(UtilsMisc::GetFileVersion(path), QString());
        QCOMPARE(DebugLines::lines(), QStringList(line));
    }
}

void tst_UtilsMisc_fileversion::aFileThatIsNoProgramHasNoVersion_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("error");

    const auto make = [this](const QString &name, const QByteArray &bytes) {
        QFile made(folder.filePath(name));
        if (!made.open(QIODevice::WriteOnly) || made.write(bytes) != bytes.size())
            qFatal("The test's file cannot be written.");
        return made.fileName();
    };
    QTest::newRow("no such file") << folder.filePath(QStringLiteral("missing.exe")) << 2;
#ifndef Q_OS_WIN
    // Windows knows several numbers for a path that leads nowhere.
    QTest::newRow("no name") << QString() << 2;
    QTest::newRow("no such folder") << folder.filePath(QStringLiteral("missing/program.exe")) << 2;
#endif
    QTest::newRow("a folder") << folder.path() << 5;
    QTest::newRow("an empty file") << make(QStringLiteral("empty"), QByteArray()) << 1812;
    QTest::newRow("a text") << make(QStringLiteral("text"), QByteArray("MZ, they said.\n").repeated(100)) << 1812;
    QTest::newRow("a program of another system") << make(QStringLiteral("elf"),
                                                         QByteArray("\x7F"
                                                                    "ELF")
                                                             + QByteArray(1000, '\1'))
                                                 << 1812;
#ifdef Q_OS_UNIX
    const QString pipe = folder.filePath(QStringLiteral("pipe"));
    if (mkfifo(QFile::encodeName(pipe).constData(), 0600) == 0)
        QTest::newRow("a pipe nobody writes to") << pipe << 5;
    QTest::newRow("a device without end") << QStringLiteral("/dev/zero") << 5;
#endif
}

void tst_UtilsMisc_fileversion::aFileThatIsNoProgramHasNoVersion()
{
    QFETCH(QString, path);
    QFETCH(int, error);
    const DebugLines debug;
    QCOMPARE(UtilsMisc::GetFileVersion(path), QString());
    QCOMPARE(DebugLines::lines(), QStringList(noVersionInfo(error)));
}

void tst_UtilsMisc_fileversion::aTruncatedFileHasNoVersion_data()
{
    QTest::addColumn<bool>("is64Bit");
    QTest::newRow("32 bit") << false;
    QTest::newRow("64 bit") << true;
}

void tst_UtilsMisc_fileversion::aTruncatedFileHasNoVersion()
{
    QFETCH(bool, is64Bit);
    PeFileBuilder pe;
    pe.is64Bit = is64Bit;
    const QByteArray whole = pe.build();
    for (qsizetype size = 0; size < whole.size(); ++size) {
        const QString path = writeFile(whole.first(size));
        const DebugLines debug;
        QCOMPARE(UtilsMisc::GetFileVersion(path), QString());
        QCOMPARE(DebugLines::lines().size(), 1);
        QVERIFY(DebugLines::lines().first().startsWith(QLatin1String("error in GetFileVersionInfo: 181")));
    }
}

void tst_UtilsMisc_fileversion::noDamageLeadsOutOfTheFile()
{
#ifdef Q_OS_WIN
    QSKIP(SystemReadsDamagedFiles);
#endif
    constexpr int Rounds = 4000;
    constexpr quint32 Values[] = {0, 1, 0x7F, 0x80, 0xFF, 0x7FFF, 0xFFFF, 0x7FFFFFFF, 0x80000000U, 0xFFFFFFFFU};
    QRandomGenerator random(20'260'101);
    const QByteArray whole = PeFileBuilder().build();
    for (int round = 0; round < Rounds; ++round) {
        QByteArray bytes = whole;
        for (quint32 i = random.bounded(4U); i < 4; ++i)
            PeFileBuilder::put32(bytes, random.bounded(int(bytes.size()) - 3),
                                 Values[random.bounded(int(std::size(Values)))]);
        const QString path = writeFile(bytes);
        const DebugLines debug;
        const QString version = UtilsMisc::GetFileVersion(path);
        QCOMPARE(DebugLines::lines().size(), version.isEmpty() ? 1 : 0);
    }
}

UNIPROG_TEST_MAIN(tst_UtilsMisc_fileversion)
#include "tst_utilsmisc_fileversion.moc"
