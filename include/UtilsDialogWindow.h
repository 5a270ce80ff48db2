#ifndef UTILSDIALOGWINDOW_H
#define UTILSDIALOGWINDOW_H

#include "uniprogutils_export.h"

#include <QDialog>
#include <QPointer>
#include <QRect>
#include <QString>

class QVBoxLayout;
class UtilsDialogTitlebar;

/// The base of an application's secondary windows: an application-modal dialog that, where
/// UtilsMisc::CheckIfFramelessUsed() says so, draws its own frame with a UtilsDialogTitlebar. Such a window is moved by
/// its title bar and background, maximised by the title bar's button and, on Windows, resized by its edges, which are 4
/// pixels wide. Otherwise it is an ordinary window with the system's frame.
///
/// \image html window-resizable.png
///
/// Thread: GUI thread only. Ownership: as any QDialog; the window owns its content and title bar. In slots of
/// accepted() and rejected() use deleteLater(): QDialog goes on with a window that is deleted there, to emit
/// finished().
///
///     UtilsDialogWindow window(this);
///     window.setTitle(tr("Memory"));
///     window.setContent(new MemoryView);
///     window.exec();
class UNIPROGUTILS_EXPORT UtilsDialogWindow : public QDialog
{
    Q_OBJECT

public:
    /// The window is three quarters as high as the primary screen, and its centre is on that of \a parent, if any.
    explicit UtilsDialogWindow(QWidget *parent = nullptr);
    ~UtilsDialogWindow() override;

    /// Adds \a content, which the window then owns, below what the content area holds already. Null is ignored.
    void setContent(QWidget *content);
    /// The title in the title bar, or the window's title when the system draws the frame.
    void setTitle(QString title);
    /// Whether the width is the user's choice, as it is at first, or follows the content: then the window gets the
    /// content's limits, over any that were set for it. Limits of its own are best set after the call.
    void setResizableWidth(bool resizable);
    /// The flags of this window: Qt::Window, with Qt::FramelessWindowHint when it draws its own frame. Nothing is set.
    QFlags<Qt::WindowType> setWindowsFlags();

public Q_SLOTS:
    /// Fills the primary screen, no wider than the window's maximum width, or returns to the geometry before. A
    /// maximised window is not moved by its title bar. Ignored when the system draws the frame.
    void slotMaximize(bool maximize);

protected:
    bool nativeEvent(const QByteArray &eventType, void *message, qintptr *result) override;
    /// The same for callers that keep the answer in a long.
    bool nativeEvent(const QByteArray &eventType, void *message, long *result);

private:
    Q_DISABLE_COPY_MOVE(UtilsDialogWindow)

    void setupForm();
    void createTitlebar();
    void centerOn(const QWidget *parent);

    QVBoxLayout *m_windowLayout = nullptr;
    QWidget *m_main = nullptr;
    QVBoxLayout *m_mainLayout = nullptr;
    QWidget *m_content = nullptr;
    QVBoxLayout *m_contentLayout = nullptr;
    QRect m_normalGeometry;
    UtilsDialogTitlebar *m_titlebar = nullptr;
    bool m_isMaximized = false;
    bool m_isFrameless = false;
};

#endif // UTILSDIALOGWINDOW_H
