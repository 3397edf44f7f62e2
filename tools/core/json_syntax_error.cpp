#include "json_syntax_error.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "json_place.h"

namespace ispdsp::tools {
namespace {

// Accepts every value and keeps the first error with its position.
struct ErrorFinder : nlohmann::json_sax<nlohmann::json> {
    std::optional<std::pair<std::size_t, std::string>> error;
    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(number_integer_t) override { return true; }
    bool number_unsigned(number_unsigned_t) override { return true; }
    bool number_float(number_float_t, const string_t&) override { return true; }
    bool string(string_t&) override { return true; }
    bool binary(binary_t&) override { return true; }
    bool start_object(std::size_t) override { return true; }
    bool key(string_t&) override { return true; }
    bool end_object() override { return true; }
    bool start_array(std::size_t) override { return true; }
    bool end_array() override { return true; }
    bool parse_error(std::size_t position, const std::string& token, const nlohmann::detail::exception& e) override {
        // A number too large is shown at its first character; a syntax error where reading stopped.
        if (e.id == 406 && !token.empty() && token.size() <= position) position -= token.size() - 1;
        error.emplace(position, e.what());
        return false;
    }
};

}  // namespace

JsonSyntaxError describeJsonSyntaxError(std::string_view text, std::size_t byte, std::string_view what) {
    const TextPlace place = placeOf(text, byte == 0 ? 0 : byte - 1);
    JsonSyntaxError error{place.line, place.column, std::string(what)};
    // "[json.exception.parse_error.101] parse error at line 1, column 2: <reason>"
    if (error.reason.starts_with("[json.exception."))
        error.reason.erase(0, std::min(error.reason.size(), error.reason.find("] ") + 2));
    if (const std::size_t colon = error.reason.find(": "); error.reason.starts_with("parse error") && colon != std::string::npos)
        error.reason.erase(0, colon + 2);
    // "number overflow parsing '1e400'"
    if (error.reason.starts_with("number overflow parsing "))
        error.reason = "the number " + error.reason.substr(24) + " is too large";
    return error;
}

std::optional<JsonSyntaxError> findJsonSyntaxError(std::string_view text) {
    ErrorFinder finder;
    nlohmann::json::sax_parse(text, &finder, nlohmann::json::input_format_t::json, /*strict=*/true,
                              /*ignore_comments=*/true);
    if (!finder.error) return std::nullopt;
    return describeJsonSyntaxError(text, finder.error->first, finder.error->second);
}

}  // namespace ispdsp::tools
