// SPDX-License-Identifier: MIT
#include "text/stringsFile.h"

#include "text/unicodeForms.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace sonarin {

namespace {

class StringsParser {
public:
    explicit StringsParser(std::string_view content) : rest_(content) {}

    std::optional<std::pair<std::string, std::string>> next() {
        auto key = quoted();
        if (!key || !symbol('=')) {
            return std::nullopt;
        }
        auto text = quoted();
        if (!text || !symbol(';')) {
            return std::nullopt;
        }
        return std::pair(std::move(*key), std::move(*text));
    }

private:
    void skipSpace() {
        for (;;) {
            rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t\r\n"), rest_.size()));
            if (rest_.substr(0, 2) == "//") {
                skipPast("\n");
            } else if (rest_.substr(0, 2) == "/*") {
                rest_.remove_prefix(2);
                skipPast("*/");
            } else {
                return;
            }
        }
    }

    void skipPast(std::string_view end) {
        const std::size_t at = rest_.find(end);
        rest_.remove_prefix(at == std::string_view::npos ? rest_.size() : at + end.size());
    }

    bool symbol(char wanted) {
        skipSpace();
        if (rest_.empty() || rest_.front() != wanted) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }

    std::optional<std::string> quoted() {
        if (!symbol('"')) {
            return std::nullopt;
        }
        std::string text;
        while (!rest_.empty()) {
            const char next = take();
            if (next == '"') {
                return text;
            }
            if (next != '\\') {
                text += next;
            } else if (!escape(text)) {
                return std::nullopt;
            }
        }
        return std::nullopt;
    }

    bool escape(std::string& text) {
        if (rest_.empty()) {
            return false;
        }
        const char kind = take();
        switch (kind) {
        case 'n':
            text += '\n';
            return true;
        case 'r':
            text += '\r';
            return true;
        case 't':
            text += '\t';
            return true;
        case 'U':
            return unicodeEscape(text);
        default:
            text += kind;
            return true;
        }
    }

    bool unicodeEscape(std::string& text) {
        auto unit = hexUnit();
        if (!unit) {
            return false;
        }
        CodePoint character = *unit;
        if (isLeadSurrogate(character) && rest_.substr(0, 2) == "\\U") {
            rest_.remove_prefix(2);
            const auto trail = hexUnit();
            if (!trail || !isTrailSurrogate(*trail)) {
                return false;
            }
            character = combineSurrogates(*unit, *trail);
        }
        if (isSurrogate(character)) {
            return false;
        }
        text += encodeUtf8(character).view();
        return true;
    }

    std::optional<CodePoint> hexUnit() {
        CodePoint unit = 0;
        const std::string_view digits = rest_.substr(0, 4);
        const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), unit, 16);
        if (digits.size() != 4 || parsed.ptr != digits.data() + 4) {
            return std::nullopt;
        }
        rest_.remove_prefix(4);
        return unit;
    }

    char take() {
        const char next = rest_.front();
        rest_.remove_prefix(1);
        return next;
    }

    std::string_view rest_;
};

} // namespace

std::vector<std::pair<std::string, std::string>> parseStringsFile(std::string_view content) {
    StringsParser parser(content);
    std::vector<std::pair<std::string, std::string>> entries;
    while (auto entry = parser.next()) {
        entries.push_back(std::move(*entry));
    }
    return entries;
}

} // namespace sonarin
