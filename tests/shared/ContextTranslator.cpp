#include "ContextTranslator.h"

#include <QCoreApplication>

#include <utility>

ContextTranslator::ContextTranslator(QByteArray contextName)
    : context(std::move(contextName))
{
    QCoreApplication::installTranslator(this);
}

bool ContextTranslator::isEmpty() const
{
    return false;
}

QString ContextTranslator::translate(const char *textContext, const char *text, const char *, int) const
{
    return context.isEmpty() || context == textContext ? QStringLiteral("<%1>").arg(QLatin1String(text)) : QString();
}
