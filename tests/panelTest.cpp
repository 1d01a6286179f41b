// SPDX-License-Identifier: MIT
#include "app/coverFile.h"
#include "app/findMenu.h"
#include "app/panelTexts.h"
#include "app/renameMenu.h"
#include "app/renameOutcome.h"
#include "app/textOutput.h"
#include "cli/jsonOutput.h"
#include "tests/support/readBytes.h"

#include <cerrno>
#include <regex>
#include <tuple>
#include <utility>
#include <vector>

namespace sonarin {

namespace {

/// Length, bit rate, whether that varies, sampling rate, channel mode, tag version, year, track, tracks,
/// size of the cover.
using FactNumbers = std::tuple<int, int, int, int, int, int, int, int, int, std::size_t>;

audioTags recordOf(const FactNumbers& numbers) {
    audioTags record;
    std::tie(record.mp3SongLen, record.mp3BitRate, record.mp3HasVBR, record.mp3SamplingRate,
             record.mp3ChannelMode, record.mp3TagVersion, record.mp3Year, record.mp3TheTrack,
             record.mp3TrackAmount, std::ignore) = numbers;
    record.mp3CoverArt = ByteBlock::allocate(std::get<9>(numbers));
    return record;
}

audioTags fullRecord() {
    audioTags record = recordOf({61, 128, 0, 44100, 1, 4, 1999, 3, 12, 0});
    record.mp3Version = 3;
    record.mp3Layer = 1;
    record.mp3HasCRC = 1;
    record.mp3Genre = 17;
    record.mp3SongTitleString = text("Title");
    record.mp3ArtistString = text("Artist");
    record.mp3AlbumString = text("AC/DC & \"Co\"");
    record.mp3ComposerString = text("Bach");
    record.mp3CommentString = text("one\ntwo");
    record.mp3Genre2String = text("Rock");
    record.mp3LyricsString = text("la");
    record.mp3EncoderAppString = text("LAME");
    record.mp3CoverArtPlace = {100, 5000};
    record.mp3CoverArtType = 0x4A504547;
    return record;
}

std::string asText(const audioTags* record, bool inColour = false) {
    StringSink unused;
    OutputBuffer out(unused);
    appendText(out, text("/a/b.mp3"), {true, 2048}, record, inColour);
    return std::string(out.takeAll());
}

std::string asJson(audioTags record, std::int32_t result) {
    StringSink unused;
    OutputBuffer out(unused);
    appendJson(out, {text("/a/b.mp3"), {true, 2048}, amdTypeMP3, result, std::move(record)});
    return std::string(out.takeAll());
}

TEST(Panel, SaysEachFact) {
    startUpIn("C");
    for (const auto& [numbers, expected] : std::vector<std::pair<FactNumbers, std::string>>{
             {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, "Duration:0:00|Channels:Stereo|Tag:|"},
             {{3600, 128, 0, 44100, 1, 1, 1999, 3, 12, 5},
              "Duration:60:00|Bit rate:128 kbps  44.1 kHz|Channels: Joint Stereo|Tag:ID3v1|"
              "Cover:0 x 0, 5 bytes|Track:3 of 12|Year:1999|"},
             {{0, 192, 1, 44100, 2, 2, 0, 3, 0, 0},
              "Duration:0:00|Bit rate:192 kbps (VBR)  44.1 kHz|Channels:Dual Mono|Tag:ID3v2|Track:3|"},
             {{0, 128, 0, 0, 3, 3, 0, 0, 12, 0},
              "Duration:0:00|Bit rate:128 kbps  |Channels:Mono|Tag:ID3v3|"},
             {{0, 0, 1, 48000, 4, 0, 0, 0, 0, 0}, "Duration:0:00|Bit rate:48.0 kHz|Tag:|"}}) {
        std::string facts;
        for (const PanelFact& fact : panelFacts()) {
            if (const SvxStringRef value = fact.text(recordOf(numbers), nullptr)) {
                facts.append(fact.label).append(":" + plain(value) + "|");
            }
        }
        EXPECT_EQ(facts, expected);
    }
    std::string captions; // and what has none
    for (const PanelFact& fact : panelFacts()) {
        captions.append(fact.label).append(fact.hasCaption ? ":" : "=");
    }
    EXPECT_EQ(captions,
              "Title=Artist=Album=Duration:Bit rate:Channels:Tag:Cover:Track:Year:Genre:Composer:Encoder:"
              "Comment:");
}

TEST(Panel, KnowsPicturesByTheirBytes) {
    using sample::bytes;
    const auto extension = [](const std::string& picture) {
        return std::string(pictureExtension(viewOf(picture)));
    };
    expectRows(extension, {"\xFF\xD8\xFF -> jpg", "\x89PNG\r\n\x1A\n -> png", "GIF89a -> gif", "BM -> bmp",
                           "RIFFsizeWEBP -> webp", "RIFFsizeWAVE -> bin", bytes("II*\0 -> tiff"),
                           bytes("MM\0* -> tiff"), "sizeftypavif -> avif", "B -> bin", " -> bin"});
}

TEST(Panel, StandsInText) {
    startUpIn("C");
    audioTags record = fullRecord();
    EXPECT_EQ(
        asText(&record),
        "Name      b.mp3\nSize      2.0 KB\nTitle     Title\nArtist    Artist\nAlbum     AC/DC & \"Co\"\n"
        "Track     3 of 12\nYear      1999\nGenre     Rock\nComposer  Bach\nComment   one\\ntwo\n"
        "Duration  1:01\nBit rate  128 kbps  44.1 kHz\nChannels   Joint Stereo\nEncoder   LAME\n"
        "Tag       ID3v4\nCover     JPEG, 5000 bytes\nLyrics    la\n");
    record.mp3CoverArtType = 0;
    EXPECT_NE(asText(&record).find("Cover     5000 bytes\n"), std::string::npos);
    record.mp3CoverArtPlace = {};
    EXPECT_EQ(asText(&record).find("Cover"), std::string::npos);
    EXPECT_EQ(plain(withoutTerminators(text(std::string(2, '\0')))), "");
    EXPECT_EQ(asText(nullptr, true), "\x1b[36mName\x1b[0m      b.mp3\n\x1b[36mSize\x1b[0m      2.0 KB\n");
}

TEST(Panel, StandsInJson) {
    startUpIn("C");
    EXPECT_EQ(
        asJson(fullRecord(), 0),
        R"({"path": "/a/b.mp3", "type": 1, "result": 0, "record": {"mp3SongLen": 61, "mp3BitRate": 128, )"
        R"("mp3SamplingRate": 44100, "mp3ChannelMode": 1, "mp3Version": 3, "mp3Layer": 1, "mp3HasCRC": 1, )"
        R"("mp3HasVBR": 0, "mp3TagVersion": 4, "mp3Genre": 17, "mp3Year": 1999, "mp3TheTrack": 3, )"
        R"("mp3TrackAmount": 12, "mp3SongTitleString": "Title", "mp3ArtistString": "Artist", )"
        R"("mp3AlbumString": "AC/DC & \"Co\"", "mp3ComposerString": "Bach", )"
        R"("mp3CommentString": "one\u000atwo", "mp3Genre2String": "Rock", "mp3LyricsString": "la", )"
        R"("mp3EncoderAppString": "LAME", "mp3CoverArt": 5000, "mp3CoverArtType": "JPEG"}, )"
        R"("panel": {"windowTitle": "Sonarin - b.mp3", "fileNameField": "b.mp3", "fileSizeField": "2.0 KB", )"
        R"("id3DurationField": "1:01", "id3BitrateEtcField": "128 kbps  44.1 kHz", )"
        R"("id3SongTitleField": "Title", "id3ArtistField": "Artist", "id3AlbumField": "AC/DC & \"Co\"", )"
        R"("id3YearField": "1999", "id3ComposerField": "Bach", "id3EncoderAppField": "LAME", )"
        R"("id3GenreField": "Rock", "id3CommentField": "one\u000atwo", "id3TrackNumberField": "3 of 12", )"
        R"("id3ChannelsField": " Joint Stereo", "id3TagVersionField": "ID3v4", "lyricsText": "la", )"
        R"("lyricsButton": true, "twitterButton": true, "renamePopup": ["Rename to:   Title.mp3", )"
        R"("Rename to:   03 - Title.mp3", "Rename to:   Artist - Title.mp3", )"
        R"("Rename to:   Artist - AC/DC & \"Co\" - Title.mp3"], "findInShelvixPopup": )"
        R"(["Find all songs \"Title\" in Shelvix", "Find all songs of album \"AC/DC & \"Co\"\" in Shelvix", )"
        R"("Find all songs of artist \"Artist\" in Shelvix", "Find all songs of 1999 in Shelvix", )"
        R"("Find all songs of genre \"Rock\" in Shelvix", "Find all songs of composer \"Bach\" in Shelvix"]}})"
        "\n");
    // A reader that failed keeps what it found; the panel shows none of it but in its menus.
    audioTags titled;
    titled.mp3SongTitleString = text("T");
    const std::string failed = asJson(std::move(titled), -1);
    const std::regex without(R"("(mp3\w+": null|id3\w+": ""), )");
    EXPECT_EQ(
        std::regex_replace(failed.substr(failed.find(R"("mp3TheTrack")")), without, ""),
        R"("mp3TheTrack": 0, "mp3TrackAmount": 0, "mp3SongTitleString": "T", "mp3CoverArtType": null}, )"
        R"("panel": {"windowTitle": "Sonarin - b.mp3", "fileNameField": "b.mp3", "fileSizeField": "2.0 KB", )"
        R"("lyricsText": " ", "lyricsButton": false, "twitterButton": false, )"
        R"("renamePopup": ["Rename to:   T.mp3"], "findInShelvixPopup": ["Find all songs \"T\" in Shelvix"]}})"
        "\n");
}

