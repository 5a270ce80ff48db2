#ifndef MAINWINDOW_H
#define MAINWINDOW_H

#include "DevicesPage.h"
#include "Navigation.h"
#include "ProgrammerSession.h"

#include <QHash>
#include <QMainWindow>
#include <QPointer>

class AboutPage;
class ApplicationPage;
class Page;
class QLabel;
class TargetPage;
class UtilsDialogProcessing;
class UtilsUniProgStatus;

/// The window of the example: the sidebar and its pages, how the last operation ended, and the notifications. It shows
/// the session and keeps nothing of its own but whether dialogs close by themselves. With an external driver it has no
/// pages for what only a programmer can do.
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

    /// See DevicesPage::watch().
    void watchDevices(const QList<DevicesPage::UsbId> &ids);

    /// See AboutPage::setUpdateUrl().
    void setUpdateUrl(const QString &url);

    /// Starts @p operation under a processing dialog, which is returned and deletes itself when it is closed. Null when
    /// the session does not start it, and for operations without a dialog.
    UtilsDialogProcessing *run(ProgrammerSession::Operation operation);

private:
    void setupForm();
    void addPages();
    void addTargetPages();
    void addDevicePages();
    void addPowerPages();
    void addOptionPages();
    void addHelpPages();
    void addPage(Page *page, Navigation::Section section, const QList<ProgrammerSession::Subject> &subjects = {});
    UtilsDialogProcessing *createDialog(const QString &message);

    void showOutcome(const QString &text, LOGGER_MESSAGE_TYPE type);
    void operationCompleted(ProgrammerSession::Operation operation, int status, const QString &message);
    void dialogClosed();

    ProgrammerSession *session;
    UtilsUniProgStatus *explanation; ///< asks for link passwords and shows why an operation failed
    QPointer<UtilsDialogProcessing> dialog; ///< while it is open
    bool autoClose = true; ///< dialogs look at it when their operation ends
    int lastStatus = 0;
    QString lastMessage;

    Navigation *navigation = nullptr;
    QHash<ProgrammerSession::Subject, Page *> pages; ///< where the operations are
    TargetPage *targetPage = nullptr;
    DevicesPage *devicesPage = nullptr;
    ApplicationPage *applicationPage = nullptr;
    AboutPage *aboutPage = nullptr;
    QLabel *resultLabel = nullptr;
};

#endif // MAINWINDOW_H
