#ifndef WEBSERVER_H
#define WEBSERVER_H

#include <QProcess>
#include <QString>
#include <QStringList>

/// Runs http_server.py on a port of the loopback address. The server ends with this object.
class WebServer
{
public:
    WebServer();
    ~WebServer();

    /// With \a certificate and \a key, both files, the server speaks TLS. False when it cannot be started.
    bool start(const QString &certificate = {}, const QString &key = {});

    /// The address of a \a path such as "/body".
    QString url(const QString &path) const;
    /// "PATH STATUS" for every answer since the last forgetLog(), oldest first.
    QStringList log();
    void forgetLog();

private:
    Q_DISABLE_COPY_MOVE(WebServer)

    QProcess process;
    QString scheme;
    QString port;
    QByteArray output;
};

#endif // WEBSERVER_H
