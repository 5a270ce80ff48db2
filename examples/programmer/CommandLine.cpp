#include "CommandLine.h"

#include "Appearance.h"
#include "HeadlessRun.h"

#include <QCommandLineParser>
#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <utility>

namespace {

constexpr int SecondsPerDay = 24 * 60 * 60;
constexpr int HexadecimalBase = 16;
constexpr int TestVendor = 0x1209; // pid.codes, where the product is free for everybody's tests
constexpr int TestProduct = 0x0001;

constexpr QLatin1String HeadlessOption("headless");
constexpr QLatin1String OperationOption("operation");
constexpr QLatin1String DriverOption("driver");
constexpr QLatin1String ImageOption("image");
constexpr QLatin1String BaseOption("base");
constexpr QLatin1String OutputOption("output");
constexpr QLatin1String CompareOption("compare");
constexpr QLatin1String VerifyOption("verify");
constexpr QLatin1String TargetOption("option");
constexpr QLatin1String ConnectionOption("connection-option");
constexpr QLatin1String FaultOption("fault");
constexpr QLatin1String SpeedOption("speed");
constexpr QLatin1String ThemeOption("theme");
constexpr QLatin1String PicturesOption("pictures");
constexpr QLatin1String TimeoutOption("timeout");
constexpr QLatin1String WiFiOption("wifi");
constexpr QLatin1String PasswordFileOption("password-file");
constexpr QLatin1String DevicePasswordFileOption("device-password-file");
constexpr QLatin1String UpdateUrlOption("update-url");
constexpr QLatin1String WatchOption("watch");
constexpr QLatin1String NoDriverOption("no-driver");

constexpr char PasswordVariable[] = "UNIPROG_WIFI_PASSWORD";
constexpr qint64 LongestPassword = 256; // bytes

/// Operations that belong together under one name.
struct Sequence
{
    const char *name;
    QList<ProgrammerSession::Operation> operations;
};

const QList<Sequence> &sequences()
{
    using Operation = ProgrammerSession::Operation;
    static const QList<Sequence> all{
        {"update-device", {Operation::EnterBootloader, Operation::WriteDeviceFirmware, Operation::ExitBootloader}},
        {"update-power",
         {Operation::ActivatePowerBootloader, Operation::ShowPowerBootloader, Operation::WritePowerFirmware}},
    };
    return all;
}

/// The operations that make sense without a window to show what they bring, then the sequences.
QList<Sequence> operationChoices()
{
    using Subject = ProgrammerSession::Subject;
    QList<Sequence> choices;
    for (const ProgrammerSession::Description &description : ProgrammerSession::descriptions()) {
        if (description.subject == Subject::Target || description.subject == Subject::DeviceFirmware
            || description.subject == Subject::PowerModule)
            choices.append({description.name, {description.operation}});
    }
    return choices + sequences();
}

QStringList operationNames()
{
    QStringList names;
    for (const Sequence &choice : operationChoices())
        names.append(QString::fromLatin1(choice.name));
    return names;
}

void describeOptions(QCommandLineParser *parser)
{
    parser->setApplicationDescription(
        QStringLiteral("Writes, reads and checks the memory of a target: a simulated one, or with --driver another.\n\n"
                       "Without --operation a window opens. With it, or with --headless, the operations run without "
                       "a display; the log goes to the standard output, and the exit code is the final status: ")
        + HeadlessRun::exitCodeHelp());
    parser->addHelpOption();
    parser->addVersionOption();
    parser->addOptions({
        {HeadlessOption, QStringLiteral("Use no display.")},
        {OperationOption,
         QStringLiteral("Run OPERATION: %1. May be given several times; a failure ends the sequence.")
             .arg(operationNames().join(QStringLiteral(", "))),
         QStringLiteral("OPERATION")},
        {DriverOption,
         QStringLiteral("Use the target behind a GDB server, gdb:HOST:PORT, instead of the simulated programmer."),
         QStringLiteral("DRIVER")},
        {ImageOption,
         QStringLiteral("The firmware image: a .bin, .hex or .s19 file; for update-device a firmware of the device."),
         QStringLiteral("FILE")},
        {BaseOption, QStringLiteral("Where a .bin image starts. 0 by default; 0x for hexadecimal."),
         QStringLiteral("ADDRESS")},
        {OutputOption, QStringLiteral("Store what the operation read finds in FILE (.hex, .s19 or .bin)."),
         QStringLiteral("FILE")},
        {CompareOption, QStringLiteral("At the end, compare the memory of the target with the image.")},
        {VerifyOption, QStringLiteral("Verify after writing, as --option 2=1.")},
        {TargetOption,
         QStringLiteral("Set operation option N to V. 0: erase mode, 2 erases only what the image needs; "
                        "1: not 0 leaves the target running; 2: not 0 verifies after writing."),
         QStringLiteral("N=V")},
        {ConnectionOption,
         QStringLiteral("Set connection option N to V. 5: not 0 keeps the target halted after reset."),
         QStringLiteral("N=V")},
        {FaultOption,
         QStringLiteral("Let something fail, for example device-connect=38 or write@block=3. Names: %1.")
             .arg(SimulatedProgrammer::faultNames().join(QStringLiteral(", "))),
         QStringLiteral("FAULT")},
        {WiFiOption, QStringLiteral("Reach the device by WiFi.")},
        {PasswordFileOption,
         QStringLiteral("When a WiFi link asks for its password, answer with the first line of FILE and try again; "
                        "without it, with the environment variable %1, or cancel.")
             .arg(QLatin1String(PasswordVariable)),
         QStringLiteral("FILE")},
        {DevicePasswordFileOption,
         QStringLiteral("Let the WiFi links of the simulated device demand the first line of FILE."),
         QStringLiteral("FILE")},
        {NoDriverOption, QStringLiteral("Run as where the driver of the programmer is missing.")},
        {SpeedOption, QStringLiteral("Run X times as fast as a real programmer; 0 never waits. 1 by default."),
         QStringLiteral("X")},
        {ThemeOption,
         QStringLiteral("The look: %1. The first one by default.").arg(Appearance::themes().join(QStringLiteral(", "))),
         QStringLiteral("THEME"), Appearance::themes().constFirst()},
        {UpdateUrlOption, QStringLiteral("Ask for newer versions at URL: lines \"suite=1.2\" and \"firmware=2.3\"."),
         QStringLiteral("URL")},
        {WatchOption,
         QStringLiteral("Show in the window when USB devices with these hexadecimal identifiers come and go. May be "
                        "given several times; 1209:0001, which is free for tests, by default."),
         QStringLiteral("VID:PID")},
        {PicturesOption, QStringLiteral("Leave pictures of the window in the folder DIR."), QStringLiteral("DIR")},
        {TimeoutOption, QStringLiteral("Give up after S seconds. 300 by default."), QStringLiteral("S")},
    });
}

bool readNumberedValues(const QStringList &texts, QList<QPair<int, int>> *values, QString *error)
{
    for (const QString &text : texts) {
        bool numberOk = false;
        bool valueOk = false;
        const int number = text.section(u'=', 0, 0).toInt(&numberOk);
        const int value = text.section(u'=', 1).toInt(&valueOk);
        if (!numberOk || !valueOk || number < 0) {
            *error = QStringLiteral("An option is given as N=V, two whole numbers; \"%1\" is not.").arg(text);
            return false;
        }
        values->append({number, value});
    }
    return true;
}

bool readWatched(const QCommandLineParser &parser, CommandLine *commandLine, QString *error)
{
    static const QRegularExpression pattern(QStringLiteral("^([0-9a-fA-F]{1,4}):([0-9a-fA-F]{1,4})$"));
    const QStringList texts = parser.values(WatchOption);
    for (const QString &text : texts) {
        const QRegularExpressionMatch match = pattern.match(text);
        if (!match.hasMatch()) {
            *error = QStringLiteral("USB devices are given as VID:PID, two hexadecimal numbers up to FFFF; \"%1\" is "
                                    "none.")
                         .arg(text);
            return false;
        }
        commandLine->watched.append(
            {match.captured(1).toInt(nullptr, HexadecimalBase), match.captured(2).toInt(nullptr, HexadecimalBase)});
    }
    if (texts.isEmpty())
        commandLine->watched.append({TestVendor, TestProduct});
    return true;
}

bool readOperations(const QStringList &texts, QList<ProgrammerSession::Operation> *operations, QString *error)
{
    const QStringList names = operationNames();
    const QList<Sequence> choices = operationChoices();
    for (const QString &text : texts) {
        const qsizetype index = names.indexOf(text);
        if (index < 0) {
            *error = QStringLiteral("There is no operation \"%1\". Choose from: %2.")
                         .arg(text, names.join(QStringLiteral(", ")));
            return false;
        }
        operations->append(choices.at(index).operations);
    }
    return true;
}

bool readNumbers(const QCommandLineParser &parser, CommandLine *commandLine, QString *error)
{
    bool ok = true;
    if (parser.isSet(BaseOption))
        commandLine->binaryBase = parser.value(BaseOption).toUInt(&ok, 0);
    if (!ok) {
        *error = QStringLiteral("\"%1\" is no address from 0 to 0xFFFFFFFF.").arg(parser.value(BaseOption));
        return false;
    }
    if (parser.isSet(SpeedOption))
        commandLine->speed = parser.value(SpeedOption).toDouble(&ok);
    if (!ok || !(commandLine->speed == 0 || (commandLine->speed >= 0.001 && commandLine->speed <= 1e6))) {
        *error = QStringLiteral("\"%1\" is no speed. Give 0, or a number from 0.001 to 1000000.")
                     .arg(parser.value(SpeedOption));
        return false;
    }
    if (parser.isSet(TimeoutOption))
        commandLine->timeout = parser.value(TimeoutOption).toInt(&ok);
    if (!ok || commandLine->timeout < 1 || commandLine->timeout > SecondsPerDay) {
        *error = QStringLiteral("\"%1\" is no time of 1 to %2 seconds.")
                     .arg(parser.value(TimeoutOption))
                     .arg(SecondsPerDay);
        return false;
    }
    return true;
}

/// Whether one of the operations needs an image for that subject.
bool needsImage(const CommandLine &commandLine, ProgrammerSession::Subject subject)
{
    return std::any_of(commandLine.operations.cbegin(), commandLine.operations.cend(),
                       [=](ProgrammerSession::Operation operation) {
                           const ProgrammerSession::Description &description = ProgrammerSession::describe(operation);
                           return description.needsImage && description.subject == subject;
                       });
}

bool checkFiles(CommandLine *commandLine, QString *error)
{
    using Subject = ProgrammerSession::Subject;
    const bool forDevice = needsImage(*commandLine, Subject::DeviceFirmware);
    const bool forTarget = needsImage(*commandLine, Subject::Target) || commandLine->compare;
    if (commandLine->image.isEmpty() && (forDevice || forTarget)) {
        *error = QStringLiteral("Please choose an image with --image FILE.");
        return false;
    }
    if (forDevice && forTarget) {
        *error = QStringLiteral("One image is not for the target and the device: run the program twice.");
        return false;
    }
    if (forDevice)
        commandLine->deviceImage = std::exchange(commandLine->image, QString());
    if (!commandLine->output.isEmpty() && !commandLine->operations.contains(ProgrammerSession::Operation::Read)) {
        *error = QStringLiteral("There is nothing to store in %1 without --operation read.").arg(commandLine->output);
        return false;
    }
    return true;
}

/// Passwords come in files: a command line is there for everybody on the machine to read.
bool readPasswordFile(const QString &path, QString *password, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        *error = QStringLiteral("The password file %1 cannot be read.").arg(path);
        return false;
    }
    QByteArray line = file.readLine(LongestPassword);
    if (line.endsWith('\n'))
        line.chop(1);
    *password = QString::fromUtf8(line);
    return true;
}

