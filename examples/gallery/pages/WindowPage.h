#ifndef WINDOWPAGE_H
#define WINDOWPAGE_H

#include "../GalleryPage.h"

class UtilsDialogTitlebar;
class UtilsDialogWindow;

/// The title bar, and windows of their own.
class WindowPage : public GalleryPage
{
    Q_OBJECT

public:
    WindowPage(EventMonitor *monitor, QWidget *parent);
    ~WindowPage() override;

private:
    Q_DISABLE_COPY_MOVE(WindowPage)

    UtilsDialogTitlebar *newTitlebar(const QString &title, QWidget *page);
    UtilsDialogWindow *openWindow(bool isResizable);
};

#endif // WINDOWPAGE_H
