// Errors found while reading a JSON source, each with its location inside the document
// ("tables[2] <table type>: fusion[3].ep_delta"), plus the JSON helpers the codecs share.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "field_table.h"

namespace ispdsp::tools {

using Json = nlohmann::json;                 // parsed sources
using OrderedJson = nlohmann::ordered_json;  // written documents keep the layout order

class Diagnostics {
public:
    void error(const std::string& where, const std::string& what);
    bool ok() const { return messages_.empty(); }
    const std::vector<std::string>& messages() const { return messages_; }

private:
    std::vector<std::string> messages_;
};

// "object", "array", "string", "integer", "number", "boolean", "null".
std::string jsonKind(const Json& value);

// An integer that fits `type`; reports and returns false otherwise.
bool readInteger(const Json& value, Scalar type, const std::string& where, Diagnostics& diag, int64_t& out);
bool readIntegerIn(const Json& value, int64_t low, int64_t high, const std::string& where, Diagnostics& diag,
                   int64_t& out);

// Reports every member of `object` whose key is not in `known` (with the closest known key).
void rejectUnknownKeys(const Json& object, const std::vector<std::string>& known, const std::string& where,
                       Diagnostics& diag);

// "a.b"; "b" when a is empty; "a b" when a ends with a blank (a table prefix such as "tables[2] (<table type>) ").
std::string joinPath(std::string_view base, std::string_view leaf);

}  // namespace ispdsp::tools
