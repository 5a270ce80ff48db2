#ifndef BUTTONSPAGE_H
#define BUTTONSPAGE_H

#include "../GalleryPage.h"

/// Rows of buttons, and switches: off, on, see-through, and one that the mouse does not toggle.
class ButtonsPage : public GalleryPage
{
    Q_OBJECT

public:
    ButtonsPage(EventMonitor *monitor, QWidget *parent);
    ~ButtonsPage() override;

private:
    Q_DISABLE_COPY_MOVE(ButtonsPage)
};

#endif // BUTTONSPAGE_H
