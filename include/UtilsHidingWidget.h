#ifndef UTILSHIDINGWIDGET_H
#define UTILSHIDINGWIDGET_H

#include "uniprogutils_export.h"

#include <QFrame>
#include <QPointer>

class QLabel;

/// A cover for one widget: a semi-transparent frame over its parent that greys it out and keeps the mouse off its
/// controls, with a message card in the middle.
///
/// \image html cover.png
///
/// Unlike UtilsDialogFrame it is neither modal nor a window, and it is used again and again with show() and hide(). It
/// has the size of the parent it was created with, shown or not, from its first show or that parent's next resize on.
/// It lies above the children that its parent had when it was created; raise() it above later ones. The keyboard still
/// reaches what is below.
///
/// GUI thread only; owned by its Qt parent.
///
///     auto *cover = new UtilsHidingWidget(page);
///     cover->SetInfoText(tr("No device is connected"));
///     cover->hide();
///     connect(device, &Device::connectedChanged, cover, &QWidget::setHidden);
class UNIPROGUTILS_EXPORT UtilsHidingWidget : public QFrame
{
    Q_OBJECT

public:
    /// Covers \a parent; without one the cover keeps its own size, 400 x 300 pixels, and watches nothing. As with any
    /// child, it is shown with a parent that is shown later: hide() it where it is not to be seen at first.
    explicit UtilsHidingWidget(QWidget *parent = nullptr);
    ~UtilsHidingWidget() override;

    /// The message on the card, "Message" at first.
    void SetInfoText(QString text);
    /// Shows or hides the card; without it, a plain semi-transparent cover is left. Shown from the start.
    void SetInfoVisible(bool visible);

    /// Takes over the size of the covered widget when \a watched is resized. No event is consumed.
    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    /// Takes over the size of the covered widget first.
    void showEvent(QShowEvent *event) override;

private:
    Q_DISABLE_COPY_MOVE(UtilsHidingWidget)

    void setupForm();
    QFrame *createCardRow();
    QFrame *createCard(QWidget *parent);
    void followCoveredWidget();

    QFrame *m_card = nullptr;
    QLabel *m_infoLabel = nullptr;
    QPointer<QWidget> m_coveredWidget;
};

#endif // UTILSHIDINGWIDGET_H
