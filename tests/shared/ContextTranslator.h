#ifndef CONTEXTTRANSLATOR_H
#define CONTEXTTRANSLATOR_H

#include <QTranslator>

/// Translates a text of one context, which is the name of a class, to the same text between angle brackets, for as long
/// as it exists.
///
///     const ContextTranslator translator("UtilsDialog");
///     QCOMPARE(UtilsDialog().windowTitle(), "<Dialog>");
class ContextTranslator : public QTranslator
{
    Q_OBJECT

public:
    /// An empty \a contextName translates the texts of all contexts.
    explicit ContextTranslator(QByteArray contextName = QByteArray());

    bool isEmpty() const override;
    QString translate(const char *textContext, const char *text, const char *disambiguation, int number) const override;

private:
    QByteArray context;
};

#endif // CONTEXTTRANSLATOR_H
