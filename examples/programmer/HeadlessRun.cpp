#include "HeadlessRun.h"

#include "FirmwareFile.h"
#include "MainWindow.h"

#include <UtilsDialog.h>
#include <UtilsDialogProcessing.h>
#include <UtilsProgressBar.h>

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QPainter>
#include <QToolButton>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int PollInterval = 20; // ms
constexpr int MillisecondsPerSecond = 1000;
constexpr int FirstPictureDelay = 800; // ms: the dialog has faded in
constexpr int FadeTime = 400; // ms: a dialog has faded in, or a section opened, with some reserve
constexpr int PictureProgress = 40; // per cent
constexpr int LargestStatus = 249; // that is its own exit code

/// Prints a line at once: whoever reads along a pipe sees it when it happens.
void print(const QString &line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    std::fflush(stdout);
}

QString typeName(LOGGER_MESSAGE_TYPE type)
{
    switch (type) {
    case LOGGER_MESSAGE_DEFAULT:
        return QStringLiteral("default");
    case LOGGER_MESSAGE_INFO:
        return QStringLiteral("info");
    case LOGGER_MESSAGE_WARNING:
        return QStringLiteral("warning");
    case LOGGER_MESSAGE_SUCCESS:
        return QStringLiteral("success");
    case LOGGER_MESSAGE_ERROR:
        return QStringLiteral("error");
    }
    return QString::number(int(type));
}

} // namespace

QString HeadlessRun::exitCodeHelp()
{
    return QStringLiteral("0 for success, 1 to %1 for the status of the failure, %2 for a failure with another status, "
                          "%3 for a wrong command line, %4 for a file that cannot be read or written, %5 when "
                          "--compare finds a difference, %6 when --timeout is over.")
        .arg(LargestStatus)
        .arg(StatusOutOfRange)
        .arg(UsageError)
        .arg(FileError)
        .arg(TargetDiffers)
        .arg(NoAnswer);
}

HeadlessRun::HeadlessRun(const CommandLine &arguments, ProgrammerSession *programmerSession, MainWindow *mainWindow)
    : commandLine(arguments)
    , session(programmerSession)
    , window(mainWindow)
    , waiting(arguments.operations)
{
    const UtilsUniProgThread &thread = session->thread();
    connect(&thread, &UtilsUniProgThread::SignalOperationLogMessage, this, &HeadlessRun::log);
    connect(session, &ProgrammerSession::completed, this, &HeadlessRun::completed);
    closeTimer.setInterval(PollInterval);
    connect(&closeTimer, &QTimer::timeout, this, &HeadlessRun::closeDialog);
}

HeadlessRun::~HeadlessRun() = default;

int HeadlessRun::exec()
{
    if (!commandLine.pictures.isEmpty() && !QDir().mkpath(commandLine.pictures)) {
        print(QStringLiteral("The folder %1 cannot be made.").arg(commandLine.pictures));
        return FileError;
    }
    window->setAutoClose(false); // the result stays to be seen, until closeDialog()
    window->show();
    // A picture shows the sidebar when its section has opened.
    QTimer::singleShot(commandLine.pictures.isEmpty() ? 0 : FadeTime, this, [this] {
        savePicture(QStringLiteral("window"));
        startNext();
    });
    QTimer::singleShot(commandLine.timeout * MillisecondsPerSecond, this, [] {
        print(QStringLiteral("No answer in time."));
        QCoreApplication::exit(NoAnswer);
    });
    return QCoreApplication::exec();
}

void HeadlessRun::startNext()
{
    if (exitCode == 0 && !waiting.isEmpty()) {
        currentOperation = waiting.takeFirst();
        const ProgrammerSession::Description &next = ProgrammerSession::describe(currentOperation);
        currentName = QString::fromLatin1(next.name);
        isComplete = false;
        hasProgressPicture = false;
        print(QStringLiteral("%1:").arg(QString::fromLatin1(next.message)));
        clock.start();
        dialog = window->run(next.operation);
        connect(dialog->findChild<UtilsProgressBar *>(), &QProgressBar::valueChanged, this, &HeadlessRun::barMoved);
        QTimer::singleShot(FirstPictureDelay, dialog, [this] {
            if (!isComplete && !hasProgressPicture)
                savePicture(QStringLiteral("running"));
        });
        return;
    }
    if (exitCode == 0 && commandLine.compare)
        exitCode = compare();
    QCoreApplication::exit(exitCode);
}

void HeadlessRun::log(const QString &message, LOGGER_MESSAGE_TYPE type)
{
    const QString time = QString::number(double(clock.elapsed()) / MillisecondsPerSecond, 'f', 3);
    const QStringList lines = message.split(u'\n');
    for (const QString &line : lines)
        print(QStringLiteral("[%1] %2 %3").arg(time, 7).arg(typeName(type), -7).arg(line));
}

