#include "FileVersion_p.h"

#include <QByteArray>
#include <QString>

#include <qt_windows.h>
#include <winver.h>

#include <string>

FileVersion queryFileVersion(const QString &filePath)
{
    const std::wstring path = filePath.toStdWString();
    DWORD handle = 0;
    // The size is not looked at: with 0 the next call fails, and its error is the one to report.
    const DWORD size = GetFileVersionInfoSizeW(path.c_str(), &handle);
    QByteArray buffer(qsizetype(size), Qt::Uninitialized);
    if (!GetFileVersionInfoW(path.c_str(), handle, size, buffer.data()))
        return {FileVersion::NoVersionInfo, quint32(GetLastError()), 0, 0};

    VS_FIXEDFILEINFO *info = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(buffer.constData(), L"\\", reinterpret_cast<void **>(&info), &length)
        || length < sizeof(VS_FIXEDFILEINFO))
        return {FileVersion::NoRootBlock, 0, 0, 0};
    return {FileVersion::Found, 0, quint32(info->dwFileVersionMS), quint32(info->dwFileVersionLS)};
}
