#ifndef GDBTARGET_H
#define GDBTARGET_H

#include "GdbConnection.h"
#include "GdbMemoryMap.h"

#include <QList>
#include <QString>

/// A target behind a GDB server: its memory, its flash, and whether it runs. Knows what to ask the server for, and what
/// the answers mean.
///
/// The same rules hold as for GdbConnection. Every operation returns a Status.
class GdbTarget
{
public:
    enum Status : int {
        Success = 0,
        ChipNotRecognised = 51, ///< it is not known where the chip has its flash
        NotSupported = 70, ///< a GDB server has nothing like it
        ServerUnreachable = 71,
        ServerClosed = 72, ///< the server ended the connection, or there is none
        ServerSilent = 73, ///< no answer in time
        ServerUnintelligible = 74, ///< the answer is no answer to what was asked
        ServerRefused = 75, ///< the server answered with an error
        OutOfOrder = 76, ///< the target is not connected
        WrongArgument = 77
    };

    static constexpr int DefaultTimeout = 5000; ///< ms, for a connection and for an answer

    GdbTarget(const QString &host, quint16 port);
    ~GdbTarget();

    /// In ms, at least 1. Erasing and programming flash get more time, as they take longer.
    void setAnswerTimeout(int milliseconds);

    /// Connects to the server and asks what it offers. After a failure there is no connection.
    int open();
    void close();
    bool isOpen() const;

    /// Makes sure of a halted target, which a server has halted for whom connects, and looks for its flash.
    int attach();
    int halt();
    int resume();
    bool isRunning() const;
    /// There is no reset in the protocol, so that this is a command of the server's own.
    int resetHalted();

    /// Empty while it is not known.
    const QList<GdbFlashRegion> &flash() const;
    /// The most bytes that read() and write() take at once.
    quint32 blockSize() const;

    int read(quint32 address, quint32 size, QByteArray *data);
    int readWord(quint32 address, quint32 *word);
    /// Writes to flash or to other memory, whichever is at @p address: the data may not reach across the border.
    /// What is in flash is sure to be there after finishWriting().
    int write(quint32 address, const QByteArray &data);
    int finishWriting();
    int eraseSector(quint32 address, quint32 size);

private:
    Q_DISABLE_COPY_MOVE(GdbTarget)

    int ask(const QByteArray &command, QByteArray *answer, int timeout = 0);
    int order(const QByteArray &command, int timeout = 0);
    int receive(QByteArray *answer, const QDeadlineTimer &deadline);
    int readFeatures();
    int readMemoryMap();
    int findNordicFlash();
    int writeMemory(quint32 address, const QByteArray &data);

    const QString host;
    const quint16 port;
    int answerTimeout = DefaultTimeout;
    GdbConnection connection;
    qsizetype packetSize = 0; ///< the longest packet the server takes
    QList<GdbFlashRegion> flashRegions;
    bool hasFlashCommands = false;
    bool flashUnfinished = false; ///< the server may still hold data back
    bool running = false;
};

#endif // GDBTARGET_H
