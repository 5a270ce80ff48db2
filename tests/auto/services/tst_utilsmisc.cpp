#include <UtilsMisc.h>
#include <UtilsSingleInstance.h>

#include "PeFileBuilder.h"

#include "IpAddressChoice_p.h"

#include <UniProgTest.h>

#include <QApplication>
#include <QDir>
#include <QDockWidget>
#include <QFile>
#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPointer>
#include <QProxyStyle>
#include <QPushButton>
#include <QRandomGenerator>
#include <QSettings>
#include <QTemporaryDir>

#include <functional>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using Damage = std::function<void(QByteArray &file, const PeFileBuilder &pe)>;
Q_DECLARE_METATYPE(Damage)
Q_DECLARE_METATYPE(PeFileBuilder)
Q_DECLARE_METATYPE(QList<InterfaceAddresses>)

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

class tst_UtilsMisc : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void fileVersionIsRead_data();
    void fileVersionIsRead();
    void theLibraryTellsItsVersion_data();
    void theLibraryTellsItsVersion();
    void fileVersionFailsWithADebugLine_data();
    void fileVersionFailsWithADebugLine();
    void aFileThatIsNoProgramHasNoVersion_data();
    void aFileThatIsNoProgramHasNoVersion();
    void aTruncatedFileHasNoVersion_data();
    void aTruncatedFileHasNoVersion();
    void noDamageLeadsOutOfTheFile();

    void theFirstAddressOfARunningInterfaceIsChosen_data();
    void theFirstAddressOfARunningInterfaceIsChosen();
    void myAddressIsOneOfThisMachine();

    void theWindowStateIsKept();
    void restoringBeforeSavingLeavesTheWindow();
    void framelessIsNeverChosen();

    void aWidgetIsReplacedInItsLayout_data();
    void aWidgetIsReplacedInItsLayout();
    void withoutALayoutNothingIsReplaced();
    void aWidgetOutsideTheLayoutIsKept();

    void theMaximumIsOnlyLowered_data();
    void theMaximumIsOnlyLowered();
    void theMinimumIsOnlyRaised_data();
    void theMinimumIsOnlyRaised();

    void aPropertyIsSetThenUnpolishedThenPolished();
    void styleSheetsSeeThePropertyAtOnce();
    void nullIsIgnored();

private:
    QString writeFile(const QByteArray &bytes);

    QTemporaryDir folder;
    QFile file;
};

void tst_UtilsMisc::initTestCase()
{
    QVERIFY(folder.isValid());
}

QString tst_UtilsMisc::writeFile(const QByteArray &bytes)
{
    file.setFileName(folder.filePath(QStringLiteral("program.exe")));
    // Not emptied first: file systems take that for a replacement and write it to the disk at once.
    if (!file.open(QIODevice::ReadWrite) || file.write(bytes) != bytes.size() || !file.resize(bytes.size()))
        qFatal("The test's file cannot be written.");
    file.close();
    return file.fileName();
}

void tst_UtilsMisc::fileVersionIsRead_data()
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

void tst_UtilsMisc::fileVersionIsRead()
{
    QFETCH(PeFileBuilder, pe);
    QFETCH(QString, version);
    const QString path = writeFile(pe.build());
    const DebugLines debug;
    QCOMPARE(UtilsMisc::GetFileVersion(path), version);
    QCOMPARE(DebugLines::lines(), QStringList());
}

void tst_UtilsMisc::theLibraryTellsItsVersion_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain name") << QStringLiteral("library.dll");
    QTest::newRow("blanks") << QStringLiteral("the library of the suite.dll");
    QTest::newRow("Cyrillic and Chinese letters")
        << QStringLiteral("\u043F\u0440\u043E\u0448\u0438\u0432\u043A\u0430 \u56FA\u4EF6.dll");
}

void tst_UtilsMisc::theLibraryTellsItsVersion()
{
#ifdef UNIPROG_LIBRARY
    QFETCH(QString, name);
    const QString copy = folder.filePath(name);
    QVERIFY(QFile::copy(QStringLiteral(UNIPROG_LIBRARY), copy));
    const DebugLines debug;
    QCOMPARE(UtilsMisc::GetFileVersion(copy), QStringLiteral(UNIPROG_VERSION ".0"));
    QCOMPARE(UtilsMisc::GetFileVersion(QDir::toNativeSeparators(copy)), QStringLiteral(UNIPROG_VERSION ".0"));
    QCOMPARE(DebugLines::lines(), QStringList());
#else
    QSKIP("Only the libraries of Windows carry their version.");
#endif
}

