#include "UtilsMisc.h"

#include "FileVersion_p.h"
#include "IpAddressChoice_p.h"
#include "UtilsSingleInstance.h"

#include <QDebug>
#include <QLayout>
#include <QMainWindow>
#include <QNetworkInterface>
#include <QOperatingSystemVersion>
#include <QSettings>
#include <QStyle>
#include <QVariant>

static const char GeometryKey[] = "window_geometry";
static const char StateKey[] = "window_state";
static constexpr int StateVersion = 0;

QString UtilsMisc::GetFileVersion(QString filePath)
{
    const FileVersion version = queryFileVersion(filePath);
    switch (version.outcome) {
    case FileVersion::NoVersionInfo:
        qDebug("error in GetFileVersionInfo: %u", version.error);
        return QString();
    case FileVersion::NoRootBlock:
        qDebug("error in VerQueryValue");
        return QString();
    case FileVersion::Found:
        break;
    }
    return QStringLiteral("%1.%2.%3.%4")
        .arg(version.mostSignificant >> 16)
        .arg(version.mostSignificant & 0xFFFFU)
        .arg(version.leastSignificant >> 16)
        .arg(version.leastSignificant & 0xFFFFU);
}

QString UtilsMisc::GetMyIpAddress()
{
    QList<InterfaceAddresses> interfaces;
    const auto all = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &networkInterface : all) {
        InterfaceAddresses candidate{networkInterface.flags(), {}};
        const auto entries = networkInterface.addressEntries();
        for (const QNetworkAddressEntry &entry : entries)
            candidate.addresses.append(entry.ip());
        interfaces.append(candidate);
    }
    return chooseIpAddress(interfaces);
}

void UtilsMisc::SaveMainWindowState(QMainWindow *window)
{
    if (!window)
        return;
    UtilsSingleInstance::getInstance(nullptr);
    QSettings settings(UtilsSingleInstance::getOrganization(), UtilsSingleInstance::getApplicationName());
    settings.setValue(QLatin1String(GeometryKey), window->saveGeometry());
    settings.setValue(QLatin1String(StateKey), window->saveState(StateVersion));
}

void UtilsMisc::RestoreMainWindowState(QMainWindow *window)
{
    if (!window)
        return;
    UtilsSingleInstance::getInstance(nullptr);
    const QSettings settings(UtilsSingleInstance::getOrganization(), UtilsSingleInstance::getApplicationName());
    window->restoreGeometry(settings.value(QLatin1String(GeometryKey)).toByteArray());
    window->restoreState(settings.value(QLatin1String(StateKey)).toByteArray(), StateVersion);
}

bool UtilsMisc::CheckIfFramelessUsed()
{
    // The system is still compared with Windows 7, but no answer of it selects the frameless style: windows keep the
    // system's frame whatever they run on.
    static_cast<void>(QOperatingSystemVersion::current() > QOperatingSystemVersion::Windows7);
    return false;
}

void UtilsMisc::ReplaceWidgets(QWidget *oldWidget, QWidget *newWidget)
{
    if (!oldWidget || !newWidget || !oldWidget->parentWidget())
        return;
    QLayout *layout = oldWidget->parentWidget()->layout();
    if (!layout)
        return;

    newWidget->setSizePolicy(oldWidget->sizePolicy());
    newWidget->setMaximumSize(oldWidget->maximumSize());
    newWidget->setMinimumSize(oldWidget->minimumSize());
    QLayoutItem *item = layout->replaceWidget(oldWidget, newWidget, Qt::FindChildrenRecursively);
    if (!item)
        return;
    delete item->widget();
    delete item;
}

void UtilsMisc::SetMaximumSize(const QSize &size, QWidget *widget)
{
    if (widget)
        widget->setMaximumSize(widget->maximumSize().boundedTo(widget->minimumSize().expandedTo(size)));
}

void UtilsMisc::SetMinimumSize(const QSize &size, QWidget *widget)
{
    if (widget)
        widget->setMinimumSize(widget->minimumSize().expandedTo(widget->maximumSize().boundedTo(size)));
}

void UtilsMisc::SetProperty(QWidget *widget, const char *name, const QVariant &value)
{
    if (!widget)
        return;
    widget->setProperty(name, value);
    widget->style()->unpolish(widget);
    widget->style()->polish(widget);
}
