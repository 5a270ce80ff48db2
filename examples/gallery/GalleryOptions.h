#ifndef GALLERYOPTIONS_H
#define GALLERYOPTIONS_H

#include <QString>
#include <QStringList>

/// What the command line asks for.
struct GalleryOptions
{
    QString theme;
    int scale = 100; ///< percent
    bool rightToLeft = false;
    QString screenshots; ///< folder for the pictures; empty to open the window
    QStringList pages; ///< names of the pages, the first one is shown; all are pictured when there are none
    bool help = false;

    /// Fills the options in. Returns false with an \a error when \a arguments make no sense. Needs no application yet.
    bool read(const QStringList &arguments, QString *error);
    /// The arguments that open the gallery with these options, without the program's name.
    QStringList toArguments() const;

    static QString helpText();
};

#endif // GALLERYOPTIONS_H
