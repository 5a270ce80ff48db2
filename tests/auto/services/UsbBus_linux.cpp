#include "UsbBus.h"

#include <QHash>

#include <umockdev.h>

struct UsbBus::Devices
{
    UMockdevTestbed *testbed = nullptr;
    QHash<QString, QByteArray> paths;
};

UsbBus::UsbBus(const GUID & /*interfaceClass*/)
    : devices(std::make_unique<Devices>())
{
    if (problem().isEmpty())
        devices->testbed = umockdev_testbed_new();
}

UsbBus::~UsbBus()
{
    if (devices->testbed)
        g_object_unref(devices->testbed);
}

QString UsbBus::problem() const
{
    return qgetenv("LD_PRELOAD").contains("libumockdev-preload")
        ? QString()
        : QStringLiteral("Without libumockdev-preload.so.0 in LD_PRELOAD, udev shows the real devices.");
}

void UsbBus::plugIn(const QString &name, int vid, int pid)
{
    constexpr int Hexadecimal = 16;
    const QByteArray vendor = QByteArray::number(vid, Hexadecimal);
    const QByteArray product = QByteArray::number(pid, Hexadecimal);
    const QByteArray kernelIds = vendor + '/' + product + "/100";
    gchar *path = umockdev_testbed_add_device(devices->testbed, "usb", name.toUtf8().constData(), nullptr, "idVendor",
                                              vendor.rightJustified(4, '0').constData(), "idProduct",
                                              product.rightJustified(4, '0').constData(), nullptr, "DEVTYPE",
                                              "usb_device", "PRODUCT", kernelIds.constData(), nullptr);
    devices->paths.insert(name, path);
    g_free(path);
}

void UsbBus::unplug(const QString &name)
{
    const QByteArray path = devices->paths.take(name);
    umockdev_testbed_uevent(devices->testbed, path.constData(), "remove");
    umockdev_testbed_remove_device(devices->testbed, path.constData());
}
