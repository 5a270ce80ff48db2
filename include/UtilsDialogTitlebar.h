#ifndef UTILSDIALOGTITLEBAR_H
#define UTILSDIALOGTITLEBAR_H

#include "uniprogutils_export.h"

#include <QFrame>
#include <QPoint>
#include <QPointer>
#include <QString>

class QLabel;
class QToolButton;

/// The title bar of a window without a frame of the system: title, maximise and close button, and dragging.
/// UtilsDialogWindow creates its own; any other frameless window can use one as well.
///
/// Thread: GUI thread only. Ownership: created without a parent, it belongs to the widget whose layout it is put into.
/// The window it moves stays the caller's and may die first.
///
///     auto *titlebar = new UtilsDialogTitlebar(window);
///     titlebar->setTitle(tr("Memory"));
///     layout->insertWidget(0, titlebar);
///     connect(titlebar->getMaximizeButton(), &QToolButton::clicked, window, &Window::fillScreen);
///
/// The images of the buttons come with the library: ":/close", ":/maximize", ":/restore" and ":/minimize", and the same
/// with "_yellow" under the pointer. A button named "minimizeButton" and a label named "logoLabel" that are put into
/// the bar get theirs (":/logo") too.
class UNIPROGUTILS_EXPORT UtilsDialogTitlebar : public QFrame
{
    Q_OBJECT

public:
    /// \a window is what dragging moves and the close button closes. With null, neither happens.
    explicit UtilsDialogTitlebar(QWidget *window);
    ~UtilsDialogTitlebar() override;

    /// "TextLabel" until set.
    void setTitle(QString title);
    /// Checkable; what a click does is up to the window.
    QToolButton *getMaximizeButton() const;
    /// Whether dragging moves the window; true at first.
    void setMovable(bool movable);
    bool getMovable() const;

protected:
    void mousePressEvent(QMouseEvent *event) override;
    /// Moves the window while the left button is held.
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    Q_DISABLE_COPY_MOVE(UtilsDialogTitlebar)

    void setupForm();
    QToolButton *createButton(const QString &name, const QString &styleSheet, const QString &accessibleName);

    QLabel *m_titleLabel = nullptr;
    QToolButton *m_maximizeButton = nullptr;
    QToolButton *m_closeButton = nullptr;
    QPointer<QWidget> m_window;
    QPoint m_pressPosition; // in the title bar, which moves with the window
    bool m_isPressed = false;
    bool m_isMovable = true;
};

#endif // UTILSDIALOGTITLEBAR_H
