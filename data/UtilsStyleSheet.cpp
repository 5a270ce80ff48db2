#include "UtilsStyleSheet.h"

#include <QFile>
#include <QFontDatabase>
#include <QXmlStreamReader>

#include <algorithm>

// A static build of the library has its resources only when they are asked for; the macro wants the global namespace.
static void initResources()
{
    Q_INIT_RESOURCE(uniprogutils_fonts);
    Q_INIT_RESOURCE(uniprogutils_theme); // the images of the library's own themes
}

namespace {

constexpr QLatin1String FontElement("fontName");
constexpr QLatin1String ValueElements[] = {QLatin1String("color"), QLatin1String("wallpaper"),
                                           QLatin1String("dimension"), FontElement, QLatin1String("fontSize")};

bool isValueElement(QStringView name)
{
    return std::find(std::begin(ValueElements), std::end(ValueElements), name) != std::end(ValueElements);
}

// No text mode: line ends reach the result as they are. What cannot be read is empty.
QByteArray contentOf(const QString &path)
{
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

// As QString::replace() finds them: without overlaps, and an empty marker before and behind every character.
qsizetype occurrences(const QString &text, const QString &marker)
{
    if (marker.isEmpty())
        return text.size() + 1;
    qsizetype count = 0;
    for (qsizetype at = text.indexOf(marker); at >= 0; at = text.indexOf(marker, at + marker.size()))
        ++count;
    return count;
}

// Values that contain markers multiply what is there: a few lines of a theme could ask for more memory than there is.
bool staysInBounds(const QString &text, const QString &marker, const QString &value)
{
    const qsizetype growth = value.size() - marker.size();
    if (growth <= 0)
        return true;
    const qsizetype room = std::max<qsizetype>(UtilsStyleSheet::LargestResult - text.size(), 0) / growth;
    // Counted only where a text full of markers would be too large.
    const qsizetype most = text.size() / std::max<qsizetype>(marker.size(), 1) + 1;
    return most <= room || occurrences(text, marker) <= room;
}

void loadFont(const QString &name)
{
    QFontDatabase::addApplicationFont(QStringLiteral(":/misc/fonts/") + name + QStringLiteral(".ttf"));
}

} // namespace

UtilsStyleSheet::UtilsStyleSheet(const QString &styleSheetPath)
    : m_styleSheetPath(styleSheetPath)
{ }

QString UtilsStyleSheet::replaceXmlMarkers(const QString &themePath) const
{
    initResources();
    // Fonts of the theme before must not stay, not even those that other code has loaded.
    QFontDatabase::removeAllApplicationFonts();

    QString result = QString::fromLatin1(contentOf(m_styleSheetPath));
    // As a string, not as bytes: an encoding that the theme declares is not followed.
    QXmlStreamReader theme(QString::fromUtf8(contentOf(themePath)));
    while (!theme.atEnd()) {
        if (theme.readNext() != QXmlStreamReader::StartElement || !isValueElement(theme.name()))
            continue;
        const QXmlStreamAttributes attributes = theme.attributes();
        if (attributes.isEmpty())
            continue;
        const bool isFont = theme.name() == FontElement;
        const QString marker = attributes.first().value().toString();
        const QString value = theme.readElementText();
        if (theme.hasError() || !staysInBounds(result, marker, value))
            break;
        // One after another on the same text: themes rely on values that contain markers of later elements.
        result.replace(marker, value);
        if (isFont)
            loadFont(value);
    }
    return result;
}
