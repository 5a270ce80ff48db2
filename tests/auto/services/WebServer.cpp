#include "WebServer.h"

#include <QStandardPaths>
#include <QTest>

namespace {
constexpr int PatienceMs = 30'000;
}

WebServer::WebServer() = default;

WebServer::~WebServer()
{
    process.closeWriteChannel();
    if (process.state() != QProcess::NotRunning && !process.waitForFinished(PatienceMs))
        process.kill();
}

bool WebServer::start(const QString &certificate, const QString &key)
{
    const QString python = QStandardPaths::findExecutable(QStringLiteral("python3"));
    const QString script = QFINDTESTDATA("http_server.py");
    if (python.isEmpty() || script.isEmpty())
        return false;
    QStringList arguments{script};
    if (!certificate.isEmpty())
        arguments << certificate << key;
    scheme = certificate.isEmpty() ? QStringLiteral("http") : QStringLiteral("https");
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(python, arguments);
    while (!process.canReadLine()) {
        if (!process.waitForReadyRead(PatienceMs))
            return false;
    }
    port = QString::fromLatin1(process.readLine().trimmed());
    return true;
}

QString WebServer::url(const QString &path) const
{
    return QStringLiteral("%1://127.0.0.1:%2%3").arg(scheme, port, path);
}

QStringList WebServer::log()
{
    output.append(process.readAllStandardOutput());
    return QString::fromLatin1(output).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

void WebServer::forgetLog()
{
    process.readAllStandardOutput();
    output.clear();
}
