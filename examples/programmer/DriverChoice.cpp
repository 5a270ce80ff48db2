#include "DriverChoice.h"

#include <GdbRemoteDriver.h>

bool DriverChoice::create(const QString &text, std::unique_ptr<UniProgInterface> *driver, QString *error)
{
    driver->reset();
    if (text.isEmpty())
        return true;
    // The address of a host may have colons of its own, and brackets around them.
    const QString kind = text.section(u':', 0, 0);
    QString host = text.section(u':', 1, -2);
    if (host.startsWith(u'[') && host.endsWith(u']'))
        host = host.mid(1, host.size() - 2);
    const quint16 port = text.section(u':', -1).toUShort();
    if (kind != QLatin1String("gdb") || host.isEmpty() || host.contains(u'[') || port == 0) {
        *error = QStringLiteral("A driver is given as gdb:HOST:PORT; \"%1\" is none.").arg(text);
        return false;
    }
    *driver = std::make_unique<GdbRemoteDriver>(host, port);
    return true;
}
