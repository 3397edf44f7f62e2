#include "json_place.h"

namespace ispdsp::tools {
namespace {

// Walks a document that parsed: no validation, only enough to skip what is not on the path.
class Walker {
public:
    explicit Walker(std::string_view text) : t_(text) {}

    std::optional<std::size_t> find(const std::vector<std::string>& path) {
        skipBlanks();
        for (const std::string& step : path) {
            if (!enter(step)) return std::nullopt;
        }
        return at_;
    }

private:
    bool more() const { return at_ < t_.size(); }
    bool comment() const { return at_ + 1 < t_.size() && t_[at_] == '/' && (t_[at_ + 1] == '/' || t_[at_ + 1] == '*'); }

    void skipBlanks() {
        for (;;) {
            while (more() && (t_[at_] == ' ' || t_[at_] == '\t' || t_[at_] == '\n' || t_[at_] == '\r')) ++at_;
            if (!comment()) return;
            const bool line = t_[at_ + 1] == '/';
            const std::size_t end = t_.find(line ? "\n" : "*/", at_ + 2);
            at_ = end == std::string_view::npos ? t_.size() : end + (line ? 1 : 2);
        }
    }

    std::string_view string() {  // at the opening quote; the raw text between the quotes
        const std::size_t start = ++at_;
        while (more() && t_[at_] != '"') at_ += t_[at_] == '\\' ? 2 : 1;
        const std::string_view text = t_.substr(start, std::min(at_, t_.size()) - start);
        ++at_;
        return text;
    }

    void skipValue() {
        if (more() && t_[at_] == '"') {
            string();
        } else if (more() && t_[at_] != '{' && t_[at_] != '[') {
            while (more() && std::string_view(",]} \t\r\n/").find(t_[at_]) == std::string_view::npos) ++at_;
        } else {
            for (int depth = 0; more();) {  // nested without recursion: documents may nest deeply
                if (t_[at_] == '"') {
                    string();
                    continue;
                }
                if (comment()) {
                    skipBlanks();
                    continue;
                }
                const char c = t_[at_++];
                if (c == '{' || c == '[') ++depth;
                if ((c == '}' || c == ']') && --depth == 0) break;
            }
        }
        skipBlanks();
    }

    // Moves to the member or element `step` of the object or array here.
    bool enter(const std::string& step) {
        if (!more() || (t_[at_] != '{' && t_[at_] != '[')) return false;
        const bool object = t_[at_++] == '{';
        skipBlanks();
        for (std::size_t index = 0; more() && t_[at_] != '}' && t_[at_] != ']'; ++index) {
            bool found = !object && std::to_string(index) == step;
            if (object) {
                if (t_[at_] != '"') return false;
                found = string() == step;
                skipBlanks();
                if (!more() || t_[at_] != ':') return false;
                ++at_;
                skipBlanks();
            }
            if (found) return true;
            const std::size_t before = at_;
            skipValue();
            if (more() && t_[at_] == ',') ++at_;
            skipBlanks();
            if (at_ == before) return false;  // no progress: not a document that parsed
        }
        return false;
    }

    std::string_view t_;
    std::size_t at_ = 0;
};

}  // namespace

TextPlace placeOf(std::string_view text, std::size_t offset) {
    TextPlace place{1, 1};
    for (std::size_t i = 0; i < offset && i < text.size(); ++i) {
        if (text[i] == '\n') {
            ++place.line;
            place.column = 1;
        } else {
            ++place.column;
        }
    }
    return place;
}

std::optional<TextPlace> findJsonValue(std::string_view text, const std::vector<std::string>& path) {
    const std::optional<std::size_t> offset = Walker(text).find(path);
    if (!offset) return std::nullopt;
    return placeOf(text, *offset);
}

std::vector<std::string> jsonPathOf(std::string_view where) {
    std::vector<std::string> path(1);
    for (std::size_t i = 0; i < where.size(); ++i) {
        const char c = where[i];
        if (c == '(') {
            i = std::min(where.find(')', i), where.size());
        } else if (c == '.' || c == '[' || c == ']' || c == ' ') {
            if (!path.back().empty()) path.emplace_back();
        } else {
            path.back() += c;
        }
    }
    if (path.back().empty()) path.pop_back();
    return path;
}

}  // namespace ispdsp::tools
