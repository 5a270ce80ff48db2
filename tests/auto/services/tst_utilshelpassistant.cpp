#include <UtilsHelpAssistant.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QLibraryInfo>
#include <QMetaMethod>
#include <QPointer>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>
#include <memory>

namespace {

constexpr int PatienceMs = 30'000;
constexpr int GeneratorPatienceMs = 60'000;

#ifdef Q_OS_WIN
const QString ProgramSuffix = QStringLiteral(".exe");
#else
const QString ProgramSuffix;
#endif

const QString HelpNamespace = QStringLiteral(UNIPROG_HELP_NAMESPACE);
const char StartedAgain[] = "QProcess::start: Process is already running";
const QRegularExpression EndedByDeletion(QStringLiteral("^QProcess: Destroyed while process .* is still running"));

/// The colours of the pages that are asked for, and how much of them must be seen.
constexpr QRgb FirstPageColor = 0xFF00C000;
constexpr QRgb SecondPageColor = 0xFFC000C0;
constexpr int PageColorPixels = 1000;

QString besideTheExecutable(const QString &name)
{
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + name;
}

QString viewerPath()
{
    return besideTheExecutable(QStringLiteral("assistant") + ProgramSuffix);
}

QString command(const QString &keyword)
{
    return QStringLiteral("command setSource qthelp://%1/doc/%2").arg(HelpNamespace, keyword);
}

bool processesAreListed()
{
#ifdef Q_OS_WIN
    return false; // Wine shows /proc of the system below, which knows other numbers
#else
    return QFileInfo::exists(QStringLiteral("/proc/self"));
#endif
}

/// Changes an environment variable for as long as it lives.
class EnvironmentChange
{
public:
    EnvironmentChange(const char *variable, const QByteArray &value)
        : name(variable)
        , wasSet(qEnvironmentVariableIsSet(variable))
        , oldValue(qgetenv(variable))
    {
        qputenv(name, value);
    }
    ~EnvironmentChange()
    {
        if (wasSet)
            qputenv(name, oldValue);
        else
            qunsetenv(name);
    }
    Q_DISABLE_COPY_MOVE(EnvironmentChange)

private:
    const char *name;
    bool wasSet;
    QByteArray oldValue;
};

bool write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

} // namespace

class tst_UtilsHelpAssistant : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void thereIsOneInstanceWithoutParent();
    void aDeletedInstanceIsReplaced();
    void theMethodsStandInTheirOrder();

    void nothingStartsBeforeTheFirstRequest();
    void theFirstRequestStartsTheViewerAndSendsOneCommand();
    void laterRequestsUseTheRunningViewer();
    void aViewerThatTheUserClosedIsStartedAgain();
    void theCommandIsInTheLocalEncoding();
    void anEmptyKeywordIsSentToo();
    void deletingTheAssistantEndsItsViewer();

    void aMissingViewerIsPassedOverInSilence();
    void aFileThatIsNoProgramIsPassedOverInSilence();
    void aViewerThatDiesAtOnceIsPassedOverInSilence();

    void theRealViewerShowsThePage();

private:
    void useViewer(const QString &program) const;
    QStringList record() const;
    bool waitForRecord(const QStringList &lines) const;
    QStringList startLines() const;
    bool viewerIsGone() const;
    void buildHelpCollection(const QString &generator);
    static bool isSeen(QRgb color);

    std::unique_ptr<QTemporaryDir> folder;
    QString startFolder;
};

/// Puts \a program in the place of the viewer.
void tst_UtilsHelpAssistant::useViewer(const QString &program) const
{
    QFile::remove(viewerPath());
#ifdef Q_OS_WIN
    QVERIFY(QFile::copy(program, viewerPath()));
#else
    QVERIFY(QFile::link(program, viewerPath()));
#endif
}

