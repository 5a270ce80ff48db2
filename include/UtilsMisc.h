#ifndef UTILSMISC_H
#define UTILSMISC_H

#include "uniprogutils_export.h"

#include <QString>

class QMainWindow;
class QSize;
class QVariant;
class QWidget;

/// Small helpers that several applications of the suite share. Everything is static and for the GUI thread. A null
/// window or widget is ignored.
///
///     UtilsMisc::SetProperty(frame, "background-color", "main");
///     UtilsMisc::RestoreMainWindowState(&mainWindow);
class UNIPROGUTILS_EXPORT UtilsMisc
{
public:
    UtilsMisc() = default;
    ~UtilsMisc() = default;

    /// The file version of a Windows executable or library, four decimal numbers joined by "." ("1.4.0.12"), taken
    /// from the fixed part of its version resource. "" when there is none, with a debug line that says what failed:
    /// "error in GetFileVersionInfo: " and the Windows error number (such as 2 no such file, 5 not readable,
    /// 1812 no resources, 1813 no version resource) or "error in VerQueryValue" for a version resource that is damaged.
    /// Works on every system.
    static QString GetFileVersion(QString filePath);

    /// The first IPv4 address, other than 127.0.0.1, of a running interface that is not a loopback one, in the
    /// system's order. "0.0.0.0" when there is none.
    static QString GetMyIpAddress();

    /// Stores the window's geometry and the state of its docks and tool bars under "window_geometry" and
    /// "window_state" in the settings of UtilsSingleInstance's organisation and application name. Docks and tool bars
    /// need object names.
    static void SaveMainWindowState(QMainWindow *window);
    /// Gives the window what SaveMainWindowState() stored; without a stored state the window stays as it is.
    static void RestoreMainWindowState(QMainWindow *window);

    /// Always false: the frameless window style is never chosen through this call.
    static bool CheckIfFramelessUsed();

    /// Puts \a newWidget in the place of \a oldWidget in the layout of the old one's parent widget, nested layouts
    /// included, with the old one's size policy and limits, and deletes \a oldWidget. Without such a layout, nothing
    /// happens. When the layout does not hold \a oldWidget, only the policy and the limits are copied.
    static void ReplaceWidgets(QWidget *oldWidget, QWidget *newWidget);

    /// Lowers the widget's maximum size to \a size, each dimension on its own, never below the widget's minimum. It
    /// never raises it.
    static void SetMaximumSize(const QSize &size, QWidget *widget);
    /// Raises the widget's minimum size to \a size, each dimension on its own, never above the widget's maximum. It
    /// never lowers it.
    static void SetMinimumSize(const QSize &size, QWidget *widget);

    /// Sets the dynamic property \a name and polishes the widget anew, so that style sheet rules which select on the
    /// property take effect at once.
    static void SetProperty(QWidget *widget, const char *name, const QVariant &value);
};

#endif // UTILSMISC_H
