#ifndef PROCESSINGPAGE_H
#define PROCESSINGPAGE_H

#include "../GalleryPage.h"

class UtilsDialogProcessing;

/// The dialog that accompanies a procedure, while it runs and at both of its ends, and its content alone.
class ProcessingPage : public GalleryPage
{
    Q_OBJECT

public:
    ProcessingPage(EventMonitor *monitor, QWidget *parent);
    ~ProcessingPage() override;

private:
    Q_DISABLE_COPY_MOVE(ProcessingPage)

    UtilsDialogProcessing *newDialog();
};

#endif // PROCESSINGPAGE_H
