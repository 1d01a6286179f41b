// SPDX-License-Identifier: MIT
#include "cli/jsonOutput.h"

#include "app/findMenu.h"
#include "app/panelTexts.h"
#include "app/renameMenu.h"
#include "engine/fileEngine.h"
#include "text/byteLanes.h"
#include "text/stringEngine.h"
#include "text/unicodeForms.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>
#include <utility>

namespace sonarin {

namespace {

/// The units below 0x100 that need no escape and are the same in UTF-8.
constexpr std::array<bool, 0x100> plainUnits = [] {
    std::array<bool, 0x100> plain{};
    for (std::size_t unit = ' '; unit <= '~'; ++unit) {
        plain.at(unit) = unit != '"' && unit != '\\';
    }
    return plain;
}();

constexpr bool standsForItself(char16_t unit) {
    return unit < plainUnits.size() && plainUnits[unit];
}

/// Copies as many bytes as there are lanes; false when any of them does not stand for itself.
bool copyPlainLanes(const char* from, char* out) {
    const ByteLanes lanes = loadLanes(from);
    std::memcpy(out, &lanes, sizeof lanes);
    return !anyLane((lanes - ' ' > '~' - ' ') | (lanes == '"') | (lanes == '\\'));
}

/// Copies units that stand for themselves up to the first that does not, or to the end; answers their number.
std::size_t copyPlain(std::string_view narrow, char* out) {
    constexpr std::size_t step = sizeof(ByteLanes);
    std::size_t run = 0;
    while (narrow.size() - run >= step && copyPlainLanes(narrow.data() + run, out + run)) {
        run += step;
    }
    // The rest, which as a rule has nothing to escape either, together with what is done already.
    if (run > 0 && narrow.size() - run < step &&
        copyPlainLanes(narrow.data() + narrow.size() - step, out + narrow.size() - step)) {
        return narrow.size();
    }
    for (; run < narrow.size() && standsForItself(unitOf(narrow[run])); ++run) {
        out[run] = narrow[run];
    }
    return run;
}

std::size_t copyPlain(std::u16string_view wide, char* out) {
    if (!standsForItself(wide.front())) {
        return 0; // the usual case where the script is not Latin
    }
    std::size_t run = 0;
    for (; run < wide.size() && standsForItself(wide[run]); ++run) {
        out[run] = static_cast<char>(wide[run]);
    }
    return run;
}

/// Writes a character that does not stand for itself as one byte; answers the place behind it.
char* writeSpecial(CodePoint character, char* out) {
    if (character >= 0xA0 && !isSurrogate(character)) {
        return encodeUtf8(character, out);
    }
    if (character == '"' || character == '\\') {
        *out++ = '\\';
        *out++ = static_cast<char>(character);
        return out;
    }
    // A control of C0 or C1, delete, or a lone surrogate.
    constexpr std::string_view hexDigits = "0123456789abcdef";
    *out++ = '\\';
    *out++ = 'u';
    for (const unsigned shift : {12U, 8U, 4U, 0U}) {
        *out++ = hexDigits[(static_cast<unsigned>(character) >> shift) & 0xFU];
    }
    return out;
}

/// A member's name as it stands in the line behind another member, made when the program is compiled.
template <std::size_t Size>
struct MemberName {
    std::array<char, Size + 5> characters{};

    consteval MemberName(const char (&name)[Size]) { // NOLINT(*-avoid-c-arrays,*-explicit-*): reads as a text
        std::copy_n(", \"", 3, characters.begin());
        std::copy_n(std::begin(name), Size - 1, characters.begin() + 3);
        std::copy_n("\": ", 3, characters.begin() + 2 + Size);
    }

    [[nodiscard]] constexpr std::string_view view() const { return {characters.data(), characters.size()}; }
    [[nodiscard]] constexpr std::string_view viewOfFirst() const { return view().substr(2); }
};

class JsonWriter {
public:
    explicit JsonWriter(OutputBuffer& out) : out_(out) {}

    void beginObject() { begin('{'); }
    template <MemberName name>
    void beginObject() {
        member<name>();
        begin('{');
    }
    void endObject() { end('}'); }

    template <MemberName name>
    void beginArray() {
        member<name>();
        begin('[');
    }
    void endArray() { end(']'); }

    template <MemberName name>
    void number(std::int64_t value) {
        member<name>();
        out_.appendNumber(value);
    }

    template <MemberName name>
    void boolean(bool value) {
        member<name>();
        out_.append(value ? "true" : "false");
    }

    template <MemberName name>
    void null() {
        member<name>();
        out_.append("null");
    }

    /// An absent text is null.
    template <MemberName name>
    void text(const SvxStringRef& value) {
        member<name>();
        value ? string(*value) : out_.append("null");
    }

