// SPDX-License-Identifier: MIT
#include "app/findMenu.h"
#include "app/panelTexts.h"
#include "app/renameMenu.h"
#include "app/shownFile.h"
#include "engine/fileEngine.h"
#include "tests/support/testFolder.h"
#include "text/stringEngine.h"

#include <gtest/gtest.h>

#include <vector>

namespace sonarin {

namespace {

audioTags fullRecord() {
    audioTags record;
    record.mp3SongTitleString = text("Title");
    record.mp3ArtistString = text("Artist");
    record.mp3AlbumString = text("AC/DC & \"Co\"");
    record.mp3Genre2String = text("Rock");
    record.mp3ComposerString = text("Bach");
    record.mp3TheTrack = 3;
    record.mp3Year = 1999;
    return record;
}

std::vector<std::string> renameTitles(const audioTags& record, std::int32_t type) {
    std::vector<std::string> titles;
    for (const RenamePattern pattern : renamePatterns(record)) {
        titles.push_back(plain(renameEntryTitle(pattern, record, type)));
        EXPECT_EQ(titles.back(), "Rename to:   " + plain(renameFileName(pattern, record, type)));
    }
    return titles;
}

std::vector<std::string> findTitles(const audioTags& record) {
    std::vector<std::string> titles;
    for (const FindKey key : findKeys(record)) {
        titles.push_back(plain(findEntryTitle(key, record)));
    }
    return titles;
}

TEST(Panel, ShowsBitRateAndSamplingRate) {
    startUpIn("C");
    struct Case {
        std::uint32_t bitRate, samplingRate;
        std::uint8_t vbr;
        const char* expected;
    };
    for (const Case& c : std::vector<Case>{{128, 44100, 0, "128 kbps  44.1 kHz"},
                                           {192, 44100, 1, "192 kbps (VBR)  44.1 kHz"},
                                           {128, 0, 0, "128 kbps  "},
                                           {0, 48000, 1, "48.0 kHz"},
                                           {0, 0, 0, "(absent)"}}) {
        audioTags record;
        record.mp3BitRate = c.bitRate;
        record.mp3SamplingRate = c.samplingRate;
        record.mp3HasVBR = c.vbr;
        EXPECT_EQ(plain(panelFacts(record).id3BitrateEtcField), c.expected);
    }
}

TEST(Panel, ShowsNumbersOnlyWhenTheyMeanSomething) {
    audioTags record;
    record.mp3TrackAmount = 12;
    PanelFacts facts = panelFacts(record);
    EXPECT_FALSE(facts.id3TrackNumberField);
    EXPECT_FALSE(facts.id3YearField);
    EXPECT_EQ(plain(facts.id3DurationField), "0:00");
    EXPECT_EQ(plain(facts.id3ChannelsField), "Stereo");
    EXPECT_EQ(plain(facts.id3TagVersionField), "");
    EXPECT_EQ(plain(panelLyrics(record)), " ");
    record.mp3TheTrack = 3;
    record.mp3ChannelMode = 1;
    record.mp3TagVersion = 4;
    record.mp3LyricsString = text("la");
    facts = panelFacts(record);
    EXPECT_EQ(plain(facts.id3TrackNumberField), "3 of 12");
    EXPECT_EQ(plain(facts.id3ChannelsField), " Joint Stereo");
    EXPECT_EQ(plain(facts.id3TagVersionField), "ID3v4");
    EXPECT_EQ(plain(panelLyrics(record)), "la");
    record.mp3TrackAmount = 0;
    record.mp3ChannelMode = 4;
    EXPECT_EQ(plain(panelFacts(record).id3TrackNumberField), "3");
    EXPECT_FALSE(panelFacts(record).id3ChannelsField);
    EXPECT_EQ(plain(panelWindowTitle(text("/a/b.mp3"))), "Sonarin - b.mp3");
}

TEST(Panel, OffersNames) {
    using Titles = std::vector<std::string>;
    audioTags record = fullRecord();
    EXPECT_EQ(
        renameTitles(record, amdTypeMP3),
        (Titles{"Rename to:   Title.mp3", "Rename to:   03 - Title.mp3", "Rename to:   Artist - Title.mp3",
                "Rename to:   Artist - AC/DC & \"Co\" - Title.mp3"}));
    record.mp3TheTrack = 100;
    record.mp3AlbumString = nullptr;
    EXPECT_EQ(renameTitles(record, amdTypeM4P),
              (Titles{"Rename to:   Title.m4p", "Rename to:   100 - Title.m4p",
                      "Rename to:   Artist - Title.m4p"}));
    record.mp3TheTrack = 0;
    record.mp3ArtistString = nullptr;
    record.mp3AlbumString = text("Album");
    EXPECT_EQ(renameTitles(record, amdTypeAIFF), Titles{"Rename to:   Title.aiff"});
    EXPECT_EQ(renameTitles(record, amdTypeWAVE), Titles{"Rename to:   Title."});
    record.mp3SongTitleString = text("");
    EXPECT_EQ(renameTitles(record, amdTypeM4A), Titles{"Rename to:   .m4a"}); // empty counts as present
    record = fullRecord();
    record.mp3SongTitleString = nullptr;
    EXPECT_TRUE(renameTitles(record, amdTypeMP3).empty());
    EXPECT_FALSE(canTellTwitter(record));
    EXPECT_TRUE(canTellTwitter(fullRecord()));
}

TEST(Panel, OffersSearches) {
    EXPECT_EQ(findTitles(fullRecord()),
              (std::vector<std::string>{"Find all songs \"Title\" in Shelvix",
                                        "Find all songs of album \"AC/DC & \"Co\"\" in Shelvix",
                                        "Find all songs of artist \"Artist\" in Shelvix",
                                        "Find all songs of 1999 in Shelvix",
                                        "Find all songs of genre \"Rock\" in Shelvix",
                                        "Find all songs of composer \"Bach\" in Shelvix"}));
    EXPECT_TRUE(findTitles({}).empty());
}

} // namespace

} // namespace sonarin
