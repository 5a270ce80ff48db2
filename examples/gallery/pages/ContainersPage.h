#ifndef CONTAINERSPAGE_H
#define CONTAINERSPAGE_H

#include "../GalleryPage.h"

class UtilsStackedWidget;

/// Tabs, and a stack whose pages fade.
class ContainersPage : public GalleryPage
{
    Q_OBJECT

public:
    ContainersPage(EventMonitor *monitor, QWidget *parent);
    ~ContainersPage() override;

private:
    Q_DISABLE_COPY_MOVE(ContainersPage)

    QList<UtilsStackedWidget *> m_stacks;
};

#endif // CONTAINERSPAGE_H
