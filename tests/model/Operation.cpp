#include "Operation.h"

#include <algorithm>
#include <istream>
#include <ostream>
#include <sstream>
#include <stdexcept>

namespace {

[[noreturn]] void Refuse(const std::string& line)
{
    throw std::runtime_error("no operation: " + line);
}

const KindFacts& FactsNamed(const std::string& name, const std::string& line)
{
    const auto& kinds = AllKinds();
    const auto found = std::find_if(kinds.begin(), kinds.end(),
                                    [&](const KindFacts& facts) { return name == facts.name; });
    if (found == kinds.end()) {
        Refuse(line);
    }
    return *found;
}

Operation ParseLine(const std::string& line)
{
    std::istringstream words(line);
    std::string word;
    words >> word;
    const KindFacts& facts = FactsNamed(word, line);
    Operation operation{.kind = facts.kind};
    for (std::size_t i = 0; i < facts.arguments.size(); ++i) {
        const std::string begin = std::string(facts.arguments[i].name) + '=';
        words >> word;
        if (!words || !word.starts_with(begin)) {
            Refuse(line);
        }
        std::istringstream number(word.substr(begin.size()));
        if (!(number >> operation.arguments[i]) || !number.eof()) {
            Refuse(line);
        }
    }
    if (words >> word) {
        Refuse(line);
    }
    return operation;
}
} // namespace

const KindFacts& FactsOf(Kind kind)
{
    return AllKinds()[static_cast<std::size_t>(kind)];
}

std::ostream& operator<<(std::ostream& out, const Operation& operation)
{
    const KindFacts& facts = FactsOf(operation.kind);
    out << facts.name;
    for (std::size_t i = 0; i < facts.arguments.size(); ++i) {
        out << ' ' << facts.arguments[i].name << '=' << operation.arguments[i];
    }
    return out;
}

std::string Print(const Script& script)
{
    std::ostringstream out;
    for (const Operation& operation : script) {
        out << operation << '\n';
    }
    return out.str();
}

Script Parse(std::istream& in)
{
    Script script;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.front() != '#') {
            script.push_back(ParseLine(line));
        }
    }
    return script;
}
