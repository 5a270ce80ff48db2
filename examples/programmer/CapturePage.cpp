#include "CapturePage.h"

#include "OperationButtons.h"

#include <QPlainTextEdit>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr int FetchInterval = 200; // ms
constexpr int LinesKept = 2000;

} // namespace

CapturePage::CapturePage(ProgrammerSession *session, QWidget *parent)
    : Page(session, QStringLiteral("capturePage"), tr("SWO capture"), QStringLiteral("programmer/capture.html"), parent)
    , output(new QPlainTextEdit(this))
{
    addText(tr("What the running target sends over its SWO pin. Nothing else can be done with the device meanwhile."));
    output->setObjectName(QStringLiteral("captured"));
    output->setAccessibleName(tr("Captured text"));
    output->setReadOnly(true);
    output->setTabChangesFocus(true);
    output->setMaximumBlockCount(LinesKept);
    body()->addWidget(output, 1);

    OperationButtons *buttons = addOperations(ProgrammerSession::Subject::Capture);
    QToolButton *clear = buttons->addButton(QStringLiteral("clearCaptured"), tr("Clear"));
    connect(clear, &QToolButton::clicked, output, &QPlainTextEdit::clear);

    fetchTimer.setSingleShot(true);
    fetchTimer.setInterval(FetchInterval);
    connect(&fetchTimer, &QTimer::timeout, session,
            [session] { session->start(ProgrammerSession::Operation::FetchCapture); });
    connect(session, &ProgrammerSession::completed, this, &CapturePage::completed);
}

void CapturePage::completed(ProgrammerSession::Operation operation, int status)
{
    using Operation = ProgrammerSession::Operation;
    if (operation == Operation::FetchCapture) {
        output->moveCursor(QTextCursor::End);
        output->insertPlainText(QString::fromLatin1(session()->captured()));
        output->moveCursor(QTextCursor::End);
        if (status != 0) { // the device is asked to let the target go, whatever it makes of it
            session()->start(Operation::StopCapture);
            return;
        }
    }
    if (session()->isCapturing())
        fetchTimer.start();
    else
        fetchTimer.stop();
}
