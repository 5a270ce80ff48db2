#include "GalleryOptions.h"

#include "PageRegistry.h"

#include <Appearance.h>

#include <QCommandLineParser>

namespace {

constexpr int SmallestScale = 50; // percent
constexpr int LargestScale = 400;

constexpr QLatin1String ThemeOption("theme");
constexpr QLatin1String ScaleOption("scale");
constexpr QLatin1String RightToLeftOption("right-to-left");
constexpr QLatin1String ScreenshotsOption("screenshots");
constexpr QLatin1String PageOption("page");
constexpr QLatin1String HelpOption("help");

void addOptions(QCommandLineParser *parser)
{
    parser->setApplicationDescription(QStringLiteral("Every widget and dialog of the library."));
    parser->addOptions({
        {HelpOption, QStringLiteral("Says what the options are.")},
        {ThemeOption, QStringLiteral("Starts with a theme: %1.").arg(Appearance::themes().join(QLatin1String(", "))),
         QStringLiteral("name"), Appearance::themes().constFirst()},
        {ScaleOption, QStringLiteral("Enlarges everything."), QStringLiteral("percent"), QStringLiteral("100")},
        {RightToLeftOption, QStringLiteral("Lays everything out from right to left.")},
        {PageOption,
         QStringLiteral("Starts with a page, or takes pictures of it only: %1.")
             .arg(PageRegistry::names().join(QLatin1String(", "))),
         QStringLiteral("name")},
        {ScreenshotsOption, QStringLiteral("Saves pictures of the pages and dialogs in a folder; needs no display."),
         QStringLiteral("folder")},
    });
}

} // namespace

bool GalleryOptions::read(const QStringList &arguments, QString *error)
{
    QCommandLineParser parser;
    addOptions(&parser);
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return false;
    }
    theme = parser.value(ThemeOption);
    rightToLeft = parser.isSet(RightToLeftOption);
    screenshots = parser.value(ScreenshotsOption);
    pages = parser.values(PageOption);
    help = parser.isSet(HelpOption);

    bool isNumber = false;
    scale = parser.value(ScaleOption).toInt(&isNumber);
    if (!isNumber || scale < SmallestScale || scale > LargestScale)
        *error = QStringLiteral("The scale is a number of percent, %1 to %2.").arg(SmallestScale).arg(LargestScale);
    else if (!Appearance::themes().contains(theme))
        *error = QStringLiteral("There is no theme named %1.").arg(theme);
    else if (parser.isSet(ScreenshotsOption) && screenshots.isEmpty())
        *error = QStringLiteral("The folder for the pictures is missing.");
    else if (!parser.positionalArguments().isEmpty())
        *error = QStringLiteral("%1 is no option.").arg(parser.positionalArguments().constFirst());
    for (const QString &page : std::as_const(pages))
        if (!PageRegistry::names().contains(page))
            *error = QStringLiteral("There is no page named %1.").arg(page);
    return error->isEmpty();
}

QStringList GalleryOptions::toArguments() const
{
    QStringList arguments{QStringLiteral("--theme"), theme, QStringLiteral("--scale"), QString::number(scale)};
    if (rightToLeft)
        arguments.append(QStringLiteral("--right-to-left"));
    if (!screenshots.isEmpty())
        arguments.append({QStringLiteral("--screenshots"), screenshots});
    for (const QString &page : pages)
        arguments.append({QStringLiteral("--page"), page});
    return arguments;
}

QString GalleryOptions::helpText()
{
    QCommandLineParser parser;
    addOptions(&parser);
    return parser.helpText();
}
