// Checks themes against their style sheet template, for continuous integration.

#include "ThemeChecker.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QTextStream>

namespace {

enum ExitStatus { Clean = 0, Problems = 1, CannotCheck = 2 };

const char Description[]
    = "Checks themes against the style sheet template that they fill in.\n\n"
      "Errors: markers without a value, values without a marker, markers with two values, markers and values that the\n"
      "order of the theme breaks, elements without an attribute, missing fonts, XML errors.\n"
      "Warnings: markers and values that work only in the order of the theme.\n\n"
      "The exit status is 0 when there is nothing to report, or only warnings; 1 when there are errors; 2 when a file\n"
      "cannot be read or the command line is wrong.";

int fail(const QString &message)
{
    QTextStream(stderr) << "uniprog-theme: " << message << '\n';
    return CannotCheck;
}

// One line a finding, in the form of compilers.
int print(const QList<Finding> &findings, bool strict)
{
    QTextStream out(stdout);
    bool failed = false;
    for (const Finding &finding : findings) {
        const bool isError = strict || finding.severity == Finding::Error;
        failed = failed || isError;
        out << finding.file << ':' << finding.line << (isError ? ": error: " : ": warning: ") << finding.message
            << '\n';
    }
    return failed ? Problems : Clean;
}

} // namespace

int main(int argc, char **argv)
{
    // Fonts need a GUI application, but no display.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName("uniprog-theme");

    const QCommandLineOption strict("strict", "Warnings are errors.");
    const QCommandLineOption fonts("fonts",
                                   "Look for fonts in <folder> too, by the names that the application gives them in "
                                   "its resources. Can be repeated.",
                                   "folder");
    const QCommandLineOption markers(
        "markers", "Find the markers of the template with <pattern>, a regular expression.", "pattern", "@[a-z0-9-]+@");
    QCommandLineParser parser;
    parser.setApplicationDescription(Description);
    parser.addHelpOption();
    parser.addOptions({strict, fonts, markers});
    parser.addPositionalArgument("template", "The style sheet template.");
    parser.addPositionalArgument("themes", "The themes to check.", "theme...");
    if (!parser.parse(QGuiApplication::arguments()))
        return fail(parser.errorText());
    if (parser.isSet("help"))
        parser.showHelp();

    QStringList files = parser.positionalArguments();
    if (files.size() < 2)
        return fail("a template and at least one theme are needed; see --help");
    const QRegularExpression pattern(parser.value(markers));
    if (!pattern.isValid())
        return fail(parser.value(markers) + ": " + pattern.errorString());

    ThemeChecker checker(files.takeFirst(), pattern, parser.values(fonts));
    QString errorString;
    if (!checker.load(&errorString))
        return fail(errorString);
    for (const QString &theme : std::as_const(files)) {
        if (!checker.check(theme, &errorString))
            return fail(errorString);
    }
    return print(checker.findings(), parser.isSet(strict));
}
