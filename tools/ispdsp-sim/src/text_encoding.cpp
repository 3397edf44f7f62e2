#include "text_encoding.h"

#include <iconv.h>

#include <cerrno>
#include <vector>

#include "printable_text.h"

namespace ispdsp::tools::sim {

namespace {

bool convertFromGbk(const std::string& raw, std::string& out) {
    iconv_t cd = iconv_open("UTF-8", "GBK");
    if (cd == reinterpret_cast<iconv_t>(-1)) return false;
    std::vector<char> input(raw.begin(), raw.end());
    std::vector<char> output(raw.size() * 4 + 16);
    char* in = input.data();
    size_t inLeft = input.size();
    char* outPtr = output.data();
    size_t outLeft = output.size();
    const size_t result = iconv(cd, &in, &inLeft, &outPtr, &outLeft);
    iconv_close(cd);
    if (result == static_cast<size_t>(-1) || inLeft != 0) return false;
    out.assign(output.data(), output.size() - outLeft);
    return true;
}

}  // namespace

std::string displayText(const std::string& raw) {
    if (ispdsp::tools::isValidUtf8(raw)) return raw;
    std::string converted;
    if (convertFromGbk(raw, converted)) return converted;
    return ispdsp::tools::printableText(raw, /*keepLineFeeds=*/true);
}

}  // namespace ispdsp::tools::sim
