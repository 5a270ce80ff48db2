#ifndef IMAGEPANEL_H
#define IMAGEPANEL_H

#include <QGroupBox>
#include <QPointer>

class ProgrammerSession;
class QLabel;
class QLineEdit;
class QToolButton;
class UtilsSourceFile;

/// The image for the target: its file, where a .bin file starts, and what is in it.
class ImagePanel : public QGroupBox
{
    Q_OBJECT

public:
    ImagePanel(ProgrammerSession *session, QWidget *parent);

    /// Loads the file of the last run, unless the session has an image, and from now on remembers the choice and loads
    /// the file again when it changes on disk. A program without a user does not call it: it leaves no traces.
    void rememberChoice();

Q_SIGNALS:
    /// The file cannot be used; @p message says why.
    void failed(const QString &message);

private:
    void setupForm();
    void enterPath();
    void sourceFileChanged();
    void load(const QString &path);
    void showImage();

    ProgrammerSession *session;
    QPointer<UtilsSourceFile> source;
    QLineEdit *pathEdit = nullptr;
    QLineEdit *baseEdit = nullptr;
    QLabel *imageLabel = nullptr;
    QToolButton *browseButton = nullptr;
};

#endif // IMAGEPANEL_H