void tst_UtilsMisc::fileVersionFailsWithADebugLine_data()
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

void tst_UtilsMisc::fileVersionFailsWithADebugLine()
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

void tst_UtilsMisc::aFileThatIsNoProgramHasNoVersion_data()
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

void tst_UtilsMisc::aFileThatIsNoProgramHasNoVersion()
{
    QFETCH(QString, path);
    QFETCH(int, error);
    const DebugLines debug;
    QCOMPARE(UtilsMisc::GetFileVersion(path), QString());
    QCOMPARE(DebugLines::lines(), QStringList(noVersionInfo(error)));
}

void tst_UtilsMisc::aTruncatedFileHasNoVersion_data()
{
    QTest::addColumn<bool>("is64Bit");
    QTest::newRow("32 bit") << false;
    QTest::newRow("64 bit") << true;
}

void tst_UtilsMisc::aTruncatedFileHasNoVersion()
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

void tst_UtilsMisc::noDamageLeadsOutOfTheFile()
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

void tst_UtilsMisc::theFirstAddressOfARunningInterfaceIsChosen_data()
{
    QTest::addColumn<QList<InterfaceAddresses>>("interfaces");
    QTest::addColumn<QString>("address");

    using Flags = QNetworkInterface::InterfaceFlags;
    const Flags running = QNetworkInterface::IsRunning;
    const Flags up = QNetworkInterface::IsUp;
    const Flags loopback = QNetworkInterface::IsLoopBack;
    const QHostAddress lan(QStringLiteral("192.168.1.20"));
    const QHostAddress wifi(QStringLiteral("10.0.0.7"));
    const QHostAddress local(QHostAddress::LocalHost);
    const QHostAddress ipv6(QStringLiteral("fe80::1"));
    const QHostAddress mapped(QStringLiteral("::ffff:10.1.2.3"));
    const auto row = [](const char *name, const QList<InterfaceAddresses> &interfaces, const char *address) {
        QTest::newRow(name) << interfaces << QString::fromLatin1(address);
    };
    row("no interface", {}, "0.0.0.0");
    row("loopback only", {{running | up | loopback, {local, QHostAddress(QHostAddress::LocalHostIPv6)}}}, "0.0.0.0");
    row("any address of a loopback interface", {{running | loopback, {lan}}}, "0.0.0.0");
    row("running", {{running, {lan}}}, "192.168.1.20");
    row("running and up", {{running | up, {lan}}}, "192.168.1.20");
    row("up and not running", {{up, {lan}}}, "0.0.0.0");
    row("no flags", {{Flags(), {lan}}}, "0.0.0.0");
    row("IPv6 first", {{running, {ipv6, lan}}}, "192.168.1.20");
    row("IPv6 only", {{running, {ipv6}}}, "0.0.0.0");
    row("IPv4 inside IPv6", {{running, {mapped}}}, "0.0.0.0");
    row("no address", {{running, {}}, {running, {wifi}}}, "10.0.0.7");
    row("127.0.0.1 elsewhere", {{running, {local, wifi}}}, "10.0.0.7");
    row("127.0.0.2 elsewhere", {{running, {QHostAddress(QStringLiteral("127.0.0.2")), wifi}}}, "127.0.0.2");
    row("the first of two interfaces", {{running, {wifi}}, {running, {lan}}}, "10.0.0.7");
    row("the first of two addresses", {{running, {lan, wifi}}}, "192.168.1.20");
    row("behind all that does not qualify",
        {{running | loopback, {local}}, {up, {lan}}, {running, {ipv6}}, {running, {wifi}}}, "10.0.0.7");
}

void tst_UtilsMisc::theFirstAddressOfARunningInterfaceIsChosen()
{
    QFETCH(QList<InterfaceAddresses>, interfaces);
    QFETCH(QString, address);
    QCOMPARE(chooseIpAddress(interfaces), address);
}

void tst_UtilsMisc::myAddressIsOneOfThisMachine()
{
    const QHostAddress address(UtilsMisc::GetMyIpAddress());
    QCOMPARE(address.protocol(), QAbstractSocket::IPv4Protocol);
    if (address != QHostAddress(QHostAddress::AnyIPv4))
        QVERIFY(QNetworkInterface::allAddresses().contains(address));
}

