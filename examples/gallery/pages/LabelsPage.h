#ifndef LABELSPAGE_H
#define LABELSPAGE_H

#include "../GalleryPage.h"

/// Labels that tell what the mouse does, the sizes of text, and the menu that opens the help.
class LabelsPage : public GalleryPage
{
    Q_OBJECT

public:
    LabelsPage(EventMonitor *monitor, QWidget *parent);
    ~LabelsPage() override;

private:
    Q_DISABLE_COPY_MOVE(LabelsPage)
};

#endif // LABELSPAGE_H
