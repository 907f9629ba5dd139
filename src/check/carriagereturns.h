// Carriage returns, which stand at the line ends of some editors and mean nothing in our files.

#pragma once

#include "findings.h"

#include <string>

/// One warning if lines of the text hold carriage returns, however many.
void checkCarriageReturns(const std::string& text, Findings& findings);