static void addDocks(QMainWindow &window)
{
    window.setCentralWidget(new QWidget);
    for (const char *name : {"memory", "registers"}) {
        auto *dock = new QDockWidget;
        dock->setObjectName(QLatin1String(name));
        window.addDockWidget(Qt::LeftDockWidgetArea, dock);
    }
}

void tst_UtilsMisc::theWindowStateIsKept()
{
    UtilsSingleInstance::setApplicationName(QStringLiteral("theWindowStateIsKept"));
    QByteArray geometry;
    QByteArray state;
    {
        QMainWindow window;
        addDocks(window);
        window.setGeometry(40, 50, 640, 480);
        window.findChild<QDockWidget *>("memory")->hide();
        window.addDockWidget(Qt::RightDockWidgetArea, window.findChild<QDockWidget *>("registers"));
        UtilsMisc::SaveMainWindowState(&window);
        geometry = window.saveGeometry();
        state = window.saveState(0);
    }
    const QSettings settings(QStringLiteral("Orbelkan"), QStringLiteral("theWindowStateIsKept"));
    QCOMPARE(settings.value(QStringLiteral("window_geometry")), QVariant(geometry));
    QCOMPARE(settings.value(QStringLiteral("window_state")), QVariant(state));
    QCOMPARE(settings.allKeys().size(), 2);

    QMainWindow window;
    addDocks(window);
    UtilsMisc::RestoreMainWindowState(&window);
    QCOMPARE(window.geometry(), QRect(40, 50, 640, 480));
    QVERIFY(window.findChild<QDockWidget *>("memory")->isHidden());
    QCOMPARE(window.dockWidgetArea(window.findChild<QDockWidget *>("registers")), Qt::RightDockWidgetArea);
}

void tst_UtilsMisc::restoringBeforeSavingLeavesTheWindow()
{
    UtilsSingleInstance::setApplicationName(QStringLiteral("restoringBeforeSavingLeavesTheWindow"));
    QMainWindow window;
    addDocks(window);
    window.setGeometry(40, 50, 640, 480);
    const QByteArray state = window.saveState();
    UtilsMisc::RestoreMainWindowState(&window);
    QCOMPARE(window.geometry(), QRect(40, 50, 640, 480));
    QCOMPARE(window.saveState(), state);

    QSettings settings(QStringLiteral("Orbelkan"), QStringLiteral("restoringBeforeSavingLeavesTheWindow"));
    settings.setValue(QStringLiteral("window_geometry"), QStringLiteral("no geometry"));
    settings.setValue(QStringLiteral("window_state"), 12);
    settings.sync();
    UtilsMisc::RestoreMainWindowState(&window);
    QCOMPARE(window.geometry(), QRect(40, 50, 640, 480));
    QCOMPARE(window.saveState(), state);
}

void tst_UtilsMisc::framelessIsNeverChosen()
{
    QVERIFY(!UtilsMisc::CheckIfFramelessUsed());
}

using Place = std::function<void(QWidget *parent, QWidget *child)>;
Q_DECLARE_METATYPE(Place)

void tst_UtilsMisc::aWidgetIsReplacedInItsLayout_data()
{
    QTest::addColumn<Place>("place");
    QTest::newRow("box") << Place([](QWidget *parent, QWidget *child) {
        auto *layout = new QVBoxLayout(parent);
        layout->addWidget(new QLabel);
        layout->addWidget(child);
        layout->addWidget(new QLabel);
    });
    QTest::newRow("grid") << Place([](QWidget *parent, QWidget *child) {
        auto *layout = new QGridLayout(parent);
        layout->addWidget(child, 1, 2, 3, 4);
    });
    QTest::newRow("form") << Place([](QWidget *parent, QWidget *child) {
        auto *layout = new QFormLayout(parent);
        layout->addRow(QStringLiteral("label"), child);
    });
    QTest::newRow("nested twice") << Place([](QWidget *parent, QWidget *child) {
        auto *layout = new QVBoxLayout(parent);
        auto *row = new QHBoxLayout;
        auto *grid = new QGridLayout;
        layout->addWidget(new QLabel);
        layout->addLayout(row);
        row->addLayout(grid);
        grid->addWidget(child, 0, 0);
    });
}

