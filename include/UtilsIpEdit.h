#ifndef UTILSIPEDIT_H
#define UTILSIPEDIT_H

#include "uniprogutils_export.h"

#include <QFrame>
#include <QIntValidator>
#include <QList>
#include <QPointer>

#include <array>

class QLineEdit;

/// Accepts one part of an IPv4 address: a number from 0 to 255. While it is typed, 256 to 999 pass as well; a line edit
/// does not let its editing finish with them.
class UNIPROGUTILS_EXPORT IPItemValidator : public QIntValidator
{
    Q_OBJECT

public:
    explicit IPItemValidator(QObject *parent = nullptr);
    ~IPItemValidator() override;

    /// Makes "0" of an empty text and leaves every other one alone: "007" stays.
    void fixup(QString &input) const override;
};

/// An editor of an IPv4 address: four number fields with dots between them. The cursor moves on by itself when a field
/// is full, and with the arrow keys at the ends of a field.
///
/// \image html inputs.png
///
/// Addresses are numbers with the first field in the highest byte: 0xC0A80001 is 192.168.0.1. They are written from
/// left to right in every language, so the editor does not mirror itself.
///
/// Every key but Left and Right counts as typing, also those that type nothing: with the cursor behind three digits,
/// Home stays, and End, Tab or a lone Shift move on.
///
/// The style sheet finds the fields and the dots by their property "utils-ip-edit-widget-type", which is true.
///
/// GUI thread only; owned by its Qt parent.
///
///     auto *server = new UtilsIpEdit(this, 0xC0A80001);
///     server->setAccessibleName(tr("Server address"));
///     connect(okButton, &QToolButton::clicked, this, [=] { connectTo(QHostAddress(server->getAddress())); });
class UNIPROGUTILS_EXPORT UtilsIpEdit : public QFrame
{
    Q_OBJECT

public:
    /// An editor, at most 120 pixels wide, that shows \a address.
    explicit UtilsIpEdit(QWidget *parent = nullptr, unsigned int address = 0);
    ~UtilsIpEdit() override;

    /// The bytes of the four fields, joined. A field without a number counts as 0; one above 255, which can be typed,
    /// reaches into the bytes above its own.
    unsigned int getAddress() const;
    /// Shows \a address. signalTextChanged() is not emitted.
    void setAddress(unsigned int address);

    /// The field \a index, 0 (the highest byte) to 3; other values are not checked. The editor owns it.
    QLineEdit *getLineEditWidgets(unsigned char index);

    /// The text of a field: \a value as a decimal number.
    static QString getIPItemStr(unsigned char value);

    /// The keys of the fields. No key is swallowed.
    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /// A key other than Left or Right was pressed in \a pEdit, which has not handled it yet. Texts that are set or
    /// pasted by mouse are not announced.
    void signalTextChanged(QLineEdit *pEdit);

public Q_SLOTS:
    /// Goes on to the next field when \a pEdit holds three characters and its cursor is behind them. Connected to
    /// signalTextChanged() so that it runs after the key. Anything but one of the four fields is ignored.
    void slotTextChanged(QLineEdit *pEdit);

private:
    Q_DISABLE_COPY_MOVE(UtilsIpEdit)

    QWidget *createDot();
    QLineEdit *createField(int index);
    int indexOf(const QObject *field) const;

    std::array<QPointer<QLineEdit>, 4> fields;
    QList<QWidget *> parts;
};

#endif // UTILSIPEDIT_H
