#ifndef UTILSTOKEN_H
#define UTILSTOKEN_H

#include "uniprogutils_export.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

/// Identifies a group of a hardware token. The values are those of the binary form. The underlying type is fixed
/// because the text form does not range-check identifiers: any int may name a group, as HwTokenGroup(7).
enum HwTokenGroup : int { HwTokenGroup1 = 1, HwTokenGroup2 = 2, HwTokenGroup3 = 3, HwTokenGroup4 = 4 };

/// A hardware token: the block of data that describes a device as numbered groups of byte values.
///
/// Build one from what the device or a user handed over, then ask for its groups. Copies and moves as a value; use an
/// object from one thread at a time, the getters change it.
///
///     UtilsToken token(QString("1-2-12-34-3-1-a0"));
///     token.getTokenGroup(HwTokenGroup1);       // "12", "34"
///     token.getTokenGroupVector(HwTokenGroup3); // 0xA0
///
/// Binary form: a 32-bit little-endian total length, which is informational and not enforced, then groups of
/// identifier (1 to 4), item count and that many item bytes, all read as signed 8-bit values. An identifier outside
/// 1 to 4 ends the token.
///
/// Text form: pieces joined by "-", as identifier and item count in base 10, then that many item texts, repeated.
///
/// Nothing is reported: a malformed token yields fewer groups or none. A later group of the same identifier replaces an
/// earlier one.
class UNIPROGUTILS_EXPORT UtilsToken
{
public:
    /// Parses the binary form. Groups before a malformed one stay, with one exception: an item count greater than
    /// the size of the whole array leaves no groups at all. A group that runs past the end of \a data is dropped. A
    /// negative count gives an empty group and ends the token.
    explicit UtilsToken(QByteArray data);

    /// Parses the text form. A piece that is not a number counts as 0; a count of 0 or less gives an empty group; when
    /// fewer items remain than announced, the group has those that remain. An identifier without a count ends the
    /// token.
    explicit UtilsToken(QString text);

    /// The group's item texts in order; empty when the token has no such group.
    ///
    /// Items of the text form are the pieces of the text unchanged. An item of the binary form is the base-16 text of
    /// the byte as a signed value: "a" for 0x0A, "7f" for 0x7F, but "-80" for 0x80 and "-1" for 0xFF.
    ///
    /// The getters are not const: they add an empty entry for an absent group.
    QList<QString> getTokenGroup(HwTokenGroup group);

    /// The group's items as bytes: each item text is read as an unsigned base-16 number, of which the low 8 bits are
    /// taken. A text that is no such number gives 0. So a byte from 0x80 to 0xFF of the binary form, whose text is
    /// negative, comes back as 0.
    QList<unsigned char> getTokenGroupVector(HwTokenGroup group);

private:
    QMap<HwTokenGroup, QList<QString>> m_groups;
    QByteArray m_raw; // as given; empty for a token built from text
};

#endif // UTILSTOKEN_H
