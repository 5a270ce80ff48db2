#ifndef INPUTSPAGE_H
#define INPUTSPAGE_H

#include "../GalleryPage.h"

/// Addresses, read-outs and a panel of options.
class InputsPage : public GalleryPage
{
    Q_OBJECT

public:
    InputsPage(EventMonitor *monitor, QWidget *parent);
    ~InputsPage() override;

private:
    Q_DISABLE_COPY_MOVE(InputsPage)
};

#endif // INPUTSPAGE_H
