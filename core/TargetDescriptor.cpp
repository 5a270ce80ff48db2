#include "TargetDescriptor.h"

TargetOptions::TargetOptions() = default;

TargetOptions::~TargetOptions() = default;

int TargetOptions::getIntValue(int option) const
{
    const QReadLocker locker(&lock);
    return values.value(option, 0);
}

void TargetOptions::setIntValue(int option, int value)
{
    const QWriteLocker locker(&lock);
    values.insert(option, value);
}

TargetDescriptor::TargetDescriptor() = default;

TargetDescriptor::~TargetDescriptor() = default;

TargetOptionsOperation *TargetDescriptor::getOperationOptions()
{
    return &operationOptions;
}

TargetOptionsConnection *TargetDescriptor::getConnectionOptions()
{
    return &connectionOptions;
}