QStringList tst_UtilsHelpAssistant::record() const
{
    QFile file(folder->filePath(QStringLiteral("record")));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    return QString::fromLocal8Bit(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

bool tst_UtilsHelpAssistant::waitForRecord(const QStringList &lines) const
{
    if (QTest::qWaitFor([&] { return record() == lines; }, PatienceMs))
        return true;
    qInfo() << "The viewer recorded" << record();
    return false;
}

/// What a start of the viewer records.
QStringList tst_UtilsHelpAssistant::startLines() const
{
    return {QStringLiteral("started"), QStringLiteral("argument -collectionFile"),
            QStringLiteral("argument ") + besideTheExecutable(QStringLiteral("resources/help/help_settings_1.4.0.qhc")),
            QStringLiteral("argument -enableRemoteControl")};
}

/// Whether the recording viewer has ended and its process object knows it: the system forgets a process then.
bool tst_UtilsHelpAssistant::viewerIsGone() const
{
    QFile file(folder->filePath(QStringLiteral("record.pid")));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QString pid = QString::fromLatin1(file.readAll());
    return !pid.isEmpty() && !QFileInfo::exists(QStringLiteral("/proc/") + pid);
}

void tst_UtilsHelpAssistant::initTestCase()
{
    startFolder = QDir::currentPath();
}

void tst_UtilsHelpAssistant::init()
{
    UniProgTest::init();
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
    qputenv("VIEWER_RECORD", QFile::encodeName(folder->filePath(QStringLiteral("record"))));
    qunsetenv("VIEWER_DIES");
    useViewer(besideTheExecutable(QStringLiteral("recording_viewer") + ProgramSuffix));
}

void tst_UtilsHelpAssistant::cleanup()
{
    QFile::remove(viewerPath());
    QDir::setCurrent(startFolder);
}

void tst_UtilsHelpAssistant::cleanupTestCase()
{
    QDir(besideTheExecutable(QStringLiteral("resources"))).removeRecursively();
}

void tst_UtilsHelpAssistant::thereIsOneInstanceWithoutParent()
{
    QVERIFY(UtilsHelpAssistant::getInstance());
    QCOMPARE(UtilsHelpAssistant::getInstance(), UtilsHelpAssistant::getInstance());
    QVERIFY(!UtilsHelpAssistant::getInstance()->parent());
}

void tst_UtilsHelpAssistant::aDeletedInstanceIsReplaced()
{
    const QPointer<UtilsHelpAssistant> first = UtilsHelpAssistant::getInstance();
    delete first;
    QVERIFY(!first);
    QVERIFY(UtilsHelpAssistant::getInstance());
    // An object that is not the shared one goes without a trace.
    const UtilsHelpAssistant *shared = UtilsHelpAssistant::getInstance();
    std::make_unique<UtilsHelpAssistant>().reset();
    QCOMPARE(UtilsHelpAssistant::getInstance(), shared);
}

void tst_UtilsHelpAssistant::theMethodsStandInTheirOrder()
{
    const QMetaObject &metaObject = UtilsHelpAssistant::staticMetaObject;
    QCOMPARE(metaObject.methodCount(), metaObject.methodOffset() + 2);
    const QMetaMethod signal = metaObject.method(metaObject.methodOffset());
    QCOMPARE(signal.methodSignature(), QByteArray("signalOpenHelpKeyword(QString)"));
    QCOMPARE(signal.methodType(), QMetaMethod::Signal);
    const QMetaMethod slot = metaObject.method(metaObject.methodOffset() + 1);
    QCOMPARE(slot.methodSignature(), QByteArray("slotOpenHelpKeyword(QString)"));
    QCOMPARE(slot.methodType(), QMetaMethod::Slot);
}

void tst_UtilsHelpAssistant::nothingStartsBeforeTheFirstRequest()
{
    const UtilsHelpAssistant assistant;
    QVERIFY(!QFile::exists(folder->filePath(QStringLiteral("record"))));
}

void tst_UtilsHelpAssistant::theFirstRequestStartsTheViewerAndSendsOneCommand()
{
    auto assistant = std::make_unique<UtilsHelpAssistant>();
    Q_EMIT assistant->signalOpenHelpKeyword(QStringLiteral("device/connect.html"));
    QVERIFY(waitForRecord(startLines() << command(QStringLiteral("device/connect.html"))));
    QTest::ignoreMessage(QtWarningMsg, EndedByDeletion);
    assistant.reset();
}

void tst_UtilsHelpAssistant::laterRequestsUseTheRunningViewer()
{
    auto assistant = std::make_unique<UtilsHelpAssistant>();
    QStringList expected = startLines() << command(QStringLiteral("one.html"));
    Q_EMIT assistant->signalOpenHelpKeyword(QStringLiteral("one.html"));
    QVERIFY(waitForRecord(expected));

    QTest::ignoreMessage(QtWarningMsg, StartedAgain);
    Q_EMIT assistant->signalOpenHelpKeyword(QStringLiteral("two.html"));
    QVERIFY(waitForRecord(expected << command(QStringLiteral("two.html"))));
    QTest::ignoreMessage(QtWarningMsg, StartedAgain);
    assistant->slotOpenHelpKeyword(QStringLiteral("two.html"));
    QVERIFY(waitForRecord(expected << command(QStringLiteral("two.html"))));

    QTest::ignoreMessage(QtWarningMsg, EndedByDeletion);
    assistant.reset();
}

void tst_UtilsHelpAssistant::aViewerThatTheUserClosedIsStartedAgain()
{
    if (!processesAreListed())
        QSKIP("This system does not list its processes in /proc.");
    auto assistant = std::make_unique<UtilsHelpAssistant>();
    QStringList expected = startLines() << command(QStringLiteral("leave"));
    assistant->slotOpenHelpKeyword(QStringLiteral("leave"));
    QVERIFY(waitForRecord(expected));

    QTRY_VERIFY_WITH_TIMEOUT(viewerIsGone(), PatienceMs);

    assistant->slotOpenHelpKeyword(QStringLiteral("again.html"));
    QVERIFY(waitForRecord(expected + startLines() + QStringList(command(QStringLiteral("again.html")))));

    QTest::ignoreMessage(QtWarningMsg, EndedByDeletion);
    assistant.reset();
}

void tst_UtilsHelpAssistant::theCommandIsInTheLocalEncoding()
{
    const QString keyword = QStringLiteral("ger\u00E4t/anschlie\u00DFen.html");
    auto assistant = std::make_unique<UtilsHelpAssistant>();
    assistant->slotOpenHelpKeyword(keyword);
    const QString expected = QString::fromLocal8Bit(command(keyword).toLocal8Bit());
    QVERIFY(waitForRecord(startLines() << expected));
    QTest::ignoreMessage(QtWarningMsg, EndedByDeletion);
    assistant.reset();
}

void tst_UtilsHelpAssistant::anEmptyKeywordIsSentToo()
{
    auto assistant = std::make_unique<UtilsHelpAssistant>();
    assistant->slotOpenHelpKeyword(QString());
    QVERIFY(waitForRecord(startLines() << command(QString())));
    QTest::ignoreMessage(QtWarningMsg, EndedByDeletion);
    assistant.reset();
}

void tst_UtilsHelpAssistant::deletingTheAssistantEndsItsViewer()
{
    if (!processesAreListed())
        QSKIP("This system does not list its processes in /proc.");
    auto assistant = std::make_unique<UtilsHelpAssistant>();
    assistant->slotOpenHelpKeyword(QStringLiteral("one.html"));
    QVERIFY(waitForRecord(startLines() << command(QStringLiteral("one.html"))));
    QVERIFY(!viewerIsGone());
    QTest::ignoreMessage(QtWarningMsg, EndedByDeletion);
    assistant.reset();
    QVERIFY(viewerIsGone());
}

void tst_UtilsHelpAssistant::aMissingViewerIsPassedOverInSilence()
{
    QVERIFY(QFile::remove(viewerPath()));
    UtilsHelpAssistant assistant;
    Q_EMIT assistant.signalOpenHelpKeyword(QStringLiteral("one.html"));
    Q_EMIT assistant.signalOpenHelpKeyword(QStringLiteral("two.html"));
    QVERIFY(record().isEmpty());
}

void tst_UtilsHelpAssistant::aFileThatIsNoProgramIsPassedOverInSilence()
{
    QVERIFY(QFile::remove(viewerPath()));
    QVERIFY(write(viewerPath(), "no program"));
    UtilsHelpAssistant assistant;
    assistant.slotOpenHelpKeyword(QStringLiteral("one.html"));
    QVERIFY(record().isEmpty());
}

void tst_UtilsHelpAssistant::aViewerThatDiesAtOnceIsPassedOverInSilence()
{
    if (!processesAreListed())
        QSKIP("This system does not list its processes in /proc.");
    qputenv("VIEWER_DIES", "1");
    UtilsHelpAssistant assistant;
    QStringList expected;
    // The second round shows that the next request starts it anew.
    for (int round = 0; round < 2; ++round) {
        assistant.slotOpenHelpKeyword(QStringLiteral("one.html"));
        expected += startLines();
        QVERIFY(waitForRecord(expected));
        QTRY_VERIFY_WITH_TIMEOUT(viewerIsGone(), PatienceMs);
    }
}

/// Builds the help collection: a start page and two pages of one colour each.
void tst_UtilsHelpAssistant::buildHelpCollection(const QString &generator)
{
    const auto page = [](QRgb color) {
        return QStringLiteral("<html><body><div style=\"height:600px;background-color:%1\">Help</div></body></html>")
            .arg(QColor(color).name())
            .toUtf8();
    };
    const QString project = QStringLiteral(R"(<?xml version="1.0" encoding="UTF-8"?>
<QtHelpProject version="1.0">
    <namespace>%1</namespace>
    <virtualFolder>doc</virtualFolder>
    <filterSection>
        <toc><section title="Start" ref="start.html"/></toc>
        <files><file>start.html</file><file>device/index.html</file><file>device/connect.html</file></files>
    </filterSection>
</QtHelpProject>)")
                                .arg(HelpNamespace);
    const QByteArray collection = R"(<?xml version="1.0" encoding="UTF-8"?>
<QHelpCollectionProject version="1.0">
    <docFiles>
        <generate><file><input>help.qhp</input><output>help.qch</output></file></generate>
        <register><file>help.qch</file></register>
    </docFiles>
</QHelpCollectionProject>)";

    const QDir sources(folder->path());
    QVERIFY(sources.mkpath(QStringLiteral("device")));
    QVERIFY(write(sources.filePath(QStringLiteral("start.html")), page(qRgb(255, 255, 255))));
    QVERIFY(write(sources.filePath(QStringLiteral("device/index.html")), page(FirstPageColor)));
    QVERIFY(write(sources.filePath(QStringLiteral("device/connect.html")), page(SecondPageColor)));
    QVERIFY(write(sources.filePath(QStringLiteral("help.qhp")), project.toUtf8()));
    QVERIFY(write(sources.filePath(QStringLiteral("help.qhcp")), collection));

    QVERIFY(QDir().mkpath(besideTheExecutable(QStringLiteral("resources/help"))));
    QProcess process;
    process.setWorkingDirectory(sources.path());
    process.start(generator,
                  {QStringLiteral("help.qhcp"), QStringLiteral("-o"),
                   besideTheExecutable(QStringLiteral("resources/help/help_settings_1.4.0.qhc"))});
    QVERIFY(process.waitForFinished(GeneratorPatienceMs));
    QVERIFY2(process.exitCode() == 0, process.readAllStandardError().constData());
}

/// Whether one of the pictures that the viewer leaves in the current folder shows an area of this colour.
bool tst_UtilsHelpAssistant::isSeen(QRgb color)
{
    const QByteArray lastBytesOfAPicture("IEND\xAE\x42\x60\x82");
    QDirIterator pictures(QDir::currentPath(), {QStringLiteral("output*.png")});
    while (pictures.hasNext()) {
        QFile file(pictures.next());
        const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        if (!content.endsWith(lastBytesOfAPicture))
            continue;
        const QImage picture = QImage::fromData(content).convertToFormat(QImage::Format_RGB32);
        int found = 0;
        for (int y = 0; y < picture.height(); ++y) {
            const auto *line = reinterpret_cast<const QRgb *>(picture.constScanLine(y));
            found += int(std::count(line, line + picture.width(), color));
        }
        if (found >= PageColorPixels)
            return true;
    }
    return false;
}

void tst_UtilsHelpAssistant::theRealViewerShowsThePage()
{
    const QString viewer
        = QLibraryInfo::path(QLibraryInfo::BinariesPath) + QStringLiteral("/assistant") + ProgramSuffix;
    const QString generator
        = QLibraryInfo::path(QLibraryInfo::LibraryExecutablesPath) + QStringLiteral("/qhelpgenerator") + ProgramSuffix;
    if (!QFileInfo(viewer).isExecutable())
        QSKIP("The help viewer is not installed (Debian: assistant-qt6).");
    if (!QFileInfo(generator).isExecutable())
        QSKIP("qhelpgenerator is not installed (Debian: qt6-documentation-tools).");
    buildHelpCollection(generator);
    if (QTest::currentTestFailed())
        return;
    useViewer(viewer);

    // On this platform, and with this variable, Qt saves what it draws as pictures in the current folder.
    const EnvironmentChange platform("QT_QPA_PLATFORM", "minimal");
    const EnvironmentChange pictures("QT_DEBUG_BACKINGSTORE", "1");
    const EnvironmentChange home("HOME", QFile::encodeName(folder->path()));
    const EnvironmentChange data("XDG_DATA_HOME", QFile::encodeName(folder->path()));
    QVERIFY(QDir::setCurrent(folder->path()));

    auto assistant = std::make_unique<UtilsHelpAssistant>();
    assistant->slotOpenHelpKeyword(QStringLiteral("device/index.html"));
    QTRY_VERIFY_WITH_TIMEOUT(isSeen(FirstPageColor), PatienceMs);
    QVERIFY(!isSeen(SecondPageColor));
    QTest::ignoreMessage(QtWarningMsg, StartedAgain);
    assistant->slotOpenHelpKeyword(QStringLiteral("device/connect.html"));
    QTRY_VERIFY_WITH_TIMEOUT(isSeen(SecondPageColor), PatienceMs);
    QTest::ignoreMessage(QtWarningMsg, EndedByDeletion);
    assistant.reset();
}

UNIPROG_TEST_MAIN(tst_UtilsHelpAssistant)
#include "tst_utilshelpassistant.moc"
