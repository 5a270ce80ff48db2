#include <FirmwareFile.h>
#include <MemoryManager.h>
#include <SimulatedProgrammer.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QImage>
#include <QProcess>
#include <QQueue>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtEndian>

#include <memory>

/// Runs the example program without a display, for success and for a failure in each phase, and compares all it prints.
class tst_ProgrammerExample : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void theTranscriptIsExact_data();
    void theTranscriptIsExact();
    void aTargetThatDiffersIsFound();
    void aHangEndsWithTheTimeout();
    void whatWasReadIsStored();
    void picturesAreLeft();
    void thePasswordMayComeFromTheEnvironment();

private:
    QString path(const char *name) const;
    void store(const char *name, const QByteArray &bytes) const;
    std::unique_ptr<QProcess> create(const QStringList &arguments) const;
    void add(const QString &name, const QStringList &arguments);
    void startNext();
    QProcess *finished(const QString &name) const;

    QTemporaryDir folder;
    QHash<QString, QProcess *> runs; ///< by name; each waits for animations most of the time, so many run side by side
    QQueue<QProcess *> waiting;
};

namespace {

constexpr int LongWait = 120000;
constexpr int ImageSize = 1024;
constexpr int FirmwareSize = 3000; // four blocks
const QByteArray Password = QByteArrayLiteral("open sesame");
constexpr qint64 TargetSize = 262400; // flash and configuration page
constexpr int SideBySide = 16;
constexpr char FinishedProperty[] = "finished";

/// Exit codes beside those that are a status.
enum { StatusOutOfRange = 250, UsageError = 251, FileError = 252, TargetDiffers = 253, NoAnswer = 254 };

/// Log lines as the example prints them, without the time.
const QString Start = QStringLiteral("default Starting operation...");
const QString Connect = QStringLiteral("default Connecting to target MCU...");
const QString Erase = QStringLiteral("default Erasing MCU...");
const QString Write = QStringLiteral("default Writing MCU...");
const QString Verify = QStringLiteral("default Verifying...");
const QString Running = QStringLiteral("default Chip is running.");
const QString Disconnected = QStringLiteral("default Disconnected from target.");
const QString OperationFailed = QStringLiteral("error   Operation failed.");

struct Case
{
    const char *name;
    QStringList arguments;
    QStringList lines;
    int exitCode;
};

const QString WriteTitle = QStringLiteral("Writing the image to the target:");

const QString DeviceEnterTitle = QStringLiteral("Starting the bootloader of the device:");
const QString DeviceWriteTitle = QStringLiteral("Writing the firmware of the device:");
const QString DeviceExitTitle = QStringLiteral("Starting the firmware of the device:");
const QString PowerActivateTitle = QStringLiteral("Starting the bootloader of the power module:");
const QString PowerInfoTitle = QStringLiteral("Asking the bootloader of the power module:");
const QString PowerWriteTitle = QStringLiteral("Writing the firmware of the power module:");
const QString BootloaderLine = QStringLiteral("Bootloader of device 0x1002, sectors of 4096 bytes.");
const QString LoadingFirmware = QStringLiteral("default Loading firmware...");
const QString ErasingFlash = QStringLiteral("default Erasing flash...");
const QString WritingFirmware = QStringLiteral("default Writing firmware...");
const QString VerifyingWrite = QStringLiteral("default Verifying write...");

QStringList deviceWritten()
{
    return {LoadingFirmware,
            ErasingFlash,
            WritingFirmware,
            VerifyingWrite,
            QStringLiteral("success Bootloading successful."),
            QStringLiteral("success Please restore link with your device."),
            QStringLiteral("Status 0")};
}

QStringList updateDevice()
{
    return {QStringLiteral("--operation"), QStringLiteral("update-device"), QStringLiteral("--image"),
            QStringLiteral("device.fw")};
}

QStringList faults(std::initializer_list<const char *> texts)
{
    QStringList arguments;
    for (const char *const text : texts)
        arguments << QStringLiteral("--fault") << QString::fromLatin1(text);
    return arguments;
}

QString status(int number, const char *message)
{
    return QStringLiteral("Status %1: %2").arg(number).arg(QString::fromLatin1(message));
}

/// What follows a refused link when no password is known.
const QString PasswordCancelled = QStringLiteral("The password dialog is cancelled.");

/// A write with verification that fails.
Case failedWrite(const char *name, std::initializer_list<const char *> faultTexts, const QStringList &lines, int number,
                 const char *message)
{
    return {name,
            QStringList{QStringLiteral("--operation"), QStringLiteral("write"), QStringLiteral("--verify")}
                + faults(faultTexts),
            QStringList{WriteTitle, Start} + lines + QStringList{status(number, message)}
                + (number == 13 || number == 14 ? QStringList{PasswordCancelled} : QStringList()),
            number > 0 ? number : int(StatusOutOfRange)};
}

Case operation(const char *name, const QStringList &arguments, const QStringList &lines)
{
    return {name, QStringList{QStringLiteral("--operation")} + arguments,
            lines + QStringList{QStringLiteral("Status 0")}, 0};
}

QList<Case> failuresToConnect()
{
    const QString failed = QStringLiteral("error   Connecting to target failed.");
    const QString password = QStringLiteral("error   Please enter correct WiFi link password");
    return {
        failedWrite("device connect: 4", {"device-connect=4"},
                    {QStringLiteral("error   WiFi link authentication failed! "), password}, 4,
                    "WiFi link authentication failed! \\nPlease enter correct WiFi link password"),
        failedWrite("device connect: 13", {"device-connect=13"},
                    {QStringLiteral("error   WiFi link-config authentication failed! "), password}, 13,
                    "WiFi link-config authentication failed! \\nPlease enter correct WiFi link password"),
        failedWrite("device connect: 14", {"device-connect=14"},
                    {QStringLiteral("error   WiFi link-debug authentication failed! "), password}, 14,
                    "WiFi link-debug authentication failed! \\nPlease enter correct WiFi link password"),
        failedWrite("device connect: 12", {"device-connect=12"},
                    {QStringLiteral("error   Please update firmware of selected"),
                     QStringLiteral("error   BRAMLOCK module to the latest version.")},
                    12, "Please update firmware of selected\\nBRAMLOCK module to the latest version."),
        failedWrite("device connect: 38", {"device-connect=38"},
                    {QStringLiteral("error   There is no selected device.")}, 38, "There is no selected device."),
        failedWrite("device connect: other", {"device-connect=7"},
                    {QStringLiteral("error   Connecting to device failed.")}, 7, "Connecting to device failed."),
        failedWrite("interface in use", {"interface-in-use=6"},
                    {Connect, QStringLiteral("error   Interface to target currently being used."), Disconnected}, 6,
                    "Interface to target currently being used."),
        failedWrite("clock", {"clock=9"}, {Connect, QStringLiteral("error   Set swd/jtag clock failed."), Disconnected},
                    9, "Set swd/jtag clock failed."),
        failedWrite("target connect: 10", {"target-connect=10"},
                    {Connect, failed, QStringLiteral("error   Wrong target voltage."),
                     QStringLiteral("error   Check power settings."), Disconnected},
                    10, "Connecting to target failed.\\nWrong target voltage.\\nCheck power settings."),
        failedWrite("target connect: 11", {"target-connect=11"},
                    {Connect, failed, QStringLiteral("error   Vpp first entry mode not available."),
                     QStringLiteral("error   Power supplied externally."), Disconnected},
                    11,
                    "Connecting to target failed.\\nVpp first entry mode not available.\\nPower supplied externally."),
        failedWrite("target connect: other", {"target-connect=5"}, {Connect, failed, Disconnected}, 5,
                    "Connecting to target failed."),
    };
}

QList<Case> failuresOfTheOperation()
{
    const QString notDisconnected = QStringLiteral("error   Disconnecting from target failed.");
    return {
        failedWrite(
            "erase: 8", {"erase=8"},
            {Connect, Erase, QStringLiteral("error   Your board doesn't support selected vendor."), Disconnected}, 8,
            "Your board doesn't support selected vendor."),
        failedWrite("erase: 51", {"erase=51"},
                    {Connect, Erase, QStringLiteral("error   Selected chip not recognized."), Disconnected}, 51,
                    "Selected chip not recognized."),
        failedWrite("erase: other", {"erase=7"}, {Connect, Erase, OperationFailed, Disconnected}, 7,
                    "Operation failed."),
        failedWrite("write, reset all the same", {"write@block=3:5"},
                    {Connect, Erase, Write, Running, OperationFailed, Disconnected}, 5, "Operation failed."),
        failedWrite("write and reset", {"write=5", "reset=3"}, {Connect, Erase, Write, OperationFailed, Disconnected},
                    5, "Operation failed."),
        failedWrite("verification", {"verify=3"},
                    {Connect, Erase, Write, Verify, QStringLiteral("error   Verification failed."), Running,
                     OperationFailed, Disconnected},
                    3, "Operation failed."),
        failedWrite("target disconnect", {"target-disconnect=6"},
                    {Connect, Erase, Write, Verify, QStringLiteral("success Write operation done and verified."),
                     Running, notDisconnected},
                    6, "Disconnecting from target failed."),
        failedWrite("write and target disconnect", {"write=5", "target-disconnect=6"},
                    {Connect, Erase, Write, Running, OperationFailed, notDisconnected}, 5,
                    "Disconnecting from target failed."),
        failedWrite("link lost while writing", {"write@block=2:link-lost"},
                    {Connect, Erase, Write, OperationFailed, notDisconnected}, 106,
                    "Disconnecting from target failed."),
        failedWrite("status that is no exit code", {"erase=-1"}, {Connect, Erase, OperationFailed, Disconnected}, -1,
                    "Operation failed."),
    };
}

QList<Case> operations()
{
    const QString option = QStringLiteral("--option");
    const QString leaveRunning = QStringLiteral("1=1");
    const QString verified = QStringLiteral("success Write operation done and verified.");
    const QString blankTitle = QStringLiteral("Looking for data in the target:");
    const QString blankCheck = QStringLiteral("default Checking if MCU is blank...");
    const QString verifyTitle = QStringLiteral("Comparing the target with the image:");
    const QStringList written{WriteTitle, Start,        Connect,
                              Erase,      Write,        QStringLiteral("success Write operation done."),
                              Running,    Disconnected, QStringLiteral("Status 0")};
    const QString next = QStringLiteral("--operation");
    return {
        operation("write", {QStringLiteral("write")}, written.mid(0, written.size() - 1)),
        {"write, verify and compare",
         {next, QStringLiteral("write"), QStringLiteral("--verify"), QStringLiteral("--compare")},
         {WriteTitle, Start, Connect, Erase, Write, Verify, verified, Running, Disconnected, QStringLiteral("Status 0"),
          QStringLiteral("The target holds the image: 1024 bytes at one place compared, all equal.")},
         0},
        operation("write, erasing what is needed", {QStringLiteral("write"), option, QStringLiteral("0=2")},
                  written.mid(0, written.size() - 1)),
        operation("write, halted afterwards",
                  {QStringLiteral("write"), QStringLiteral("--connection-option"), QStringLiteral("5=1")},
                  {WriteTitle, Start, Connect, Erase, Write, QStringLiteral("success Write operation done."),
                   QStringLiteral("default Chip is halted."), Disconnected}),
        operation("write with a mismatch",
                  QStringList{QStringLiteral("write"), QStringLiteral("--verify")} + faults({"verify-mismatch"}),
                  {WriteTitle, Start, Connect, Erase, Write, Verify, QStringLiteral("error   Verification failed."),
                   Running, Disconnected}),
        operation("verify", {QStringLiteral("write"), next, QStringLiteral("verify")},
                  written
                      + QStringList{verifyTitle, Start, Connect, Verify, QStringLiteral("success File is verified."),
                                    Running, Disconnected}),
        operation("verify with a mismatch, left running", {QStringLiteral("verify"), option, leaveRunning},
                  {verifyTitle, Start, Connect, Verify, QStringLiteral("error   File not verified."), Disconnected}),
        operation(
            "blank", {QStringLiteral("blank")},
            {blankTitle, Start, Connect, blankCheck, QStringLiteral("success Chip is blank."), Running, Disconnected}),
        operation("not blank", {QStringLiteral("write"), next, QStringLiteral("blank")},
                  written
                      + QStringList{blankTitle, Start, Connect, blankCheck,
                                    QStringLiteral("error   Chip is not blank."), Running, Disconnected}),
        operation("not blank, left running",
                  {QStringLiteral("write"), next, QStringLiteral("blank"), option, leaveRunning},
                  written
                      + QStringList{blankTitle, Start, Connect, blankCheck,
                                    QStringLiteral("error   Chip is not blank at 0x0."), Disconnected}),
        operation("read", {QStringLiteral("read")},
                  {QStringLiteral("Reading the target:"), Start, Connect, QStringLiteral("default Reading MCU..."),
                   QStringLiteral("success Read operation done."), Disconnected}),
        operation("detect", {QStringLiteral("detect")},
                  {QStringLiteral("Looking for the target:"), Start, Connect,
                   QStringLiteral("success Target is detected."), Disconnected}),
        operation("erase", {QStringLiteral("erase")},
                  {QStringLiteral("Erasing the target:"), Start, Connect, Erase,
                   QStringLiteral("success Erase operation done."), Disconnected}),
        operation("reset", {QStringLiteral("reset")},
                  {QStringLiteral("Resetting the target:"), Start, Connect,
                   QStringLiteral("success Reset operation done."), Disconnected}),
        {"a failure ends the sequence",
         QStringList{next, QStringLiteral("detect"), next, QStringLiteral("erase")} + faults({"detect=9"}),
         {QStringLiteral("Looking for the target:"), Start, Connect, OperationFailed, Disconnected,
          status(9, "Operation failed.")},
         9},
    };
}

constexpr int PowerBlocks = 5; // of the placeholder image

/// An update of the device that fails; @p lines from the failing step on, @p step counted from 0.
Case failedDeviceUpdate(const char *name, const char *fault, int step, const QStringList &lines, int number,
                        const char *message = "Operation failed.")
{
    QStringList expected{DeviceEnterTitle, Start};
    if (step > 0)
        expected += QStringList{QStringLiteral("Status 0"), BootloaderLine, DeviceWriteTitle, Start};
    if (step > 1)
        expected += deviceWritten() + QStringList{DeviceExitTitle, Start};
    return {name, updateDevice() + faults({fault}), expected + lines + QStringList{status(number, message)}, number};
}

QList<Case> deviceUpdates()
{
    const QStringList entered{DeviceEnterTitle, Start, QStringLiteral("Status 0"), BootloaderLine};
    const QString eraseFailed = QStringLiteral("error   Flash erase error.");
    const QString writeFailed = QStringLiteral("error   Firmware write error.");
    const QString verifyFailed = QStringLiteral("error   File not verified.");
    return {
        {"update the device", updateDevice(),
         entered + QStringList{DeviceWriteTitle, Start} + deviceWritten()
             + QStringList{DeviceExitTitle, Start, QStringLiteral("Status 0")},
         0},
        failedDeviceUpdate("update the device: enter", "bootloader-enter=7", 0, {OperationFailed}, 7),
        failedDeviceUpdate("update the device: connect", "device-connect=38", 0,
                           {QStringLiteral("error   There is no selected device.")}, 38,
                           "There is no selected device."),
        failedDeviceUpdate("update the device: erase", "bootloader-erase=7", 1,
                           {LoadingFirmware, ErasingFlash, eraseFailed, OperationFailed}, 7),
        failedDeviceUpdate("update the device: first block", "bootloader-write@block=1:7", 1,
                           {LoadingFirmware, ErasingFlash, WritingFirmware, writeFailed, OperationFailed}, 7),
        failedDeviceUpdate("update the device: last block", "bootloader-write@block=4:7", 1,
                           {LoadingFirmware, ErasingFlash, WritingFirmware, writeFailed, OperationFailed}, 7),
        failedDeviceUpdate("update the device: link lost", "bootloader-write@block=2:link-lost", 1,
                           {LoadingFirmware, ErasingFlash, WritingFirmware, writeFailed, OperationFailed}, 106),
        failedDeviceUpdate(
            "update the device: verify", "bootloader-verify=7", 1,
            {LoadingFirmware, ErasingFlash, WritingFirmware, VerifyingWrite, verifyFailed, OperationFailed}, 7),
        failedDeviceUpdate("update the device: exit", "bootloader-exit=7", 2, {OperationFailed}, 7),
    };
}

/// An update of the power module whose last step logs @p lines.
Case powerUpdate(const char *name, std::initializer_list<const char *> faultTexts, const QStringList &lines,
                 int number = 0)
{
    const QStringList steps{PowerActivateTitle, Start, QStringLiteral("Status 0"),
                            PowerInfoTitle,     Start, QStringLiteral("Status 0"),
                            PowerWriteTitle,    Start, LoadingFirmware,
                            ErasingFlash};
    return {name, QStringList{QStringLiteral("--operation"), QStringLiteral("update-power")} + faults(faultTexts),
            steps + lines
                + (number == 0 ? QStringList{QStringLiteral("Status 0")}
                               : QStringList{OperationFailed, status(number, "Operation failed.")}),
            number};
}

QList<Case> powerUpdates()
{
    const QString writeFailed = QStringLiteral("error   Firmware write error.");
    const QString mismatch = QStringLiteral("error   File not verified.");
    const QString resetFailed = QStringLiteral("error   Power module reset error.");
    QList<Case> cases{
        powerUpdate("update the power module", {},
                    {WritingFirmware, VerifyingWrite, QStringLiteral("success Write operation done and verified.")}),
        powerUpdate("update the power module: erase", {"power-bootloader-erase=7"},
                    {QStringLiteral("error   Firmware erase error.")}, 7),
        powerUpdate("update the power module: a block fails every time", {"power-bootloader-write@block=1:7"},
                    QStringList{WritingFirmware} + QStringList(PowerBlocks, writeFailed), 7),
        powerUpdate("update the power module: reset", {"power-bootloader-reset=7"},
                    {WritingFirmware, VerifyingWrite, QStringLiteral("success Write operation done and verified."),
                     resetFailed},
                    7),
        // Whatever the verification says, the status of the reset counts.
        powerUpdate("update the power module: verify", {"power-bootloader-verify=7"},
                    {WritingFirmware, VerifyingWrite, QStringLiteral("error   Verification failed.")}),
        powerUpdate("update the power module: mismatch", {"power-bootloader-mismatch"},
                    {WritingFirmware, VerifyingWrite, mismatch}),
        {"update the power module: activate",
         QStringList{QStringLiteral("--operation"), QStringLiteral("update-power")}
             + faults({"power-bootloader-activate=7"}),
         {PowerActivateTitle, Start, OperationFailed, status(7, "Operation failed.")},
         7},
        {"update the power module: info",
         QStringList{QStringLiteral("--operation"), QStringLiteral("update-power")}
             + faults({"power-bootloader-info=7"}),
         {PowerActivateTitle, Start, QStringLiteral("Status 0"), PowerInfoTitle, Start, OperationFailed,
          status(7, "Operation failed.")},
         7},
    };
    // A block that fails once is written by the next attempt; the last block is left out, which the check finds.
    cases.append(powerUpdate("update the power module: first block", {"power-bootloader-write@call=1:7"},
                             {WritingFirmware, writeFailed, VerifyingWrite, mismatch}));
    cases.append(powerUpdate("update the power module: middle block", {"power-bootloader-write@call=3:7"},
                             {WritingFirmware, writeFailed, VerifyingWrite, mismatch}));
    cases.append(powerUpdate("update the power module: last block", {"power-bootloader-write@call=5:7"},
                             {WritingFirmware, writeFailed}, 7));
    return cases;
}

QList<Case> linkPasswords()
{
    const QString titleOfDetect = QStringLiteral("Looking for the target:");
    const QStringList refused{titleOfDetect, Start, QStringLiteral("error   WiFi link-debug authentication failed! "),
                              QStringLiteral("error   Please enter correct WiFi link password"),
                              status(14,
                                     "WiFi link-debug authentication failed! \\nPlease enter correct WiFi link "
                                     "password")};
    const QString tried = QStringLiteral("The password dialog gets the password of the link; trying again.");
    const QStringList detected{titleOfDetect, Start,
                               Connect,       QStringLiteral("success Target is detected."),
                               Disconnected,  QStringLiteral("Status 0")};
    const QStringList detect{QStringLiteral("--operation"), QStringLiteral("detect"), QStringLiteral("--wifi"),
                             QStringLiteral("--device-password-file"), QStringLiteral("right.txt")};
    const QString file = QStringLiteral("--password-file");
    QStringList updateRefused = refused;
    updateRefused.replaceInStrings(titleOfDetect, DeviceEnterTitle)
        .replaceInStrings(QStringLiteral("link-debug"), QStringLiteral("link-config"))
        .replaceInStrings(QStringLiteral("Status 14"), QStringLiteral("Status 13"));
    return {
        {"WiFi: right password", detect + QStringList{file, QStringLiteral("right.txt")},
         refused + QStringList{tried} + detected, 0},
        {"WiFi: wrong password", detect + QStringList{file, QStringLiteral("wrong.txt")},
         refused + QStringList{tried} + refused + QStringList{PasswordCancelled}, 14},
        {"WiFi: no password known", detect, refused + QStringList{PasswordCancelled}, 14},
        {"WiFi: update with the right password",
         updateDevice() + detect.mid(2) + QStringList{file, QStringLiteral("right.txt")},
         updateRefused
             + QStringList{tried, DeviceEnterTitle, Start, QStringLiteral("Status 0"), BootloaderLine, DeviceWriteTitle,
                           Start}
             + deviceWritten() + QStringList{DeviceExitTitle, Start, QStringLiteral("Status 0")},
         0},
        {"no driver",
         {QStringLiteral("--operation"), QStringLiteral("detect"), QStringLiteral("--no-driver")},
         {titleOfDetect, Start, QStringLiteral("error   There is no selected device."),
          status(38, "There is no selected device.")},
         38},
    };
}

QList<Case> allCases()
{
    return failuresToConnect() + failuresOfTheOperation() + operations() + deviceUpdates() + powerUpdates()
        + linkPasswords();
}

QStringList withoutTimes(const QByteArray &output)
{
    static const QRegularExpression time(QStringLiteral("^\\[ *\\d+\\.\\d{3}\\] "),
                                         QRegularExpression::MultilineOption);
    QString text = UniProgTest::programOutput(output).remove(time);
    if (text.endsWith(u'\n'))
        text.chop(1);
    return text.split(u'\n');
}

} // namespace

