// SPDX-License-Identifier: MIT
#include "app/findMenu.h"
#include "app/panelTexts.h"
#include "app/renameMenu.h"
#include "app/textOutput.h"
#include "cli/jsonOutput.h"
#include "tests/support/testFolder.h"
#include "text/stringEngine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace sonarin {

namespace {

audioTags fullRecord() {
    audioTags record;
    record.mp3SongLen = 61;
    record.mp3BitRate = 128;
    record.mp3SamplingRate = 44100;
    record.mp3ChannelMode = 1;
    record.mp3Version = 3;
    record.mp3Layer = 1;
    record.mp3HasCRC = 1;
    record.mp3TagVersion = 4;
    record.mp3Genre = 17;
    record.mp3Year = 1999;
    record.mp3TheTrack = 3;
    record.mp3TrackAmount = 12;
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

/// What `append` appends.
template <class Append>
std::string appended(Append append) {
    StringSink sink;
    OutputBuffer out(sink);
    append(out);
    out.flush();
    return sink.text;
}

std::string asText(const audioTags* record, bool inColour = false) {
    return appended([&](OutputBuffer& out) {
        appendText(out, text("/a/b.mp3"), {true, 2048}, record, inColour);
    });
}

std::string asJson(audioTags record, std::int32_t result) {
    return appended([&](OutputBuffer& out) {
        appendJson(out, {text("/a/b.mp3"), {true, 2048}, amdTypeMP3, result, std::move(record)});
    });
}

audioTags titled(const char* title) {
    audioTags record;
    record.mp3SongTitleString = text(title);
    return record;
}

TEST(Panel, SaysEachFact) {
    startUpIn("C");
    struct Case {
        std::string_view fact;
        void (*set)(audioTags& record);
        const char* expected;
    };
    constexpr auto nothing = [](audioTags& /*record*/) {};
    for (const Case& c : std::initializer_list<Case>{
             {"id3BitrateEtcField", [](auto& r) { r.mp3BitRate = 128, r.mp3SamplingRate = 44100; },
              "128 kbps  44.1 kHz"},
             {"id3BitrateEtcField",
              [](auto& r) { r.mp3BitRate = 192, r.mp3HasVBR = 1, r.mp3SamplingRate = 44100; },
              "192 kbps (VBR)  44.1 kHz"},
             {"id3BitrateEtcField", [](auto& r) { r.mp3BitRate = 128; }, "128 kbps  "},
             {"id3BitrateEtcField", [](auto& r) { r.mp3HasVBR = 1, r.mp3SamplingRate = 48000; }, "48.0 kHz"},
             {"id3BitrateEtcField", nothing, "(absent)"},
             {"id3TrackNumberField", [](auto& r) { r.mp3TheTrack = 3, r.mp3TrackAmount = 12; }, "3 of 12"},
             {"id3TrackNumberField", [](auto& r) { r.mp3TheTrack = 3; }, "3"},
             {"id3TrackNumberField", [](auto& r) { r.mp3TrackAmount = 12; }, "(absent)"},
             {"id3YearField", [](auto& r) { r.mp3Year = 1999; }, "1999"},
             {"id3YearField", nothing, "(absent)"},
             {"id3DurationField", [](auto& r) { r.mp3SongLen = 3600; }, "60:00"},
             {"id3DurationField", nothing, "0:00"},
             {"id3ChannelsField", nothing, "Stereo"},
             {"id3ChannelsField", [](auto& r) { r.mp3ChannelMode = 1; }, " Joint Stereo"},
             {"id3ChannelsField", [](auto& r) { r.mp3ChannelMode = 2; }, "Dual Mono"},
             {"id3ChannelsField", [](auto& r) { r.mp3ChannelMode = 3; }, "Mono"},
             {"id3ChannelsField", [](auto& r) { r.mp3ChannelMode = 4; }, "(absent)"},
             {"id3TagVersionField", nothing, ""},
             {"id3TagVersionField", [](auto& r) { r.mp3TagVersion = 1; }, "ID3v1"},
             {"id3TagVersionField", [](auto& r) { r.mp3TagVersion = 2; }, "ID3v2"},
             {"id3TagVersionField", [](auto& r) { r.mp3TagVersion = 3; }, "ID3v3"},
             {"coverArtDetailsField", nothing, "(absent)"},
             {"coverArtDetailsField", [](auto& r) { r.mp3CoverArt = ByteBlock::allocate(5); },
              "0 x 0, 5 bytes"}}) { // nobody here decodes it
        audioTags record;
        c.set(record);
        const auto facts = panelFacts();
        const auto fact = std::ranges::find(facts, c.fact, &PanelFact::name);
        ASSERT_NE(fact, facts.end()) << c.fact;
        EXPECT_EQ(plain(fact->text(record, nullptr)), c.expected) << c.fact;
    }
}

TEST(Panel, StandsInText) {
    startUpIn("C");
    audioTags record = fullRecord();
    const std::string expected = "Name      b.mp3\n"
                                 "Size      2.0 KB\n"
                                 "Title     Title\n"
                                 "Artist    Artist\n"
                                 "Album     AC/DC & \"Co\"\n"
                                 "Track     3 of 12\n"
                                 "Year      1999\n"
                                 "Genre     Rock\n"
                                 "Composer  Bach\n"
                                 "Comment   one\\ntwo\n"
                                 "Duration  1:01\n"
                                 "Bit rate  128 kbps  44.1 kHz\n"
                                 "Channels   Joint Stereo\n"
                                 "Encoder   LAME\n"
                                 "Tag       ID3v4\n"
                                 "Cover     JPEG, 5000 bytes\n"
                                 "Lyrics    la\n";
    EXPECT_EQ(asText(&record), expected);
    record.mp3CoverArtType = 0;
    EXPECT_NE(asText(&record).find("Cover     5000 bytes\n"), std::string::npos);
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
    const std::string failed = asJson(titled("T"), -1);
    EXPECT_EQ(
        failed.substr(failed.find(R"("mp3TrackAmount")")),
        R"("mp3TrackAmount": 0, "mp3SongTitleString": "T", "mp3ArtistString": null, )"
        R"("mp3AlbumString": null, "mp3ComposerString": null, "mp3CommentString": null, )"
        R"("mp3Genre2String": null, "mp3LyricsString": null, "mp3EncoderAppString": null, )"
        R"("mp3CoverArt": null, "mp3CoverArtType": null}, "panel": {"windowTitle": "Sonarin - b.mp3", )"
        R"("fileNameField": "b.mp3", "fileSizeField": "2.0 KB", "id3DurationField": "", )"
        R"("id3BitrateEtcField": "", "id3SongTitleField": "", "id3ArtistField": "", "id3AlbumField": "", )"
        R"("id3YearField": "", "id3ComposerField": "", "id3EncoderAppField": "", "id3GenreField": "", )"
        R"("id3CommentField": "", "id3TrackNumberField": "", "id3ChannelsField": "", )"
        R"("id3TagVersionField": "", "lyricsText": " ", "lyricsButton": false, "twitterButton": false, )"
        R"("renamePopup": ["Rename to:   T.mp3"], "findInShelvixPopup": ["Find all songs \"T\" in Shelvix"]}})"
        "\n");
}

