#include "UtilsHttpClient.h"

#include <QAuthenticator>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>

#include <utility>

UtilsHttpClient::UtilsHttpClient()
    : networkManager(new QNetworkAccessManager)
{
    connect(networkManager, &QNetworkAccessManager::sslErrors, this, &UtilsHttpClient::slotSslErrors);
    connect(networkManager, &QNetworkAccessManager::finished, this, &UtilsHttpClient::slotRequestFinished);
    connect(networkManager, &QNetworkAccessManager::authenticationRequired, this,
            &UtilsHttpClient::slotProvideAuthentication);
}

UtilsHttpClient::~UtilsHttpClient()
{
    if (!isReporting) // else the manager is in the middle of telling that a request has finished
        delete networkManager;
}

void UtilsHttpClient::SendUrlRequest(QString url)
{
    responseData.clear();
    const QUrl target(url, QUrl::TolerantMode);
    if (!target.isValid())
        return;
    QNetworkReply *reply = networkManager->get(QNetworkRequest(target));
    connect(reply, &QIODevice::readyRead, reply, [reply] {
        if (reply->bytesAvailable() > LargestBody)
            reply->abort();
    });
}

void UtilsHttpClient::setUserName(const QString &name)
{
    userName = name;
}

void UtilsHttpClient::setUserPassword(const QString &password)
{
    userPassword = password;
}

void UtilsHttpClient::slotRequestFinished(QNetworkReply *reply)
{
    const bool succeeded = reply->error() == QNetworkReply::NoError;
    if (succeeded) {
        const QVariant redirection = reply->attribute(QNetworkRequest::RedirectionTargetAttribute);
        if (!redirection.isNull()) {
            // The reply stays with the manager until the client goes: the new request is what reports the end.
            SendUrlRequest(baseUrl.resolved(redirection.toUrl()).toString());
            return;
        }
        responseData.append(reply->readAll());
    } else {
        responseData.clear();
    }
    reply->deleteLater();
    const QPointer<UtilsHttpClient> self(this);
    QNetworkAccessManager *const manager = networkManager;
    const bool wasReporting = std::exchange(isReporting, true);
    Q_EMIT signalServerDownloadFinished(succeeded, responseData);
    if (self)
        isReporting = wasReporting;
    else if (!wasReporting)
        manager->deleteLater(); // not before: a receiver may run an event loop of its own, which would delete it there
}

void UtilsHttpClient::slotProvideAuthentication(QNetworkReply *reply, QAuthenticator *authenticator)
{
    // The page that came with the challenge is not part of the body.
    reply->readAll();
    // No attempts are counted: Qt ends the request when the same credentials are refused again.
    authenticator->setUser(userName);
    authenticator->setPassword(userPassword);
}

void UtilsHttpClient::slotSslErrors(QNetworkReply *reply, const QList<QSslError> &errors)
{
    // Every TLS error is fatal, and the one signal has no room for the texts.
    Q_UNUSED(errors)
    reply->abort();
}
