// Carriage returns. Some editors put them at line ends; here they are characters like others.

#pragma once

#include "text/diagnostics.h"

#include <string>

namespace tervoxal {

/// One warning if lines of the text hold carriage returns, however many.
void checkCarriageReturns(const std::string& text, Diagnostics& findings);

} // namespace tervoxal
