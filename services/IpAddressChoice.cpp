#include "IpAddressChoice_p.h"

QString chooseIpAddress(const QList<InterfaceAddresses> &interfaces)
{
    for (const InterfaceAddresses &candidate : interfaces) {
        // IsUp is not looked at: an interface that runs is up, and one that is up without a link has no use.
        if (!candidate.flags.testFlag(QNetworkInterface::IsRunning)
            || candidate.flags.testFlag(QNetworkInterface::IsLoopBack))
            continue;
        for (const QHostAddress &address : candidate.addresses) {
            if (address.protocol() == QAbstractSocket::IPv4Protocol && address != QHostAddress::LocalHost)
                return address.toString();
        }
    }
    return QStringLiteral("0.0.0.0");
}
