#ifndef UTILSDIALOGPROCESSINGCONTENT_H
#define UTILSDIALOGPROCESSINGCONTENT_H

#include "uniprogutils_export.h"

#include <QWidget>

class QLabel;
class QToolButton;
class QVBoxLayout;
class UtilsLogger;
class UtilsProgressBar;

/// What a UtilsDialogProcessing shows: a message line, the logger, a thin progress bar, and a Close button that is
/// collapsed until it is expanded. Applications use the dialog; this class is for hosts that show the same elsewhere.
///
/// Thread: GUI thread only. Ownership: owned by its Qt parent; what the getters return belongs to it.
///
///     auto *content = new UtilsDialogProcessingContent(this);
///     content->setMessage(tr("Writing flash"));
///     content->getLogger()->addMessage(tr("Starting operation..."), LOGGER_MESSAGE_DEFAULT);
class UNIPROGUTILS_EXPORT UtilsDialogProcessingContent : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UtilsDialogProcessingContent)

public:
    explicit UtilsDialogProcessingContent(QWidget *parent = nullptr);
    ~UtilsDialogProcessingContent() override;

    /// Sets the text of the message line.
    void setMessage(QString message);

    /// Reveals each line in 250 ms and keeps 1000 lines.
    UtilsLogger *getLogger() const;
    /// Without text; takes 100 ms for a change of its value.
    UtilsProgressBar *getProgressBar() const;
    /// The Close button. Collapsed, it has no height, no text and takes no focus. Return and Enter never press it,
    /// whatever the desktop makes of them: they go on to its parents.
    QToolButton *getButton() const;
    QLabel *getMessageLabel() const;

    /// Lets the Close button grow to 27 pixels in 150 ms, then gives it its text. Once is enough: a button that is
    /// growing or has grown stays as it is.
    void expandButton();

public Q_SLOTS:
    /// The Close button has its height: shows its text.
    void slotExpandAnimFinished();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setupForm();
    QWidget *createProgressArea();
    QWidget *createButtonArea();

    QVBoxLayout *verticalLayout = nullptr;
    QLabel *labelMessage = nullptr;
    UtilsLogger *logger = nullptr;
    QWidget *progressBarPlaceholder = nullptr;
    QWidget *buttonArea = nullptr;
    QToolButton *toolButton = nullptr;
    UtilsProgressBar *progressBar;

    bool isButtonExpanded = false;
};

#endif // UTILSDIALOGPROCESSINGCONTENT_H
