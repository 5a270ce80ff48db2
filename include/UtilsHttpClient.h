#ifndef UTILSHTTPCLIENT_H
#define UTILSHTTPCLIENT_H

#include "uniprogutils_export.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QSslError>
#include <QString>
#include <QUrl>

class QAuthenticator;
class QNetworkAccessManager;
class QNetworkReply;

/// Fetches one resource at a time by HTTP or HTTPS GET and hands over the whole body in one signal. Meant for small
/// things such as update information; the body is kept in memory.
///
///     auto *client = new UtilsHttpClient;
///     connect(client, &UtilsHttpClient::signalServerDownloadFinished, this, [client](bool ok, QByteArray body) {
///         client->deleteLater();
///         if (ok)
///             readUpdateInformation(body);
///     });
///     client->SendUrlRequest("https://updates.example/suite.xml");
///
/// Redirections are followed, by Qt's default policy (not from HTTPS to HTTP) and without a change of the base: a
/// target that a reply still reports is requested anew if it is absolute and fails if it is relative. A server whose
/// certificate has any error is never talked to. There is no time-out.
///
/// GUI thread only (or the thread that owns the client). The client has no parent; its owner deletes it, which aborts
/// what is running without a signal. Inside a receiver of its signal, use deleteLater().
class UNIPROGUTILS_EXPORT UtilsHttpClient : public QObject
{
    Q_OBJECT

public:
    UtilsHttpClient();
    ~UtilsHttpClient() override;

    /// Requests \a url, read in tolerant mode; signalServerDownloadFinished() follows once. A text that is no valid
    /// URL, such as "" or "http://[", is dropped and no signal follows. Send the next request after the signal of the
    /// last one: all requests collect their bodies in one buffer, which this call clears.
    void SendUrlRequest(QString url);

    /// The credentials for a server that asks for them, both empty at the start. They are given to every
    /// challenge; wrong ones end the request.
    void setUserName(const QString &userName);
    void setUserPassword(const QString &password);

Q_SIGNALS:
    /// The request has ended: true with the body, or false with an empty array after any error of the network, of TLS
    /// or of HTTP (status 4xx and 5xx).
    void signalServerDownloadFinished(bool finishedStatus, QByteArray argsSrverResponse);

private Q_SLOTS:
    void slotRequestFinished(QNetworkReply *reply);
    void slotProvideAuthentication(QNetworkReply *reply, QAuthenticator *authenticator);
    void slotSslErrors(QNetworkReply *reply, const QList<QSslError> &errors);

private:
    Q_DISABLE_COPY_MOVE(UtilsHttpClient)

    const QUrl baseUrl; ///< stays empty: a redirection target is taken as the server wrote it
    QNetworkAccessManager *networkManager;
    QByteArray responseData;
    QString userName;
    QString userPassword;
};

#endif // UTILSHTTPCLIENT_H
