#include "UpdateCheck.h"

#include <UtilsNotifications.h>

#include <QCoreApplication>
#include <QUrl>
#include <QVersionNumber>

namespace {

constexpr char DeviceFirmware[] = "2.0"; // what the simulated device came with

} // namespace

UpdateCheck::UpdateCheck()
{
    connect(&client, &UtilsHttpClient::signalServerDownloadFinished, this, &UpdateCheck::read);
    UtilsNotifications::getInstance().registerListener(this);
}

UpdateCheck::~UpdateCheck() = default;

void UpdateCheck::setUrl(const QString &url)
{
    address = url;
}

QString UpdateCheck::url() const
{
    return address;
}

void UpdateCheck::start()
{
    if (waiting || address.isEmpty())
        return;
    if (!QUrl(address, QUrl::TolerantMode).isValid()) { // no answer would come
        Q_EMIT finished(tr("\"%1\" is no address of a server.").arg(address), false);
        return;
    }
    waiting = true;
    client.SendUrlRequest(address);
}

void UpdateCheck::read(bool ok, const QByteArray &answer)
{
    waiting = false;
    if (!ok) {
        Q_EMIT finished(tr("The update server does not answer."), false);
        return;
    }
    const QMap<QByteArray, UtilsNotificatonsType> types{{"suite", NOTIFICATION_NEW_SUITE_VERSION},
                                                        {"firmware", NOTIFICATION_NEW_FIRMWARE_VERSION}};
    const QMap<UtilsNotificatonsType, QString> here{
        {NOTIFICATION_NEW_SUITE_VERSION, QCoreApplication::applicationVersion()},
        {NOTIFICATION_NEW_FIRMWARE_VERSION, QString::fromLatin1(DeviceFirmware)}};
    bool found = false;
    const QList<QByteArray> lines = answer.split('\n');
    for (const QByteArray &line : lines) {
        const qsizetype separator = line.indexOf('=');
        const auto type = types.constFind(line.left(separator).trimmed());
        if (separator < 0 || type == types.cend())
            continue;
        const QString version = QString::fromUtf8(line.mid(separator + 1)).trimmed();
        if (QVersionNumber::fromString(version) <= QVersionNumber::fromString(here.value(*type)))
            continue;
        found = true;
        newest.insert(*type, version);
        UtilsNotifications::getInstance().addNotification(*type);
    }
    Q_EMIT finished(found ? tr("There are updates.") : tr("Everything is up to date."), true);
}

void UpdateCheck::slotNotificationExecuted(UtilsNotificatonsType notificationType)
{
    const QString version = newest.value(notificationType);
    Q_EMIT chosen(notificationType == NOTIFICATION_NEW_FIRMWARE_VERSION
                      ? tr("Firmware %1: choose its file and write it to the device.").arg(version)
                      : tr("Version %1 of the application can be downloaded.").arg(version));
}
