#ifndef GALLERYWINDOW_H
#define GALLERYWINDOW_H

#include "GalleryOptions.h"

#include <QMainWindow>

class EventMonitor;
class GalleryPage;
class QComboBox;
class QListWidget;
class QToolBar;
class UtilsLogger;
class UtilsStackedWidget;

/// The gallery: a list of pages, the page, the event monitor below, and switches for theme, scale and direction above.
class GalleryWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit GalleryWindow(const GalleryOptions &options, QWidget *parent = nullptr);
    ~GalleryWindow() override;

    /// Goes to the page with this name and returns it; null when there is none.
    GalleryPage *showPage(const QString &name);
    EventMonitor *monitor() const;

Q_SIGNALS:
    /// Qt takes the scale when an application starts: the user wants a new one with these \a options.
    void restartRequested(const GalleryOptions &options);

private:
    Q_DISABLE_COPY_MOVE(GalleryWindow)

    void setupForm();
    QWidget *createContent();
    void addPages();
    void addThemeSwitch(QToolBar *bar);
    void addScaleSwitch(QToolBar *bar);
    void addDirectionSwitch(QToolBar *bar);

    GalleryOptions m_options;
    QListWidget *m_navigation = nullptr;
    UtilsStackedWidget *m_stack = nullptr;
    UtilsLogger *m_log = nullptr;
    EventMonitor *m_monitor = nullptr;
    QList<GalleryPage *> m_pages;
};

#endif // GALLERYWINDOW_H
