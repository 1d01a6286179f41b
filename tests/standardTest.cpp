// SPDX-License-Identifier: MIT
// Tags by their standards, where no tagger writes what is to be read; tests/test_standard.py has what they
// do.
#include "app/hiddenTexts.h"
#include "engine/id3genres.h"
#include "engine/id3standard.h"
#include "engine/id3stored.h"
#include "tests/support/readBytes.h"
#include "tests/support/readFile.h"
#include "tests/support/sampleBytes.h"
#include "text/CMMCoreFunctions.h"
#include "text/stringEngine.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>
#include <zlib.h>

namespace sonarin {

namespace {

using sample::bigEndian;
using sample::bytes;
using sample::id3Frame;
using sample::id3Tag;
using sample::utf16;

const std::string mark = "\xFF\xFE";

struct TagResult {
    audioTags record;
    std::uint64_t end = 0;
};

TagResult readTag(const std::string& tag, const std::string& behind = std::string(300, 'z'),
                  std::uint64_t limit = ~std::uint64_t{0}, Pictures pictures = Pictures::load) {
    startUpIn("C");
    OpenBytes file(tag + behind);
    TagResult result;
    result.end = id3ReadTag(&result.record, 0, limit, &file.cache, pictures);
    return result;
}

std::string titleOf(const std::string& tag, std::uint64_t limit = ~std::uint64_t{0}) {
    return plain(readTag(tag, std::string(300, 'z'), limit).record.mp3SongTitleString);
}

/// A frame of version 4, or of version 3 where its size is below 128.
std::string frame(const std::string& id, const std::string& data, std::uint32_t flags = 0) {
    std::string made = id3Frame(id, data);
    for (std::size_t i = 0; i < 4; ++i) {
        made[4 + i] = static_cast<char>((data.size() >> (7 * (3 - i))) & 0x7FU);
    }
    return made.replace(8, 2, bigEndian(flags, 2));
}

std::string compressed(const std::string& data, std::size_t said, bool isVersion4) {
    std::string stored(compressBound(data.size()), '\0');
    uLongf size = stored.size();
    compress(reinterpret_cast<Bytef*>(stored.data()), &size,            // NOLINT(*-reinterpret-cast)
             reinterpret_cast<const Bytef*>(data.data()), data.size()); // NOLINT(*-reinterpret-cast)
    const std::string length =
        isVersion4 ? frame("xxxx", std::string(said, ' ')).substr(4, 4) : bigEndian(said);
    return length + stored.substr(0, size);
}

TEST(ByStandard, DecodesTextsAsTheyAreDeclared) {
    struct Case {
        char version;
        std::string content;
        std::string expected;
    };
    const std::string absent = "(absent)";
    for (const Case& c :
         std::vector<Case>{{3, bytes("\0Caf\xE9\0\0"), "Café"},
                           {3, bytes("\0a\0b"), "a"}, // what stands behind the terminator is to be ignored
                           {4, bytes("\0a\0\0b\0"), "a / b"},
                           {4, bytes("\3Caf\xC3\xA9\0\xC3\xA9"), "Café / é"},
                           {4, "\3\xEF\xBB\xBFx", "x"},
                           {4, "\3Caf\xE9", absent},
                           {4, "\4Text", absent},
                           {4, "", absent},
                           {4, bytes("\0"), absent},
                           {4, "\1" + mark + utf16("A") + bytes("\0\0") + mark + utf16("BC"), "A / BC"},
                           {4, bytes("\1\xFE\xFF\0A\x01\x02"), "AĂ"},
                           {4, "\1" + utf16("A") + "x", "A"}, // without a mark, and half a unit at the end
                           {4, bytes("\2\0A\0\0\0B"), "A / B"},
                           {4, "\2" + mark + utf16("A"), "A"},
                           {3, "\1" + mark + bytes("\0A\0\0") + utf16("B"),
                            "\xE4\x84\x80"}, // no terminator but at a unit's start
                           {3, "\1" + mark, absent}}) {
        EXPECT_EQ(titleOf(id3Tag(frame("TIT2", c.content), 16, c.version)), c.expected)
            << testing::PrintToString(c.content);
    }
    EXPECT_EQ(titleOf(id3Tag(frame("TIT2", bytes("\0A")) + frame("TIT2", bytes("\0B")) +
                             frame("TIT2", bytes("\0A / B")))),
              "A / B");
    EXPECT_EQ(titleOf(id3Tag(id3Frame("TT2", bytes("\0T")), 9, 2)), "T");
    // Longer than the read buffer, its terminator across the boundary.
    for (const std::size_t length : {65536U - 22U, 65536U - 21U, 200001U}) {
        const std::string longText = "\1" + mark + utf16(std::string(length, 'y'));
        EXPECT_TRUE(titleOf(id3Tag(id3Frame("TIT2", longText + bytes("\0\0") + utf16("no")))) ==
                    std::string(length, 'y'));
    }
}

TEST(ByStandard, ChoosesRemarksYearsAndPictures) {
    const std::string described = frame("COMM", bytes("\0engwhat\0described"));
    const std::string itunes = frame("COMM", bytes("\0engiTunNORM\0 0000"));
    const std::string empty = frame("COMM", bytes("\0eng\0"));
    const std::string wide =
        frame("COMM", "\1deu" + mark + bytes("\0\0") + mark + utf16("wide") + bytes("\0\0"));
    const auto comment = [](const std::string& frames) {
        return plain(readTag(id3Tag(frames)).record.mp3CommentString);
    };
    EXPECT_EQ(comment(itunes + described + empty + wide + frame("COMM", bytes("\0eng\0second"))), "wide");
    EXPECT_EQ(comment(described + itunes + frame("COMM", bytes("\0engb\0other"))), "described");
    EXPECT_EQ(comment(itunes + empty + frame("COMM", "\0eng")), "(absent)");
    const TagResult lyrics =
        readTag(id3Tag(frame("USLT", bytes("\0engx\0chorus")) + frame("USLT", bytes("\0eng\0all\0no"))));
    EXPECT_EQ(plain(lyrics.record.mp3LyricsString), "all");

    const auto year = [](const std::string& frames) { return readTag(id3Tag(frames, 16, 4)).record.mp3Year; };
    const std::string old = frame("TYER", bytes("\0001999"));
    const std::string recorded = frame("TDRC", bytes("\0002004-05-06"));
    EXPECT_EQ(year(old + recorded), 2004);
    EXPECT_EQ(year(recorded + old + frame("TDRC", bytes("\0002010"))), 2004);
    for (const std::string none : {"x", "-2004", "20040506"}) {
        EXPECT_EQ(year(old + frame("TDRC", bytes("\0") + none)), 1999);
    }
    const audioTags track = readTag(id3Tag(frame("TRCK", "\3" + bytes("3/12\0009")), 16, 4)).record;
    EXPECT_EQ(std::tuple(track.mp3TheTrack, track.mp3TrackAmount), std::tuple(3, 12));
    EXPECT_EQ(
        readTag(id3Tag(frame("TRCK", bytes("\0003")) + frame("TRCK", "\0117") + frame("TRCK", bytes("\0")),
                       16, 4))
            .record.mp3TheTrack,
        3);

    struct Case {
        std::string frames, picture;
        std::uint32_t type;
    };
    const auto picture = [](char type, const std::string& content, const std::string& mime = "image/x") {
        return frame("APIC", bytes("\0") + mime + '\0' + type + bytes("d\0") + content);
    };
    for (const Case& c : std::vector<Case>{
             {picture(0, "BM1") + picture(3, "\xFF\xD8x") + picture(3, "no"), "\xFF\xD8x", fourCC("JPEG")},
             {picture(4, "\x89PNG") + picture(5, "no"), "\x89PNG", fourCC("PNGf")},
             {picture(3, "") + picture(1, "GIF89"), "GIF89", fourCC("GIFf")},
             {picture(3, "http://", "-->") + picture(0, "?"), "?", 0},
             {frame("APIC", bytes("\1a\0\3") + mark + utf16("d") + bytes("\0\0MM\0*")), bytes("MM\0*"),
              fourCC("TIFF")},
             {frame("APIC", bytes("\0image/png\0\3never ended")), "", 0}}) {
        const std::string tag = id3Tag(c.frames);
        const audioTags loaded = readTag(tag).record;
        EXPECT_EQ(asCharacters(loaded.mp3CoverArt.view()), c.picture);
        EXPECT_EQ(loaded.mp3CoverArtType, c.type);
        const audioTags found = readTag(tag, "", ~std::uint64_t{0}, Pictures::find).record;
        EXPECT_EQ(tag.substr(found.mp3CoverArtPlace.position, found.mp3CoverArtPlace.size), c.picture);
        EXPECT_FALSE(found.mp3CoverArt);
    }
    const audioTags old2 = readTag(id3Tag(id3Frame("PIC", bytes("\0PNG\3\0BM")), 9, 2)).record;
    EXPECT_EQ(asCharacters(old2.mp3CoverArt.view()), "BM");
}

TEST(ByStandard, KeepsToTheTagAndItsSizes) {
    const std::string title = frame("TIT2", bytes("\0Title"));
    const std::string longText = bytes("\0") + std::string(299, 'x');
    EXPECT_EQ(titleOf(id3Tag(frame("TXXX", longText) + title, 16, 4)), "Title");
    EXPECT_EQ(titleOf(id3Tag(id3Frame("TXXX", longText) + title, 0, 4)), "Title"); // a plain size
    EXPECT_EQ(titleOf(id3Tag(id3Frame("TXXX", longText) + title, 600, 4)), "Title");
    EXPECT_EQ(titleOf(id3Tag(title + id3Frame("TXXX", std::string(128, 'x')), 0, 4)), "Title");
    // Plain ones, where a frame holds what might be the next one's start, or padding.
    const std::string zeros = std::string(0x97F, 'x') + std::string(2000, '\0') + "y";
    EXPECT_EQ(titleOf(id3Tag(id3Frame("APIC", sample::padded(zeros, 0x1340, 'x')) + title, 90, 4)), "Title");
    std::string loud = bytes("\0");
    while (loud.size() < 0x140) {
        loud += "LOUD";
    }
    EXPECT_EQ(titleOf(id3Tag(id3Frame("TPE1", loud.substr(0, 0x140)) + title, 90, 4)), "Title");
    // Those of a tag that does not end as it should.
    for (const std::string& rest :
         {id3Frame("TS2 ", "x"), id3Frame(bytes("TCP\0"), "x"), bytes("PRIV\0\0\7\7\0\0abc"),
          std::string("junk"), std::string(50, '\0') + "junk"}) {
        EXPECT_EQ(titleOf(id3Tag(id3Frame("TXXX", longText) + title + rest, 60, 4)), "Title");
        EXPECT_EQ(titleOf(id3Tag(frame("TXXX", longText) + title + rest, 60, 4)), "Title");
        const std::string certain = id3Frame("TXXX", std::string(200, 'x'));
        EXPECT_EQ(titleOf(id3Tag(certain + id3Frame("TXXX", longText) + title + rest, 60, 4)), "Title");
    }
    EXPECT_EQ(titleOf(id3Tag(bytes("TXXX\0\0\0\0\0\0") + title)), "Title"); // an empty frame
    EXPECT_EQ(titleOf(id3Tag(std::string(10, '\0') + title)), "(absent)");
    // Nothing is looked for behind the tag's end, or the chunk's; a frame that goes beyond it is none.
    EXPECT_EQ(titleOf(id3Tag(title.substr(0, 10), 0) + "\0Title"), "(absent)");
    EXPECT_EQ(titleOf(id3Tag(title, 0), 25), "(absent)");
    EXPECT_EQ(titleOf(id3Tag(title, 0), 26), "Title");
    // Extended headers; one that does not fit is none.
    EXPECT_EQ(titleOf(id3Tag(bigEndian(6) + std::string(6, '\0') + title, 9, 3, 0x40)), "Title");
    EXPECT_EQ(titleOf(id3Tag(bigEndian(6) + bytes("\1\0") + title, 9, 4, 0x40)), "Title");
    EXPECT_EQ(titleOf(id3Tag(title, 9, 3, 0x40)), "Title");
    EXPECT_EQ(readTag(id3Tag(title, 0, 4, 0x10)).end, 36U); // with a footer
    EXPECT_EQ(readTag(id3Tag(title, 0, 3, 0x10)).end, 26U);
    for (const char version : {char{1}, char{5}}) {
        const TagResult unknown = readTag(id3Tag(title, 0, version));
        EXPECT_EQ(unknown.record.mp3TagVersion, 0);
        EXPECT_EQ(unknown.end, 26U);
    }
    EXPECT_EQ(titleOf(id3Tag(id3Frame("TT2", bytes("\0T")), 9, 2, 0x40)),
              "(absent)"); // compressed, in no known way
    for (const std::string& none : {std::string("ID3"), bytes("ID3\3\xFF\0\0\0\0\0"),
                                    bytes("ID3\3\0\0\0\0\x80\0"), id3Tag(title).replace(0, 3, "3DI")}) {
        EXPECT_EQ(readTag(none, "").end, 0U);
    }
    // Grouped and encrypted frames.
    for (const auto& [version, flag] :
         std::vector<std::pair<char, std::uint32_t>>{{3, 0x40}, {3, 0x20}, {4, 0x40}, {4, 4}}) {
        EXPECT_EQ(titleOf(id3Tag(frame("TIT2", bytes("\0no"), flag) + title, 9, version)), "Title");
    }
}

TEST(ByStandard, UndoesWhatWasDoneForStoring) {
    struct Case {
        std::string stored, expected;
    };
    for (const Case& c :
         std::vector<Case>{{bytes("a\xFF\0b\xFF\0\0\xFF\0\xE0"), bytes("a\xFF"
                                                                       "b\xFF\0\xFF\xE0")},
                           {bytes("\xFF\0\xFF\xE0"), bytes("\xFF\0\xFF\xE0")}, // was never done
                           {bytes("\xFF\0\xFF"), "\xFF\xFF"}, // the last byte may stand alone
                           {"\xFF\xDF", "\xFF\xDF"},
                           {"", ""}}) {
        ByteBlock block = ByteBlock::allocate(c.stored.size());
        std::copy(c.stored.begin(), c.stored.end(), block.data());
        id3Resynchronise(&block);
        EXPECT_EQ(asCharacters(block.view()), c.expected);
    }
    const std::string content = bytes("\0") + std::string(5000, 'T');
    const auto lengthOf = [](const std::string& data, char version, std::uint32_t flags) {
        const audioTags record = readTag(id3Tag(frame("TIT2", data, flags), 9, version)).record;
        return SvxStringGetLength(record.mp3SongTitleString);
    };
    EXPECT_EQ(lengthOf(compressed(content, 5001, false), 3, 0x80), 5000);
    EXPECT_EQ(lengthOf(compressed(content, 5001, true), 4, 9), 5000);
    EXPECT_EQ(lengthOf(compressed(content, 6000, true), 4, 9), 5000);
    EXPECT_EQ(lengthOf(compressed(content, 5000, true), 4, 9), 0); // is larger than it says
    EXPECT_EQ(lengthOf(compressed(content, 5001, true).substr(0, 20), 4, 9), 0);
    EXPECT_EQ(lengthOf(compressed(content, 5001, true), 4, 8), 0); // without a length
    EXPECT_EQ(lengthOf("x", 4, 9), 0);

    EXPECT_TRUE(id3MayInflate(10, 10000));
    EXPECT_FALSE(id3MayInflate(10, 10001));
    EXPECT_TRUE(id3MayInflate(100000, std::size_t{64} << 20U));
    EXPECT_FALSE(id3MayInflate(100000, (std::size_t{64} << 20U) + 1));
    // Frames that lie about themselves take nothing from those that do not, and a tag has its limit.
    std::size_t budget = 12000;
    const std::string stored = compressed(content, 5001, true).substr(4);
    const ByteView view(reinterpret_cast<const std::uint8_t*>(stored.data()),
                        stored.size()); // NOLINT(*-reinterpret-cast)
    EXPECT_FALSE(id3Inflate(view.subspan(2), 5001, &budget));
    EXPECT_EQ(budget, 12000U);
    EXPECT_FALSE(id3Inflate(view, 4000, &budget));
    EXPECT_EQ(budget, 8000U);
    EXPECT_EQ(id3Inflate(view, 6000, &budget).size(), 5001U);
    EXPECT_FALSE(id3Inflate(view, 5001, &budget));
    const std::string liar = frame("APIC", frame("xxxx", std::string(100, ' ')).substr(4, 4) + "junk", 9);
    std::string liars;
    for (const char* size : {"\x1F\x7F\x7F\x7F", "\x20", "\x1F\x7F\x7F\x7F"}) {
        liars += frame("TPE1", sample::padded(size, 4) + "junk", 9);
    }
    EXPECT_EQ(titleOf(id3Tag(liars + liar + frame("TIT2", compressed(content, 5001, true), 9), 9, 4)),
              std::string(5000, 'T'));
}

TEST(ByStandard, NamesGenresInAllSyntaxes) {
    startUpIn("C");
    const StringBundle* const english = gCFBundleRef;
    const StringBundle german(english->folder(), "de"); // the name that a writer repeats is another
    gCFBundleRef = &german;
    EXPECT_EQ(plain(id3GenreNames(SvxStringFromLatin1("(12)Other"))), "Sonstiges");
    gCFBundleRef = english;
    struct Case {
        std::string content, expected;
    };
    for (const Case& c : std::vector<Case>{{"17", "Rock"},
                                           {"(17)", "Rock"},
                                           {"(0)", "Blues"},
                                           {"(17)Rock", "Rock"},
                                           {"(4)Eurodisco", "Disco / Eurodisco"},
                                           {"(51)(39)x", "Techno-Industrial / Noise / x"},
                                           {"(RX)(CR)", "Remix / Cover"},
                                           {"(131)((I think", "Indie / (I think"},
                                           {"((17)", "(17)"},
                                           {bytes("191\0Own\0CR\0"), "Psybient / Own / Cover"},
                                           {"192", "192"},
                                           {"(192)x", "(192)x"},
                                           {"(17", "(17"},
                                           {"()", "()"},
                                           {"0017", "0017"},
                                           {"Rock/Pop", "Rock/Pop"},
                                           {" 17 ", "Rock"},
                                           {"(17) rock ", "Rock"},
                                           {"(17) Rocks", "Rock / Rocks"},
                                           {bytes("\0\0"), "(absent)"}}) {
        EXPECT_EQ(plain(id3GenreNames(SvxStringFromLatin1(c.content))), c.expected) << c.content;
    }
    std::string many;
    for (int i = 0; i < 101; ++i) {
        many += "(17)";
    }
    EXPECT_EQ(SvxStringGetLength(id3GenreNames(SvxStringFromLatin1(many))), 100 * 4 + 99 * 3);
    EXPECT_FALSE(id3GenreName(-1));
}

ReadResult readByStandard(const std::string& name, const std::string& content) {
    return readFileAs(name, content, 0, TagReading::byStandard);
}

TEST(ByStandard, FindsTagsInChunks) {
    const std::string tag = id3Tag(frame("TIT2", "\3T\xC3\xA9"), 16, 4);
    const std::string format = sample::formatChunk({});
    const std::string common = sample::commonChunk(2, 441000, 16, bytes("\x40\x0E\xAC\x44\0\0\0\0\0\0"), "");
    const std::string noTag = "12345678901234567890";
    for (const std::string id : {"ID3 ", "id3 "}) {
        for (const std::string& before :
             {std::string(), sample::riffChunk("odd ", "x"), sample::riffChunk("odd ", "x") + '\0',
              sample::riffChunk(id, noTag)}) {
            const ReadResult read =
                readByStandard("x.wav", sample::riffForm(format + before + sample::riffChunk(id, tag), 99));
            EXPECT_EQ(plain(read.record.mp3SongTitleString), "Té");
            EXPECT_EQ(read.record.mp3TagVersion, 4);
            EXPECT_EQ(read.record.mp3SamplingRate, 44100U);
        }
        // The facts as well stand behind a pad byte.
        const std::string padded = sample::iffChunk("odd ", "abc") + '\0';
        const ReadResult read =
            readByStandard("x.aiff", sample::iffForm("AIFF", padded + common + sample::iffChunk(id, tag) +
                                                                 sample::iffChunk(id, tag)));
        EXPECT_EQ(plain(read.record.mp3SongTitleString), "Té");
        EXPECT_EQ(read.record.mp3SongLen, 10);
        EXPECT_EQ(
            readByStandard("x.wav", sample::riffForm(sample::riffChunk("odd ", "abc") + '\0' + format, 99))
                .result,
            0);
    }
    EXPECT_FALSE(readFileAs("x.wav", sample::riffForm(format + sample::riffChunk("id3 ", tag), 99))
                     .record.mp3SongTitleString);
}

TEST(ByStandard, FindsTheTagAtTheEnd) {
    const std::string frames = frame("TIT2", bytes("\0End"));
    const std::string footer = id3Tag(frames, 0, 4, 0x10).substr(0, 10).replace(0, 3, "3DI");
    const std::string appended = id3Tag(frames, 0, 4, 0x10) + footer;
    const std::string block = "TAG" + std::string(125, '\0');
    const std::string sound = sample::mpegAudio(500);
    const auto title = [](const std::string& content) {
        return plain(readByStandard("x.mp3", content).record.mp3SongTitleString);
    };
    EXPECT_EQ(title(sound + appended), "End");
    EXPECT_EQ(title(sound + appended + block), "End");
    EXPECT_EQ(title(sound + footer.substr(0, 6) + "\x7F\x7F\x7F\x7F"), "(absent)");
    EXPECT_EQ(title(id3Tag(frame("TPE1", bytes("\0A")), 0, 4) + sound + appended),
              "(absent)"); // the first one has it
}

TEST(ByStandard, TakesFromID3v1WhatIsMissing) {
    const std::string block = "TAG" + sample::padded(bytes("Caf\xE9\0no"), 30) +
                              sample::padded("Artist", 30, ' ') + std::string(30, '\0') + "1999" +
                              sample::padded("Comment", 28) + bytes("\0\7") + static_cast<char>(131);
    const audioTags alone = readByStandard("x.mp3", sample::mpegAudio(500) + block).record;
    EXPECT_EQ(plain(alone.mp3SongTitleString), "Café");
    EXPECT_EQ(plain(alone.mp3ArtistString), "Artist");
    EXPECT_FALSE(alone.mp3AlbumString);
    EXPECT_EQ(plain(alone.mp3CommentString), "Comment");
    EXPECT_EQ(plain(alone.mp3Genre2String), "Indie");
    EXPECT_EQ(std::tuple(alone.mp3TagVersion, alone.mp3Year, alone.mp3TheTrack), std::tuple(1, 1999, 7));

    EXPECT_EQ(readByStandard("x.mp3", sample::mpegAudio(500) + std::string(block).replace(93, 4, "-12 "))
                  .record.mp3Year,
              0);
    const std::string tag = id3Tag(frame("TIT2", bytes("\0T")) + frame("TRCK", bytes("\0001")) +
                                   frame("TYER", bytes("\0002000")) + frame("TCON", bytes("\0x")));
    const audioTags both = readByStandard("x.mp3", tag + sample::mpegAudio(500) + block).record;
    EXPECT_EQ(plain(both.mp3SongTitleString) + plain(both.mp3ArtistString) + plain(both.mp3Genre2String),
              "TArtistx");
    EXPECT_EQ(std::tuple(both.mp3TagVersion, both.mp3Year, both.mp3TheTrack), std::tuple(3, 2000, 1));
}

TEST(ByStandard, TakesLengthsFromTheEncodersHeader) {
    struct Case {
        std::uint32_t header;
        std::size_t place;
        std::string content;
        std::uint16_t seconds;
        std::uint32_t bitRate;
        std::uint8_t isVariable;
    };
    const std::string toc(100, '\0');
    const auto lame = [](const std::string& name, const std::string& silence) {
        return sample::padded(name, 21) + silence;
    };
    for (const Case& c : std::vector<Case>{
             {0xFFFB9000, 36, "Xing" + bigEndian(3) + bigEndian(383) + bigEndian(100000), 10, 80, 1},
             {0xFFFB9000, 36, "Xing" + bigEndian(1) + bigEndian(383), 10, 4, 1}, // by the file's own size
             {0xFFFB9000, 36, "Info" + bigEndian(3) + bigEndian(383) + bigEndian(100000), 10, 128, 0},
             {0xFFFB9000, 36,
              "Xing" + bigEndian(15) + bigEndian(383) + bigEndian(100000) + toc + bigEndian(0) +
                  lame("LAME3.100", "\x24\x04\x38"),
              9, 80, 1},
             {0xFFFB9000, 36, "Info" + bigEndian(1) + bigEndian(383) + lame("Lavc60", "\x24\x04\x38"), 9, 128,
              0},
             {0xFFFB9000, 36, "Info" + bigEndian(1) + bigEndian(383) + lame("LAME3.88", "\x24\x04\x38"), 10,
              128, 0},
             {0xFFFB9000, 36, "Info" + bigEndian(1) + bigEndian(0), 0, 128, 0},
             {0xFFFB90C0, 36, "VBRI" + bigEndian(0, 6) + bigEndian(100000) + bigEndian(383), 10, 80, 1},
             {0xFFF390C0, 13, "Xing" + bigEndian(3) + bigEndian(383) + bigEndian(100000), 10, 80,
              1}, // 576 samples
             {0xFFF590C0, 13, "Xing" + bigEndian(3) + bigEndian(383) + bigEndian(100000), 20, 40, 1}}) {
        const ReadResult read = readByStandard(
            "x.mp3", sample::mpegAudio(5000, c.header).replace(c.place, c.content.size(), c.content));
        EXPECT_EQ(std::tuple(read.record.mp3SongLen, read.record.mp3BitRate, read.record.mp3HasVBR),
                  std::tuple(c.seconds, c.bitRate, c.isVariable))
            << c.content;
    }
    const std::string xing = sample::mpegAudio(5000).replace(36, 12, "Xing" + bigEndian(1) + bigEndian(1));
    EXPECT_EQ(readFileAs("x.mp3", xing, std::uint64_t{1} << 40U, TagReading::byStandard).record.mp3BitRate,
              ~0U);
}

TEST(HiddenTexts, AreThoseThatOnlyTheStandardsGive) {
    struct Case {
        std::string frames;
        char version;
        bool hides;
    };
    TestFolder folder;
    for (const Case& c :
         std::vector<Case>{{frame("TIT2", bytes("\0plain")), 4, false},
                           {frame("TIT2", bytes("\0Caf\xE9")), 3, true},
                           {frame("TDRC", bytes("\0002004")), 4, true},
                           {frame("COMM", bytes("\0engiTunNORM\0 0")), 3, false},
                           {frame("COMM", bytes("\0eng\0Nice\0")), 3, false},
                           {frame("COMM", bytes("\0eng\0Nice")), 3, true}, // "Nic"
                           {frame("TCOM", bytes("\0A\0B")), 4, false},
                           {frame("TCON", bytes("\000131")), 3, false},
                           {frame("TPE1", bytes("\0Ann")) + frame("TPE1", bytes("\0Bo\xEB")), 3, true},
                           {frame("USLT", bytes("\3xxx\0l\xC3\xA9")), 4, true}}) {
        const std::string content = id3Tag(c.frames, 16, c.version) + sample::mpegAudio(500);
        const ReadResult usual = readFileAs("x.mp3", content);
        ASSERT_TRUE(mayHideTexts(amdTypeMP3, usual.record));
        folder.write("x.mp3", content);
        EXPECT_EQ(hidesTexts(feMakePathText(folder.path("x.mp3")), textsIn(usual.record), nullptr), c.hides)
            << testing::PrintToString(c.frames);
    }
    EXPECT_FALSE(mayHideTexts(amdTypeMP3, audioTags()));
    EXPECT_FALSE(mayHideTexts(amdTypeM4A, audioTags()));
    EXPECT_TRUE(mayHideTexts(amdTypeWAVE, audioTags()));
}

} // namespace

} // namespace sonarin
