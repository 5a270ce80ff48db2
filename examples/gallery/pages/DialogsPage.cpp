#include "DialogsPage.h"

#include "../EventMonitor.h"

#include <UtilsDialog.h>
#include <UtilsWaitingSpinner.h>

#include <QDoubleSpinBox>
#include <QIntValidator>
#include <QLabel>
#include <QTimer>

namespace {

constexpr double Voltage = 3.3;
constexpr double LowestVoltage = 0.0;
constexpr double HighestVoltage = 5.0;
constexpr int LargestCount = 999;
constexpr int Seconds = 10;
constexpr int TextHeight = 120;

} // namespace

DialogsPage::DialogsPage(EventMonitor *events, QWidget *parent)
    : GalleryPage(events, parent)
{
    addPopup({QStringLiteral("message"), tr("Message"),
              [this] { return openDialog(newDialog(tr("The target is erased."))); }});
    addPopup({QStringLiteral("confirm"), tr("No cancelling"), [this] {
                  UtilsDialog *dialog = newDialog(tr("There is no way back."));
                  dialog->enableCancelButton(false);
                  return openDialog(dialog);
              }});
    addPopup({QStringLiteral("line"), tr("Line, empty"), [this] {
                  UtilsDialog *dialog = newDialog(tr("Name of the target:"));
                  dialog->addLineEdit(false);
                  dialog->setLineEditPlaceholder(tr("Letters and digits"));
                  return openDialog(dialog);
              }});
    addPopup({QStringLiteral("number"), tr("Line, number"), [this] {
                  UtilsDialog *dialog = newDialog(tr("Number of targets, at most 999:"));
                  dialog->addLineEdit(false);
                  dialog->setLineEditValidator(new QIntValidator(1, LargestCount, dialog));
                  dialog->setLineEditText(QStringLiteral("42"));
                  return openDialog(dialog);
              }});
    addPopup({QStringLiteral("password"), tr("Password"), [this] {
                  UtilsDialog *dialog = newDialog(tr("Password of the wireless link:"));
                  dialog->addLineEdit(true);
                  dialog->setLineEditText(QStringLiteral("12345678"));
                  return openDialog(dialog);
              }});
    addPopup({QStringLiteral("text"), tr("Text"), [this] {
                  UtilsDialog *dialog = newDialog(tr("Notes:"));
                  dialog->addTextEdit();
                  dialog->setTextEditMaxHeight(TextHeight);
                  dialog->setTextEditText(tr("First line\nSecond line"));
                  return openDialog(dialog);
              }});
    addPopup({QStringLiteral("value"), tr("Value"), [this] {
                  UtilsDialog *dialog = newDialog(tr("Supply of the target:"));
                  dialog->addSpinBox(Voltage, LowestVoltage, HighestVoltage)->setSuffix(tr(" V"));
                  return openDialog(dialog);
              }});
    addPopup({QStringLiteral("choice"), tr("Choice"), [this] {
                  UtilsDialog *dialog = newDialog(tr("Supply of the target:"));
                  QStringList voltages{QStringLiteral("1.8"), QStringLiteral("3.3"), QStringLiteral("5.0")};
                  dialog->addRadioButtonGroup(voltages, tr("V"), QStringLiteral("3.3"));
                  return openDialog(dialog);
              }});
    addPopup({QStringLiteral("content"), tr("Own content"), [this] {
                  auto *dialog = new UtilsDialogFrame(this);
                  dialog->setContent(new QLabel(tr("A frame shows what it is given.")));
                  return openDialog(dialog);
              }});
    addPopup({QStringLiteral("waiting"), tr("Waiting"),
              [this] {
                  auto *dialog = new UtilsWaitingSpinner(this, tr("The programmer restarts..."));
                  return openDialog(dialog);
              },
              &QWidget::close});
    addButton(tr("Waiting, 10 s"), [this] {
        auto *dialog = new UtilsWaitingSpinner(this, tr("The programmer restarts..."));
        dialog->setCountdown(Seconds);
        openDialog(dialog);
        QTimer::singleShot(Seconds * 1000, dialog, &QWidget::close);
    });
}

DialogsPage::~DialogsPage() = default;

UtilsDialog *DialogsPage::newDialog(const QString &message)
{
    auto *dialog = new UtilsDialog(this); // deletes itself when it is closed
    dialog->setMessage(message);
    monitor()->watch(dialog, qOverload<QString>(&UtilsDialog::accepted), QStringLiteral("accepted"));
    monitor()->watch(dialog, qOverload<double>(&UtilsDialog::accepted), QStringLiteral("accepted"));
    return dialog;
}

UtilsDialogFrame *DialogsPage::openDialog(UtilsDialogFrame *dialog)
{
    monitor()->watch(dialog, &QDialog::finished, QStringLiteral("finished"));
    monitor()->watch(dialog, &UtilsDialogFrame::signalDialogClosed, QStringLiteral("signalDialogClosed"));
    dialog->show();
    return dialog;
}
