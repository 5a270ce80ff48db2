#ifndef HEADLESSRUN_H
#define HEADLESSRUN_H

#include "CommandLine.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

class MainWindow;
class UtilsDialogProcessing;

/// Runs the operations of the command line in a window that nobody sees, as a user would: starts each one, waits until
/// its dialog offers the Close button, and closes it. The log goes to the standard output.
class HeadlessRun : public QObject
{
    Q_OBJECT

public:
    /// Exit codes. A final status of 0 to 249 is its own exit code.
    enum ExitCode {
        StatusOutOfRange = 250, ///< the final status is another number
        UsageError = 251,
        FileError = 252, ///< an image that cannot be read, a file that cannot be written
        TargetDiffers = 253, ///< --compare found a difference
        NoAnswer = 254 ///< --timeout is over
    };
    /// The same for the help text.
    static QString exitCodeHelp();

    HeadlessRun(const CommandLine &commandLine, ProgrammerSession *session, MainWindow *window);
    ~HeadlessRun() override;

    /// Runs everything and returns the exit code.
    int exec();

private:
    void startNext();
    void log(const QString &message, LOGGER_MESSAGE_TYPE type);
    void barMoved(int percent);
    void completed(ProgrammerSession::Operation operation, int status, const QString &message);
    void closeDialog();
    void answerExplanation();
    bool storeContents();
    int compare() const;
    void savePicture(const QString &moment);

    const CommandLine commandLine;
    ProgrammerSession *session;
    MainWindow *window;
    QList<ProgrammerSession::Operation> waiting;
    QPointer<UtilsDialogProcessing> dialog;
    QElapsedTimer clock;
    QTimer closeTimer;
    QString currentName;
    ProgrammerSession::Operation currentOperation = ProgrammerSession::Operation::Detect;
    bool isComplete = false;
    bool isSecondTry = false; ///< the password of the link has been given
    bool hasProgressPicture = false; ///< of the current operation
    int exitCode = 0;
};

#endif // HEADLESSRUN_H
