#ifndef UTILSWINDOWSTYPES_H
#define UTILSWINDOWSTYPES_H

#include <QtGlobal>

/// The three system types that UtilsDetectDeviceWindows names, without the system's big headers. Outside Windows they
/// are stand-ins of the same shape, so that one application source builds everywhere.

#ifdef Q_OS_WIN
#include <guiddef.h>
#elif !defined(GUID_DEFINED)
#define GUID_DEFINED // other libraries that bring the type along ask for this name
struct GUID
{
    quint32 Data1;
    quint16 Data2;
    quint16 Data3;
    quint8 Data4[8];
};
#endif

struct HWND__; // NOLINT(bugprone-reserved-identifier): the name that the system's headers give it
typedef HWND__ *HWND;
typedef void *HDEVNOTIFY;

#endif // UTILSWINDOWSTYPES_H
