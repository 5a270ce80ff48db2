#ifndef GDBSERVER_H
#define GDBSERVER_H

#include <QByteArray>
#include <QMutex>
#include <QThread>

#include <atomic>
#include <functional>

class QTcpSocket;

/// A GDB server on the loopback address, in a thread of its own, whose answers a test may replace.
///
/// Left alone it is a small nRF51 without a memory map: four pages of flash and the page of user configuration.
class GdbServer : public QThread
{
    Q_OBJECT

public:
    /// What is sent for a command, byte by byte; the connection is closed afterwards when it says so.
    struct Reply
    {
        QByteArray bytes;
        bool close = false;
    };
    using Handler = std::function<Reply(const QByteArray &command, int number)>;

    static constexpr quint32 PageSize = 1024;
    static constexpr quint32 FlashSize = 4 * PageSize;
    static constexpr quint32 UserConfiguration = 0x10001000;

    explicit GdbServer(Handler handler = {});
    ~GdbServer() override;

    quint16 port() const;
    QByteArrayList commands() const;
    QByteArray flash() const;

    /// The usual answer to @p command.
    Reply answer(const QByteArray &command);
    /// @p body as a packet, after the acknowledgement.
    static Reply packet(const QByteArray &body);

protected:
    void run() override;

private:
    void serve(QTcpSocket &socket);
    QByteArray respond(const QByteArray &command);
    QByteArray readMemory(quint32 address, quint32 size) const;

    const Handler handler;
    std::atomic<quint16> listeningPort{0};
    mutable QMutex mutex;
    QByteArray flashBytes;
    QByteArray configurationBytes;
    QByteArrayList received;
};

#endif // GDBSERVER_H
