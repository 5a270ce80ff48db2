#ifndef SIDEBARPAGE_H
#define SIDEBARPAGE_H

#include "../GalleryPage.h"

class UtilsSidebar;

/// The application's navigation with its pages, and columns of sections of their own.
class SidebarPage : public GalleryPage
{
    Q_OBJECT

public:
    SidebarPage(EventMonitor *monitor, QWidget *parent);
    ~SidebarPage() override;

private:
    Q_DISABLE_COPY_MOVE(SidebarPage)

    QWidget *newNavigation();
    QWidget *newColumn(QWidget *page);

    UtilsSidebar *m_sidebar;
};

#endif // SIDEBARPAGE_H
