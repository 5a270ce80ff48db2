// What belongs to a programmer and not to its target: a GDB server has nothing like it.

#include "GdbRemoteDriver.h"

int GdbRemoteDriver::CommitConfiguration()
{
    return NotSupported;
}

int GdbRemoteDriver::WiFiServerStart()
{
    return NotSupported;
}

int GdbRemoteDriver::FindDevice()
{
    return NotSupported;
}

int GdbRemoteDriver::GetDeviceConfiguration(TConfiguration * /*configuration*/)
{
    return NotSupported;
}

int GdbRemoteDriver::SetDeviceConfiguration(TConfiguration * /*configuration*/)
{
    return NotSupported;
}

int GdbRemoteDriver::SetWiFiLinkPassword(QString /*password*/, bool /*debugLink*/)
{
    return NotSupported;
}

int GdbRemoteDriver::SwoGetData(unsigned char * /*data*/, unsigned short *size)
{
    if (size)
        *size = 0;
    return NotSupported;
}

int GdbRemoteDriver::SwoEnable(unsigned int /*parameter*/)
{
    return NotSupported;
}

int GdbRemoteDriver::BootloaderEnter()
{
    return NotSupported;
}

int GdbRemoteDriver::BootloaderErase(unsigned int /*startAddress*/, int /*sectorCount*/)
{
    return NotSupported;
}

int GdbRemoteDriver::BootloaderWrite(unsigned int /*address*/, int /*length*/, const char * /*data*/)
{
    return NotSupported;
}

int GdbRemoteDriver::BootloaderVerify(unsigned int /*crc*/, int /*imageSize*/)
{
    return NotSupported;
}

int GdbRemoteDriver::BootloaderGetInfo(QByteArray * /*info*/)
{
    return NotSupported;
}

int GdbRemoteDriver::BootloaderExit()
{
    return NotSupported;
}

int GdbRemoteDriver::PowerSwitch(unsigned char /*channel*/, unsigned char /*state*/)
{
    return NotSupported;
}

int GdbRemoteDriver::PowerSetVoltage(unsigned char /*channel*/, float /*volts*/)
{
    return NotSupported;
}

int GdbRemoteDriver::PowerSetBatteryOptions(unsigned int /*options*/)
{
    return NotSupported;
}

int GdbRemoteDriver::PowerGetReadings(unsigned char * /*readings*/, int /*size*/)
{
    return NotSupported;
}

int GdbRemoteDriver::PowerGetInfo(TPowerInfo * /*info*/)
{
    return NotSupported;
}

int GdbRemoteDriver::PowerSaveConfiguration()
{
    return NotSupported;
}

int GdbRemoteDriver::PowerGetSupplyState(TPowerSupplyState * /*state*/)
{
    return NotSupported;
}

int GdbRemoteDriver::PowerBootloaderActivate()
{
    return NotSupported;
}

int GdbRemoteDriver::PowerBootloaderReset()
{
    return NotSupported;
}

int GdbRemoteDriver::PowerBootloaderErase(unsigned int /*sectorCount*/)
{
    return NotSupported;
}

int GdbRemoteDriver::PowerBootloaderWrite(unsigned int /*address*/, int /*length*/, const char * /*data*/)
{
    return NotSupported;
}

int GdbRemoteDriver::PowerBootloaderVerify(unsigned int /*crc*/, int /*size*/, bool * /*mismatch*/)
{
    return NotSupported;
}

int GdbRemoteDriver::PowerBootloaderGetInfo()
{
    return NotSupported;
}
