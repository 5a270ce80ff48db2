#ifndef MAINWINDOW_H
#define MAINWINDOW_H

#include "ProgrammerSession.h"
#include "UpdateCheck.h"

#include <QList>
#include <QMainWindow>
#include <QPointer>

class QCheckBox;
class QLabel;
class QToolButton;
class ImagePanel;
class OperationButtons;
class UtilsTabWidget;
class UtilsDialogProcessing;
class UtilsUniProgStatus;

/// The window of the example: a page for the target, one for the firmware of the device and one for the firmware of the
/// power module. It shows the session and
/// keeps nothing of its own but whether dialogs close by themselves.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(ProgrammerSession *session, QWidget *parent = nullptr);
    ~MainWindow() override;

    /// Whether the dialog of an operation closes by itself after a success. On at first.
    void setAutoClose(bool enabled);

    /// See ImagePanel::rememberChoice().
    void rememberImage();

    /// Where newer versions are asked for: now, and by a button. Nothing is asked, and the button is off, for an empty
    /// one.
    void setUpdateUrl(const QString &url);

    /// Starts @p operation under a processing dialog, which is returned and deletes itself when it is closed. Null when
    /// the session does not start it.
    UtilsDialogProcessing *run(ProgrammerSession::Operation operation);

private:
    void setupForm();
    QWidget *createOptionsPanel();
    QWidget *createFooter();
    QWidget *createTargetPage();
    void addPages();

    void saveContents();
    void updateButtons();
    void showOutcome(const QString &text, LOGGER_MESSAGE_TYPE type);
    void operationCompleted(ProgrammerSession::Operation operation, int status, const QString &message);
    void dialogClosed();

    ProgrammerSession *session;
    UtilsUniProgStatus *explanation; ///< asks for link passwords and shows why an operation failed
    QPointer<UtilsDialogProcessing> dialog; ///< while it is open
    bool autoClose = true; ///< dialogs look at it when their operation ends
    int lastStatus = 0;
    QString lastMessage;

    QCheckBox *autoCloseBox = nullptr;
    UpdateCheck updateCheck;
    ImagePanel *imagePanel = nullptr;
    QToolButton *updateButton = nullptr;
    UtilsTabWidget *pages = nullptr;
    QList<OperationButtons *> operationButtons;
    QToolButton *saveButton = nullptr;
    QLabel *resultLabel = nullptr;
};

#endif // MAINWINDOW_H
