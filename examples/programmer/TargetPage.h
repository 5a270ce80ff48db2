#ifndef TARGETPAGE_H
#define TARGETPAGE_H

#include "Page.h"

class ImagePanel;
class QLabel;
class QToolButton;

/// The page for the memory of the target: the image, the operations, and what was read.
class TargetPage : public Page
{
    Q_OBJECT

public:
    explicit TargetPage(ProgrammerSession *session, QWidget *parent = nullptr);

    /// See ImagePanel::rememberChoice().
    void rememberImage();

private:
    QWidget *createContentsPanel();
    void showContents();
    void saveContents();

    ImagePanel *imagePanel;
    QLabel *contentsLabel = nullptr;
    QToolButton *saveButton = nullptr;
};

#endif // TARGETPAGE_H
