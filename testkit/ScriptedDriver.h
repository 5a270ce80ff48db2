#ifndef SCRIPTEDDRIVER_H
#define SCRIPTEDDRIVER_H

#include <UniProgInterface.h>

#include "uniprogtestkit_export.h"

#include <QObject>

class UNIPROGTESTKIT_EXPORT ScriptedDriver : public QObject, public UniProgInterface
{
    Q_OBJECT

public:
    ~ScriptedDriver() override;

Q_SIGNALS:
    void SignalUpdateProgress(int percent);
};

#endif // SCRIPTEDDRIVER_H
