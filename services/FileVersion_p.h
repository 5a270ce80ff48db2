#ifndef FILEVERSION_P_H
#define FILEVERSION_P_H

#include <QtGlobal>

class QString;

/// What the system says of a file's version.
struct FileVersion
{
    enum Outcome {
        NoVersionInfo, ///< `error` says why
        NoRootBlock, ///< the version resource lacks its fixed part
        Found
    };

    Outcome outcome = NoVersionInfo;
    quint32 error = 0; ///< a Windows error number
    quint32 mostSignificant = 0;
    quint32 leastSignificant = 0;
};

/// Asks the system; one body per platform.
FileVersion queryFileVersion(const QString &filePath);

#endif // FILEVERSION_P_H
