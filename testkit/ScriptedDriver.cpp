#include "ScriptedDriver.h"

ScriptedDriver::~ScriptedDriver() = default;
