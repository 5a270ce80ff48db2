#include "SimulatedProgrammer_p.h"

#include <QtEndian>

#include <algorithm>
#include <cmath>

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::nanoseconds SectorEraseTime = 25ms;
constexpr std::chrono::nanoseconds WriteTimePerByte = 4us;
constexpr std::chrono::nanoseconds VerifyTimePerByte = 100ns;

constexpr float LowestVoltage = 1.2F;
constexpr float HighestVoltage = 5.5F;

constexpr int BytesPerReading = 4;
constexpr quint16 LoadOfChannel = 10; ///< mA, of a channel that is on

constexpr quint32 CrcPolynomial = 0xEDB88320; ///< that of IEEE 802.3, lowest bit first

constexpr std::array<quint32, 256> crcTable()
{
    std::array<quint32, 256> table{};
    for (quint32 byte = 0; byte < table.size(); ++byte) {
        quint32 value = byte;
        for (int bit = 0; bit < 8; ++bit)
            value = (value >> 1) ^ (value & 1 ? CrcPolynomial : 0);
        table[byte] = value;
    }
    return table;
}

} // namespace

// --- Power module ---------------------------------------------------------------------------------------------------

int SimulatedProgrammer::PowerSwitch(unsigned char channel, unsigned char on)
{
    return state->run(Operation::PowerSwitch, PowerOperation, channel < PowerChannelCount, [=](State::Call &) {
        if (channel == SupplyChannel && on != 0 && state->externalSupply > 0.0F)
            return PoweredExternally;
        state->power.channels.at(channel).on = on != 0;
        return Success;
    });
}

int SimulatedProgrammer::PowerSetVoltage(unsigned char channel, float volts)
{
    return state->run(Operation::PowerSetVoltage, PowerOperation, channel < PowerChannelCount, [=](State::Call &) {
        // Also false for what is not a number.
        if (!(volts >= LowestVoltage && volts <= HighestVoltage))
            return WrongVoltage;
        if (channel == SupplyChannel && state->externalSupply > 0.0F)
            return PoweredExternally;
        state->power.channels.at(channel).volts = volts;
        return Success;
    });
}

int SimulatedProgrammer::PowerSetBatteryOptions(unsigned int options)
{
    return state->run(Operation::PowerSetBatteryOptions, PowerOperation, true, [=](State::Call &) {
        state->power.batteryOptions = options;
        return Success;
    });
}

int SimulatedProgrammer::PowerGetReadings(unsigned char *readings, int size)
{
    const bool valid = size >= 0 && (readings || size == 0);
    return state->run(Operation::PowerGetReadings, PowerOperation, valid, [=](State::Call &) {
        QByteArray all(qsizetype(PowerChannelCount) * BytesPerReading, '\0');
        char *reading = all.data();
        for (int channel = 0; channel < PowerChannelCount; ++channel, reading += BytesPerReading) {
            const bool on = state->power.channels.at(size_t(channel)).on;
            const float volts = state->voltageOf(channel);
            qToLittleEndian(quint16(std::lround(volts * 1000.0F)), reading);
            qToLittleEndian(quint16(on ? LoadOfChannel : 0), reading + 2);
        }
        std::fill_n(readings, size, static_cast<unsigned char>(0));
        std::copy_n(all.cbegin(), std::min<qsizetype>(size, all.size()), readings);
        return Success;
    });
}

int SimulatedProgrammer::PowerGetInfo(TPowerInfo *info)
{
    return state->run(Operation::PowerGetInfo, PowerOperation, info != nullptr, [=](State::Call &) {
        *info = state->powerInfo;
        return Success;
    });
}

int SimulatedProgrammer::PowerSaveConfiguration()
{
    return state->run(Operation::PowerSaveConfiguration, PowerOperation, true, [this](State::Call &) {
        state->savedPower = state->power;
        return Success;
    });
}

int SimulatedProgrammer::PowerGetSupplyState(TPowerSupplyState *supply)
{
    return state->run(Operation::PowerGetSupplyState, PowerOperation, supply != nullptr, [=](State::Call &) {
        supply->state = state->externalSupply > 0.0F ? 1 : 0;
        supply->level = state->voltageOf(SupplyChannel);
        return Success;
    });
}

float SimulatedProgrammer::State::voltageOf(int channel) const
{
    if (channel == SupplyChannel && externalSupply > 0.0F)
        return externalSupply;
    const Channel &settings = power.channels.at(size_t(channel));
    return settings.on ? settings.volts : 0.0F;
}

// --- Bootloaders ----------------------------------------------------------------------------------------------------

quint32 SimulatedProgrammer::crc32(const QByteArray &data)
{
    static constexpr std::array<quint32, 256> Table = crcTable();
    quint32 crc = ~quint32(0);
    for (const char byte : data)
        crc = (crc >> 8) ^ Table.at((crc ^ static_cast<unsigned char>(byte)) & 0xFF);
    return ~crc;
}

int SimulatedProgrammer::BootloaderEnter()
{
    // Entering again is harmless: an application that found the device in its bootloader does so.
    return state->run(Operation::BootloaderEnter, NeedConnection, true, [this](State::Call &) {
        state->leaveInterface();
        state->bootloader.activate();
        return Success;
    });
}

