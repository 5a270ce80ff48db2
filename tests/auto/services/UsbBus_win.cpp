#include "UsbBus.h"

#include <UtilsDetectDeviceWindows.h>

#include <QHash>
#include <QUuid>

#include <qt_windows.h>

#include <cfgmgr32.h>
#include <dbt.h>
#include <setupapi.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

const wchar_t DeviceClasses[] = L"SYSTEM\\CurrentControlSet\\Control\\DeviceClasses\\";

std::wstring instanceId(const QString &name, int vid, int pid)
{
    return QStringLiteral("USB\\VID_%1&PID_%2\\%3")
        .arg(vid, 4, 16, QLatin1Char('0'))
        .arg(pid, 4, 16, QLatin1Char('0'))
        .arg(name)
        .toUpper()
        .toStdWString();
}

/// "\\?\USB#VID_1A2B&PID_1234#NAME#{class}"
std::wstring interfacePath(const std::wstring &instance, const GUID &interfaceClass)
{
    return QStringLiteral("\\\\?\\%1#%2")
        .arg(QString::fromStdWString(instance).replace(QLatin1Char('\\'), QLatin1Char('#')),
             QUuid(interfaceClass).toString())
        .toStdWString();
}

/// A set of devices with one device in it.
class DeviceSet
{
public:
    DeviceSet(const std::wstring &instance, const GUID &interfaceClass)
        : set(SetupDiCreateDeviceInfoList(&interfaceClass, nullptr))
    {
        record.cbSize = sizeof(record);
        if (!SetupDiCreateDeviceInfoW(set, instance.c_str(), &interfaceClass, nullptr, nullptr, 0, &record)
            && !SetupDiOpenDeviceInfoW(set, instance.c_str(), nullptr, 0, &record))
            qWarning("The device cannot be made: error %lu", GetLastError());
    }
    ~DeviceSet()
    {
        SetupDiDestroyDeviceInfoList(set);
    }
    Q_DISABLE_COPY_MOVE(DeviceSet)

    HDEVINFO set;
    SP_DEVINFO_DATA record = {};
};

/// What the plug and play manager notes of an interface whose device is plugged in.
void markAsPresent(const std::wstring &path, const GUID &interfaceClass)
{
    std::wstring key = path;
    for (const std::size_t index : {std::size_t(0), std::size_t(1), std::size_t(3)})
        key[index] = L'#';
    key = DeviceClasses + QUuid(interfaceClass).toString().toStdWString() + L'\\' + key + L"\\#\\Control";
    HKEY control = nullptr;
    const DWORD linked = 1;
    if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &control, nullptr)
        != ERROR_SUCCESS)
        qWarning("The interface cannot be marked as present.");
    RegSetValueExW(control, L"Linked", 0, REG_DWORD, reinterpret_cast<const BYTE *>(&linked), sizeof(linked));
    RegCloseKey(control);
}

void broadcast(WPARAM event, const std::wstring &path, const GUID &interfaceClass)
{
    const std::size_t bytes = (path.size() + 1) * sizeof(wchar_t);
    std::vector<char> buffer(sizeof(DEV_BROADCAST_DEVICEINTERFACE_W) + bytes);
    auto *device = reinterpret_cast<DEV_BROADCAST_DEVICEINTERFACE_W *>(buffer.data());
    device->dbcc_size = DWORD(buffer.size());
    device->dbcc_devicetype = DBT_DEVTYP_DEVICEINTERFACE;
    device->dbcc_classguid = interfaceClass;
    std::memcpy(device->dbcc_name, path.c_str(), bytes);
    // Every registered window gets it, as from the system.
    const QString windowClass = QStringLiteral("UsbHidDeviceWatcher");
    HWND window = nullptr;
    while ((window = FindWindowExW(HWND_MESSAGE, window, nullptr, nullptr))) {
        wchar_t name[64] = {};
        GetClassNameW(window, name, int(std::size(name)));
        if (QString::fromWCharArray(name).startsWith(windowClass)
            && GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId())
            SendMessageW(window, WM_DEVICECHANGE, event, reinterpret_cast<LPARAM>(device));
    }
}

} // namespace

struct UsbBus::Devices
{
    GUID interfaceClass;
    QHash<QString, std::wstring> instances;
};

UsbBus::UsbBus(const GUID &interfaceClass)
    : devices(std::make_unique<Devices>())
{
    devices->interfaceClass = interfaceClass;
}

UsbBus::~UsbBus()
{
    const QStringList left = devices->instances.keys();
    for (const QString &name : left)
        unplug(name);
}

QString UsbBus::problem() const
{
    return {};
}

void UsbBus::plugIn(const QString &name, int vid, int pid)
{
    const std::wstring instance = instanceId(name, vid, pid);
    devices->instances.insert(name, instance);
    const std::wstring path = interfacePath(instance, devices->interfaceClass);
    DeviceSet device(instance, devices->interfaceClass);
    if (!SetupDiRegisterDeviceInfo(device.set, &device.record, 0, nullptr, nullptr, nullptr)
        || !SetupDiCreateDeviceInterfaceW(device.set, &device.record, &devices->interfaceClass, nullptr, 0, nullptr))
        qWarning("The device cannot be registered: error %lu", GetLastError());
    markAsPresent(path, devices->interfaceClass);
    broadcast(DBT_DEVICEARRIVAL, path, devices->interfaceClass);
}

void UsbBus::unplug(const QString &name)
{
    const std::wstring instance = devices->instances.take(name);
    {
        DeviceSet device(instance, devices->interfaceClass);
        if (!SetupDiRemoveDevice(device.set, &device.record))
            qWarning("The device cannot be removed: error %lu", GetLastError());
    }
    broadcast(DBT_DEVICEREMOVECOMPLETE, interfacePath(instance, devices->interfaceClass), devices->interfaceClass);
}
