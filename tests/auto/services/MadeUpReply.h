#ifndef MADEUPREPLY_H
#define MADEUPREPLY_H

#include <QBuffer>
#include <QNetworkReply>
#include <QNetworkRequest>

/// A reply that the test makes up: it has ended with what the constructor says.
class MadeUpReply : public QNetworkReply
{
public:
    explicit MadeUpReply(const QByteArray &body, NetworkError error = NoError)
    {
        buffer.setData(body);
        buffer.open(QIODevice::ReadOnly);
        open(QIODevice::ReadOnly);
        if (error != NoError)
            setError(error, QStringLiteral("made up"));
        setFinished(true);
    }

    void setRedirection(const QUrl &target)
    {
        setAttribute(QNetworkRequest::RedirectionTargetAttribute, target);
    }

    void abort() override
    {
        ++aborts;
    }
    qint64 bytesAvailable() const override
    {
        return buffer.bytesAvailable() + QNetworkReply::bytesAvailable();
    }

    int aborts = 0;

protected:
    qint64 readData(char *data, qint64 size) override
    {
        return buffer.read(data, size);
    }

private:
    QBuffer buffer;
};

#endif // MADEUPREPLY_H