TEST(Panel, EscapesWhatOutputsCannotHold) {
    using namespace std::string_literals;
    for (const auto& [title, json, inText] :
         std::vector<std::tuple<std::u16string, std::string, std::string>>{
             {u"\"\\/ ~", R"(\"\\/ ~)", R"("\/ ~)"},
             {u"a\0\x1B\x1F\x7F\x9F\n\r\t\xA0z"s,
              R"(a\u0000\u001b\u001f\u007f\u009f\u000a\u000d\u0009)"
              "\u00A0z",
              "a\\x00\\x1B\\x1F\\x7F\\x9F\\n\\r\\t\u00A0z"},
             {u"\U0001F3B5\u2027\u2028\u202E\u202F", "\U0001F3B5\u2027\u2028\u202E\u202F",
              "\U0001F3B5\u2027\\u{2028}\\u{202E}\u202F"},
             {u"\u061B\u061C\u200D\u200E\u200F\u2065\u2066\u2069\u206A",
              "\u061B\u061C\u200D\u200E\u200F\u2065\u2066\u2069\u206A",
              "\u061B\\u{061C}\u200D\\u{200E}\\u{200F}\u2065\\u{2066}\\u{2069}\u206A"},
             {{0xD800, 'A', 0xDC00}, R"(\ud800A\udc00)", "\uFFFDA\uFFFD"},
             {u"ab\0\0"s, R"(ab\u0000\u0000)", "ab"}, // a terminator is not shown
         }) {
        audioTags record;
        record.mp3SongTitleString = SvxStringFromUTF16(title);
        EXPECT_NE(asText(&record).find("\nTitle     " + inText + '\n'), std::string::npos) << inText;
        const std::string member = "\"id3SongTitleField\": \"" + json + "\", \"id3ArtistField";
        EXPECT_NE(asJson(std::move(record), 0).find(member), std::string::npos) << json;
    }
}

