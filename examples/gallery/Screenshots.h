#ifndef SCREENSHOTS_H
#define SCREENSHOTS_H

#include <QStringList>

class GalleryWindow;
class QImage;
class QWidget;

/// Saves pictures of the gallery's pages, of the dialogs they open, and of the whole window, as PNG files.
///
/// The same widgets give the same pictures: what moves is brought to an end or to its beginning first, and text is
/// drawn without hints of the system's fonts configuration.
class Screenshots
{
public:
    /// Picks the platform without a display, and hides the system's fonts and its settings for them: with the
    /// library's font alone, the pictures are the same on every machine. To be called before there is an application.
    static void prepareEnvironment();
    /// To be called between the application's construction and that of its first widget.
    static void prepareApplication();

    /// The \a folder is made when it is missing. The window stays the caller's.
    Screenshots(GalleryWindow *window, const QString &folder);

    /// Pictures of these pages ("page.png") and of their dialogs ("page-dialog.png"); with no \a pages, of all, and of
    /// the whole window ("gallery.png"). Returns false with an \a error when one cannot be saved.
    bool save(const QStringList &pages, QString *error);

private:
    bool savePage(const QString &name);
    bool savePicture(const QImage &picture, const QString &name);
    QImage popupPicture(QWidget *popup) const;

    GalleryWindow *m_window;
    QString m_folder;
    QString m_error;
};

#endif // SCREENSHOTS_H