void tst_UtilsMisc::aWidgetIsReplacedInItsLayout()
{
    QFETCH(Place, place);
    QWidget parent;
    const QPointer<QWidget> oldWidget(new QLineEdit(&parent));
    oldWidget->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Maximum);
    oldWidget->setMaximumSize(300, 200);
    oldWidget->setMinimumSize(30, 20);
    place(&parent, oldWidget);
    parent.show();
    const QRect geometry = oldWidget->geometry();

    auto *newWidget = new QPushButton;
    newWidget->setMinimumSize(400, 400);
    UtilsMisc::ReplaceWidgets(oldWidget, newWidget);
    QVERIFY(!oldWidget);
    QCOMPARE(newWidget->parentWidget(), &parent);
    QCOMPARE(newWidget->sizePolicy().horizontalPolicy(), QSizePolicy::Ignored);
    QCOMPARE(newWidget->sizePolicy().verticalPolicy(), QSizePolicy::Maximum);
    QCOMPARE(newWidget->maximumSize(), QSize(300, 200));
    QCOMPARE(newWidget->minimumSize(), QSize(30, 20));
    newWidget->show();
    parent.layout()->activate();
    QCOMPARE(newWidget->geometry().topLeft(), geometry.topLeft());
}

void tst_UtilsMisc::withoutALayoutNothingIsReplaced()
{
    const auto isUntouched = [](const QWidget &widget) {
        return widget.maximumSize() == QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX) && !widget.parentWidget();
    };
    QWidget newWidget;
    QWidget topLevel;
    topLevel.setMaximumSize(10, 10);
    UtilsMisc::ReplaceWidgets(&topLevel, &newWidget);
    QVERIFY(isUntouched(newWidget));

    QWidget parent;
    const QPointer<QWidget> child(new QWidget(&parent));
    child->setMaximumSize(10, 10);
    UtilsMisc::ReplaceWidgets(child, &newWidget);
    QVERIFY(child);
    QVERIFY(isUntouched(newWidget));
}

void tst_UtilsMisc::aWidgetOutsideTheLayoutIsKept()
{
    QWidget parent;
    new QVBoxLayout(&parent);
    const QPointer<QWidget> outside(new QWidget(&parent));
    outside->setMaximumSize(10, 10);
    QWidget newWidget;
    UtilsMisc::ReplaceWidgets(outside, &newWidget);
    QVERIFY(outside);
    QVERIFY(!newWidget.parentWidget());
    QCOMPARE(newWidget.maximumSize(), QSize(10, 10));

    parent.layout()->addWidget(outside);
    UtilsMisc::ReplaceWidgets(outside, outside); // nothing to replace it with
    QVERIFY(outside);
    QCOMPARE(parent.layout()->count(), 1);
}

static constexpr QSize Unlimited(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);

void tst_UtilsMisc::theMaximumIsOnlyLowered_data()
{
    QTest::addColumn<QSize>("minimum");
    QTest::addColumn<QSize>("maximum");
    QTest::addColumn<QSize>("requested");
    QTest::addColumn<QSize>("expected");
    QTest::newRow("lowered, and kept above the minimum")
        << QSize(100, 600) << QSize(800, 800) << QSize(500, 500) << QSize(500, 600);
    QTest::newRow("not raised") << QSize(0, 0) << QSize(100, 100) << QSize(500, 50) << QSize(100, 50);
    QTest::newRow("from no limit") << QSize(0, 0) << Unlimited << QSize(320, 240) << QSize(320, 240);
    QTest::newRow("to no limit") << QSize(0, 0) << QSize(10, 20) << Unlimited << QSize(10, 20);
    QTest::newRow("to nothing") << QSize(5, 0) << QSize(10, 20) << QSize(0, 0) << QSize(5, 0);
    QTest::newRow("no size") << QSize(5, 6) << QSize(10, 20) << QSize() << QSize(5, 6);
    QTest::newRow("minimum above maximum") << QSize(50, 50) << QSize(10, 10) << QSize(30, 30) << QSize(10, 10);
}

void tst_UtilsMisc::theMaximumIsOnlyLowered()
{
    QFETCH(QSize, minimum);
    QFETCH(QSize, maximum);
    QFETCH(QSize, requested);
    QFETCH(QSize, expected);
    QWidget widget;
    widget.setMinimumSize(minimum);
    widget.setMaximumSize(maximum);
    UtilsMisc::SetMaximumSize(requested, &widget);
    QCOMPARE(widget.maximumSize(), expected);
    QCOMPARE(widget.minimumSize(), minimum);
}

