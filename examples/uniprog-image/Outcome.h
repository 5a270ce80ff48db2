#ifndef OUTCOME_H
#define OUTCOME_H

#include <QString>

/// Exit statuses: one a cause, so that a build script can tell them apart. Where an image has several faults, the
/// status is that of the first one in this order.
enum class Cause : int {
    None = 0,
    CommandLine = 2,
    CannotRead = 3,
    HeaderTooShort = 4,
    NegativeLength = 5,
    LengthBeyondEnd = 6,
    PayloadTooLarge = 7,
    PartOfABlock = 8,
    WrongCrc = 9,
    ReadersDisagree = 10,
    VersionTooLong = 11,
    CannotWrite = 12
};

/// A fault, or a remark that becomes one with --strict.
struct Finding
{
    Cause cause = Cause::None;
    QString message;
    bool isError = true;
};

#endif // OUTCOME_H
