#include "UniProgInterface.h"

// Here, so that the virtual table and the type information exist once in the process.
UniProgInterface::~UniProgInterface() = default;
