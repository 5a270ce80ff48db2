#ifndef SIMULATEDCALLS_H
#define SIMULATEDCALLS_H

#include <SimulatedProgrammer.h>

/// Calls \a operation of \a programmer with arguments that are right, and returns its status.
int callOf(SimulatedProgrammer &programmer, SimulatedProgrammer::Operation operation);

#endif // SIMULATEDCALLS_H
