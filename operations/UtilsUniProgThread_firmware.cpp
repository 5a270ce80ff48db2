#include "UtilsUniProgThread.h"

#include "DeviceStatus_p.h"

void UtilsUniProgThread::Operation_BootloaderProcess(int &status)
{
    status = DeviceStatus::InvalidImage;
}

void UtilsUniProgThread::Operation_PowerBootloaderWrite(int &status)
{
    status = DeviceStatus::InvalidImage;
}
