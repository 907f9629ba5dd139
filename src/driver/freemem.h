// The free-memory probe: free physical memory plus free swap of the whole machine.

#pragma once

#include <istream>

namespace tervoxal {

/// The free bytes that a text in the layout of /proc/meminfo tells, as their low 32 bits: the
/// difference of two probes is right while it stays below 4 GiB. Reads the table layout of early
/// kernels, in bytes, and the layout of a name and a value in kB on each line. The greatest number
/// if the text tells nothing.
[[nodiscard]] unsigned int freeMemIn(std::istream& in);

} // namespace tervoxal

/// freeMemIn of /proc/meminfo, after a run of the shell command "free". The greatest number if the
/// file cannot be opened.
[[nodiscard]] unsigned int getfreemem();
