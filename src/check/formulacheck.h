// What can be said of a formula file ahead of a run, as networkcheck.h tells it for a network file.

#pragma once

#include "findings.h"
#include "networkcheck.h"

#include <string>

/// Checks a formula file, named with its suffix, for a network. Linear. Ends the process like
/// checkNetwork.
void checkFormula(const std::string& file, const CheckedNetwork& network, Findings& findings);
