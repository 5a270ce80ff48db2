#ifndef UTILSDIALOGFRAME_H
#define UTILSDIALOGFRAME_H

#include "uniprogutils_export.h"

#include <QDialog>
#include <QPointer>

class QFrame;
class QGraphicsDropShadowEffect;
class QToolButton;
class QVBoxLayout;
class UtilsFade;

/// The base of every modal dialog of the suite: a frameless, translucent window that lies exactly over the window that
/// was active when it was created, dims it, and shows a card with content and an accept/cancel button row.
///
/// Thread: GUI thread only. Ownership: create it with new. A frame is used once: hiding it in any way (accept, reject,
/// done, close, hide) disables its buttons and deletes it at the next event-loop turn. It may also die earlier, with
/// its parent or inside a slot of its signals.
///
///     auto *frame = new UtilsDialogFrame(window);
///     frame->setContent(new QLabel(tr("Erase the target?")));
///     connect(frame, &QDialog::accepted, this, &Window::erase);
///     frame->show();
///
/// The look is up to the application's style sheet, through the object names and the properties "background-color",
/// "frame-border-color" and "frame-type" of its parts; without one the card is see-through.
class UNIPROGUTILS_EXPORT UtilsDialogFrame : public QDialog
{
    Q_OBJECT

public:
    /// The frame covers the application's active window or, without one, the main widget of UtilsSingleInstance. The
    /// cancel button has the focus.
    explicit UtilsDialogFrame(QWidget *parent = nullptr);
    ~UtilsDialogFrame() override;

    /// Enabled from the start. A closed frame has both buttons disabled.
    void enableCancelButton(bool enable);
    QToolButton *getAcceptButton();
    QToolButton *getCancelButton();

    /// Adds \a content, which the frame then owns, below what the content area holds already. Null is ignored.
    void setContent(QWidget *content);
    /// Shows or hides both buttons and the line above them. Shown from the start.
    void setButtonsVisible(bool visible);
    /// Hides the buttons and their line, and swallows every key from now on, so that neither Escape nor Return closes
    /// the frame. There is no way back.
    void disableInputControls();
    /// Limits of the card, in pixels.
    void setDialogMaxHeight(int height);
    void setDialogMaxWidth(int width);

    using QDialog::setFocus;
    /// Gives \a widget the focus as if by Qt::OtherFocusReason. Null is ignored.
    void setFocus(QWidget *widget);

    /// Fixes the frame's size and place to those of the covered window. Called when the frame is shown; call it again
    /// when that window has moved. Without a covered window nothing happens.
    void updatePosition();

    /// Hiding deletes later, as said above; a frame that was hidden is not shown again.
    void setVisible(bool visible) override;
    /// The first call ends the frame, whether it was shown or not, with the signals of QDialog and, for the results of
    /// accept() and reject(), signalDialogClosed(). Further ones do nothing.
    void done(int result) override;
    /// As QDialog::exec(). The frame is gone when it returns; do not delete it.
    int exec() override;

Q_SIGNALS:
    /// The frame was accepted or rejected, and the covered window is active again: once for a button, a key, accept()
    /// and reject(). close() rejects a visible frame and announces its own end as well, which makes two; it is
    /// refused, without a signal, when a subclass has a reject() that keeps the frame. Not emitted by hide(), by done()
    /// with another result than those of accept() and reject(), or when the parent dies.
    void signalDialogClosed();

public Q_SLOTS:
    /// Gives the card, now opaque, its shadow.
    void slotFadeInFinished();
    /// For subclasses that fade out before they close: deletes the frame later.
    void slotFadeOutFinished();
    /// Activates the covered window, and emits signalDialogClosed().
    void slotDialogIsClosing();
    /// The covered window is gone: its parent widget, if any, takes its place.
    void slotActiveWindowDestroyed(QObject *ptr);
    /// What the buttons do: accept() and reject().
    virtual void on_toolButton_accept_clicked();
    virtual void on_toolButton_cancel_clicked();
    /// Enables the accept button whatever \a value is: it is for a group's idClicked(), and any click there is
    /// a choice.
    void slotEnableAcceptButton(int value);
    /// Enables the accept button for a \a value above 0.0 and disables it otherwise.
    void slotEnableAcceptButton(double value);
    void enableAcceptButton(bool enable);

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    /// Escape cancels; Return and Enter accept while the accept button is enabled.
    void keyPressEvent(QKeyEvent *event) override;

private:
    Q_DISABLE_COPY_MOVE(UtilsDialogFrame)
    friend class UtilsDialogProcessing; // whose Close button ends the frame as well

    void setupForm();
    QFrame *createCard(QWidget *parent);
    QToolButton *createButton(const QString &name, const QString &text);
    void handleClick(void (UtilsDialogFrame::*handler)());

    QFrame *m_frameDialog = nullptr;
    QVBoxLayout *m_contentLayout = nullptr;
    QFrame *m_buttonSeparator = nullptr;
    QToolButton *m_acceptButton = nullptr;
    QToolButton *m_cancelButton = nullptr;
    QPointer<UtilsFade> m_fade;
    QPointer<QGraphicsDropShadowEffect> m_shadow;
    bool m_inputControlsDisabled = false;
    QPointer<QWidget> m_coveredWindow;
    bool m_isDone = false;
    bool m_isUsedUp = false;
    bool m_isClicked = false;
};

#endif // UTILSDIALOGFRAME_H
