#ifndef UTILSLABEL_H
#define UTILSLABEL_H

#include "uniprogutils_export.h"

#include <QLabel>

/// A label that says when the pointer enters or leaves it and when it is clicked, for captions and pictures that act
/// like buttons or open a hint.
///
/// \image html labels.png
///
/// GUI thread only; owned by its Qt parent.
///
///     auto *label = new UtilsLabel(this, Qt::WindowFlags());
///     label->setText(tr("What is this?"));
///     connect(label, &UtilsLabel::signalClicked, this, &Page::showHint);
class UNIPROGUTILS_EXPORT UtilsLabel : public QLabel
{
    Q_OBJECT

public:
    /// A plain, empty label. \a f as for QLabel.
    explicit UtilsLabel(QWidget *parent = nullptr, Qt::WindowFlags f = Qt::WindowFlags());
    ~UtilsLabel() override;

Q_SIGNALS:
    /// The pointer came over the label.
    void signalEnter();
    /// The pointer left the label.
    void signalLeave();
    /// A mouse button was pressed on the label, whichever button it was. A double click is two clicks. A disabled label
    /// reports none. The press goes on to the parent, as with a QLabel, so delete the label only with deleteLater().
    void signalClicked();

protected:
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    Q_DISABLE_COPY_MOVE(UtilsLabel)
};

#endif // UTILSLABEL_H
