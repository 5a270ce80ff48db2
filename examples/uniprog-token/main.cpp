// Prints the groups of a hardware token that is given in one of its two forms.

#include <UtilsToken.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <cctype>
#include <optional>

namespace {

enum ExitStatus { Printed = 0, CannotRead = 2 };

int fail(const QString &message)
{
    QTextStream(stderr) << "uniprog-token: " << message << '\n';
    return CannotRead;
}

// Pairs of digits, with blanks and line ends wherever the eye wants them.
std::optional<QByteArray> bytesOf(QByteArray hex)
{
    hex = hex.simplified().replace(' ', QByteArray());
    const auto isDigit = [](char c) { return std::isxdigit(static_cast<unsigned char>(c)); };
    if (hex.size() % 2 != 0 || !std::all_of(hex.cbegin(), hex.cend(), isDigit))
        return std::nullopt;
    return QByteArray::fromHex(hex);
}

void print(UtilsToken token, const QList<HwTokenGroup> &groups)
{
    QTextStream out(stdout);
    for (const HwTokenGroup group : groups) {
        const QList<QString> texts = token.getTokenGroup(group);
        out << "group " << int(group) << ": " << texts.size() << (texts.size() == 1 ? " item" : " items") << '\n';
        if (texts.isEmpty())
            continue;
        out << "  texts: " << texts.join(' ') << "\n  bytes:";
        for (const unsigned char byte : token.getTokenGroupVector(group))
            out << ' ' << QString::number(byte, 16).rightJustified(2, '0');
        out << '\n';
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("uniprog-token");

    const QCommandLineOption hex("hex", "The binary form, as base-16 <digits>.", "digits");
    const QCommandLineOption hexFile("hex-file", "The binary form, as base-16 digits in <file>.", "file");
    const QCommandLineOption text("text", "The text form, as in 1-2-12-34-3-1-a0.", "token");
    const QCommandLineOption group("group", "Print group <number>, not groups 1 to 4. Can be repeated.", "number");
    QCommandLineParser parser;
    parser.setApplicationDescription("Prints the groups of a hardware token: the texts of the items and their bytes.");
    parser.addHelpOption();
    parser.addOptions({hex, hexFile, text, group});
    if (!parser.parse(QCoreApplication::arguments()))
        return fail(parser.errorText());
    if (parser.isSet("help"))
        parser.showHelp();
    if (int(parser.isSet(hex)) + int(parser.isSet(hexFile)) + int(parser.isSet(text)) != 1
        || !parser.positionalArguments().isEmpty())
        return fail("one of --hex, --hex-file and --text is needed; see --help");

    QList<HwTokenGroup> groups;
    for (const QString &number : parser.values(group)) {
        bool isNumber = false;
        groups.append(HwTokenGroup(number.toInt(&isNumber)));
        if (!isNumber)
            return fail(number + " is no group number");
    }
    if (groups.isEmpty())
        groups = {HwTokenGroup1, HwTokenGroup2, HwTokenGroup3, HwTokenGroup4};

    if (parser.isSet(text)) {
        print(UtilsToken(parser.value(text)), groups);
        return Printed;
    }
    QByteArray digits = parser.value(hex).toLatin1();
    if (parser.isSet(hexFile)) {
        QFile file(parser.value(hexFile));
        if (!file.open(QIODevice::ReadOnly))
            return fail(file.fileName() + ": " + file.errorString());
        digits = file.readAll();
    }
    const std::optional<QByteArray> bytes = bytesOf(digits);
    if (!bytes)
        return fail("the binary form is written in pairs of base-16 digits");
    print(UtilsToken(*bytes), groups);
    return Printed;
}
