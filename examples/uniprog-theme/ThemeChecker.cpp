#include "ThemeChecker.h"

#include <UtilsStyleSheet.h>

#include <QFile>
#include <QFontDatabase>
#include <QSet>
#include <QXmlStreamReader>

#include <algorithm>

namespace {

constexpr QLatin1String FontElement("fontName");
constexpr QLatin1String FontResources(":/misc/fonts");

bool read(const QString &path, QByteArray *content, QString *errorString)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *errorString = path + ": " + file.errorString();
        return false;
    }
    *content = file.readAll();
    return true;
}

QString quoted(const QString &text)
{
    return '"' + text + '"';
}

} // namespace

ThemeChecker::ThemeChecker(const QString &templatePath, const QRegularExpression &markerPattern,
                           const QStringList &fontFolders)
    : m_templatePath(templatePath)
    , m_markerPattern(markerPattern)
    , m_fontFolders(fontFolders)
{ }

bool ThemeChecker::load(QString *errorString)
{
    QByteArray content;
    if (!read(m_templatePath, &content, errorString))
        return false;
    m_template = QString::fromLatin1(content);
    return true;
}

bool ThemeChecker::check(const QString &themePath, QString *errorString)
{
    QByteArray content;
    if (!read(themePath, &content, errorString))
        return false;
    m_themePath = themePath;
    m_text = m_template;
    m_values.clear();
    readValues(QString::fromUtf8(content));
    for (qsizetype i = 0; i < m_values.size(); ++i) {
        if (growsTooLarge(m_values.at(i)))
            break;
        checkValue(i);
    }
    checkMarkersLeft();
    return true;
}

QList<Finding> ThemeChecker::findings() const
{
    return m_findings;
}

void ThemeChecker::readValues(const QString &theme)
{
    static const QStringList valueElements{"color", "wallpaper", "dimension", "fontName", "fontSize"};
    QXmlStreamReader xml(theme);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QString element = xml.name().toString();
        if (!valueElements.contains(element))
            continue;
        const qint64 line = xml.lineNumber();
        const QXmlStreamAttributes attributes = xml.attributes();
        if (attributes.isEmpty()) {
            report(Finding::Error, line, '<' + element + "> has no attribute to name a marker and is skipped");
            continue;
        }
        const QString marker = attributes.first().value().toString();
        const QString text = xml.readElementText();
        if (xml.hasError())
            break;
        m_values.append({marker, text, line});
        if (element == FontElement)
            checkFont(text, line);
    }
    if (xml.hasError())
        report(Finding::Error, xml.lineNumber(), xml.errorString() + " Nothing is filled in from here on");
}

QString ThemeChecker::named(const Value &value)
{
    return quoted(value.marker) + " (line " + QString::number(value.line) + ')';
}

// UtilsStyleSheet stops there. An empty marker is reported as what it is.
bool ThemeChecker::growsTooLarge(const Value &value)
{
    const qsizetype growth = value.text.size() - value.marker.size();
    if (value.marker.isEmpty() || growth <= 0)
        return false;
    const qsizetype room = std::max<qsizetype>(UtilsStyleSheet::LargestResult - m_text.size(), 0);
    if (m_text.count(value.marker) <= room / growth)
        return false;
    report(Finding::Error, value.line,
           "with " + quoted(value.marker) + " the style sheet grows too large. Nothing is filled in from here on");
    return true;
}

// Fills in one value, as UtilsStyleSheet does, and says what went wrong with it.
void ThemeChecker::checkValue(qsizetype index)
{
    const Value &value = m_values.at(index);
    if (value.marker.isEmpty()) {
        report(Finding::Error, value.line, "an empty marker stands between all characters of the template");
        return;
    }
    for (qsizetype i = 0; i < index; ++i) {
        if (m_values.at(i).marker == value.marker) {
            report(Finding::Error, value.line, named(m_values.at(i)) + " has a value already, this one is not used");
            return;
        }
    }
    if (!isBrokenByEarlierMarker(index) && !m_text.contains(value.marker))
        report(Finding::Error, value.line, "the template has no marker " + quoted(value.marker));
    checkNeighbours(index);
    m_text.replace(value.marker, value.text);
}

bool ThemeChecker::isBrokenByEarlierMarker(qsizetype index)
{
    const Value &value = m_values.at(index);
    for (const Value &earlier : m_values.first(index)) {
        if (earlier.marker.isEmpty() || !value.marker.contains(earlier.marker))
            continue;
        report(Finding::Error, value.line,
               quoted(value.marker) + " is never found: its part " + named(earlier) + " is filled in before");
        return true;
    }
    return false;
}

// What the other markers do to this value, and this marker to the others.
void ThemeChecker::checkNeighbours(qsizetype index)
{
    const Value &value = m_values.at(index);
    for (qsizetype i = 0; i < m_values.size(); ++i) {
        const Value &other = m_values.at(i);
        if (i < index && other.marker.contains(value.marker))
            report(Finding::Warning, value.line,
                   quoted(value.marker) + " is a part of " + named(other) + ": it works only in this order");
        if (other.marker.isEmpty() || !value.text.contains(other.marker))
            continue;
        if (i > index)
            report(Finding::Warning, value.line,
                   "the value of " + quoted(value.marker) + " contains " + named(other)
                       + ": it works only in this order");
        else
            report(Finding::Error, value.line,
                   "the value of " + quoted(value.marker) + " contains " + named(other)
                       + ", which is not filled in any more");
    }
}

// The text of the element names the font's file and, in the style sheet, its family.
void ThemeChecker::checkFont(const QString &family, qint64 line)
{
    const QString name = '/' + family + ".ttf";
    QStringList folders{FontResources};
    folders.append(m_fontFolders);
    for (const QString &folder : std::as_const(folders)) {
        if (!QFile::exists(folder + name))
            continue;
        const QStringList families
            = QFontDatabase::applicationFontFamilies(QFontDatabase::addApplicationFont(folder + name));
        if (families.isEmpty())
            report(Finding::Error, line, folder + name + " is no font");
        else if (!families.contains(family))
            report(Finding::Error, line, folder + name + " is of the family " + quoted(families.join(", ")));
        return;
    }
    report(Finding::Error, line, QStringLiteral("there is no font ") + FontResources + name);
}

// What the library leaves in the text.
void ThemeChecker::checkMarkersLeft()
{
    const QString filled = UtilsStyleSheet(m_templatePath).replaceXmlMarkers(m_themePath);
    QSet<QString> seen;
    for (auto matches = m_markerPattern.globalMatch(filled); matches.hasNext();) {
        const QString marker = matches.next().captured();
        // A marker that only a value brings in has been reported there.
        const auto position = m_template.indexOf(marker);
        if (marker.isEmpty() || seen.contains(marker) || position < 0)
            continue;
        seen.insert(marker);
        const qint64 line = QStringView(m_template).left(position).count('\n') + 1;
        m_findings.append({m_templatePath, line, Finding::Error, quoted(marker) + " has no value in " + m_themePath});
    }
}

void ThemeChecker::report(Finding::Severity severity, qint64 line, const QString &message)
{
    m_findings.append({m_themePath, line, severity, message});
}
