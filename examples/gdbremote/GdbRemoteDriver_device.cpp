// What belongs to a programmer and not to its target: a GDB server has nothing like it.

#include "GdbRemoteDriver.h"

int GdbRemoteDriver::CommitConfiguration()
{
    return Status::NotSupported;
}

int GdbRemoteDriver::WiFiServerStart()
{
    return Status::NotSupported;
}

int GdbRemoteDriver::FindDevice()
{
    return Status::NotSupported;
}

int GdbRemoteDriver::GetDeviceConfiguration(TConfiguration * /*configuration*/)
{
    return Status::NotSupported;
}

int GdbRemoteDriver::SetDeviceConfiguration(TConfiguration * /*configuration*/)
{
    return Status::NotSupported;
}

int GdbRemoteDriver::SetWiFiLinkPassword(QString /*password*/, bool /*debugLink*/)
{
    return Status::NotSupported;
}

int GdbRemoteDriver::SwoGetData(unsigned char * /*data*/, unsigned short *size)
{
    if (size)
        *size = 0;
    return Status::NotSupported;
}

int GdbRemoteDriver::SwoEnable(unsigned int /*parameter*/)
{
    return Status::NotSupported;
}

int GdbRemoteDriver::BootloaderEnter()
{
    return Status::NotSupported;
}

int GdbRemoteDriver::BootloaderErase(unsigned int /*startAddress*/, int /*sectorCount*/)
{
    return Status::NotSupported;
}

int GdbRemoteDriver::BootloaderWrite(unsigned int /*address*/, int /*length*/, const char * /*data*/)
{
    return Status::NotSupported;
}

int GdbRemoteDriver::BootloaderVerify(unsigned int /*crc*/, int /*imageSize*/)
{
    return Status::NotSupported;
}

int GdbRemoteDriver::BootloaderGetInfo(QByteArray * /*info*/)
{
    return Status::NotSupported;
}

int GdbRemoteDriver::BootloaderExit()
{
    return Status::NotSupported;
}

int GdbRemoteDriver::PowerSwitch(unsigned char /*channel*/, unsigned char /*state*/)
{
    return Status::NotSupported;
}

int GdbRemoteDriver::PowerSetVoltage(unsigned char /*channel*/, float /*volts*/)
{
    return Status::NotSupported;
}

int GdbRemoteDriver::PowerSetBatteryOptions(unsigned int /*options*/)
{
    return Status::NotSupported;
}

int GdbRemoteDriver::PowerGetReadings(unsigned char * /*readings*/, int /*size*/)
{
    return Status::NotSupported;
}

int GdbRemoteDriver::PowerGetInfo(TPowerInfo * /*info*/)
{
    return Status::NotSupported;
}

int GdbRemoteDriver::PowerSaveConfiguration()
{
    return Status::NotSupported;
}

int GdbRemoteDriver::PowerGetSupplyState(TPowerSupplyState * /*state*/)
{
    return Status::NotSupported;
}

int GdbRemoteDriver::PowerBootloaderActivate()
{
    return Status::NotSupported;
}

int GdbRemoteDriver::PowerBootloaderReset()
{
    return Status::NotSupported;
}

int GdbRemoteDriver::PowerBootloaderErase(unsigned int /*sectorCount*/)
{
    return Status::NotSupported;
}

int GdbRemoteDriver::PowerBootloaderWrite(unsigned int /*address*/, int /*length*/, const char * /*data*/)
{
    return Status::NotSupported;
}

int GdbRemoteDriver::PowerBootloaderVerify(unsigned int /*crc*/, int /*size*/, bool * /*mismatch*/)
{
    return Status::NotSupported;
}

int GdbRemoteDriver::PowerBootloaderGetInfo()
{
    return Status::NotSupported;
}
