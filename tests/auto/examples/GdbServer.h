#ifndef GDBSERVER_H
#define GDBSERVER_H

#include <QByteArray>
#include <QHostAddress>
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
    /// What comes after the bytes of a reply.
    enum class Then { Listen, Close, Dribble }; ///< Dribble: single bytes for as long as somebody listens
    struct Reply
    {
        QByteArray bytes;
        Then then = Then::Listen;
    };
    /// Called in the thread of the server. A command is the body of a packet, or Interrupt.
    using Handler = std::function<Reply(GdbServer &server, const QByteArray &command)>;

    static constexpr char Interrupt[] = "\x03";

    static constexpr quint32 PageSize = 1024;
    static constexpr quint32 FlashSize = 4 * PageSize;
    static constexpr quint32 UserConfiguration = 0x10001000;

    explicit GdbServer(Handler handler = {}, const QHostAddress &address = QHostAddress::LocalHost);
    ~GdbServer() override;

    /// 0 where nobody can listen at the address.
    quint16 port() const;
    /// How many packets the client has acknowledged.
    qsizetype acknowledgements() const;
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
    QByteArray takeCommand(QByteArray *bytes);
    QByteArray respond(const QByteArray &command);
    QByteArray readMemory(quint32 address, quint32 size) const;

    const Handler handler;
    const QHostAddress listeningAddress;
    std::atomic<quint16> listeningPort{0};
    mutable QMutex mutex;
    QByteArray flashBytes;
    QByteArray configurationBytes;
    QByteArrayList received;
    qsizetype acknowledgementCount = 0;
};

#endif // GDBSERVER_H