TEST(Panel, OffersNamesAndSearches) {
    using Case =
        std::tuple<std::uint16_t, SvxStringRef, SvxStringRef, SvxStringRef, std::int32_t, std::string, bool>;
    for (const auto& [track, title, artist, album, type, names, canTell] :
         {Case{10, text("T"), text("A"), nullptr, amdTypeM4P, "T.m4p|10 - T.m4p|A - T.m4p|", true},
          {9, text("T"), nullptr, text("L"), amdTypeAIFF, "T.aiff|09 - T.aiff|", false},
          {0, text("T"), nullptr, text("L"), amdTypeWAVE, "T.|", false},
          {0, text(""), nullptr, nullptr, amdTypeM4A, ".m4a|", false}, // empty counts as present
          {3, nullptr, text("A"), text("L"), amdTypeMP3, "", false}}) {
        audioTags record;
        record.mp3TheTrack = track;
        record.mp3SongTitleString = title;
        record.mp3ArtistString = artist;
        record.mp3AlbumString = album;
        const auto name = [&record, type = type](RenamePattern pattern) {
            return renameFileName(pattern, record, type);
        };
        EXPECT_EQ(joined(renamePatterns(record), name), names);
        EXPECT_EQ(canTellTwitter(record), canTell) << names;
    }
    EXPECT_EQ(plain(findEntryTitle(FindKey::year, fullRecord())), "Find all songs of 1999 in Shelvix");
    EXPECT_TRUE(findKeys({}).empty());
    EXPECT_EQ(plain(findUrl(FindKey::year, fullRecord())), "shelvix://find/audio/&year=1999");
    EXPECT_EQ(plain(findUrl(FindKey::album, fullRecord())),
              "shelvix://find/audio/&album=AC%2FDC%20%26%20%22Co%22");
}

TEST(Panel, SaysWhyAFileWasNotRenamed) {
    for (const auto& [error, name, said] :
         {std::tuple(EINVAL, "a/b", "a name cannot hold a slash"),
          {EINVAL, "..", "no file can have that name"},
          {ESHUTDOWN, "x", "Cannot send after transport endpoint shutdown"}}) { // its number is 108
        EXPECT_EQ(renameOutcome(feHostError(error), text(name)), std::string("Not renamed: ") + said);
    }
}

} // namespace

} // namespace sonarin
