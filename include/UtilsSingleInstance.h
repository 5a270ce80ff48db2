#ifndef UTILSSINGLEINSTANCE_H
#define UTILSSINGLEINSTANCE_H

#include "uniprogutils_export.h"

#include <QObject>
#include <QPointer>
#include <QString>

class QWidget;

/// The application's identity and main widget, reachable from every part of the library. The name refers to the one
/// shared object: a second copy of the application may well be started.
///
/// The organisation and the application name open every settings store of the library, so set the name before anything
/// is read or written:
///
///     UtilsSingleInstance::getInstance(&application);
///     UtilsSingleInstance::setApplicationName("Programmer");
///     UtilsSingleInstance::setAppMainWidget(&mainWindow);
///
/// GUI thread only. The strings and the main widget belong to the process, not to the object: they are there before
/// the first getInstance() and survive the object's end.
class UNIPROGUTILS_EXPORT UtilsSingleInstance : public QObject
{
    Q_OBJECT

public:
    ~UtilsSingleInstance() override;

    /// The shared object, created by the first call. \a parent counts in that call only and then owns the object;
    /// without a parent the object lives until the process ends. When its parent has deleted it, the next call makes
    /// a new one.
    static UtilsSingleInstance *getInstance(QObject *parent);

    /// Names the application in the settings store. "" until set.
    static void setApplicationName(QString name);
    static QString getApplicationName();

    /// "Orbelkan", for every application of the suite.
    static QString getOrganization();

    /// The widget that dialogs cover when no window is active; not owned. Null until set, and null again when the
    /// widget has been deleted.
    static void setAppMainWidget(QWidget *widget);
    static QWidget *getAppMainWidget();

private:
    explicit UtilsSingleInstance(QObject *parent);
    Q_DISABLE_COPY_MOVE(UtilsSingleInstance)

    static UtilsSingleInstance *m_singleInstance;
    static QPointer<QWidget> m_appMainWidget;
    static QString m_application;
    static QString m_organization;
};

#endif // UTILSSINGLEINSTANCE_H