bool readPasswords(const QCommandLineParser &parser, CommandLine *commandLine, QString *error)
{
    if (parser.isSet(PasswordFileOption)) {
        if (!readPasswordFile(parser.value(PasswordFileOption), &commandLine->password, error))
            return false;
        commandLine->hasPassword = true;
    } else if (qEnvironmentVariableIsSet(PasswordVariable)) {
        commandLine->password = qEnvironmentVariable(PasswordVariable);
        commandLine->hasPassword = true;
    }
    return !parser.isSet(DevicePasswordFileOption)
        || readPasswordFile(parser.value(DevicePasswordFileOption), &commandLine->devicePassword, error);
}

bool needsSimulation(const CommandLine &commandLine)
{
    return commandLine.compare || !commandLine.faults.isEmpty() || !commandLine.hasDriver || commandLine.overWiFi
        || !commandLine.devicePassword.isEmpty() || commandLine.speed != CommandLine().speed;
}

} // namespace

bool readCommandLine(const QStringList &arguments, CommandLine *commandLine, QString *error)
{
    QCommandLineParser parser;
    describeOptions(&parser);
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return false;
    }
    if (parser.isSet(QStringLiteral("help")) || parser.isSet(QStringLiteral("help-all")))
        parser.showHelp();
    if (parser.isSet(QStringLiteral("version")))
        parser.showVersion();
    if (!parser.positionalArguments().isEmpty()) {
        *error = QStringLiteral("What is \"%1\"? Every argument has a name, see --help.")
                     .arg(parser.positionalArguments().constFirst());
        return false;
    }

    commandLine->driver = parser.value(DriverOption);
    commandLine->image = parser.value(ImageOption);
    commandLine->output = parser.value(OutputOption);
    commandLine->compare = parser.isSet(CompareOption);
    commandLine->hasDriver = !parser.isSet(NoDriverOption);
    commandLine->overWiFi = parser.isSet(WiFiOption);
    commandLine->faults = parser.values(FaultOption);
    commandLine->theme = parser.value(ThemeOption);
    if (!Appearance::themes().contains(commandLine->theme)) {
        *error = QStringLiteral("There is no theme \"%1\". Choose from: %2.")
                     .arg(commandLine->theme, Appearance::themes().join(QStringLiteral(", ")));
        return false;
    }
    commandLine->updateUrl = parser.value(UpdateUrlOption);
    commandLine->pictures = parser.value(PicturesOption);
    if (parser.isSet(VerifyOption))
        commandLine->operationOptions.append({TargetOptionsOperation::VerifyAfterWrite, 1});
    return readOperations(parser.values(OperationOption), &commandLine->operations, error)
        && readNumberedValues(parser.values(TargetOption), &commandLine->operationOptions, error)
        && readNumberedValues(parser.values(ConnectionOption), &commandLine->connectionOptions, error)
        && readWatched(parser, commandLine, error) && readNumbers(parser, commandLine, error)
        && readPasswords(parser, commandLine, error) && checkFiles(commandLine, error);
}

