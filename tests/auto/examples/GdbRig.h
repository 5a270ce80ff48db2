#ifndef GDBRIG_H
#define GDBRIG_H

#include "GdbServer.h"

#include <MemoryManager.h>

#include <atomic>

class GdbRemoteDriver;

/// What the tests of the GDB driver share.
namespace GdbRig {

constexpr int CodeSize = 600;

/// The memory map of a target with as much flash as a GdbServer has.
extern const QByteArray MapWithFlash;

/// CodeSize bytes in the second page of a GdbServer and some in its user configuration.
MemoryManager smallImage();

/// Connects to the server and with a reset to the target.
int connectTo(GdbRemoteDriver &driver);

} // namespace GdbRig

/// A server that says what is usual to its first commands since it was armed, and then what a test wants.
struct HostileServer
{
    HostileServer(const GdbServer::Reply &reply, int goodCommands);

    const GdbServer::Reply reply;
    std::atomic<int> goodCommands;
    std::atomic<bool> armed{false};
    GdbServer server;
};

#endif // GDBRIG_H