TEST(Panel, EscapesWhatOutputsCannotHold) {
    struct Case {
        std::u16string title;
        const char* json;
        const char* inText;
    };
    using namespace std::string_literals;
    for (const Case& c : std::vector<Case>{
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
        record.mp3SongTitleString = SvxStringFromUTF16(c.title);
        EXPECT_NE(asText(&record).find("\nTitle     "s + c.inText + '\n'), std::string::npos) << c.inText;
        EXPECT_NE(asJson(std::move(record), 0).find("\"id3SongTitleField\": \""s + c.json + "\", \"id3Ar"),
                  std::string::npos)
            << c.json;
    }
}

TEST(Panel, OffersNamesAndSearches) {
    startUpIn("C");
    audioTags manyTracks = fullRecord();
    manyTracks.mp3TheTrack = 10;
    manyTracks.mp3AlbumString = nullptr;
    audioTags noArtist = fullRecord();
    noArtist.mp3TheTrack = 0;
    noArtist.mp3ArtistString = nullptr;
    audioTags noTitle = fullRecord();
    noTitle.mp3SongTitleString = nullptr;
    const audioTags emptyTitle = titled("");
    using Names = std::vector<std::string>;
    struct Case {
        const audioTags& record;
        std::int32_t type;
        Names names;
    };
    for (const Case& c :
         std::vector<Case>{{manyTracks, amdTypeM4P, {"Title.m4p", "10 - Title.m4p", "Artist - Title.m4p"}},
                           {noArtist, amdTypeAIFF, {"Title.aiff"}},
                           {noArtist, amdTypeWAVE, {"Title."}},
                           {emptyTitle, amdTypeM4A, {".m4a"}}, // empty counts as present
                           {noTitle, amdTypeMP3, {}}}) {
        Names names;
        for (const RenamePattern pattern : renamePatterns(c.record)) {
            names.push_back(plain(renameFileName(pattern, c.record, c.type)));
        }
        EXPECT_EQ(names, c.names);
    }
    EXPECT_FALSE(canTellTwitter(noTitle) || canTellTwitter(noArtist));
    EXPECT_EQ(plain(findEntryTitle(FindKey::year, noTitle)), "Find all songs of 1999 in Shelvix");
    EXPECT_TRUE(findKeys({}).empty());
}

} // namespace

} // namespace sonarin
