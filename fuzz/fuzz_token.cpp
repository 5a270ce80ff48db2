// Hardware tokens: any bytes as the binary form, and the same bytes as text.

#include <UtilsToken.h>

#include <cstdint>
#include <cstdlib>

static void check(bool holds)
{
    if (!holds)
        std::abort();
}

static qsizetype itemsOf(UtilsToken &token)
{
    qsizetype items = 0;
    for (int group = -1; group <= 5; ++group) {
        const QList<QString> texts = token.getTokenGroup(HwTokenGroup(group));
        check(token.getTokenGroupVector(HwTokenGroup(group)).size() == texts.size());
        items += texts.size();
    }
    return items;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    UtilsToken binary(bytes);
    check(itemsOf(binary) <= bytes.size());
    check(binary.getTokenGroup(HwTokenGroup(0)).isEmpty() && binary.getTokenGroup(HwTokenGroup(5)).isEmpty());

    const QString text = QString::fromUtf8(bytes);
    UtilsToken textual(text);
    check(itemsOf(textual) <= text.count(u'-') + 1);
    return 0;
}
