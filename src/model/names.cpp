#include "model/names.h"

namespace tervoxal {

namespace {

template <class Key>
std::string nameOr(const std::map<Key, std::string>& names, const Key& key, uint number) {
    const auto found = names.find(key);
    return found == names.end() ? std::to_string(number) : found->second;
}

} // namespace

std::string Names::automaton(uint a) const { return nameOr(automata, a, a); }
std::string Names::location(uint a, uint l) const { return nameOr(locations, {a, l}, l); }
std::string Names::action(uint x) const { return nameOr(actions, x, x); }
std::string Names::prop(uint p) const { return nameOr(props, p, p); }

} // namespace tervoxal
