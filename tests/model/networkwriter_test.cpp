#include "model/networkwriter.h"

#include "model/names.h"
#include "network.h"

namespace tervoxal {

namespace {

std::string randomName(Random& random) {
    static const std::array<std::string, 16> pieces = {
        " ",  "#",  "end", "12",   "-3",   "+",    "x",        "\"",
        "\\", "\t", "\n",  "\x01", "\x7f", "\xff", "\xc3\xa4", "valuation"};
    std::string name;
    for (auto n = random() % 5; n > 0; --n) name += pieces.at(random() % pieces.size());
    return name;
}

/// The name as it is read back.
std::string readBack(const std::string& name) {
    std::string text;
    for (const char c : name) text += (c >= 0 && c < ' ') || c == '\x7f' ? ' ' : c;
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? ""
                                      : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

/// The name of a proposition: never a number, with or without a sign.
std::string readBackProp(const std::string& name) {
    const std::string text = readBack(name);
    const std::size_t digit = text.find_first_not_of("+-") == 1 ? 1 : 0;
    return !text.empty() && text.size() > digit && text[digit] >= '0' && text[digit] <= '9'
               ? '_' + text
               : text;
}

template <class Key>
void give(std::map<Key, std::string>& names, const Key& key, const std::string& name) {
    if (!name.empty()) names.try_emplace(key, name);
}

TEST(NetworkWriter, writesWhatTheReaderReads) {
    const Scratch dir;
    for (uint seed = 1; seed <= 2000; ++seed) {
        Random random(seed);
        std::ostringstream text;
        Names names;
        std::map<NetTimedModel::Location, Vertex> verts;
        std::set<std::pair<NetTimedModel::LocalAction, NetTimedModel::Move>> edges;
        std::set<std::pair<NetTimedModel::Location, uint>> valuation;
        NetworkWriter writer(text, randomName(random));
        const auto automata = static_cast<uint>(random() % 4);
        for (uint a = 1; a <= automata; ++a) {
            std::string name = randomName(random);
            writer.automaton(name);
            give(names.automata, a, readBack(name));
            const auto locations = static_cast<uint>(1 + random() % 4);
            for (uint l = 0; l < locations; ++l) {
                name = randomName(random);
                writer.location(l, name);
                give(names.locations, {a, l}, readBack(name));
                verts[{a, l}];
            }
            for (auto n = random() % 4; n > 0; --n) {
                const auto source = static_cast<uint>(random() % locations);
                const auto target = static_cast<uint>(random() % locations);
                const auto action = static_cast<uint>(random() % 3 * 1073741823);
                name = randomName(random);
                writer.transition(source, target, action, name);
                give(names.actions, action, readBack(name));
                edges.insert({{a, action}, {source, target}});
            }
            writer.valuation();
            for (auto n = random() % 5; n > 0; --n) {
                const auto l = static_cast<uint>(random() % locations);
                std::vector<uint> props;
                for (auto i = random() % 3; i > 0; --i) {
                    props.push_back(static_cast<uint>(random() % 3 * 1073741823));
                    valuation.insert({{a, l}, props.back()});
                }
                name = randomName(random);
                writer.value(l, props, name);
                if (!props.empty()) give(names.props, props.back(), readBackProp(name));
            }
            writer.endAutomaton();
        }
        writer.end();
        SCOPED_TRACE(text.str());
        dir.write("net.in", text.str());
        NetTimedModel model;
        Names found;
        readNamedNetwork(model, found, dir.path / "net");
        EXPECT_EQ(model.nrOfAutomata, automata);
        const auto keys = [](const auto& map) {
            std::vector<typename std::decay_t<decltype(map)>::key_type> all;
            for (const auto& entry : map) all.push_back(entry.first);
            return all;
        };
        EXPECT_EQ(keys(model.verts), keys(verts));
        EXPECT_EQ(keys(model.edges), std::vector(edges.begin(), edges.end()));
        EXPECT_EQ(model.valuation, valuation);
        EXPECT_EQ(found.automata, names.automata);
        EXPECT_EQ(found.locations, names.locations);
        EXPECT_EQ(found.actions, names.actions);
        EXPECT_EQ(found.props, names.props);
    }
}

} // namespace

} // namespace tervoxal
