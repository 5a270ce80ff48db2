#ifndef DIALOGSPAGE_H
#define DIALOGSPAGE_H

#include "../GalleryPage.h"

class UtilsDialog;
class UtilsDialogFrame;

/// Dialogs that ask for something, and the one that asks to wait.
class DialogsPage : public GalleryPage
{
    Q_OBJECT

public:
    DialogsPage(EventMonitor *monitor, QWidget *parent);
    ~DialogsPage() override;

private:
    Q_DISABLE_COPY_MOVE(DialogsPage)

    UtilsDialog *newDialog(const QString &message);
    UtilsDialogFrame *openDialog(UtilsDialogFrame *dialog);
};

#endif // DIALOGSPAGE_H
