#ifndef UTILSDIALOG_H
#define UTILSDIALOG_H

#include "UtilsDialogFrame.h"

#include <QList>
#include <QPointer>
#include <QString>

class QButtonGroup;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QTextEdit;
class QValidator;
class QVBoxLayout;

/// A message with an optional input: a line of text, a text, a number or a choice. What was entered is reported through
/// accepted() before the dialog closes; who needs no value connects to QDialog::accepted().
///
/// \image html dialogs-line.png
///
/// Thread: GUI thread only. Ownership: as UtilsDialogFrame, create it with new and let it delete itself. The inputs
/// belong to the dialog and stand below the message in the order they were added.
///
///     auto *dialog = new UtilsDialog(window);
///     dialog->setMessage(tr("Password of the WiFi link"));
///     dialog->setFocus(dialog->addLineEdit(true));
///     connect(dialog, qOverload<QString>(&UtilsDialog::accepted), this, &Window::usePassword);
///     dialog->show();
class UNIPROGUTILS_EXPORT UtilsDialog : public UtilsDialogFrame
{
    Q_OBJECT

public:
    explicit UtilsDialog(QWidget *parent = nullptr);
    ~UtilsDialog() override;

    /// "Dialog Message" until set; centred.
    void setMessage(QString message);

    // Each input is created by the first call; further calls return it as it is.

    /// A line of centred text, hidden behind dots when it is a \a password.
    QLineEdit *addLineEdit(bool password);
    QTextEdit *addTextEdit();
    /// A number from \a min to \a max with 4 decimals. Once it is changed, the accept button is enabled while it is
    /// above 0.
    QDoubleSpinBox *addSpinBox(double value, double min, double max);
    /// A choice of \a items, each shown with \a unit behind a blank; the ids are the indexes in the list. The item
    /// equal to \a selected is checked, the first one when no item is, and none when \a selected is empty. Any click
    /// enables the accept button.
    QButtonGroup *addRadioButtonGroup(QList<QString> &items, QString unit, QString selected);

    // Each of these does nothing while there is no such input.

    void setLineEditPlaceholder(QString text);
    void setLineEditText(QString text);
    /// From the next change on, the accept button is enabled while \a validator, which stays the caller's, accepts
    /// the text.
    void setLineEditValidator(QValidator *validator);
    void setTextEditPlaceholder(QString text);
    void setTextEditText(QString text);
    /// In pixels.
    void setTextEditMaxHeight(int height);

    using QDialog::accepted;

Q_SIGNALS:
    // Two more signals of this name, each with what was entered: the interface. qOverload() tells them apart.

    /// The text of the line edit, and then that of the text edit.
    void accepted(QString action); // clazy:exclude=overloaded-signal
    /// The number of the spin box, and then that of the checked radio button: its text up to the first blank, read
    /// with a decimal point in every locale. Without a checked button there is no signal for it.
    void accepted(double spinValue); // clazy:exclude=overloaded-signal

public Q_SLOTS:
    /// Reports what was entered, texts first, and accepts the dialog.
    void on_toolButton_accept_clicked() override;
    void slotDialogLineEditChanged(QString text);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    Q_DISABLE_COPY_MOVE(UtilsDialog)

    void addCentered(QWidget *input);

    QWidget *m_content;
    QVBoxLayout *m_contentLayout;
    QLabel *m_message;
    QPointer<QLineEdit> m_lineEdit;
    QPointer<QTextEdit> m_textEdit;
    QPointer<QDoubleSpinBox> m_spinBox;
    QPointer<QButtonGroup> m_radioGroup;
};

#endif // UTILSDIALOG_H