void tst_ProgrammerExample::initTestCase()
{
    QFile image(path("image.bin"));
    QVERIFY(image.open(QIODevice::WriteOnly));
    for (int i = 0; i < ImageSize; ++i)
        image.putChar(char(i * 7));
    image.close();

    const QByteArray payload(FirmwareSize, '\x5a');
    QByteArray header(8, '\0'); // the CRC, and no version
    qToLittleEndian(SimulatedProgrammer::crc32(payload), header.data());
    store("device.fw", header + payload);
    store("right.txt", Password + QByteArrayLiteral("\n"));
    store("wrong.txt", "a guess\n");

    const QString operation = QStringLiteral("--operation");
    const QString write = QStringLiteral("write");
    const QString read = QStringLiteral("read");
    const QString output = QStringLiteral("--output");
    for (const Case &example : allCases())
        add(QString::fromLatin1(example.name), example.arguments);
    add(QStringLiteral("asks for a password"),
        {operation, QStringLiteral("detect"), QStringLiteral("--wifi"), QStringLiteral("--device-password-file"),
         path("right.txt"), QStringLiteral("--password-file"), path("right.txt"), QStringLiteral("--pictures"),
         path("wifi")});
    add(QStringLiteral("differs"),
        QStringList{operation, write, QStringLiteral("--compare")} + faults({"write@block=2:corrupt"}));
    add(QStringLiteral("hangs"),
        QStringList{operation, QStringLiteral("erase"), QStringLiteral("--timeout"), QStringLiteral("2")}
            + faults({"erase=hang"}));
    add(QStringLiteral("stores"), {operation, write, operation, read, output, path("contents.hex")});
    add(QStringLiteral("stores two pieces as one"), {operation, read, output, path("contents.bin")});
    add(QStringLiteral("draws"),
        QStringList{operation, write, QStringLiteral("--pictures"), path("new/pictures")} + faults({"write=1500ms"}));
    for (int i = 0; i < SideBySide; ++i)
        startNext();
}