int SimulatedProgrammer::BootloaderErase(unsigned int startAddress, int sectorCount)
{
    return state->run(Operation::BootloaderErase, BootloaderOperation, true, [=](State::Call &call) {
        return state->eraseFirmware(state->bootloader, startAddress, sectorCount, call);
    });
}

int SimulatedProgrammer::BootloaderWrite(unsigned int address, int length, const char *data)
{
    const bool valid = data && length == BootloaderBlockSize;
    return state->run(Operation::BootloaderWrite, BootloaderOperation, valid, [=](State::Call &call) {
        return state->writeFirmware(state->bootloader, address, QByteArray(data, length), call);
    });
}

int SimulatedProgrammer::BootloaderVerify(unsigned int crc, int imageSize)
{
    return state->run(Operation::BootloaderVerify, BootloaderOperation, true, [=](State::Call &call) {
        bool mismatch = false;
        const int status = state->verifyFirmware(state->bootloader, crc, imageSize, &mismatch, call);
        return status == Success && mismatch ? int(VerifyError) : status;
    });
}

int SimulatedProgrammer::BootloaderGetInfo(QByteArray *info)
{
    return state->run(Operation::BootloaderGetInfo, BootloaderOperation, info != nullptr, [=](State::Call &) {
        *info = state->bootloaderInfo;
        return Success;
    });
}

int SimulatedProgrammer::BootloaderExit()
{
    return state->run(Operation::BootloaderExit, BootloaderOperation, true,
                      [this](State::Call &) { return state->bootloader.start() ? Success : FirmwareInvalid; });
}

int SimulatedProgrammer::PowerBootloaderActivate()
{
    return state->run(Operation::PowerBootloaderActivate, DeviceOperation, true, [this](State::Call &) {
        state->powerBootloader.activate();
        return Success;
    });
}

int SimulatedProgrammer::PowerBootloaderReset()
{
    return state->run(Operation::PowerBootloaderReset, PowerBootloaderOperation, true, [this](State::Call &) {
        if (state->powerBootloader.start())
            state->power = state->savedPower;
        return Success;
    });
}

int SimulatedProgrammer::PowerBootloaderErase(unsigned int sectorCount)
{
    return state->run(Operation::PowerBootloaderErase, PowerBootloaderOperation, true, [=](State::Call &call) {
        return state->eraseFirmware(state->powerBootloader, PowerBootloaderStart, sectorCount, call);
    });
}

int SimulatedProgrammer::PowerBootloaderWrite(unsigned int address, int length, const char *data)
{
    const bool valid = data && length == BootloaderBlockSize;
    return state->run(Operation::PowerBootloaderWrite, PowerBootloaderOperation, valid, [=](State::Call &call) {
        return state->writeFirmware(state->powerBootloader, address, QByteArray(data, length), call);
    });
}

int SimulatedProgrammer::PowerBootloaderVerify(unsigned int crc, int size, bool *mismatch)
{
    const bool valid = mismatch != nullptr;
    return state->run(Operation::PowerBootloaderVerify, PowerBootloaderOperation, valid, [=](State::Call &call) {
        return state->verifyFirmware(state->powerBootloader, crc, size, mismatch, call);
    });
}

int SimulatedProgrammer::PowerBootloaderGetInfo()
{
    return state->run(Operation::PowerBootloaderGetInfo, PowerBootloaderOperation, true,
                      [](State::Call &) { return Success; });
}

int SimulatedProgrammer::State::eraseFirmware(SimulatedBootloader &loader, quint32 address, qint64 sectorCount,
                                              Call &call)
{
    if (const int status = loader.checkErase(address, sectorCount))
        return call.refuse(status, "no sectors of the firmware's flash");
    for (int sector = 0; sector < sectorCount; ++sector) {
        const auto block = call.block(BootloaderSectorSize, SectorEraseTime);
        if (block.status)
            return block.status;
        loader.eraseSector(address, sector);
        ++sectorsErased;
        if (block.corrupt)
            loader.flipBit(loader.offsetOf(address) + qint64(sector) * BootloaderSectorSize);
    }
    loader.noteErase();
    return Success;
}

int SimulatedProgrammer::State::writeFirmware(SimulatedBootloader &loader, quint32 address, const QByteArray &data,
                                              Call &call)
{
    if (const int status = loader.checkWrite(address, data))
        return call.refuse(status, "no block of erased flash");
    const qint64 offset = loader.offsetOf(address);
    call.startAt(int(offset / BootloaderBlockSize), offset);
    const auto block = call.block(BootloaderBlockSize, BootloaderBlockSize * WriteTimePerByte);
    loader.write(address, data.left(block.bytes));
    bytesWritten += block.bytes;
    if (block.corrupt)
        loader.flipBit(offset);
    return block.status;
}

int SimulatedProgrammer::State::verifyFirmware(SimulatedBootloader &loader, quint32 crc, int size, bool *mismatch,
                                               Call &call)
{
    *mismatch = false;
    if (const int status = loader.checkVerify(size))
        return call.refuse(status, "no size of a firmware");
    const auto block = call.block(size, size * VerifyTimePerByte);
    if (block.status)
        return block.status;
    if (block.corrupt)
        loader.flipBit(0);
    *mismatch = !loader.verify(crc, size);
    return Success;
}
