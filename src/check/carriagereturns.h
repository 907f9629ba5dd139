// Carriage returns. Some editors put them at line ends; here they are characters like others.

#pragma once

#include "findings.h"

#include <string>

/// One warning if lines of the text hold carriage returns, however many.
void checkCarriageReturns(const std::string& text, Findings& findings);