QString tst_ProgrammerExample::path(const char *name) const
{
    return folder.filePath(QString::fromLatin1(name));
}

void tst_ProgrammerExample::store(const char *name, const QByteArray &bytes) const
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

std::unique_ptr<QProcess> tst_ProgrammerExample::create(const QStringList &arguments) const
{
    auto process = std::make_unique<QProcess>();
    process->setProgram(QStringLiteral(PROGRAMMER_PATH));
    process->setArguments(QStringList{QStringLiteral("--headless"), QStringLiteral("--speed"), QStringLiteral("0")}
                          + arguments);
    process->setWorkingDirectory(folder.path());
    process->setProcessChannelMode(QProcess::MergedChannels); // a warning would spoil the transcript
    return process;
}

/// Plans a run with the image.
void tst_ProgrammerExample::add(const QString &name, const QStringList &arguments)
{
    QProcess *process = create(QStringList{QStringLiteral("--image"), path("image.bin")} + arguments).release();
    process->setParent(this);
    connect(process, &QProcess::finished, this, [this, process] {
        process->setProperty(FinishedProperty, true);
        startNext();
    });
    runs.insert(name, process);
    waiting.enqueue(process);
}

void tst_ProgrammerExample::startNext()
{
    if (!waiting.isEmpty())
        waiting.dequeue()->start();
}

