// SPDX-License-Identifier: MIT
// Tags by their standards, where no tagger writes what is to be read; tests/test_standard.py has what they
// do.
#include "app/hiddenTexts.h"
#include "engine/id3genres.h"
#include "engine/id3stored.h"
#include "tests/support/readBytes.h"
#include "text/CMMCoreFunctions.h"

#include <zlib.h>

namespace sonarin {

namespace {

using namespace sample;
using namespace std::string_literals;

constexpr ReadOptions byStandard = {Pictures::load, nullptr, TagReading::byStandard};
const std::string mark = "\xFF\xFE";
const std::string title = textFrame("TIT2", "Title");

std::string titleOf(const std::string& tag) {
    const std::string found = plain(readTag(tag, byStandard).first.mp3SongTitleString);
    // And at the end of a file.
    EXPECT_EQ(plain(readTag(tag, byStandard, "").first.mp3SongTitleString), found);
    return found;
}

ReadResult readByStandard(const std::string& name, const std::string& content, std::uint64_t sizeOnDisk = 0) {
    return readFileAs(name, content, sizeOnDisk, TagReading::byStandard);
}

/// A frame of version 4, or of version 3 where its size is below 128.
std::string frame(const std::string& id, const std::string& data, std::uint32_t flags = 0) {
    return id + sevenBits(data.size()) + bigEndian(flags, 2) + data;
}

TEST(ByStandard, DecodesTextsAsTheyAreDeclared) {
    const auto tag = [](const std::string& content, char version = 4) {
        return id3Tag(frame("TIT2", content), 16, version);
    };
    expectEach(titleOf,
               {{"Café", {tag("\0Caf\xE9\0\0"s, 3)}},
                {"a", {tag("\0a\0b"s, 3)}}, // what stands behind the terminator is to be ignored
                {"a / b", {tag("\0a\0\0b\0"s)}},
                {"Café / é", {tag("\3Caf\xC3\xA9\0\xC3\xA9"s)}},
                {"x", {tag("\3\xEF\xBB\xBFx")}},
                {"(absent)", {tag("\3Caf\xE9"), tag("\4Text"), tag(""), tag("\0"s), tag("\1" + mark, 3)}},
                {"A / BC", {tag("\1" + mark + utf16("A") + "\0\0"s + mark + utf16("BC"))}},
                {"AĂ", {tag("\1\xFE\xFF\0A\x01\x02"s)}},
                // without a mark, and half a unit at the end; against the declaration
                {"A", {tag("\1" + utf16("A") + "x"), tag("\2" + mark + utf16("A"))}},
                {"ABC", {tag("\2\0A\0B\0C"s), tag("\2\0A\0B\0Cx"s)}},
                {"A / B",
                 {tag("\2\0A\0\0\0B"s),
                  id3Tag(textFrame("TIT2", "A") + textFrame("TIT2", "B") + textFrame("TIT2", "A / B"))}},
                // no terminator but at a unit's start
                {"\xE4\x84\x80", {tag("\1" + mark + "\0A\0\0"s + utf16("B"), 3)}},
                {"T", {id3Tag(textFrame("TT2", "T"), 9, 2)}}});
    // Longer than the read buffer, its terminator across the boundary.
    for (const std::size_t length : {65536U - 22U, 65536U - 21U, 200001U}) {
        const std::string text(length, 'y');
        const std::string content = "\1" + mark + utf16(text) + "\0\0"s + utf16("no");
        EXPECT_TRUE(titleOf(id3Tag(id3Frame("TIT2", content))) == text) << length;
    }
}

TEST(ByStandard, ChoosesRemarksYearsAndPictures) {
    const std::string described = frame("COMM", "\0engwhat\0described"s);
    const std::string itunes = frame("COMM", "\0engiTunNORM\0 0000"s);
    const std::string empty = frame("COMM", "\0eng\0"s);
    const std::string wide = frame("COMM", "\1deu" + mark + "\0\0"s + mark + utf16("wide") + "\0\0"s);
    const std::string old = textFrame("TYER", "1999");
    const auto recordedAt = [](const std::string& time) { return textFrame("TDRC", time); };
    const std::string recorded = recordedAt("2004-05-06");
    const auto picture = [](char type, const std::string& content, const std::string& mime = "image/x") {
        return frame("APIC", "\0"s + mime + '\0' + type + "d\0"s + content);
    };
    // Whether pictures are loaded or only found.
    const auto facts = [](const std::string& frames) {
        const std::string tag = id3Tag(frames);
        const audioTags found = readTag(tag, {Pictures::find, nullptr, TagReading::byStandard}).first;
        EXPECT_FALSE(found.mp3CoverArt);
        EXPECT_EQ(factsOf(found, tag), factsOf(readTag(tag, byStandard).first));
        return factsOf(found, tag);
    };
    expectEach(
        facts,
        {{" tag=3 comment=wide", {itunes + described + empty + wide + frame("COMM", "\0eng\0second"s)}},
         {" tag=3 comment=described", {described + itunes + frame("COMM", "\0engb\0other"s)}},
         {" tag=3", {itunes + empty + frame("COMM", "\0eng"s), frame("APIC", "\0image/png\0\3never ended"s)}},
         {" tag=3 lyrics=all", {frame("USLT", "\0engx\0chorus"s) + frame("USLT", "\0eng\0all\0no"s)}},
         {" tag=3 year=2004", {old + recorded, recorded + old + recordedAt("2010")}},
         {" tag=3 year=9999", {recordedAt("9999")}},
         {" tag=3 year=1999",
          {old + recordedAt("x"), old + recordedAt("-2004"), old + recordedAt("20040506")}},
         {" tag=3 track=3 of=12", {frame("TRCK", "\0003/12\0009"s)}},
         {" tag=3 track=3", {textFrame("TRCK", "3") + frame("TRCK", "\t7") + frame("TRCK", "\0"s)}},
         {" tag=3 picture=JPEG:\xFF\xD8x", {picture(0, "BM1") + picture(3, "\xFF\xD8x") + picture(3, "no")}},
         {" tag=3 picture=PNGf:\x89PNG", {picture(4, "\x89PNG") + picture(5, "no")}},
         {" tag=3 picture=GIFf:GIF89", {picture(3, "") + picture(1, "GIF89")}},
         // a link, and no known type
         {" tag=3 picture=(absent):?", {picture(3, "http://", "-->") + picture(0, "?")}},
         {" tag=3 picture=TIFF:MM\0*"s, {frame("APIC", "\1a\0\3"s + mark + utf16("d") + "\0\0MM\0*"s)}}});
    EXPECT_EQ(factsOf(readTag(id3Tag(id3Frame("PIC", "\0PNG\3\0BM"s), 9, 2), byStandard).first),
              " tag=2 picture=BMPf:BM");
}

TEST(ByStandard, KeepsToTheTagAndItsSizes) {
    const std::string longText = "\0"s + std::string(299, 'x');
    const std::string zeros = std::string(0x97F, 'x') + std::string(2000, '\0') + "y";
    const std::string plainSize = id3Frame("TXXX", longText);
    const std::string noPlain = padded(frame("TXXX", longText) + title, 10 + 0x022C, 'x');
    const std::string emptyFrame = "TXXX\0\0\0\0\0\0"s;
    const std::string loud = id3Frame("TPE1", "\0"s + repeated(79, "LOUD") + "LOU");
    const std::string likeSeven = id3Frame("TXXX", padded(std::string(172, 'x') + "TXXX\0\0\1\6"s, 300));
    std::vector<std::string> tags = {
        id3Tag(emptyFrame + title), id3Tag(frame("TXXX", longText) + title, 16, 4),
        id3Tag(plainSize + title, 0, 4), id3Tag(plainSize + title, 600, 4),
        id3Tag(id3Frame("TXXX", std::string(128, 'x')) + title, 0, 4),
        id3Tag(title + id3Frame("TXXX", std::string(128, 'x')), 0, 4),
        // Ids of version 2 among them.
        id3Tag(plainSize + id3Frame("TS2 ", "x") + title, 60, 4),
        id3Tag(plainSize + id3Frame("TCP\0"s, "x") + id3Frame("TXX0", "x") + id3Frame("TXX9", "x") + title,
               60, 4),
        // Plain ones, where a frame holds what might be the next one's start, or padding.
        id3Tag(id3Frame("APIC", padded(zeros, 0x1340, 'x')) + title, 90, 4), id3Tag(loud + title, 1, 4),
        id3Tag(loud + title, 90000, 4), id3Tag(loud + title + emptyFrame, 0, 4),
        // The first size that tells anything tells it of all.
        id3Tag(id3Frame("TXXX", std::string(128, 'x')) + likeSeven + title, 0, 4),
        // What is no frame stands where a plain size would lead.
        id3Tag(noPlain + repeated(3, "XXX\1\0\0\0\0\0\0"s), 60, 4),
        id3Tag(noPlain + repeated(3, "XX\1X\0\0\0\0\0\0"s), 60, 4),
        // Extended headers; one that does not fit is none.
        id3Tag(bigEndian(6) + std::string(6, '\0') + title, 9, 3, 0x40),
        id3Tag(bigEndian(10) + "\x80\0\0\0\0\x09 CRC"s + title, 9, 3, 0x40),
        id3Tag(bigEndian(6) + "\1\0"s + title, 9, 4, 0x40),
        id3Tag(sevenBits(200) + "\1\0"s + std::string(194, '\0') + title, 9, 4, 0x40),
        id3Tag(title, 9, 3, 0x40),
        // Grouped and encrypted frames.
        id3Tag(frame("TIT2", "\0no"s, 0x40) + title, 9, 3),
        id3Tag(frame("TIT2", "\0no"s, 0x20) + title, 9, 3),
        id3Tag(frame("TIT2", "\0no"s, 0x40) + title, 9, 4), id3Tag(frame("TIT2", "\0no"s, 4) + title, 9, 4)};
    // Sizes of a tag that does not end as it should.
    for (const std::string& rest : {id3Frame("TS2 ", "x"), id3Frame("TCP\0"s, "x"), "PRIV\0\0\7\7\0\0abc"s,
                                    "junk"s, std::string(50, '\0') + "junk"}) {
        for (const std::string& first :
             {plainSize, frame("TXXX", longText), id3Frame("TXXX", std::string(200, 'x')) + plainSize}) {
            tags.push_back(id3Tag(first + title + rest, 60, 4));
        }
    }
    expectEach(titleOf, {{"Title", tags},
                         // Nothing is looked for behind the tag's end; a frame that goes beyond it is none.
                         {"(absent)",
                          {id3Tag(std::string(10, '\0') + title), id3Tag(title.substr(0, 10), 0) + "\0Title"s,
                           id3Tag(textFrame("TT2", "T"), 9, 2, 0x40)}}}); // compressed, in no known way
    expectEach([](const std::string& tag) { return endAndFacts(tag, byStandard); },
               {{"36 tag=4 title=Title", {id3Tag(title, 0, 4, 0x10)}}, // with a footer
                {"26 tag=3 title=Title", {id3Tag(title, 0, 3, 0x10)}},
                {"26", {id3Tag(title, 0, 1), id3Tag(title, 0, 5)}},
                {"10 tag=3", {id3Tag("", 0)}},
                {"0",
                 {"ID3", "ID3\3\xFF\0\0\0\0\0"s, "ID3\xFF\0\0\0\0\0\0"s, "ID3\3\0\0\0\0\x80\0"s,
                  "ID3\3\0\0\0\0\0\x80"s, id3Tag(title).replace(0, 3, "3DI")}}});
}

TEST(ByStandard, UndoesWhatWasDoneForStoring) {
    const auto resynchronised = [](const std::string& stored) {
        ByteBlock block = ByteBlock::allocate(stored.size());
        std::copy(stored.begin(), stored.end(), block.data());
        id3Resynchronise(&block);
        return std::string(asCharacters(block.view()));
    };
    expectRows(resynchronised, {"a\xFF\0b\xFF\0\0\xFF\0\xE0 -> a\xFF\x62\xFF\0\xFF\xE0"s,
                                "\xFF\0\xFF\xE0 -> \xFF\0\xFF\xE0"s, // was never done
                                "\xFF\0\xFF -> \xFF\xFF"s,           // the last byte may stand alone
                                "\xFF\xDF -> \xFF\xDF", " -> "});

    const std::string text(5000, 'T');
    std::array<Bytef, 100> buffer{};
    uLongf size = buffer.size();
    const std::string data = '\0' + text;
    compress(buffer.data(), &size, viewOf(data).data(), data.size());
    const std::string stored(asCharacters(buffer).substr(0, size));
    const auto tag = [](const std::string& content, std::uint32_t flags, char version = 4) {
        return id3Tag(frame("TIT2", content, flags), 9, version);
    };
    // Frames that lie about themselves take nothing from those that do not.
    const std::string liar = frame("TPE1", "\x1F\x7F\x7F\x7Fjunk", 9);
    const std::string liars =
        liar + frame("TPE1", "\x20\0\0\0junk"s, 9) + liar + frame("APIC", sevenBits(100) + "junk", 9);
    expectEach(titleOf, {{text,
                          {tag(bigEndian(5001) + stored, 0x80, 3), tag(sevenBits(5001) + stored, 9),
                           tag(sevenBits(6000) + stored, 9),
                           id3Tag(liars + frame("TIT2", sevenBits(5001) + stored, 9), 9, 4)}},
                         {"(absent)",
                          {tag(sevenBits(5000) + stored, 9), // is larger than it says
                           tag(sevenBits(5001) + stored.substr(0, 16), 9),
                           tag(sevenBits(5001) + stored, 8), // without a length
                           tag("x", 9)}}});

    EXPECT_TRUE(id3MayInflate(10, 10000) && id3MayInflate(100000, std::size_t{64} << 20U));
    EXPECT_FALSE(id3MayInflate(10, 10001) || id3MayInflate(100000, (std::size_t{64} << 20U) + 1));
    // What a tag may have inflated is limited; what turns out not to be compressed takes nothing of it.
    std::size_t budget = 12000;
    std::string sizesAndBudgets;
    for (const auto& [bytes, said] : std::vector<std::pair<std::string, std::size_t>>{
             {stored.substr(2), 5001}, {stored, 4000}, {stored, 6000}, {stored, 5001}, {stored, 2999}}) {
        sizesAndBudgets += std::to_string(id3Inflate(viewOf(bytes), said, &budget).size()) + ":";
        sizesAndBudgets += std::to_string(budget) + " ";
    }
    EXPECT_EQ(sizesAndBudgets, "0:12000 0:8000 5001:2999 0:2999 0:0 ");
}

TEST(ByStandard, NamesGenresInAllSyntaxes) {
    startUpIn("C");
    const auto genre = [](const std::string& content) {
        return plain(id3GenreNames(SvxStringFromLatin1(content)));
    };
    const StringBundle* const english = gCFBundleRef;
    const StringBundle german(english->folder(), "de"); // the name that a writer repeats is another
    gCFBundleRef = &german;
    EXPECT_EQ(genre("(12)Other"), "Sonstiges");
    gCFBundleRef = english;
    EXPECT_EQ(genre(repeated(101, "(17)")), repeated(99, "Rock / ") + "Rock");
    expectRows(genre, {"17 -> Rock", "(17) -> Rock", "(17)Rock -> Rock", " 17  -> Rock", "(17) rock  -> Rock",
                       "(0) -> Blues", "((17) -> (17)", "192 -> 192", "(192)x -> (192)x", "(17 -> (17",
                       "(17\0x) -> (17 / x)"s, "() -> ()", "0017 -> 0017", "Rock/Pop -> Rock/Pop",
                       "\0\0 -> (absent)"s});
    expectRows(genre, {"(4)Eurodisco -> Disco / Eurodisco", "(51)(39)x -> Techno-Industrial / Noise / x",
                       "(17) Rocks -> Rock / Rocks", "(RX)(CR) -> Remix / Cover",
                       "(131)((I think -> Indie / (I think", "191\0Own\0CR\0 -> Psybient / Own / Cover"s});
    EXPECT_FALSE(id3GenreName(-1));
}

TEST(ByStandard, FindsTagsInChunks) {
    const std::string tag = id3Tag(frame("TIT2", "\3T\xC3\xA9"), 16, 4);
    const std::string format = formatChunk({});
    const std::string common = commonChunk(2, 441000, 16, "\x40\x0E\xAC\x44\0\0\0\0\0\0"s, "");
    const std::string odd = riffChunk("odd ", "x");
    const std::string brief = id3Tag(title, 0);
    const auto wave = [](const std::string& chunks) {
        return factsOf(readByStandard("x.wav", riffForm(chunks, 99)));
    };
    for (const std::string id : {"ID3 ", "id3 "}) {
        const std::string chunk = riffChunk(id, tag);
        expectEach(wave, {{" rate=44100 tag=4 title=Té",
                           {format + chunk, format + odd + chunk, format + odd + '\0' + chunk,
                            format + riffChunk(id, "12345678901234567890") + chunk}}, // no tag
                          // Nothing is looked for behind the chunk's end.
                          {" rate=44100 tag=3", {format + id + littleEndian(25) + brief}},
                          {" rate=44100 tag=3 title=Title", {format + id + littleEndian(26) + brief}}});
        // The facts as well stand behind a pad byte.
        const std::string chunks =
            iffChunk("odd ", "abc") + '\0' + common + iffChunk(id, tag) + iffChunk(id, tag);
        EXPECT_EQ(factsOf(readByStandard("x.aiff", iffForm("AIFF", chunks))),
                  " seconds=10 rate=44100 tag=4 title=Té");
    }
    EXPECT_EQ(wave(odd + '\0' + format), " rate=44100");
    const std::string cut = id3Tag(title + "\xFF\0"s, 0, 3, '\x80').replace(9, 1, "\x7F");
    EXPECT_EQ(wave(format + "ID3 " + littleEndian(999) + cut), " rate=44100 tag=3 title=Title");
    EXPECT_EQ(factsOf(readFileAs("x.wav", riffForm(format + riffChunk("id3 ", tag), 99))), " rate=44100");
}

TEST(ByStandard, TakesFromATagAtTheEndWhatIsMissing) {
    const std::string sound = mpegAudio(500);
    const std::string footer = id3Tag(title, 0, 4, 0x10).substr(0, 10).replace(0, 3, "3DI");
    const std::string appended = id3Tag(title, 0, 4, 0x10) + footer;
    const std::string texts = padded("Caf\xE9\0no"s, 30) + padded("Artist", 30, ' ') + std::string(30, '\0');
    const std::string comment = padded("Comment", 28) + "\0\7\x83"s;
    const std::string block = "TAG" + texts + "1999" + comment;
    const std::string tag = id3Tag(textFrame("TIT2", "T") + textFrame("TRCK", "1") +
                                   textFrame("TYER", "2000") + textFrame("TCON", "x"));
    const std::string facts = " kbit=128 rate=44100 version=3 layer=1 crc=1";
    const std::string known = " artist=Artist comment=Comment genre=";
    const auto full = [](char letter) { return std::string(30, letter); };
    const std::string fullBlock = sound + "TAG" + full('T') + full('A') + full('L') + "1234" + full('5');
    const auto fullFacts = [&](const std::string& code, const std::string& genre) {
        return facts + " tag=1" + code + " year=1234 title=" + full('T') + " artist=" + full('A') +
               " album=" + full('L') + " comment=" + full('5') + " genre=" + genre;
    };
    expectEach([](const std::string& content) { return factsOf(readByStandard("x.mp3", content)); },
               {{fullFacts("", "Blues"), {fullBlock + '\0'}},
                {fullFacts(" code=1", "Classic Rock"), {fullBlock + '\1'}},
                {facts + " tag=4 title=Title",
                 {sound + appended, sound + appended + "TAG" + padded("", 124) + "\xFF"}},
                {facts, {sound + footer.substr(0, 6) + "\x7F\x7F\x7F\x7F"}},
                // the first one has it
                {facts + " tag=4 artist=A", {id3Tag(textFrame("TPE1", "A"), 0, 4) + sound + appended}},
                {facts + " tag=1 code=-125 year=1999 track=7 title=Café" + known + "Indie", {sound + block}},
                {facts + " tag=1 code=-125 track=7 title=Café" + known + "Indie",
                 {sound + "TAG" + texts + "-12 " + comment}},
                {facts + " tag=3 year=2000 track=1 title=T" + known + "x", {tag + sound + block}}});
    // Whichever it is.
    const std::array frames = {textFrame("TIT2", "T"),        textFrame("TPE1", "A"),
                               textFrame("TALB", "L"),        textFrame("TYER", "1"),
                               id3Frame("COMM", "\0eng\0C"s), textFrame("TCON", "Rock"),
                               textFrame("TRCK", "7")};
    const std::string every =
        padded("T", 30) + padded("A", 30) + padded("L", 30) + "0001" + padded("C", 29) + "\7\x11";
    for (const std::string& missing : frames) {
        std::string present;
        for (const std::string& frame : frames) {
            present += frame == missing ? "" : frame;
        }
        EXPECT_EQ(factsOf(readByStandard("x.mp3", id3Tag(present) + sound + "TAG" + every)),
                  facts + " tag=3 year=1 track=7 title=T artist=A album=L comment=C genre=Rock");
    }
}

TEST(ByStandard, TakesLengthsFromTheEncodersHeader) {
    const auto audio = [](std::size_t place, const std::string& content, std::uint32_t header = 0xFFFB9000) {
        return mpegAudio(5000, header).replace(place, content.size(), content);
    };
    const std::string frames = bigEndian(1) + bigEndian(383);
    const std::string both = bigEndian(3) + bigEndian(383) + bigEndian(100000);
    const std::string all = bigEndian(15) + both.substr(4) + std::string(100, '\0') + bigEndian(0);
    const std::string behind = std::string(12, '\0') + "\x24\x04\x38"; // what the encoder added
    expectEach(
        [](const std::string& content) { return lengthOf(content, 0, TagReading::byStandard); },
        {{"10 s of ~80 kbit/s",
          {audio(36, "Xing" + both),
           audio(36, "VBRI" + bigEndian(0, 6) + bigEndian(100000) + bigEndian(383), 0xFFFB90C0),
           audio(13, "Xing" + both, 0xFFF390C0)}}, // 576 samples
         {"10 s of ~7996 kbit/s", {audio(36, "Xing" + bigEndian(3) + bigEndian(383) + bigEndian(10000000))}},
         {"3 s of 128 kbit/s", {audio(36, "Info" + bigEndian(1) + bigEndian(125), 0xFFFB9400)}},
         {"3 s of ~267 kbit/s",
          {audio(36, "VBRI" + bigEndian(0, 6) + bigEndian(100000) + bigEndian(125), 0xFFFB9400)}},
         {"20 s of ~40 kbit/s", {audio(13, "Xing" + both, 0xFFF590C0)}},
         {"10 s of ~4 kbit/s",
          {audio(36, "Xing" + frames),
           id3Tag("", 5000) + audio(36, "Xing" + frames)}}, // by the file's own size
         {"10 s of 128 kbit/s",
          {audio(36, "Info" + both), audio(36, "Info" + both).substr(0, 52), // right at the end
           audio(36, "Info" + both + "GOGO3.13x" + behind),
           audio(36, "Info" + frames + "LAME3.88x" + behind)}},
         {"9 s of ~80 kbit/s",
          {audio(36, "Xing" + all + "LAME3.100" + behind), audio(36, "Xing" + all + "LAME3.98r" + behind)}},
         {"9 s of 128 kbit/s", {audio(36, "Info" + frames + "Lavc60xyz" + behind)}},
         {"0 s of 128 kbit/s", {audio(36, "Info" + bigEndian(1) + bigEndian(0))}}});
    const std::string xing = audio(36, "Xing" + bigEndian(1) + bigEndian(1));
    EXPECT_EQ(readByStandard("x.mp3", xing, std::uint64_t{1} << 40U).record.mp3BitRate, ~0U);
}

TEST(HiddenTexts, AreThoseThatOnlyTheStandardsGive) {
    const TestFolder folder;
    const auto isShown = [&folder](const std::string& tag) {
        const std::string path = folder.write("x.mp3", tag + mpegAudio(500));
        const audioTags usual = readFileAs("x.mp3", tag + mpegAudio(500)).record;
        EXPECT_TRUE(mayHideTexts(amdTypeMP3, usual));
        return hidesTexts(feMakePathText(path), textsIn(usual), nullptr) ? "hidden" : "shown";
    };
    expectEach(isShown,
               {{"shown",
                 {id3Tag(textFrame("TIT2", "plain"), 16, 4), id3Tag(frame("COMM", "\0engiTunNORM\0 0"s)),
                  id3Tag(frame("COMM", "\0eng\0Nice\0"s)), id3Tag(frame("TCOM", "\0A\0B"s), 16, 4),
                  id3Tag(textFrame("TCON", "31")), id3Tag(textFrame("TIT2", ""))}},
                {"hidden",
                 {id3Tag(textFrame("TIT2", "Caf\xE9")), id3Tag(textFrame("TCON", "Caf\xE9")),
                  id3Tag(textFrame("TDRC", "2004"), 16, 4), id3Tag(frame("TRCK", "\2\0003"s), 16, 4),
                  id3Tag(frame("COMM", "\0eng\0Nice"s)), // "Nic"
                  id3Tag(textFrame("TPE1", "Ann") + textFrame("TPE1", "Bo\xEB")),
                  id3Tag(frame("USLT", "\3xxx\0l\xC3\xA9"s), 16, 4)}}});
    EXPECT_FALSE(hidesTexts(text("/nowhere.mp3"), {}, nullptr));
    EXPECT_FALSE(mayHideTexts(amdTypeMP3, audioTags()) || mayHideTexts(amdTypeM4A, audioTags()));
    EXPECT_TRUE(mayHideTexts(amdTypeWAVE, audioTags()));
}

} // namespace

} // namespace sonarin
