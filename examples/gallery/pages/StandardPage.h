#ifndef STANDARDPAGE_H
#define STANDARDPAGE_H

#include "../GalleryPage.h"

/// The standard widgets as the themes show them.
class StandardPage : public GalleryPage
{
    Q_OBJECT

public:
    StandardPage(EventMonitor *monitor, QWidget *parent);
    ~StandardPage() override;

private:
    Q_DISABLE_COPY_MOVE(StandardPage)
};

#endif // STANDARDPAGE_H