/// The planned run of that name, once it has ended.
QProcess *tst_ProgrammerExample::finished(const QString &name) const
{
    QProcess *process = runs.value(name);
    (void)QTest::qWaitFor([=] { return process->property(FinishedProperty).toBool(); }, LongWait);
    return process;
}

void tst_ProgrammerExample::theTranscriptIsExact_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<int>("exitCode");
    for (const Case &example : allCases())
        QTest::newRow(example.name) << example.lines << example.exitCode;
}

void tst_ProgrammerExample::theTranscriptIsExact()
{
    QFETCH(QStringList, lines);
    QFETCH(int, exitCode);
    QProcess *process = finished(QString::fromLatin1(QTest::currentDataTag()));
    const QByteArray output = process->readAll();
    QVERIFY(!output.contains(Password));
    QCOMPARE(withoutTimes(output), lines);
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(process->exitCode(), exitCode);
}

void tst_ProgrammerExample::aTargetThatDiffersIsFound()
{
    QProcess *process = finished(QStringLiteral("differs"));
    const QString lastLine = withoutTimes(process->readAll()).constLast();
    QVERIFY2(lastLine.startsWith(QStringLiteral("The target differs from the image at 0x000001")),
             qPrintable(lastLine));
    QCOMPARE(process->exitCode(), TargetDiffers);
}

