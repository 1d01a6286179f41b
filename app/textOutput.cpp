// SPDX-License-Identifier: MIT
#include "app/textOutput.h"

#include "app/panelTexts.h"
#include "engine/fileEngine.h"
#include "text/stringEngine.h"
#include "text/unicodeForms.h"

#include <string_view>

namespace sonarin {

namespace {

constexpr std::string_view labelColour = "\x1b[36m";
constexpr std::string_view normalColour = "\x1b[0m";
constexpr std::size_t labelWidth = 10;

/// Controls, separators, and the explicit directional marks of the Unicode Bidirectional Algorithm (UAX #9).
constexpr bool mayUpsetTerminal(CodePoint character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x061C ||
           character == 0x200E || character == 0x200F || (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2066 && character <= 0x2069);
}

void appendHex(OutputBuffer& out, CodePoint value, unsigned digits) {
    constexpr std::string_view hexDigits = "0123456789ABCDEF";
    for (unsigned shift = digits * 4; shift > 0;) {
        shift -= 4;
        out.append(hexDigits[(static_cast<unsigned>(value) >> shift) & 0xFU]);
    }
}

void appendEscape(OutputBuffer& out, CodePoint character) {
    switch (character) {
    case '\n':
        out.append("\\n");
        return;
    case '\r':
        out.append("\\r");
        return;
    case '\t':
        out.append("\\t");
        return;
    default:
        break;
    }
    if (character <= 0xFF) {
        out.append("\\x");
        appendHex(out, character, 2);
        return;
    }
    out.append("\\u{");
    appendHex(out, character, 4);
    out.append('}');
}

class FieldList {
public:
    FieldList(OutputBuffer& out, bool inColour) : out_(out), inColour_(inColour) {}

    void field(std::string_view label, const SvxStringRef& text) {
        const SvxStringRef value = withoutTerminators(text);
        if (SvxStringGetLength(value) == 0) {
            return;
        }
        if (inColour_) {
            out_.append(labelColour);
        }
        out_.append(label);
        if (inColour_) {
            out_.append(normalColour);
        }
        for (std::size_t column = label.size(); column < labelWidth; ++column) {
            out_.append(' ');
        }
        appendForTerminal(out_, value);
        out_.append('\n');
    }

private:
    OutputBuffer& out_;
    bool inColour_;
};

} // namespace

void appendForTerminal(OutputBuffer& out, const SvxStringRef& text) {
    if (!text) {
        return;
    }
    constexpr CodePoint replacementCharacter = 0xFFFD;
    text->visit([&out](auto units) {
        forEachCharacter(units, [&out](CodePoint character) {
            if (mayUpsetTerminal(character)) {
                appendEscape(out, character);
            } else {
                out.append(encodeUtf8(isSurrogate(character) ? replacementCharacter : character).view());
            }
            return true;
        });
    });
}

void appendText(OutputBuffer& out, const SvxStringRef& path, const HostFileAttributes& attributes,
                const audioTags* record, bool inColour) {
    FieldList list(out, inColour);
    list.field("Name", feLastPathComponent(path));
    list.field("Size", panelFileSize(attributes));
    if (record == nullptr) {
        return;
    }
    for (const PanelFact* fact : panelFactsInText()) {
        list.field(fact->label, fact->text(*record, nullptr));
    }
    if (record->mp3CoverArtPlace.size != 0) {
        const bool isKnown = record->mp3CoverArtType != 0;
        list.field("Cover", SvxStringCreateWithFormat(
                                isKnown ? "%@, %li bytes" : "%@%li bytes",
                                {fourCharacterText(record->mp3CoverArtType), record->mp3CoverArtPlace.size}));
    }
    list.field("Lyrics", record->mp3LyricsString);
}

} // namespace sonarin
