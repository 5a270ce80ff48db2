#ifndef IPADDRESSCHOICE_P_H
#define IPADDRESSCHOICE_P_H

#include <QHostAddress>
#include <QList>
#include <QNetworkInterface>
#include <QString>

/// What GetMyIpAddress() looks at of one network interface.
struct InterfaceAddresses
{
    QNetworkInterface::InterfaceFlags flags;
    QList<QHostAddress> addresses;
};

/// The first IPv4 address, other than 127.0.0.1, of a running interface that is not a loopback one; "0.0.0.0" when
/// there is none.
QString chooseIpAddress(const QList<InterfaceAddresses> &interfaces);

#endif // IPADDRESSCHOICE_P_H
