#include <UniProgInterface.h>
#include <UtilsConstants.h>

#include <QDebug>

int main()
{
    MemoryManager image;
    image.write(0x08000000, "firmware");
    qInfo() << image.size() << UtilsConstants::WARNING_NO_SELECTED_DEVICE;
    return image.size() == 8 ? 0 : 1;
}
