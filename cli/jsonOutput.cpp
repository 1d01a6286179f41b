// SPDX-License-Identifier: MIT
#include "cli/jsonOutput.h"

#include "app/findMenu.h"
#include "app/panelTexts.h"
#include "app/renameMenu.h"
#include "engine/fileEngine.h"
#include "text/stringEngine.h"
#include "text/unicodeForms.h"

#include <cstdint>
#include <string_view>
#include <utility>

namespace sonarin {

namespace {

/// Whether a character needs no escape and is the same in UTF-8.
constexpr bool standsForItself(CodePoint character) {
    return character >= ' ' && character <= '~' && character != '"' && character != '\\';
}

class JsonWriter {
public:
    explicit JsonWriter(OutputBuffer& out) : out_(out) {}

    void beginObject() { begin('{'); }
    void beginObject(std::string_view name) {
        member(name);
        begin('{');
    }
    void endObject() { end('}'); }

    void beginArray(std::string_view name) {
        member(name);
        begin('[');
    }
    void endArray() { end(']'); }

    void number(std::string_view name, std::int64_t value) {
        member(name);
        out_.appendNumber(value);
    }

    void boolean(std::string_view name, bool value) {
        member(name);
        out_.append(value ? "true" : "false");
    }

    void null(std::string_view name) {
        member(name);
        out_.append("null");
    }

    /// An absent text is null.
    void text(std::string_view name, const SvxStringRef& value) {
        member(name);
        value ? string(*value) : out_.append("null");
    }

    /// An absent text is what a text field shows for it: "".
    void shownText(std::string_view name, const SvxStringRef& value) {
        member(name);
        value ? string(*value) : out_.append("\"\"");
    }

    void element(const SvxStringRef& value) {
        separate();
        value ? string(*value) : out_.append("null");
    }

    void element(const FindEntryParts& parts) {
        separate();
        out_.append('"');
        appendUnits(parts.before);
        if (parts.value) {
            parts.value->visit([this](auto units) { appendUnits(units); });
        }
        appendUnits(parts.after);
        out_.append('"');
    }

private:
    void separate() {
        if (!std::exchange(first_, false)) {
            out_.append(", ");
        }
    }

    void begin(char bracket) {
        out_.append(bracket);
        first_ = true;
    }

    void end(char bracket) {
        out_.append(bracket);
        first_ = false;
    }

    void member(std::string_view name) {
        separate();
        out_.append('"');
        out_.append(name);
        out_.append("\": ");
    }

    void string(const SvxString& value) {
        out_.append('"');
        value.visit([this](auto units) { appendUnits(units); });
        out_.append('"');
    }

    void appendUnits(std::string_view narrow) {
        std::size_t start = 0;
        for (std::size_t i = 0; i < narrow.size(); ++i) {
            if (!standsForItself(unitOf(narrow[i]))) {
                out_.append(narrow.substr(start, i - start));
                appendCharacter(unitOf(narrow[i]));
                start = i + 1;
            }
        }
        out_.append(narrow.substr(start));
    }

    void appendUnits(std::u16string_view wide) {
        forEachCharacter(wide, [this](CodePoint character) {
            appendCharacter(character);
            return true;
        });
    }

    void appendCharacter(CodePoint character) {
        if (standsForItself(character)) {
            out_.append(static_cast<char>(character));
        } else if (character >= 0xA0 && !isSurrogate(character)) {
            out_.append(encodeUtf8(character).view());
        } else if (character == '"' || character == '\\') {
            out_.append('\\');
            out_.append(static_cast<char>(character));
        } else { // a control of C0 or C1, delete, or a lone surrogate
            appendUnicodeEscape(character);
        }
    }

    void appendUnicodeEscape(CodePoint character) {
        constexpr std::string_view hexDigits = "0123456789abcdef";
        out_.append("\\u");
        for (const unsigned shift : {12U, 8U, 4U, 0U}) {
            out_.append(hexDigits[(static_cast<unsigned>(character) >> shift) & 0xFU]);
        }
    }

    OutputBuffer& out_;
    bool first_ = true;
};

void appendRecord(JsonWriter& json, const audioTags& record) {
    json.beginObject("record");
    json.number("mp3SongLen", record.mp3SongLen);
    json.number("mp3BitRate", record.mp3BitRate);
    json.number("mp3SamplingRate", record.mp3SamplingRate);
    json.number("mp3ChannelMode", record.mp3ChannelMode);
    json.number("mp3Version", record.mp3Version);
    json.number("mp3Layer", record.mp3Layer);
    json.number("mp3HasCRC", record.mp3HasCRC);
    json.number("mp3HasVBR", record.mp3HasVBR);
    json.number("mp3TagVersion", record.mp3TagVersion);
    json.number("mp3Genre", record.mp3Genre);
    json.number("mp3Year", record.mp3Year);
    json.number("mp3TheTrack", record.mp3TheTrack);
    json.number("mp3TrackAmount", record.mp3TrackAmount);
    json.text("mp3SongTitleString", record.mp3SongTitleString);
    json.text("mp3ArtistString", record.mp3ArtistString);
    json.text("mp3AlbumString", record.mp3AlbumString);
    json.text("mp3ComposerString", record.mp3ComposerString);
    json.text("mp3CommentString", record.mp3CommentString);
    json.text("mp3Genre2String", record.mp3Genre2String);
    json.text("mp3LyricsString", record.mp3LyricsString);
    json.text("mp3EncoderAppString", record.mp3EncoderAppString);
    if (record.mp3CoverArtPlace.size != 0) {
        json.number("mp3CoverArt", record.mp3CoverArtPlace.size);
    } else {
        json.null("mp3CoverArt");
    }
    json.text("mp3CoverArtType", fourCharacterText(record.mp3CoverArtType));
    json.endObject();
}

void appendPanel(JsonWriter& json, const ShownFile& file) {
    const audioTags cleared;
    const audioTags& shown = file.isRead() ? file.record : cleared;
    json.beginObject("panel");
    json.shownText("windowTitle", panelWindowTitle(file.path));
    json.shownText("fileNameField", feLastPathComponent(file.path));
    json.shownText("fileSizeField", panelFileSize(file.attributes));
    for (const PanelFact* fact : panelFactsInJson()) {
        json.shownText(fact->name, file.isRead() ? fact->text(file.record, nullptr) : nullptr);
    }
    json.text("lyricsText", panelLyrics(shown));
    json.boolean("lyricsButton", hasLyrics(shown));
    // The menus and the Twitter button go by what the record holds, also after a failed read.
    json.boolean("twitterButton", canTellTwitter(file.record));
    json.beginArray("renamePopup");
    for (const RenamePattern pattern : renamePatterns(file.record)) {
        json.element(renameEntryTitle(pattern, file.record, file.type));
    }
    json.endArray();
    json.beginArray("findInShelvixPopup");
    for (const FindKey key : findKeys(file.record)) {
        json.element(findEntryParts(key, file.record));
    }
    json.endArray();
    json.endObject();
}

} // namespace

void appendJson(OutputBuffer& out, const ShownFile& file) {
    JsonWriter json(out);
    json.beginObject();
    json.text("path", file.path);
    json.number("type", file.type);
    json.number("result", file.result);
    appendRecord(json, file.record);
    appendPanel(json, file);
    json.endObject();
    out.append('\n');
}

} // namespace sonarin
