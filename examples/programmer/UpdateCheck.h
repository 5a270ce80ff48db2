#ifndef UPDATECHECK_H
#define UPDATECHECK_H

#include <UtilsHttpClient.h>
#include <UtilsNotificationsListener.h>

#include <QMap>
#include <QString>

/// Asks a server for the newest versions and raises a notification for what is newer than what runs here. The server
/// sends lines "suite=1.2" and "firmware=2.3"; other lines are left alone.
class UpdateCheck : public UtilsNotificationsListener
{
    Q_OBJECT

public:
    UpdateCheck();
    ~UpdateCheck() override;

    /// Empty at the start: then there is nothing to ask.
    void setUrl(const QString &url);
    QString url() const;

    /// Starts the request, unless one is under way; finished() follows.
    void start();

Q_SIGNALS:
    void finished(const QString &outcome, bool ok);
    /// The user wants the update that a notification told of.
    void chosen(const QString &text);

public Q_SLOTS:
    void slotNotificationExecuted(UtilsNotificatonsType notificationType) override;

private:
    void read(bool ok, const QByteArray &answer);

    UtilsHttpClient client;
    QString address;
    QMap<UtilsNotificatonsType, QString> newest;
    bool waiting = false;
};

#endif // UPDATECHECK_H
