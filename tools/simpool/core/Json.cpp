#include "Json.h"

#include "CommandFailure.h"
#include "EscapedText.h"

#include <cerrno>
#include <fstream>

namespace simpool {
namespace {

constexpr char kSchema[] = "simpool/1";
}

Json NewDocument(const std::string& command)
{
    Json document;
    document["schema"] = kSchema;
    document["command"] = command;
    return document;
}

void PrintJson(Output& out, const Json& document)
{
    out.Write(document.dump(2) + "\n");
}

Json ReadDocument(const std::string& name, const std::string& command)
{
    errno = 0;
    std::ifstream in(name, std::ios::binary);
    if (!in) {
        throw SystemFailure("cannot open", name, errno);
    }
    Json document;
    try {
        document = Json::parse(in);
    } catch (const Json::exception& failure) {
        throw CommandFailure(Quoted(name) + " is no JSON: " + Escaped(failure.what()));
    }
    if (!document.is_object() || document.value("schema", Json()) != kSchema ||
        document.value("command", Json()) != command) {
        throw CommandFailure(Quoted(name) + " is no document of 'simpool " + command + "'");
    }
    return document;
}
} // namespace simpool