bool applySettings(const CommandLine &commandLine, ProgrammerSession *session, QString *error)
{
    if (!session->isSimulated() && needsSimulation(commandLine)) {
        *error = QStringLiteral("Only the simulated programmer can be missing, fail on demand, be compared with the "
                                "image, have another speed, or be reached by WiFi.");
        return false;
    }
    session->programmer().setTimeScale(commandLine.speed == 0 ? 0 : 1 / commandLine.speed);
    if (!commandLine.devicePassword.isEmpty()) {
        session->programmer().setWiFiPassword(OPERATION_TYPE_CONFIGURATION, commandLine.devicePassword);
        session->programmer().setWiFiPassword(OPERATION_TYPE_DEBUG, commandLine.devicePassword);
    }
    if (commandLine.overWiFi && !session->selectLink(TSelectedDevice::WiFi)) {
        *error = QStringLiteral("There is no WiFi device.");
        return false;
    }
    for (const auto &[number, value] : commandLine.operationOptions)
        session->operationOptions().setIntValue(number, value);
    for (const auto &[number, value] : commandLine.connectionOptions)
        session->connectionOptions().setIntValue(number, value);
    for (const QString &fault : commandLine.faults) {
        if (!session->addFault(fault, error))
            return false;
    }
    return true;
}
