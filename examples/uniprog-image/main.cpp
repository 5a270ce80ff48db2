// Looks into firmware images and makes them from a payload.

#include "ImageMaker.h"
#include "ImageReport.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

#include <limits>
#include <optional>

namespace {

const char Description[]
    = "Looks into firmware images of the programmer and of its power module, and makes them from a payload.\n\n"
      "  uniprog-image info FILE                                           prints what an image holds\n"
      "  uniprog-image make --payload FILE --version TEXT --output FILE    makes an image\n\n"
      "The exit status is 0 when the image is as its reader needs it, else that of the first cause which applies:\n"
      "   2  the command line is wrong\n"
      "   3  a file cannot be read\n"
      "   4  the file is shorter than the header of 8 bytes\n"
      "   5  the length of the version text is negative (device)\n"
      "   6  the version text goes beyond the end of the file\n"
      "   7  the payload is larger than 2147483647 bytes\n"
      "   8  the payload is no multiple of 992 bytes (power module)\n"
      "   9  the CRC of the payload is not the stored one\n"
      "  10  device and power module read different lengths (with --strict)\n"
      "  11  the version takes more than 127 bytes (make)\n"
      "  12  the image cannot be written (make)";

void print(const QString &kind, const QString &message)
{
    QTextStream(stderr) << "uniprog-image: " << kind << message << '\n';
}

int fail(const QString &message)
{
    print({}, message);
    return int(Cause::CommandLine);
}

template <typename Number>
std::optional<Number> numberIn(const QString &text)
{
    bool isNumber = false;
    const quint64 number = text.toULongLong(&isNumber, 0);
    if (!isNumber || number > std::numeric_limits<Number>::max())
        return std::nullopt;
    return Number(number);
}

int info(const QCommandLineParser &parser, const QStringList &files)
{
    if (files.size() != 1)
        return fail("info needs one file; see --help");
    const auto deviceId = numberIn<unsigned int>(parser.value("device-id"));
    if (!deviceId)
        return fail(parser.value("device-id") + " is no device id");
    const auto sectorSize = numberIn<unsigned short>(parser.value("sector-size"));
    if (!sectorSize)
        return fail(parser.value("sector-size") + " is no sector size, which is from 0 to 65535");

    ImageReport report(files.first(),
                       parser.isSet("power") ? ImageReport::PowerModuleUpdate : ImageReport::DeviceUpdate, *deviceId,
                       *sectorSize);
    if (report.read())
        QTextStream(stdout) << report.text();
    Cause status = Cause::None;
    for (const Finding &finding : report.findings()) {
        const bool isError = finding.isError || parser.isSet("strict");
        print(files.first() + (isError ? ": error: " : ": warning: "), finding.message);
        if (isError && status == Cause::None)
            status = finding.cause;
    }
    return int(status);
}

int make(const QCommandLineParser &parser, const QStringList &files)
{
    if (!files.isEmpty() || !parser.isSet("payload") || !parser.isSet("version") || !parser.isSet("output"))
        return fail("make needs --payload, --version and --output; see --help");
    const Finding failure = makeImage(parser.value("payload"), parser.value("version"), parser.value("output"));
    if (failure.cause != Cause::None)
        print("error: ", failure.message);
    return int(failure.cause);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("uniprog-image");

    const QList<QCommandLineOption> infoOptions{
        {"power", "info: Read the image as the update of the power module does."},
        {"device-id", "info: The device is <id>; 4098 (0x1002) has sectors of 4096 bytes.", "id", "0"},
        {"sector-size", "info: Other devices have erase sectors of <bytes>; 4096 if not given.", "bytes", "4096"},
        {"strict", "info: Warnings are errors."}};
    const QList<QCommandLineOption> makeOptions{{"payload", "make: What the image carries.", "file"},
                                                {"version", "make: The version, at most 127 bytes as UTF-8.", "text"},
                                                {"output", "make: The image to write.", "file"}};
    QCommandLineParser parser;
    parser.setApplicationDescription(Description);
    parser.addHelpOption();
    parser.addOptions(infoOptions + makeOptions);
    parser.addPositionalArgument("command", "info or make.");
    parser.addPositionalArgument("file", "info: The image to look into.", "[file]");
    if (!parser.parse(QCoreApplication::arguments()))
        return fail(parser.errorText());
    if (parser.isSet("help"))
        parser.showHelp();

    QStringList files = parser.positionalArguments();
    const QString command = files.isEmpty() ? QString() : files.takeFirst();
    if (command != "info" && command != "make")
        return fail("a command is needed, info or make; see --help");
    for (const QCommandLineOption &option : command == "info" ? makeOptions : infoOptions) {
        if (parser.isSet(option))
            return fail(command + " takes no --" + option.names().constFirst());
    }
    return command == "info" ? info(parser, files) : make(parser, files);
}
