#ifndef PEVERSIONRESOURCE_P_H
#define PEVERSIONRESOURCE_P_H

#include "FileVersion_p.h"

class QIODevice;

/// Reads the version resource of a Windows executable or library (PE32 or PE32+) from a device with random access.
/// Whatever the bytes say, nothing outside the device is read, and at most a few megabytes are held.
FileVersion readPeVersionResource(QIODevice &device);

#endif // PEVERSIONRESOURCE_P_H
