#include <UniProgTest.h>

#include <QApplication>
#include <QProcess>
#include <QTemporaryDir>

/// What the example program says to a command line, before it does anything.
class tst_ProgrammerCommandLine : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void aWrongCommandLineIsRefused_data();
    void aWrongCommandLineIsRefused();
    void theHelpNamesEveryOperation();

private:
    void run(QProcess *process, const QStringList &arguments) const;

    QTemporaryDir folder;
};

namespace {

constexpr int LongWait = 120000;

/// Exit codes.
enum { UsageError = 251, FileError = 252 };

} // namespace

void tst_ProgrammerCommandLine::run(QProcess *process, const QStringList &arguments) const
{
    process->setWorkingDirectory(folder.path());
    process->setProcessChannelMode(QProcess::MergedChannels);
    process->start(QStringLiteral(PROGRAMMER_PATH), QStringList{QStringLiteral("--headless")} + arguments);
    QVERIFY(process->waitForFinished(LongWait));
}

void tst_ProgrammerCommandLine::aWrongCommandLineIsRefused_data()
{
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("problem");
    const auto row = [](const char *arguments, int exitCode, const char *problem) {
        QTest::newRow(arguments) << exitCode << QString::fromLatin1(problem);
    };
    row("--operation solder", UsageError, "There is no operation \"solder\"");
    row("--operation write", UsageError, "choose an image");
    row("--operation detect --compare", UsageError, "choose an image");
    row("--operation detect --output x.hex", UsageError, "nothing to store");
    row("--operation detect --option 1", UsageError, "N=V");
    row("--operation detect --connection-option five=1", UsageError, "N=V");
    row("--operation detect --speed nan", UsageError, "is no speed");
    row("--operation detect --base 0x100000000", UsageError, "is no address");
    row("--operation detect --timeout 0", UsageError, "is no time");
    row("--operation detect --fault smoke", UsageError, "smoke");
    row("--operation detect --colour red", UsageError, "colour");
    row("--operation detect image.hex", UsageError, "image.hex");
    for (const char *const id :
         {"1209", "1209:", ":0001", "1209:0001:2", "12345:0001", "-1:0001", "0x1209:1", "12g9:1"})
        row(qPrintable(QStringLiteral("--operation detect --watch %1").arg(QLatin1String(id))), UsageError,
            "USB devices are given as VID:PID");
    row("--operation detect --theme pink", UsageError, "There is no theme");
    row("--operation update-device", UsageError, "choose an image");
    row("--operation update-device --operation write --image x", UsageError, "run the program twice");
    row("--operation update-device --image missing.fw", FileError, "cannot be opened");
    row("--operation detect --password-file missing.txt", UsageError, "cannot be read");
    row("--operation detect --password secret", UsageError, "password");
    row("--headless", UsageError, "say what to do with --operation");
    row("--operation write --image missing.hex", FileError, "There is no file");
#ifdef Q_OS_UNIX
    row("--operation detect --pictures /dev/null/pictures", FileError, "cannot be made");
#endif
}

void tst_ProgrammerCommandLine::aWrongCommandLineIsRefused()
{
    QFETCH(int, exitCode);
    QFETCH(QString, problem);
    QProcess process;
    run(&process, QString::fromLatin1(QTest::currentDataTag()).split(u' '));
    const QString output = programOutput(process.readAll());
    QVERIFY2(output.contains(problem), qPrintable(output));
    QCOMPARE(process.exitCode(), exitCode);
}

void tst_ProgrammerCommandLine::theHelpNamesEveryOperation()
{
    QProcess process;
    run(&process, {QStringLiteral("--help")});
    const QString help = programOutput(process.readAll());
    QCOMPARE(process.exitCode(), 0);
    for (const char *const name : {"write", "read", "verify", "blank", "detect", "erase", "reset", "device-connect",
                                   "update-device", "update-power", "--wifi", "--update-url", "--watch"})
        QVERIFY2(help.contains(QLatin1String(name)), name);
}

UNIPROG_TEST_MAIN(tst_ProgrammerCommandLine)

#include "tst_programmercommandline.moc"
