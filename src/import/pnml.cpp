#include "import/pnml.h"

#include "import/netdraft.h"
#include "text/message.h"
#include "text/scanner.h"
#include "xml/xmlfile.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <filesystem>
#include <initializer_list>
#include <string_view>
#include <utility>
#include <vector>

namespace tervoxal {

namespace {

/// What an open element is to the reader.
enum class Element : unsigned char {
    document,
    pnml,
    net,
    page,
    place,
    transition,
    placeReference,
    transitionReference,
    arc,
    arcKind,
    arcTool,
    name,
    marking,
    weight,
    text,
    tool,
    structure,
    unit,
    unitPlaces,
    coloured,
    skipped,
};

/// An element by its name and by where it stands. What stands in a net stands in a page as well.
struct Rule {
    Element parent;
    std::string_view name;
    Element element;
};

constexpr std::array<Rule, 30> rules{{
    {Element::document, "pnml", Element::pnml},
    {Element::pnml, "net", Element::net},
    {Element::net, "page", Element::page},
    {Element::net, "place", Element::place},
    {Element::net, "transition", Element::transition},
    {Element::net, "arc", Element::arc},
    {Element::net, "referencePlace", Element::placeReference},
    {Element::net, "referenceTransition", Element::transitionReference},
    {Element::net, "declaration", Element::coloured},
    {Element::net, "toolspecific", Element::tool},
    {Element::net, "name", Element::name},
    {Element::page, "name", Element::skipped},
    {Element::place, "name", Element::name},
    {Element::place, "initialMarking", Element::marking},
    {Element::place, "hlinitialMarking", Element::coloured},
    {Element::place, "type", Element::coloured},
    {Element::transition, "name", Element::name},
    {Element::transition, "condition", Element::coloured},
    {Element::arc, "inscription", Element::weight},
    {Element::arc, "hlinscription", Element::coloured},
    {Element::arc, "type", Element::arcKind},
    {Element::arc, "arctype", Element::arcKind},
    {Element::arc, "toolspecific", Element::arcTool},
    {Element::arcKind, "text", Element::arcKind},
    {Element::name, "text", Element::text},
    {Element::marking, "text", Element::text},
    {Element::weight, "text", Element::text},
    {Element::tool, "structure", Element::structure},
    {Element::structure, "unit", Element::unit},
    {Element::unit, "places", Element::unitPlaces},
}};

Element elementOf(Element parent, std::string_view name) {
    if (parent == Element::arcTool) return Element::arcTool;
    const auto find = [name](Element in) {
        return std::find_if(rules.begin(), rules.end(), [&](const Rule& rule) {
            return rule.parent == in && rule.name == name;
        });
    };
    const auto* rule = find(parent);
    if (rule == rules.end() && parent == Element::page) rule = find(Element::net);
    return rule == rules.end() ? Element::skipped : rule->element;
}

std::string lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

/// Whether the text is there and, in lower case, one of the words.
bool isOneOf(const char* text, std::initializer_list<std::string_view> words) {
    if (text == nullptr) return false;
    const std::string word = lower(text);
    return std::find(words.begin(), words.end(), word) != words.end();
}

bool keepsText(Element element) {
    return element == Element::text || element == Element::arcKind || element == Element::arcTool ||
           element == Element::unitPlaces;
}

bool isPlaceTransition(const std::string& type) {
    const std::string last = lower(type.substr(type.rfind('/') + 1));
    return last.starts_with("ptnet") || lower(type) == "p/t net";
}

/// Follows the file element by element.
class Reader {
public:
    Reader(const std::string& file, NetDraft& draft)
        : draft(&draft), net(&draft.net),
          xml(file, {[this](const char* name, const char** a) { begin(name, a); },
                     [this] { end(); }, [this](std::string_view more) { characters(more); }}) {}