    /// An absent text is what a text field shows for it: "".
    template <MemberName name>
    void shownText(const SvxStringRef& value) {
        member<name>();
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

    template <MemberName name>
    void member() {
        out_.append(first_ ? name.viewOfFirst() : name.view());
        first_ = false;
    }

    void string(const SvxString& value) {
        out_.append('"');
        value.visit([this](auto units) { appendUnits(units); });
        out_.append('"');
    }

    template <class Units>
    void appendUnits(Units units) {
        while (!units.empty()) {
            units.remove_prefix(piece(units));
        }
    }

    /// Appends as much of a text as the buffer is sure to have room for; answers how many units that were.
    template <class Units>
    std::size_t piece(Units units) {
        constexpr std::size_t longestEscape = 6;
        const Units some = units.substr(0, OutputBuffer::largestRoom / longestEscape);
        char* out = out_.room(some.size() * longestEscape);
        std::size_t done = 0;
        while (done < some.size()) {
            const std::size_t run = copyPlain(some.substr(done), out);
            done += run;
            out += run;
            if (done < some.size()) {
                out = writeSpecial(decodeUtf16(units, &done), out); // may take one unit more than `some` has
            }
        }
        out_.take(out);
        return done;
    }

    OutputBuffer& out_;
    bool first_ = true;
};

void appendRecord(JsonWriter& json, const audioTags& record) {
    json.beginObject<"record">();
    json.number<"mp3SongLen">(record.mp3SongLen);
    json.number<"mp3BitRate">(record.mp3BitRate);
    json.number<"mp3SamplingRate">(record.mp3SamplingRate);
    json.number<"mp3ChannelMode">(record.mp3ChannelMode);
    json.number<"mp3Version">(record.mp3Version);
    json.number<"mp3Layer">(record.mp3Layer);
    json.number<"mp3HasCRC">(record.mp3HasCRC);
    json.number<"mp3HasVBR">(record.mp3HasVBR);
    json.number<"mp3TagVersion">(record.mp3TagVersion);
    json.number<"mp3Genre">(record.mp3Genre);
    json.number<"mp3Year">(record.mp3Year);
    json.number<"mp3TheTrack">(record.mp3TheTrack);
    json.number<"mp3TrackAmount">(record.mp3TrackAmount);
    json.text<"mp3SongTitleString">(record.mp3SongTitleString);
    json.text<"mp3ArtistString">(record.mp3ArtistString);
    json.text<"mp3AlbumString">(record.mp3AlbumString);
    json.text<"mp3ComposerString">(record.mp3ComposerString);
    json.text<"mp3CommentString">(record.mp3CommentString);
    json.text<"mp3Genre2String">(record.mp3Genre2String);
    json.text<"mp3LyricsString">(record.mp3LyricsString);
    json.text<"mp3EncoderAppString">(record.mp3EncoderAppString);
    if (record.mp3CoverArtPlace.size != 0) {
        json.number<"mp3CoverArt">(record.mp3CoverArtPlace.size);
    } else {
        json.null<"mp3CoverArt">();
    }
    json.text<"mp3CoverArtType">(fourCharacterText(record.mp3CoverArtType));
    json.endObject();
}

void appendFacts(JsonWriter& json, const PanelFacts& facts) {
    json.shownText<"id3DurationField">(facts.id3DurationField);
    json.shownText<"id3BitrateEtcField">(facts.id3BitrateEtcField);
    json.shownText<"id3SongTitleField">(facts.id3SongTitleField);
    json.shownText<"id3ArtistField">(facts.id3ArtistField);
    json.shownText<"id3AlbumField">(facts.id3AlbumField);
    json.shownText<"id3YearField">(facts.id3YearField);
    json.shownText<"id3ComposerField">(facts.id3ComposerField);
    json.shownText<"id3EncoderAppField">(facts.id3EncoderAppField);
    json.shownText<"id3GenreField">(facts.id3GenreField);
    json.shownText<"id3CommentField">(facts.id3CommentField);
    json.shownText<"id3TrackNumberField">(facts.id3TrackNumberField);
    json.shownText<"id3ChannelsField">(facts.id3ChannelsField);
    json.shownText<"id3TagVersionField">(facts.id3TagVersionField);
}

void appendPanel(JsonWriter& json, const ShownFile& file) {
    const audioTags cleared;
    const audioTags& shown = file.isRead() ? file.record : cleared;
    json.beginObject<"panel">();
    json.shownText<"windowTitle">(panelWindowTitle(file.path));
    json.shownText<"fileNameField">(feLastPathComponent(file.path));
    json.shownText<"fileSizeField">(panelFileSize(file.attributes));
    appendFacts(json, file.isRead() ? panelFacts(file.record) : PanelFacts());
    json.text<"lyricsText">(panelLyrics(shown));
    json.boolean<"lyricsButton">(hasLyrics(shown));
    // The menus and the Twitter button go by what the record holds, also after a failed read.
    json.boolean<"twitterButton">(canTellTwitter(file.record));
    json.beginArray<"renamePopup">();
    for (const RenamePattern pattern : renamePatterns(file.record)) {
        json.element(renameEntryTitle(pattern, file.record, file.type));
    }
    json.endArray();
    json.beginArray<"findInShelvixPopup">();
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
    json.text<"path">(file.path);
    json.number<"type">(file.type);
    json.number<"result">(file.result);
    appendRecord(json, file.record);
    appendPanel(json, file);
    json.endObject();
    out.append('\n');
}

} // namespace sonarin
