#ifndef UTILSHELPASSISTANT_H
#define UTILSHELPASSISTANT_H

#include "uniprogutils_export.h"

#include <QObject>
#include <QPointer>
#include <QString>

class QProcess;

/// Shows pages of the application's help in the help viewer, a separate program that is started on the first request.
///
/// Next to the application's executable it needs the viewer ("assistant") and the help collection
/// ("resources/help/help_settings_1.4.0.qhc"). The pages are in the collection under the namespace that the library
/// was built for: the CMake variable UNIPROG_HELP_NAMESPACE, which the installed package hands on as
/// UniProgUtils_HELP_NAMESPACE. The keyword "device/connect.html" then names the page
/// `qthelp://NAMESPACE/doc/device/connect.html`.
///
///     Q_EMIT UtilsHelpAssistant::getInstance()->signalOpenHelpKeyword("device/connect.html");
///
/// A viewer that is missing, or ends at once, shows nothing and reports nothing. GUI thread only; a request waits for
/// the viewer's start, up to 30 s. For a help entry in a widget's context menu see UtilsHelpContextMenu.
class UNIPROGUTILS_EXPORT UtilsHelpAssistant : public QObject
{
    Q_OBJECT

public:
    /// The object gets no parent. Applications use getInstance(): each object has a viewer of its own.
    UtilsHelpAssistant();
    /// Ends the viewer.
    ~UtilsHelpAssistant() override;

    /// The shared object, created by the first call and never deleted by the library. Who deletes it ends the viewer;
    /// the next call makes a new one.
    static UtilsHelpAssistant *getInstance();

Q_SIGNALS:
    /// Emit it to have the page \a keyword shown.
    void signalOpenHelpKeyword(QString keyword);

public Q_SLOTS:
    /// Starts the viewer if it does not run and tells it to show the page \a keyword, a page path on one line. A
    /// viewer that runs already is used, which the process object mentions in a warning.
    void slotOpenHelpKeyword(QString keyword);

private:
    Q_DISABLE_COPY_MOVE(UtilsHelpAssistant)

    QProcess *viewerProcess;

    static QPointer<UtilsHelpAssistant> instance;
};

#endif // UTILSHELPASSISTANT_H