void tst_ProgrammerExample::aHangEndsWithTheTimeout()
{
    QProcess *process = finished(QStringLiteral("hangs"));
    QCOMPARE(withoutTimes(process->readAll()).constLast(), QStringLiteral("No answer in time."));
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(process->exitCode(), NoAnswer);
}

void tst_ProgrammerExample::whatWasReadIsStored()
{
    if (QStandardPaths::findExecutable(QStringLiteral("srec_cat")).isEmpty())
        QSKIP("srecord is not installed");
    QCOMPARE(finished(QStringLiteral("stores"))->exitCode(), 0);
    MemoryManager contents;
    QString error;
    QVERIFY2(FirmwareFile::load(path("contents.hex"), 0, &contents, &error), qPrintable(error));
    QCOMPARE(contents.size(), TargetSize);
    QFile image(path("image.bin"));
    QVERIFY(image.open(QIODevice::ReadOnly));
    QCOMPARE(contents.read(0, ImageSize), image.readAll());
    QCOMPARE(contents.read(ImageSize, ImageSize), QByteArray(ImageSize, MemoryManager::ErasedByte));

    QCOMPARE(finished(QStringLiteral("stores two pieces as one"))->exitCode(), FileError);
}

void tst_ProgrammerExample::picturesAreLeft()
{
    QCOMPARE(finished(QStringLiteral("draws"))->exitCode(), 0);
    for (const char *const name : {"window", "write-running", "write-draining", "write-result"}) {
        const QImage picture(QDir(path("new/pictures")).filePath(QString::fromLatin1(name) + QStringLiteral(".png")));
        QVERIFY2(!picture.isNull(), name);
    }
    QCOMPARE(finished(QStringLiteral("asks for a password"))->exitCode(), 0);
    for (const char *const name : {"detect-explanation", "detect-password", "detect-result"})
        QVERIFY2(QFile::exists(QDir(path("wifi")).filePath(QString::fromLatin1(name) + QStringLiteral(".png"))), name);
}

void tst_ProgrammerExample::thePasswordMayComeFromTheEnvironment()
{
    const std::unique_ptr<QProcess> process
        = create({QStringLiteral("--operation"), QStringLiteral("detect"), QStringLiteral("--wifi"),
                  QStringLiteral("--device-password-file"), QStringLiteral("right.txt")});
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("UNIPROG_WIFI_PASSWORD"), QString::fromUtf8(Password));
    process->setProcessEnvironment(environment);
    process->start();
    QVERIFY(process->waitForFinished(LongWait));
    QCOMPARE(process->exitCode(), 0);
    QVERIFY(!process->readAll().contains(Password));
}

UNIPROG_TEST_MAIN(tst_ProgrammerExample)

#include "tst_programmerexample.moc"
