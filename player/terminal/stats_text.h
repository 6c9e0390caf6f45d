#pragma once

#include <cstddef>
#include <ostream>

#include "player/summary/figures.h"

namespace ostrevan::terminal {

/// Figures as bars and lists, for a terminal when `with_blocks`, else for a file or another program.
void write_stats(std::ostream& out, const summary::question& wanted, const summary::figures& of, std::size_t width,
                 bool with_blocks);

}  // namespace ostrevan::terminal
