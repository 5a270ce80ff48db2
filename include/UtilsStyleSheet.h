#ifndef UTILSSTYLESHEET_H
#define UTILSSTYLESHEET_H

#include "uniprogutils_export.h"

#include <QString>

/// A style sheet template that is filled from a theme.
///
/// The template is a Qt style sheet in which markers stand where colours, images, sizes and fonts belong. A theme is an
/// XML file with one element a marker, of the names "color", "wallpaper", "dimension", "fontName" and "fontSize": the
/// value of its first attribute, whatever its name, is the marker, its text is the value. Other elements are passed
/// over.
///
///     const UtilsStyleSheet sheet(themes + "/uniprog.qss.in");
///     qApp->setStyleSheet(sheet.replaceXmlMarkers(themes + "/dark.xml"));
///
/// Filling in again with another theme and setting the result switches the theme of a running application. Needs a
/// QGuiApplication, because of the fonts; GUI thread only. Copies and moves as a value.
///
/// The library brings the font "Open Sans" (":/misc/fonts/Open Sans.ttf"); an application adds others to its resources
/// under the same folder.
class UNIPROGUTILS_EXPORT UtilsStyleSheet
{
public:
    /// The length in characters up to which a result grows (64 MiB of memory, far more than any style sheet has).
    static constexpr qsizetype LargestResult = 32LL * 1024 * 1024;

    /// Remembers the path of the template; nothing is read yet.
    explicit UtilsStyleSheet(const QString &styleSheetPath);

    /// The template with the markers of the theme at \a themePath replaced; the files are read anew by each call.
    ///
    /// Every application font loaded before, by whomever, is removed first, whatever happens then. Each "fontName"
    /// element loads the font ":/misc/fonts/" + value + ".ttf".
    ///
    /// Markers are literal, case-sensitive texts. They are replaced one after another in the order of the theme's
    /// elements: the value of an element may contain the marker of a later one, and a marker that is part of another
    /// one must come after it. The template is read as Latin-1 byte for byte, the theme as UTF-8.
    ///
    /// Nothing is reported. A template that cannot be read gives an empty text, with the theme's fonts loaded. A theme
    /// that cannot be read leaves the template as it is; an error in it, a nested element included, leaves the template
    /// unchanged from there on. Elements without an attribute are skipped, markers without an element stay.
    ///
    /// A replacement that would make the result grow beyond LargestResult is not made and ends the fill as an error
    /// does, so that no theme can use up the memory.
    QString replaceXmlMarkers(const QString &themePath) const;

private:
    QString m_styleSheetPath;
};

#endif // UTILSSTYLESHEET_H