void HeadlessRun::barMoved(int percent)
{
    if (percent < PictureProgress || isComplete || hasProgressPicture)
        return;
    hasProgressPicture = true;
    savePicture(QStringLiteral("running"));
}

void HeadlessRun::completed(ProgrammerSession::Operation operation, int status, const QString &message)
{
    isComplete = true;
    savePicture(QStringLiteral("draining"));

    QString result = QStringLiteral("Status %1").arg(status);
    if (!message.isEmpty())
        result += QStringLiteral(": %1").arg(QString(message).replace(u'\n', QStringLiteral("\\n")));
    print(result);
    if (status == 0 && operation == ProgrammerSession::Operation::EnterBootloader)
        print(QStringLiteral("Bootloader of device 0x%1, sectors of %2 bytes.")
                  .arg(session->bootloaderDeviceId(), 4, 16, QLatin1Char('0'))
                  .arg(session->bootloaderSectorSize()));
    if (status == 0)
        isSecondTry = false; // a later failure asks for a password of its own
    if (status != 0)
        exitCode = status > 0 && status <= LargestStatus ? status : int(StatusOutOfRange);
    else if (operation == ProgrammerSession::Operation::Read && !commandLine.output.isEmpty() && !storeContents())
        exitCode = FileError;
    closeTimer.start();
}

/// Waits for the Close button, presses it, and waits for the dialog's end.
void HeadlessRun::closeDialog()
{
    if (!dialog) {
        closeTimer.stop();
        QTimer::singleShot(exitCode == 0 || commandLine.pictures.isEmpty() ? 0 : FadeTime, this,
                           &HeadlessRun::answerExplanation);
        return;
    }
    auto *button = dialog->findChild<QToolButton *>(QStringLiteral("toolButton"));
    if (button && button->isEnabled() && !button->text().isEmpty()) {
        savePicture(QStringLiteral("result"));
        button->click();
    }
}

/// Answers the dialog after a failure as a user would: the password, if one is asked for and known, and another try;
/// else the dialog is dismissed.
void HeadlessRun::answerExplanation()
{
    if (exitCode != 0)
        savePicture(isSecondTry ? QStringLiteral("refused") : QStringLiteral("explanation"));
    auto *question = window->findChild<UtilsDialog *>();
    if (question && question->findChild<QLineEdit *>()) {
        if (commandLine.hasPassword && !isSecondTry) {
            print(QStringLiteral("The password dialog gets the password of the link; trying again."));
            question->setLineEditText(commandLine.password);
            savePicture(QStringLiteral("password"));
            question->getAcceptButton()->click();
            isSecondTry = true;
            exitCode = 0;
            waiting.prepend(currentOperation);
        } else {
            print(QStringLiteral("The password dialog is cancelled."));
            question->getCancelButton()->click();
        }
    }
    startNext();
}

bool HeadlessRun::storeContents()
{
    QString error;
    const bool stored = FirmwareFile::save(commandLine.output, session->contents(), &error);
    print(stored ? QStringLiteral("Stored %1 bytes in %2.").arg(session->contents().size()).arg(commandLine.output)
                 : error);
    return stored;
}

int HeadlessRun::compare() const
{
    const MemoryManager flash = session->programmer().flash();
    const QList<MemoryManager::Segment> segments = session->image().segments();
    for (const MemoryManager::Segment &segment : segments) {
        const QByteArray found = flash.read(segment.address, segment.data.size());
        if (found == segment.data && flash.contains(segment.address, segment.data.size()))
            continue;
        const auto difference = std::mismatch(found.cbegin(), found.cend(), segment.data.cbegin()).first;
        print(QStringLiteral("The target differs from the image at 0x%1.")
                  .arg(QString::number(segment.address + quint32(difference - found.cbegin()), 16).toUpper(), 8,
                       QLatin1Char('0')));
        return TargetDiffers;
    }
    print(QStringLiteral("The target holds the image: %1 bytes at %2 compared, all equal.")
              .arg(session->image().size())
              .arg(segments.size() == 1 ? QStringLiteral("one place")
                                        : QStringLiteral("%1 places").arg(segments.size())));
    return 0;
}

/// Paints the window and the dialog over it, as a screen would show them.
void HeadlessRun::savePicture(const QString &moment)
{
    if (commandLine.pictures.isEmpty())
        return;
    QPixmap picture = window->grab();
    QPainter painter(&picture);
    const auto frames = window->findChildren<UtilsDialogFrame *>();
    for (UtilsDialogFrame *frame : frames)
        painter.drawPixmap(frame->mapToGlobal(QPoint()) - window->mapToGlobal(QPoint()), frame->grab());
    painter.end();
    const QString name = currentName.isEmpty() ? moment : QStringLiteral("%1-%2").arg(currentName, moment);
    const QString path = QDir(commandLine.pictures).filePath(name + QStringLiteral(".png"));
    if (!picture.save(path)) {
        print(QStringLiteral("%1 cannot be written.").arg(path));
        exitCode = FileError;
    }
}