    /// Ends the process where the file cannot be read or is refused.
    void read();

private:
    void begin(const char* name, const char** attributes);
    void end();
    void characters(std::string_view more);
    void beginNet(const char** attributes);
    void beginArc(const char** attributes);
    void declare(NetNodeKind kind, std::size_t number, const char** attributes);
    void endText();
    void endUnitPlaces();
    /// The number that the text is; refuses one below the least or above the bound.
    uint tokens(const std::string& what, uint least);
    void checkArcKind(std::string_view kind);
    void checkArcTool(std::string_view word);
    /// The value of an attribute that has to be there; refuses what lacks it.
    const char* needed(const char** attributes, const std::string& name, const std::string& owner);

    /// Ends the reading. The first fault is the one that is told.
    void refuse(const std::string& what) { xml.refuse(what); }
    [[nodiscard]] unsigned long line() const { return xml.line(); }

    NetDraft* draft;
    PetriNet* net;
    XmlFile xml;

    std::vector<Element> open{Element::document};
    std::string text; // of the innermost element, if it keeps its text
    std::string id;   // of the latest place or transition
    std::string netId;
    bool netSeen = false;
    bool marked = false; // the latest place had its marking
    bool valued = false; // the latest marking or weight had its text
};

void Reader::read() {
    xml.read();
    if (!netSeen) refuse("there is no net");
    xml.endIfRefused();
}

void Reader::begin(const char* name, const char** attributes) {
    const std::string_view local = localName(name);
    Element element = elementOf(open.back(), local);
    if (open.size() == 1 && element != Element::pnml) {
        return refuse("the document is " + shown(local) + " and not \"pnml\"");
    }
    switch (element) {
    case Element::net: beginNet(attributes); break;
    case Element::place:
        declare(NetNodeKind::place, net->places.size(), attributes);
        net->places.push_back({id, "", 0, 0, 0});
        marked = false;
        break;
    case Element::transition:
        declare(NetNodeKind::transition, net->transitions.size(), attributes);
        net->transitions.push_back({id, "", line()});
        break;
    case Element::placeReference:
    case Element::transitionReference:
        if (const char* to = needed(attributes, "ref", std::string(local))) {
            declare(element == Element::placeReference ? NetNodeKind::placeReference
                                                       : NetNodeKind::transitionReference,
                    draft->nodeOf(to), attributes);
        }
        break;
    case Element::arc: beginArc(attributes); break;
    case Element::arcKind:
        if (const char* kind = attribute(attributes, "value")) checkArcKind(kind);
        break;
    case Element::arcTool:
        checkArcTool(local);
        for (const char** a = attributes; *a != nullptr; a += 2) checkArcTool(a[1]);
        break;
    case Element::marking:
        if (std::exchange(marked, true)) refuse("the place has two initial markings");
        valued = false;
        break;
    case Element::weight: valued = false; break;
    case Element::tool:
        if (!isOneOf(attribute(attributes, "tool"), {"nupn"})) element = Element::skipped;
        break;
    case Element::structure:
        if (net->bound > 0 || !isOneOf(attribute(attributes, "safe"), {"true", "1"})) {
            element = Element::skipped;
        } else if (std::exchange(draft->hasUnits, true)) {
            refuse("the net has two structures of units");
        }
        break;
    case Element::unit:
        if (const char* unit = needed(attributes, "id", "unit")) draft->units.emplace_back(unit);
        break;
    case Element::coloured:
        return refuse("coloured nets are not read, and " + shown(local) + " belongs to one");
    default: break;
    }
    if (keepsText(element)) text.clear();
    open.push_back(element);
}

void Reader::end() {
    const Element element = open.back();
    switch (element) {
    case Element::net:
        if (net->name.empty()) net->name = netId;
        break;
    case Element::place:
        if (net->places.back().name.empty()) net->places.back().name = id;
        break;
    case Element::transition:
        if (net->transitions.back().name.empty()) net->transitions.back().name = id;
        break;
    case Element::text: endText(); break;
    case Element::marking:
        if (!valued) refuse("the initial marking has no text");
        break;
    case Element::weight:
        if (!valued) refuse("the inscription has no text");
        break;
    case Element::arcKind: checkArcKind(text); break;
    case Element::arcTool: checkArcTool(text); break;
    case Element::unitPlaces: endUnitPlaces(); break;
    default: break;
    }
    if (keepsText(element)) text.clear();
    open.pop_back();
}

void Reader::characters(std::string_view more) {
    if (keepsText(open.back())) text += more;
}

void Reader::beginNet(const char** attributes) {
    if (std::exchange(netSeen, true)) return refuse("the file has several nets");
    const char* type = attribute(attributes, "type");
    if (type != nullptr && !isPlaceTransition(type)) {
        return refuse("nets of type " + shown(type) + " are not read, only \"ptnet\"");
    }
    if (const char* found = attribute(attributes, "id")) netId = found;
}

void Reader::beginArc(const char** attributes) {
    const char* source = needed(attributes, "source", "arc");
    const char* target = needed(attributes, "target", "arc");
    if (source == nullptr || target == nullptr) return;
    if (const char* kind = attribute(attributes, "type")) checkArcKind(kind);
    const uint from = draft->nodeOf(source);
    draft->arcs.push_back({from, draft->nodeOf(target), line(), 1});
}

void Reader::declare(NetNodeKind kind, std::size_t number, const char** attributes) {
    const char* found = needed(attributes, "id", "node");
    if (found == nullptr) return;
    id = found;
    NetDraft::Node& node = draft->nodes[draft->nodeOf(id)];
    if (node.kind != NetNodeKind::nothing) {
        return refuse("id " + shown(id) + " is that of line " + std::to_string(node.line) +
                      " as well");
    }
    node.kind = kind;
    node.number = static_cast<uint>(number);
    node.line = line();
}

void Reader::endText() {
    const Element holder = open[open.size() - 2];
    const Element owner = open[open.size() - 3];
    switch (holder) {
    case Element::marking: net->places.back().tokens = tokens("an initial marking", 0); break;
    case Element::weight: draft->arcs.back().weight = tokens("an arc weight", 1); break;
    default: {
        std::string& name = owner == Element::place        ? net->places.back().name
                            : owner == Element::transition ? net->transitions.back().name
                                                           : net->name;
        if (name.empty()) name = normalised(text);
    }
    }
}

void Reader::endUnitPlaces() {
    const auto unit = static_cast<uint>(draft->units.size() - 1);
    std::string_view rest = text;
    for (std::string_view place; !(place = takeWord(rest)).empty();) {
        draft->members.push_back({unit, draft->nodeOf(place), line()});
    }
}

uint Reader::tokens(const std::string& what, uint least) {
    valued = true;
    const std::string_view digits = trimmed(text);
    const uint most = std::max(net->bound, 1U);
    uint n = 0;
    const Found found = wholeNumber(digits, n);
    if (found == Found::nothing) {
        refuse(what + " is no number: " + shown(digits));
    } else if (found == Found::tooLarge || n > most || n < least) {
        const std::string from = least == most       ? ""
                                 : least + 1 == most ? std::to_string(least) + " or "
                                                     : std::to_string(least) + " to ";
        const std::string numbers = from + std::to_string(most);
        refuse(what + " of " + shown(digits) +
               (net->bound == 0
                    ? ": in a safe net it is " + numbers + "; for others there is --bound"
                    : ": with this bound it is " + numbers));
    }
    return n;
}

void Reader::checkArcKind(std::string_view kind) {
    const std::string word = normalised(kind);
    if (!word.empty() && !isOneOf(word.c_str(), {"normal"})) {
        refuse("arcs of kind " + shown(word) + " are not read");
    }
}

void Reader::checkArcTool(std::string_view word) {
    if (isOneOf(normalised(word).c_str(), {"inhibitor", "reset"})) checkArcKind(word);
}

const char* Reader::needed(const char** attributes, const std::string& name,
                           const std::string& owner) {
    const char* const found = attribute(attributes, name);
    if (found == nullptr) refuse(owner + " without attribute '" + name + "'");
    return found;
}

} // namespace

PetriNet readPnml(const std::string& file, uint bound) {
    NetDraft draft;
    draft.net.bound = bound;
    Reader(file, draft).read();
    PetriNet net = netOf(std::move(draft), file);
    if (net.name.empty()) net.name = std::filesystem::path(file).stem().string();
    return net;
}

} // namespace tervoxal
