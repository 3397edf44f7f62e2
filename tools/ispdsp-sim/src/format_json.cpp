// JSON lines: one event per line, for scripts.
#include "reporter.h"

namespace ispdsp::tools::sim {

namespace {

class JsonFormatter : public Formatter {
public:
    explicit JsonFormatter(std::FILE* out) : out_(out) {}
    void write(const Event& event) override {
        // Text is made valid UTF-8 before it gets here; replace is a last guard.
        const std::string line = event.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
        std::fputs(line.c_str(), out_);
        std::fputc('\n', out_);
    }
    void flush() override { std::fflush(out_); }
    bool failed() const override { return std::ferror(out_) != 0; }

private:
    std::FILE* out_;
};

}  // namespace

std::unique_ptr<Formatter> makeJsonFormatter(std::FILE* out) { return std::make_unique<JsonFormatter>(out); }

}  // namespace ispdsp::tools::sim
