#include "ProcessingPage.h"

#include "../EventMonitor.h"

#include <UtilsDialogProcessing.h>
#include <UtilsDialogProcessingContent.h>
#include <UtilsLogger.h>
#include <UtilsProgressBar.h>

namespace {

constexpr int Part = 40; // percent
constexpr int Busy = -1; // percent
constexpr int Success = 0;
constexpr int LinkBroken = 5; // any status but 0
constexpr int ContentHeight = 200;

void succeed(QWidget *dialog)
{
    auto *processing = static_cast<UtilsDialogProcessing *>(dialog);
    processing->slotUpdateLog(ProcessingPage::tr("Written and verified"), LOGGER_MESSAGE_SUCCESS);
    processing->slotProcedureCompleted(Success, QString());
}

} // namespace

ProcessingPage::ProcessingPage(EventMonitor *events, QWidget *parent)
    : GalleryPage(events, parent)
{
    addSample(tr("Content"), [](QWidget *page) {
        auto *content = new UtilsDialogProcessingContent(page);
        content->setFixedHeight(ContentHeight);
        content->setMessage(tr("Writing flash"));
        content->getProgressBar()->setRange(0, 100);
        content->getProgressBar()->setValue(Part);
        content->getLogger()->setLineAnimationDuration(0);
        content->getLogger()->addMessage(tr("Connecting..."), LOGGER_MESSAGE_DEFAULT);
        content->getLogger()->addMessage(tr("Erasing..."), LOGGER_MESSAGE_DEFAULT);
        content->expandButton();
        return content;
    });

    addPopup({QStringLiteral("running"), tr("Running"),
              [this] {
                  UtilsDialogProcessing *dialog = newDialog();
                  dialog->slotUpdateProgressbar(Part);
                  return dialog;
              },
              &succeed});
    addPopup({QStringLiteral("busy"), tr("Busy"),
              [this] {
                  UtilsDialogProcessing *dialog = newDialog();
                  dialog->slotUpdateProgressbar(Busy);
                  return dialog;
              },
              &succeed});
    addPopup({QStringLiteral("success"), tr("Success"), [this] {
                  UtilsDialogProcessing *dialog = newDialog();
                  dialog->enableShowingSuccessfulProcess(true);
                  dialog->slotUpdateLog(tr("Written and verified"), LOGGER_MESSAGE_SUCCESS);
                  dialog->slotProcedureCompleted(Success, QString());
                  return dialog;
              }});
    addPopup({QStringLiteral("failure"), tr("Failure"), [this] {
                  UtilsDialogProcessing *dialog = newDialog();
                  dialog->slotUpdateLog(tr("The link is broken"), LOGGER_MESSAGE_ERROR);
                  dialog->slotProcedureCompleted(LinkBroken, tr("The link is broken"));
                  return dialog;
              }});
}

ProcessingPage::~ProcessingPage() = default;

UtilsDialogProcessing *ProcessingPage::newDialog()
{
    auto *dialog = new UtilsDialogProcessing(this); // deletes itself when it is closed
    monitor()->watch(dialog, &QDialog::finished, QStringLiteral("finished"));
    monitor()->watch(dialog, &UtilsDialogFrame::signalDialogClosed, QStringLiteral("signalDialogClosed"));
    dialog->setMessage(tr("Writing flash"));
    dialog->show();
    dialog->slotUpdateLog(tr("Connecting..."), LOGGER_MESSAGE_DEFAULT);
    dialog->slotUpdateLog(tr("Erasing..."), LOGGER_MESSAGE_DEFAULT);
    return dialog;
}
