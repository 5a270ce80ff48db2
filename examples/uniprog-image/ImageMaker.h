#ifndef IMAGEMAKER_H
#define IMAGEMAKER_H

#include "Outcome.h"

#include <QString>

/// Writes the firmware image \a output: the payload in the file \a payload behind a header with its CRC and
/// \a version. Nothing is written when something is wrong, and what was there stays. The cause is None on success.
Finding makeImage(const QString &payload, const QString &version, const QString &output);

#endif // IMAGEMAKER_H
