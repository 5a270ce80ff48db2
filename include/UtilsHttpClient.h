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
/// Redirections are followed by Qt, with its default policy: never from HTTPS to HTTP, 50 at most. Should a finished
/// reply still report a target, that is requested anew; a relative one fails. A server whose certificate has any error
/// is not talked to. There is no time-out.
///
/// GUI thread only, or the thread that made the client, which is not to be moved. The client has no parent; its owner
/// deletes it, which aborts what is running without a signal. Inside a receiver of its signal, use deleteLater().
class UNIPROGUTILS_EXPORT UtilsHttpClient : public QObject
{
    Q_OBJECT

public:
    static constexpr qint64 LargestBody = 256LL * 1024 * 1024; ///< bytes; a server that sends more is not heard out

    UtilsHttpClient();
    ~UtilsHttpClient() override;

    /// Requests \a url, read in tolerant mode; signalServerDownloadFinished() follows once. A text that is no valid
    /// URL, such as "" or "http://[", is dropped and no signal follows. Send the next request after the signal of the
    /// last one: all requests collect their bodies in one buffer, which this call clears.
    void SendUrlRequest(QString url);

    /// The credentials for a server that asks for them, both empty at the start. They are given to every challenge,
    /// also of a server that a redirection leads to, and Basic ones readable for all over plain HTTP. Wrong ones end
    /// the request, unless the server names another realm, or calls its nonce stale, with each challenge and never
    /// stops asking.
    void setUserName(const QString &name);
    void setUserPassword(const QString &password);

Q_SIGNALS:
    /// The request has ended: true with the body, or false with an empty array after any error of the network, of TLS
    /// or of HTTP (status 4xx and 5xx), and for a body above LargestBody. Qt does not always notice that a body sent in
    /// chunks was cut off: where it matters, check the content.
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
    bool isReporting = false;
};

#endif // UTILSHTTPCLIENT_H
