// SPDX-License-Identifier: MIT
#include "engine/id3frameText.h"
#include "engine/id3genres.h"
#include "engine/id3picture.h"
#include "engine/id3v1.h"
#include "tests/support/readBytes.h"

namespace sonarin {

namespace {

using namespace sample;
using namespace std::string_literals;

TEST(ID3v2, FillsTheRecordUntilItIsReleased) {
    const std::string frames =
        textFrame("TIT2", "Title") + textFrame("TPE1", "Ann") + textFrame("TPE1", "Bob") +
        textFrame("TALB", "Album") + textFrame("TCOM", "Composer") + textFrame("TENC", "Encoder") +
        textFrame("TCON", "(17)Rock") + id3Frame("COMM", "\0eng\0Nice\0"s) +
        id3Frame("USLT", "\0eng\0la\0"s) + textFrame("YTDS", "di da") + textFrame("TRCK", "1/2") +
        textFrame("TRCK", "5/12") + textFrame("TYER", "1999") + textFrame("TYER", "2004") +
        id3Frame("TXXX", "\0k\0v"s) + textFrame("tit2", "no");
    const std::string end = std::to_string(frames.size() + 60);
    const std::string facts =
        " year=2004 track=5 of=12 title=Title artist=Ann Bob album=Album composer=Composer "
        "comment=Nice genre=Rock lyrics=la di da encoder=Encoder";
    const std::string unreadable = textFrame("TRCK", "3/4") + id3Frame("TRCK", "\xE9\xE9") +
                                   textFrame("TYER", "1990") + id3Frame("TYER", "\xE9\xE9");
    expectEach([](const std::string& tag) { return endAndFacts(tag); },
               {{end + " tag=3" + facts, {id3Tag(frames, 50, 3), id3Tag(frames, 50, 5)}},
                {end + " tag=4" + facts, {id3Tag(frames, 50, 4)}},
                {"79 tag=3", {id3Tag(unreadable)}}});
    const std::string oldFrames = textFrame("TT2", "T") + textFrame("TP1", "A") + textFrame("TAL", "L") +
                                  textFrame("TCM", "C") + textFrame("TEN", "E") + textFrame("TCO", "(13)") +
                                  id3Frame("COM", "\0eng\0c\0"s) + id3Frame("ULT", "\0eng\0l\0"s) +
                                  textFrame("TDS", "d") + textFrame("TRK", "7") + textFrame("TYE", "1987") +
                                  id3Frame("PIC", "\0JPG\0\0"s + std::string(100, 'j'));
    for (const auto release : {mp3DisposeTagsData, amdReleaseAudioMetaData}) {
        audioTags record = readTag(id3Tag(oldFrames, 20, 2)).first;
        EXPECT_EQ(factsOf(record),
                  " tag=2 year=1987 track=7 title=T artist=A album=L composer=C comment=c genre=Pop "
                  "lyrics=l d encoder=E picture=JPEG:" +
                      std::string(100, 'j') + '\0');
        for (int i = 0; i < 2; ++i) {
            release(&record);
            EXPECT_EQ(factsOf(record), " tag=2 year=1987 track=7 picture=JPEG:"); // nothing but numbers
        }
    }
}

TEST(ID3v2, WalksFramesAsTheirSizesSay) {
    const std::string title = textFrame("TIT2", "Title");
    const std::string title2 = textFrame("TT2", "Title");
    const std::string other = id3Frame("TXXX", std::string(300, 'x'));
    const std::string longTitle = textFrame("TIT2", std::string(50, 't'));
    expectEach([](const std::string& tag) { return plain(readTag(tag).first.mp3SongTitleString); },
               {{"(absent)",
                 {id3Tag("TXXX\0\0\0\0\0\0"s + title),                 // an empty frame ends the walk,
                  id3Tag(id3Frame(std::string(4, '\0'), "x") + title), // and an id of zero bytes,
                  id3Tag(id3Frame("\0XX"s, "x") + title2, 16, 2),      // or the first, in version 2
                  id3Tag("TXXX\xFF\xFF\xFF\xF0\0\0"s + title)}},
                {"Title",
                 {id3Tag(id3Frame("\0\0\0X"s, "x") + title), id3Tag(id3Frame("X\0\0"s, "x") + title2, 16, 2),
                  // Sizes are plain numbers, in version 4 too.
                  id3Tag(other + title), id3Tag(other + title, 16, 4),
                  // The extended header is skipped by its size alone, which has seven bits a byte.
                  id3Tag(sevenBits(10) + std::string(6, '\0') + title, 16, 4, 0x40),
                  id3Tag(sevenBits(128) + std::string(124, '\0') + title, 16, 3, 0x40)}},
                // A frame that begins within the tag is read whole; the next one begins beyond its end.
                {std::string(50, 't'), {id3Tag(longTitle.substr(0, 20), 0) + longTitle.substr(20) + title}}});
    expectEach([](const std::string& tag) { return endAndFacts(tag); },
               {{"42", {id3Tag(title, 16, 1)}},          // nothing is known of it, but it is passed over
                {"138 tag=3", {"ID3\3\0\0\0\0\0\x80"s}}, // the top bits of the size bytes count
                {"20 tag=3", {id3Tag(sevenBits(10) + std::string(6, '\0'), 0, 3, 0x40)}},
                {"0", {"ID3"}}});
    // Twelve bytes of an extended header are asked for.
    for (const auto& [bytes, expected] : {std::pair(std::size_t{12}, fileNoErr), {11, fileEofErr}}) {
        OpenBytes file(id3Tag(sevenBits(bytes), bytes - 4, 3, 0x40));
        audioTags record;
        std::uint64_t position = 0;
        EXPECT_EQ(mp3ReadV2Tags(&record, &position, &file.cache), expected);
    }
}

TEST(ID3v2, ResolvesGenreReferences) {
    const auto genre = [](const std::string& content) {
        return plain(readTag(id3Tag(textFrame("TCON", content))).first.mp3Genre2String);
    };
    expectRows(genre, {"(17) -> Rock", "(4)Eurodisco -> Disco", "(0) -> (0)", "17 -> 17", "Rock -> Rock",
                       "(125) -> (125)", "(99) -> Acoustic", "(-1) -> (absent)", "(5) -> Funk",
                       "(5)) -> Funk", "(ab) -> (ab)", "() -> ()", "x(7) -> x(7)"});
    EXPECT_EQ(plain(mp3LoadGenreString(126)), "Dance Hall");
    for (const int number : {0, 127, -1, 65537}) {
        EXPECT_FALSE(mp3LoadGenreString(number)) << number;
    }
}

TEST(ID3v2, SplitsTrackTexts) {
    const auto split = [](const std::string& content) {
        std::uint16_t track = 99;
        std::uint16_t amount = 99;
        mp3DecodeTrackInfo(text(content), &track, &amount);
        return std::to_string(track) + " of " + std::to_string(amount);
    };
    expectRows(split, {"3/12 -> 3 of 12", "7 -> 7 of 0", "/12 -> 0 of 12", "3/ -> 3 of 0", "1/2/3 -> 1 of 2",
                       "65537/-1 -> 1 of 65535"});
}

TEST(ID3v1, FillsAndOverwritesTheRecord) {
    startUpIn("C");
    const auto block = [](const std::string& title, const std::string& comment, char genre) {
        return "TAG" + padded(title, 30) + padded("", 30, ' ') + padded("Album \0"s, 30) + "1999" +
               padded(comment, 30) + genre;
    };
    const auto facts = [](const std::string& content, audioTags record = {}) {
        OpenBytes file(content);
        mp3ReadV1Tag(&record, &file.cache, content.size());
        return factsOf(record);
    };
    audioTags before;
    before.mp3ArtistString = text("v2 artist");
    before.mp3ComposerString = text("v2 composer");
    before.mp3TrackAmount = 9;
    // An artist that is all blanks changes nothing, and the year ends before the comment's digit.
    EXPECT_EQ(facts("xx" + block("T\x8Atel", "9 comment that is cut at 28!\0\xC8"s, 17), std::move(before)),
              " tag=1 code=17 year=1999 track=200 of=9 title=Tätel artist=v2 artist album=Album "
              "composer=v2 composer comment=9 comment that is cut at 28! genre=Rock");
    const auto full = [](char letter) { return std::string(30, letter); };
    const std::string comment = full('c');
    expectEach(
        [&](const std::string& content) { return facts(content); },
        {{" tag=1 code=-1 year=1999 title= album=Album comment=" + comment, {block("", comment, '\xFF')}},
         {" tag=1 code=126 year=1999 title= album=Album", {block("", "", 126)}},
         {" tag=1 year=1999 track=1 title= album=Album genre=Blues",
          {block("", std::string(29, '\0') + '\1', 0)}},
         {" tag=1 year=1999 title=a\0b album=Album genre=Blues"s, {block("a\0b  "s, "", 0)}},
         {" tag=1 year=1234 title=" + full('T') + " artist=" + full('A') + " album=" + full('L') +
              " comment=" + full('C') + " genre=Blues",
          {"TAG" + full('T') + full('A') + full('L') + "1234" + full('C') + '\0'}},
         {"", {"tag" + std::string(125, ' '), block("T", "", 0).substr(1)}}});
}

/// Decodes a frame's content, the bytes behind its encoding byte; `next` follows it in the file.
std::string decode(const std::string& content, const std::string& before = {}, const std::string& next = "X",
                   std::uint32_t bufferSize = rcStandardBufferSize) {
    OpenBytes file("?" + content + next, bufferSize);
    SvxStringRef field = before.empty() ? nullptr : text(before);
    mp3ReadSvxStringFromFile(&file.cache, 1, static_cast<std::uint32_t>(content.size() + 1), &field);
    return plain(field);
}

TEST(FrameText, IsRecognisedByItsBytes) {
    const std::string mark = "\xFF\xFE";
    const std::string marks = mark + "\0\0"s + mark;
    const auto decoded = [](const std::string& content) {
        EXPECT_EQ(decode(content, "", "X", 1), decode(content));
        return decode(content);
    };
    expectRows(decoded,
               {"Hello -> Hello", "Hello\0 -> Hello"s, "Hello\0\0 -> Hello\0"s, " -> ", "\0 -> \0"s,
                "english -> lis", "eng -> eng", "eng\0 -> eng"s, "eng\0a -> "s, "engl -> engl",
                "eng\0Nice\0 -> Nice"s, "eng\0Caf\xE9\0 -> CafÈ"s, "eng\0Caf\xC3\xA9\0 -> Café"s,
                "iTunSMP -> iTunSMP", "engdesc\0text\0 -> desc\0text"s, "esp\0Hola\0 -> esp\0Hola"s});
    // A last byte is taken for a terminator; one of zero is dropped from three bytes on.
    expectRows(decoded, {"eng\0Nice -> Nic"s, "a\0 -> a"s});
    expectRows(decoded, {"Caf\xE9 -> (absent)", "Caf\xC3\xA9 -> (absent)", "\xFE\xFF\0H\0i -> (absent)"s,
                         "eng\0ITUNnorm 00\0 -> (absent)"s, "my itunes_cddb -> (absent)"});
    expectEach(decoded, {{"Hi", {mark + utf16("Hi")}},
                         {"Hi\0"s, {mark + utf16("Hi") + "\0\0"s}},
                         {"Hi塸", {mark + utf16("Hi") + "x"}}, // the second byte is the X behind it
                         {"", {mark, "eng" + marks + "xx"}},   // twelve bytes are enough
                         {"(absent)", {"eng" + marks, "eng" + marks + "x"}}, // too short for the rule
                         {"(absent)", {"123456789" + mark + utf16("ab")}},   // a mark at 9
                         {"ab", {"12345678" + mark + utf16("ab")}},          // one at 8 is still found
                         {"Note", {"eng" + marks + utf16("Note") + "\0\0"s}},
                         {"Not", {"eng" + marks + utf16("Note")}},
                         // read as Mac OS Roman
                         {"ˇ˛d\0\0\0ˇ˛t"s, {"eng" + mark + utf16("d") + "\0\0"s + mark + utf16("t")}},
                         {"\0\xEF\xBB\xBFText"s, {"deu" + marks + utf16("Text")}},
                         {"\0\xEF\xBB\xBFx"s, {"ENG" + marks + utf16("x")}}});
}

TEST(FrameText, JoinsWhatIsThereAndFailsUnchanged) {
    EXPECT_EQ(decode("Bob", "Ann"), "Ann Bob");
    EXPECT_EQ(decode("engiTunNORM\0 00\0"s, "kept"), "kept");
    EXPECT_EQ(decode("Caf\xE9", "kept"), "kept");
    EXPECT_EQ(decode("end of file", "kept", ""), "kept"); // the byte behind the frame is missing

    OpenBytes file("?text");
    SvxStringRef field;
    for (const std::uint32_t count : {0U, 0xFFFFFFFFU, 0xFFFFFFFEU, 0xFFFFFFF0U}) {
        mp3ReadSvxStringFromFile(&file.cache, 1, count, &field);
        EXPECT_FALSE(field) << count;
    }
    mp3ReadSvxStringFromFile(&file.cache, ~std::uint64_t{0}, 4, &field);
    EXPECT_FALSE(field);
}

TEST(FrameText, ReadsLongTextsInPieces) {
    // Longer than the read buffer, with characters of several bytes across its boundaries.
    const std::string longText = repeated(30000, "aé日🎵");
    const std::string broken = longText + "\xE9";
    EXPECT_TRUE(decode("eng\0"s + longText + '\0') == longText);
    EXPECT_TRUE(decode("eng\0"s + broken + '\0') == plain(SvxStringFromCString(broken)));
    EXPECT_TRUE(decode(std::string(200000, 'x')) == std::string(200000, 'x'));
    EXPECT_TRUE(decode("\xFF\xFE" + utf16(std::string(100001, 'y'))) == std::string(100001, 'y'));
}

TEST(FramePicture, StartsWhereItsFormatSays) {
    const std::string rest(100, 'r');
    const std::string jpeg = "\xFF\xD8\xFF\xE0";
    const std::string jpegs = jpeg + rest;
    const std::string pngs = "\x89PNG" + rest;
    // In a range that goes one byte beyond the frame; found alike in another size of the buffer.
    const auto read = [](const std::string& content) {
        const std::string bytes = "?" + content + "N\x89PNG";
        const auto count = static_cast<std::uint32_t>(content.size() + 1);
        OpenBytes file(bytes);
        OpenBytes sameFile(bytes, 1);
        audioTags loaded;
        audioTags found;
        const std::int32_t result = mp3ReadCoverArt(&loaded, 1, count, &file.cache);
        EXPECT_EQ(mp3ReadCoverArt(&found, 1, count, &sameFile.cache, Pictures::find), result);
        EXPECT_FALSE(found.mp3CoverArt);
        EXPECT_EQ(factsOf(found, bytes), factsOf(loaded));
        return std::to_string(result) + factsOf(loaded);
    };
    expectEach(read, {{"0 picture=JPEG:" + jpegs + "N",
                       {"image/jpeg\0\3\0"s + jpegs, "image/jpg\0\3\0"s + jpegs, "JPG\0\0"s + jpegs,
                        "x\0\0"s + jpegs}},
                      {"0 picture=PNGf:" + pngs + "N",
                       {"image/png\0\3\0"s + pngs, "image/jpeg\0\3\0"s + pngs, // the bytes know better
                        "PNG\3\0"s + pngs}},                                   // found by looking everywhere
                      {"0 picture=BMPf:BM" + rest + "N", {"image/bmp\0\3\0BM"s + rest}},
                      {"0 picture=JPEG:\0\0\xFF\xFE"s + rest + "N", {"image/png\0\3\0\0\0\xFF\xFE"s + rest}},
                      {"0 picture=JPEG:over\0"s + jpegs + "N", {"image/jpeg\0\3cover\0"s + jpegs}},
                      {"0 picture=JPEG:G\0zzN"s, {rest + "JPG\0zz"s}},
                      // Across two fillings of the buffer.
                      {"0 picture=JPEG:" + jpeg + "N",
                       {std::string(4092, 'x') + "\0\0"s + jpeg, std::string(90000, 'x') + "\0\0"s + jpeg}},
                      {"0 picture=PNGf:\x89PNG" + std::string(70000, 'r') + "N",
                       {std::string(4094, 'x') + "\x89PNG" + std::string(70000, 'r')}},
                      {"-2", {"JPG\3\0"s + jpegs, "image/JPEG\0\3\0"s + jpegs, rest + "\x89PN"}},
                      {"-1", {std::string(98, 'x')}}});
}

TEST(FramePicture, MayGoOnInAHole) {
    const TestFolder folder;
    const std::string path = folder.write("x", std::string(4093, 'x') + "JPG");
    std::filesystem::resize_file(path, 1000000);
    CachedFile file(text(path));
    audioTags record;
    EXPECT_EQ(mp3ReadCoverArt(&record, 0, 1000000, file.cache(), Pictures::find), 0);
    EXPECT_EQ(record.mp3CoverArtPlace.position, 4095U);
}

TEST(FramePicture, IsNoneWhenTheFileChangesMeanwhile) {
    const std::string start = "image/png\0\3\0\x89PNG"s;
    for (const std::string& changed :
         {start + std::string(50000, 'p'), start + std::string(100001, 'p'), std::string(100016, 'q'), ""s}) {
        OpenBytes file(start + std::string(100000, 'p'));
        file.change(changed); // the buffer still holds what the file began with
        audioTags record;
        EXPECT_EQ(mp3ReadCoverArt(&record, 0, 100000, &file.cache), -2);
        EXPECT_EQ(factsOf(record), "");
    }
}

TEST(FramePicture, StaysUntilAnotherIsRead) {
    OpenBytes file("image/png\0\3\0"s + std::string(200, 'p'));
    audioTags record;
    EXPECT_EQ(mp3ReadCoverArt(&record, 0, 150, &file.cache), 0);
    EXPECT_EQ(mp3ReadCoverArt(&record, 20, 150, &file.cache), -2); // no start anywhere
    EXPECT_EQ(mp3ReadCoverArt(&record, 0, 250, &file.cache), -2);  // beyond the end
    EXPECT_EQ(mp3ReadCoverArt(&record, 0, ~0U, &file.cache), -2);  // 4 GiB of nothing
    EXPECT_EQ(mp3ReadCoverArt(&record, 0, 99, &file.cache), -1);
    EXPECT_EQ(factsOf(record), " picture=PNGf:" + std::string(138, 'p'));
    EXPECT_EQ(mp3ReadCoverArt(&record, 0, 160, &file.cache), 0);
    EXPECT_EQ(factsOf(record), " picture=PNGf:" + std::string(148, 'p'));
    setHostPictureDecoder([](std::span<const std::uint8_t> /*bytes*/,
                             const std::atomic<bool>* /*isWanted*/) -> std::unique_ptr<HostPicture> {
        throw std::bad_alloc();
    });
    EXPECT_FALSE(amdGetCoverArt(record));
    setHostPictureDecoder(nullptr);
}

} // namespace

} // namespace sonarin
