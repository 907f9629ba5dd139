// What counts and numbers automata, locations, actions and propositions.

#pragma once

using uint = unsigned int;
