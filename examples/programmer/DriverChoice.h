#ifndef DRIVERCHOICE_H
#define DRIVERCHOICE_H

#include <QString>

#include <memory>

class UniProgInterface;

/// The driver that the command line asks for.
namespace DriverChoice {

/// Makes the driver of @p text: gdb:HOST:PORT is a target behind a GDB server, where HOST
/// may be an IPv6 address, with brackets or without; an empty text leaves @p driver null, for
/// the simulated programmer. False, and a sentence in @p error, for any other text.
bool create(const QString &text, std::unique_ptr<UniProgInterface> *driver, QString *error);

} // namespace DriverChoice

#endif // DRIVERCHOICE_H