void tst_UtilsMisc::theMinimumIsOnlyRaised_data()
{
    QTest::addColumn<QSize>("minimum");
    QTest::addColumn<QSize>("maximum");
    QTest::addColumn<QSize>("requested");
    QTest::addColumn<QSize>("expected");
    QTest::newRow("raised, and kept below the maximum")
        << QSize(100, 100) << QSize(800, 800) << QSize(50, 900) << QSize(100, 800);
    QTest::newRow("not lowered") << QSize(100, 100) << Unlimited << QSize(50, 150) << QSize(100, 150);
    QTest::newRow("from nothing") << QSize(0, 0) << Unlimited << QSize(320, 240) << QSize(320, 240);
    QTest::newRow("to no limit") << QSize(0, 0) << QSize(10, 20) << Unlimited << QSize(10, 20);
    QTest::newRow("no size") << QSize(5, 6) << QSize(10, 20) << QSize() << QSize(5, 6);
    QTest::newRow("minimum above maximum") << QSize(50, 50) << QSize(10, 10) << QSize(70, 70) << QSize(50, 50);
}

void tst_UtilsMisc::theMinimumIsOnlyRaised()
{
    QFETCH(QSize, minimum);
    QFETCH(QSize, maximum);
    QFETCH(QSize, requested);
    QFETCH(QSize, expected);
    QWidget widget;
    widget.setMinimumSize(minimum);
    widget.setMaximumSize(maximum);
    UtilsMisc::SetMinimumSize(requested, &widget);
    QCOMPARE(widget.minimumSize(), expected);
    QCOMPARE(widget.maximumSize(), maximum);
}

/// Writes down what happens to a widget and the value of its property at that time.
class RecordingStyle : public QProxyStyle
{
public:
    using QProxyStyle::polish;
    using QProxyStyle::unpolish;
    void polish(QWidget *widget) override
    {
        record("polish", widget);
    }
    void unpolish(QWidget *widget) override
    {
        record("unpolish", widget);
    }
    void record(const char *what, const QWidget *widget)
    {
        log.append(QLatin1String(what) + QLatin1Char(' ') + widget->property("role").toString());
    }
    QStringList log;
};

class RecordingWidget : public QWidget
{
public:
    explicit RecordingWidget(RecordingStyle &recordingStyle)
        : style(recordingStyle)
    { }

protected:
    bool event(QEvent *event) override
    {
        if (event->type() == QEvent::DynamicPropertyChange)
            style.record("set", this);
        return QWidget::event(event);
    }

private:
    RecordingStyle &style;
};

void tst_UtilsMisc::aPropertyIsSetThenUnpolishedThenPolished()
{
    RecordingStyle style;
    RecordingWidget widget(style);
    widget.setStyle(&style);
    style.log.clear();
    UtilsMisc::SetProperty(&widget, "role", QStringLiteral("main"));
    QCOMPARE(style.log, QStringList({"set main", "unpolish main", "polish main"}));
    style.log.clear();
    UtilsMisc::SetProperty(&widget, "role", QStringLiteral("main")); // also when nothing changes
    QCOMPARE(style.log, QStringList({"unpolish main", "polish main"}));
}

void tst_UtilsMisc::styleSheetsSeeThePropertyAtOnce()
{
    QWidget window;
    window.setStyleSheet(QStringLiteral("QFrame[background-color=\"main\"] { min-width: 123px; }"));
    auto *frame = new QFrame(&window);
    window.ensurePolished();
    frame->ensurePolished();
    QCOMPARE(frame->minimumWidth(), 0);
    UtilsMisc::SetProperty(frame, "background-color", QStringLiteral("main"));
    QCOMPARE(frame->property("background-color"), QVariant(QStringLiteral("main")));
    QCOMPARE(frame->minimumWidth(), 123);
}

void tst_UtilsMisc::nullIsIgnored()
{
    QWidget widget;
    UtilsMisc::SaveMainWindowState(nullptr);
    UtilsMisc::RestoreMainWindowState(nullptr);
    UtilsMisc::ReplaceWidgets(nullptr, &widget);
    UtilsMisc::ReplaceWidgets(&widget, nullptr);
    UtilsMisc::ReplaceWidgets(nullptr, nullptr);
    UtilsMisc::SetMaximumSize(QSize(1, 1), nullptr);
    UtilsMisc::SetMinimumSize(QSize(1, 1), nullptr);
    UtilsMisc::SetProperty(nullptr, "role", 1);
}

UNIPROG_TEST_MAIN(tst_UtilsMisc)
#include "tst_utilsmisc.moc"
