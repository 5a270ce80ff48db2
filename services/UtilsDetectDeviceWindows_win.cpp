#include "UtilsDetectDeviceWindows.h"

#include "UsbDevices_p.h"

#include <qt_windows.h>

#include <dbt.h>
#include <setupapi.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

static_assert(sizeof(wchar_t) == sizeof(char16_t), "Windows texts are UTF-16");

namespace {

/// The interface path in a broadcast about a device interface; "" for any other or damaged one. What the system sends
/// is whole, but every process of the session may send this message.
QString interfacePath(LPARAM broadcast)
{
    const auto *header = reinterpret_cast<const DEV_BROADCAST_HDR *>(broadcast);
    constexpr DWORD NameOffset = offsetof(DEV_BROADCAST_DEVICEINTERFACE_W, dbcc_name);
    if (!header || header->dbch_size < NameOffset || header->dbch_devicetype != DBT_DEVTYP_DEVICEINTERFACE)
        return {};
    const auto *device = reinterpret_cast<const DEV_BROADCAST_DEVICEINTERFACE_W *>(broadcast);
    return boundedUtf16(reinterpret_cast<const char16_t *>(device->dbcc_name),
                        (device->dbcc_size - NameOffset) / sizeof(wchar_t));
}

/// Works on the shared object, not on data of the window. Handled or not, every message goes to the system too.
LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    UtilsDetectDeviceWindows &watcher = UtilsDetectDeviceWindows::getInstance();
    if (message == WM_CLOSE) {
        UnregisterDeviceNotification(watcher.getHDeviceNotify());
        DestroyWindow(watcher.getHwnd());
    } else if (message == WM_DEVICECHANGE && wParam == DBT_DEVICEARRIVAL) {
        reportUsbArrival(watcher, interfacePath(lParam));
    } else if (message == WM_DEVICECHANGE && wParam == DBT_DEVICEREMOVECOMPLETE) {
        reportUsbRemoval(watcher, interfacePath(lParam));
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

} // namespace

bool UtilsDetectDeviceWindows::registerDeviceNotification(GUID interfaceClass)
{
    const HINSTANCE module = GetModuleHandleW(nullptr);
    // The address keeps the name unique to this copy of the library in the process.
    const std::wstring name
        = L"UsbHidDeviceWatcher" + std::to_wstring(quint64(reinterpret_cast<quintptr>(&windowProcedure)));
    deviceInterfaceClass = interfaceClass;
    isInterfaceClassKnown = true;

    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = windowProcedure;
    windowClass.hInstance = module;
    windowClass.lpszClassName = name.c_str();
    // Fails from the second call on: the class of the first one is still there and serves.
    RegisterClassW(&windowClass);
    window = CreateWindowExW(0, name.c_str(), name.c_str(), 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, module, nullptr);

    DEV_BROADCAST_DEVICEINTERFACE_W filter = {};
    filter.dbcc_size = sizeof(filter);
    filter.dbcc_devicetype = DBT_DEVTYP_DEVICEINTERFACE;
    filter.dbcc_classguid = interfaceClass;
    deviceNotification = RegisterDeviceNotificationW(window, &filter, DEVICE_NOTIFY_WINDOW_HANDLE);
    return deviceNotification != nullptr;
}

QStringList presentUsbDevices(const GUID &interfaceClass, qint32 maximumLength)
{
    QStringList identifiers;
    const HDEVINFO set = SetupDiGetClassDevsW(&interfaceClass, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    if (!set || set == INVALID_HANDLE_VALUE)
        return identifiers;
    std::vector<wchar_t> buffer(static_cast<std::size_t>(maximumLength));
    SP_DEVINFO_DATA record = {};
    record.cbSize = sizeof(record);
    for (DWORD index = 0; SetupDiEnumDeviceInfo(set, index, &record); ++index) {
        // The result is not looked at: what cannot be read is empty or cut, and matches no pair.
        buffer.front() = L'\0';
        DWORD required = 0;
        SetupDiGetDeviceInstanceIdW(set, &record, buffer.data(), DWORD(buffer.size()), &required);
        buffer[std::min<std::size_t>(required, buffer.size() - 1)] = L'\0';
        identifiers.append(boundedUtf16(reinterpret_cast<const char16_t *>(buffer.data()), qsizetype(buffer.size())));
    }
    SetupDiDestroyDeviceInfoList(set);
    return identifiers;
}
