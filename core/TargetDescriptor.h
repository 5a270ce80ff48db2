#ifndef TARGETDESCRIPTOR_H
#define TARGETDESCRIPTOR_H

#include "uniprogcore_export.h"

#include <QHash>
#include <QReadWriteLock>

/// Numbered integer options of a target. An option that was never set reads as 0.
/// May be read and written from any thread: the application edits options while a worker reads them.
class UNIPROGCORE_EXPORT TargetOptions
{
public:
    TargetOptions();
    ~TargetOptions();

    int getIntValue(int option) const;
    void setIntValue(int option, int value);

private:
    Q_DISABLE_COPY_MOVE(TargetOptions)

    mutable QReadWriteLock lock;
    QHash<int, int> values;
};

/// How an operation on the target is carried out.
class UNIPROGCORE_EXPORT TargetOptionsOperation : public TargetOptions
{
public:
    /// Options this library reads.
    enum Option {
        EraseMode = 0, ///< before a write: 2 erases only what the image needs, anything else the whole target
        LeaveRunning = 1, ///< 0: connect with reset, and reset afterwards; also handed to verify and blank check
        VerifyAfterWrite = 2 ///< not 0: a write is verified
    };
};

/// How the target is connected.
class UNIPROGCORE_EXPORT TargetOptionsConnection : public TargetOptions
{
public:
    /// Options this library reads.
    enum Option {
        HaltAfterReset = 5 ///< not 0: the target stays halted after a reset
    };
};

/// What is known of the target and how it is to be handled. Owned by the driver and its application through a
/// QSharedPointer; the library keeps weak references only.
class UNIPROGCORE_EXPORT TargetDescriptor
{
public:
    TargetDescriptor();
    ~TargetDescriptor();

    TargetOptionsOperation *getOperationOptions();
    TargetOptionsConnection *getConnectionOptions();

private:
    Q_DISABLE_COPY_MOVE(TargetDescriptor)

    TargetOptionsOperation operationOptions;
    TargetOptionsConnection connectionOptions;
};

#endif // TARGETDESCRIPTOR_H
