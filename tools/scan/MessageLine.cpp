#include "MessageLine.h"

#include "facts/JsonLine.h"

namespace VelmaraCommand {

namespace {

Json _sourceOf(FoundMessage const& message, std::uint64_t number)
{
    Json source{{"number", number}, {"file", message.file}};
    setIfAny(source, "entry", message.entry);
    source["offset"] = message.offset;
    source["length"] = message.length;
    return source;
}

/// Names that are no UTF-8 were written with U+FFFD in them, so they are compared as they would be written.
std::string _written(std::string const& name)
{
    return Json::parse(Json(name).dump(-1, ' ', false, Json::error_handler_t::replace)).get<std::string>();
}

} // namespace

Analysed lineOf(FoundMessage const& message, std::uint64_t number, Limits const& limits, Wanted const& wanted)
{
    MessageFacts const facts = factsOf(message.bytes.media(), limits, wanted);
    Json line{{"source", _sourceOf(message, number)}};
    Json known = jsonOf(facts);
    for (auto& field : known.items()) line.push_back({field.key(), std::move(field.value())});
    Analysed analysed;
    appendJsonLine(analysed.line, line);
    analysed.capped = !facts.capped.empty();
    return analysed;
}

LastMessage lastMessageOf(std::string const& line)
{
    try {
        Json const source = Json::parse(line).at("source");
        return {source.at("number").get<std::uint64_t>(), source.at("file").get<std::string>(),
                source.value("entry", std::string()), source.at("offset").get<std::uint64_t>()};
    } catch (Json::exception const&) {
        throw ScanFailure("its last line is none of a scan");
    }
}

void requireSame(LastMessage const& last, FoundMessage const& now)
{
    if (last.file == _written(now.file) && last.entry == _written(now.entry) && last.offset == now.offset) return;
    throw ScanFailure("the input has changed since it was begun: message " + std::to_string(last.number) + " was " +
                      placeOf(last.file, last.entry) + " at " + std::to_string(last.offset) + " and is now " +
                      placeOf(now.file, now.entry) + " at " + std::to_string(now.offset));
}

} // namespace VelmaraCommand
