#include "GdbRig.h"

#include <GdbRemoteDriver.h>

const QByteArray GdbRig::MapWithFlash
    = R"(<?xml version="1.0"?><!DOCTYPE memory-map PUBLIC "+//IDN gnu.org//DTD GDB Memory
 Map V1.0//EN" "http://sourceware.org/gdb/gdb-memory-map.dtd"><memory-map><memory type="ram" start="0x20000000"
 length="0x4000"/><memory type="flash" start="0x0" length="0x1000"><property name="blocksize">0x400</property></memory>
</memory-map>)";

MemoryManager GdbRig::smallImage()
{
    MemoryManager image;
    QByteArray code;
    for (int i = 0; i < CodeSize; ++i)
        code += char(i * 7);
    image.write(GdbServer::PageSize, code);
    image.write(GdbServer::UserConfiguration + 0xC0, "config");
    return image;
}

int GdbRig::connectTo(GdbRemoteDriver &driver)
{
    const int status = driver.Connect(OPERATION_TYPE_DEBUG);
    return status == GdbTarget::Success ? driver.ConnectToTarget(1) : status;
}

HostileServer::HostileServer(const GdbServer::Reply &hostileReply, int goodCommandCount)
    : reply(hostileReply)
    , goodCommands(goodCommandCount)
    , server([this](GdbServer &usual, const QByteArray &command) {
        return armed && goodCommands-- <= 0 ? reply : usual.answer(command);
    })
{ }
