#include "UtilsSingleInstance.h"

#include <QWidget>

UtilsSingleInstance *UtilsSingleInstance::m_singleInstance = nullptr;
QPointer<QWidget> UtilsSingleInstance::m_appMainWidget;
QString UtilsSingleInstance::m_application = QLatin1String("");
QString UtilsSingleInstance::m_organization = QStringLiteral("Orbelkan");

UtilsSingleInstance::UtilsSingleInstance(QObject *parent)
    : QObject(parent)
{ }

UtilsSingleInstance::~UtilsSingleInstance()
{
    m_singleInstance = nullptr;
}

UtilsSingleInstance *UtilsSingleInstance::getInstance(QObject *parent)
{
    if (!m_singleInstance)
        m_singleInstance = new UtilsSingleInstance(parent);
    return m_singleInstance;
}

void UtilsSingleInstance::setApplicationName(QString name)
{
    m_application = name;
}

QString UtilsSingleInstance::getApplicationName()
{
    return m_application;
}

QString UtilsSingleInstance::getOrganization()
{
    return m_organization;
}

void UtilsSingleInstance::setAppMainWidget(QWidget *widget)
{
    m_appMainWidget = widget;
}

QWidget *UtilsSingleInstance::getAppMainWidget()
{
    return m_appMainWidget;
}
