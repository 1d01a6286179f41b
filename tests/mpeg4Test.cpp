// SPDX-License-Identifier: MIT
#include "engine/aacTags.h"
#include "tests/support/readBytes.h"

namespace sonarin {

namespace {

using namespace sample;
using namespace std::string_literals;

std::string mpeg4Facts(const std::string& content, std::uint64_t sizeOnDisk = 0) {
    return factsOf(readFileAs("x.m4a", content, sizeOnDisk));
}

/// Of a file with that item list. Something always follows the list, as in real files.
std::string factsOfItems(const std::string& items) {
    return mpeg4Facts(fileTypeAtom() + movieAtom(items) + atom("free", std::string(200, '\0')));
}

/// An item whose type begins with a copyright sign.
std::string signItem(const std::string& rest, const std::string& value) {
    return item('\xA9' + rest, value);
}

std::string withoutLast(const std::string& text, std::size_t count) {
    return text.substr(0, text.size() - count);
}

TEST(Mpeg4, EstimatesDurationAndBitRate) {
    constexpr std::uint64_t fourGiB = std::uint64_t{1} << 32U;
    const auto estimate = [](std::uint32_t timeScale, std::uint32_t duration, std::uint64_t size) {
        return mpeg4Facts(fileTypeAtom() + movieAtom("", timeScale, duration), size);
    };
    EXPECT_EQ(estimate(44100, 13230000, 5000000), " seconds=300 kbit=136");
    EXPECT_EQ(estimate(0, 13230000, 5000000), "");
    EXPECT_EQ(estimate(44100, 44099, 5000000), "");
    EXPECT_EQ(estimate(44100, 0, 5000000), "");
    EXPECT_EQ(estimate(1, 65536, 5000000), "");              // only 16 bits of the duration are kept
    EXPECT_EQ(estimate(1, 65537, 5000000), " seconds=1");    // less than a byte a second, in 16.16
    EXPECT_EQ(estimate(44100, 13230000, 0), " seconds=300"); // less than 4096 bytes
    EXPECT_EQ(estimate(44100, 13230000, fourGiB - 1), " seconds=300"); // negative in 32 bits
    EXPECT_EQ(estimate(44100, 13230000, fourGiB + 5000000), " seconds=300 kbit=136");
    EXPECT_EQ(estimate(600, 600 * 8, 4096 + 32 + 8 * 1024), " seconds=8 kbit=8");
    EXPECT_EQ(estimate(600, 600 * 8, 4096 + 32 + 8 * 1024 + 1023), " seconds=8 kbit=8");
    EXPECT_EQ(estimate(600, 600 * 8, 4096 + 32 + 8 * 1024 + 1024), " seconds=8 kbit=16");
}

TEST(Mpeg4, FillsTheRecordFromItems) {
    const std::string cover = "\xFF\xD8\xFF\xE0" + std::string(200, 'j');
    // One text is in Mac OS Roman.
    const std::string items =
        signItem("nam", "Tit\xC3\xA9") + signItem("ART", "Ann") + signItem("alb", "Alb\x8Em") +
        signItem("wrt", "Composer") + signItem("too", "Encoder") + signItem("gen", "ignored") +
        signItem("cmt", "one") + signItem("cmt", "itunsmpb 0") + signItem("cmt", "xiTunNORM") +
        signItem("cmt", "") + item("desc", "about") + signItem("lyr", "la") +
        signItem("day", "2009-07-01T07:00:00Z") + item("gnre", bigEndian(18, 2)) +
        item("trkn", "\0\0\0\3\0\14\0\0"s) + item("covr", cover);
    const std::string facts =
        " seconds=300 code=18 year=2009 track=3 of=12 title=Tité artist=Ann album=Albém "
        "composer=Composer comment=one xiTunNORM  genre=Rock lyrics=about la encoder=Encoder";
    expectEach(factsOfItems, {{facts + " picture=JPEG:" + cover, {items}},
                              // Numbers are taken unchecked.
                              {" seconds=300 year=54562", {signItem("day", "abcd")}},
                              {" seconds=300 code=-2",
                               {item("gnre", bigEndian(5, 2)) + item("gnre", bigEndian(0xFFFE, 2))}}});
}

TEST(Mpeg4, LooksForAtomsUpToTheLimit) {
    OpenBytes file(atom("free", "12345678") + longAtom("mdat", "1234") + atom("moov", ""));
    const auto find = [&file](std::uint32_t type, std::uint32_t limit) {
        std::uint64_t position = 0;
        aacAtomHeader header;
        const std::int32_t result = findQTAtom(type, &position, limit, &file.cache, &header);
        return std::to_string(result) + " " + plain(fourCharacterText(header.type)) + " at " +
               std::to_string(position);
    };
    EXPECT_EQ(find(fourCC("free"), 0), "0 free at 0"); // the first is not asked where it stands
    EXPECT_EQ(find(fourCC("mdat"), 16), "-1 free at 0");
    EXPECT_EQ(find(fourCC("mdat"), 17), "0 mdat at 16");
    EXPECT_EQ(find(fourCC("moov"), 36), "-1 mdat at 16");
    EXPECT_EQ(find(fourCC("moov"), 37), "0 moov at 36");
    EXPECT_EQ(find(fourCC("udta"), 100), std::to_string(fileEofErr) + " moov at 44");
}

TEST(Mpeg4, FindsTheMovieWhereverItIsOrFails) {
    const std::string movie = movieAtom(signItem("nam", "here"));
    const std::string mdat(70000, 'm');
    const std::string list = atom("udta", atom("meta", "\0\0\0\0"s + atom("ilst", signItem("nam", "far"))));
    const std::string header =
        atom("mvhd", std::string(12, '\0') + bigEndian(10) + bigEndian(50) + std::string(80, '\0'));
    const auto headed = [](const std::string& atoms) { return fileTypeAtom() + atoms; };
    const std::string wrap = "\0\0\0\1mdat"s + bigEndian(~std::uint64_t{0} - 15, 8); // 16 bytes back
    expectEach([](const std::string& content) { return mpeg4Facts(content); },
               {{" seconds=300 kbit=8 title=here", {headed(movie + atom("mdat", mdat))}},
                {" seconds=300 title=here",
                 {headed(atom("mdat", mdat) + movie), headed(longAtom("mdat", mdat) + movie),
                  headed("\0\0\0\6zz"s + movie)}},
                // Missing children are looked for beyond their parent.
                {" seconds=5 title=far", {headed(atom("moov", "") + header + list)}},
                // What was found stays.
                {" result=-1 seconds=5 kbit=8", {headed(atom("moov", header) + std::string(8192, '\0'))}},
                {" result=-1 seconds=5",
                 {headed(atom("moov", header + atom("udta", atom("meta", "")))),
                  headed(withoutLast(atom("moov", header), 76))}},
                {" result=-1",
                 {"", "\0\0\0\x10"s, atom("wide", "") + headed(movieAtom("")),
                  "\0\0\0\0ftyp"s + movieAtom(""), headed("\0\0\0\1mdat"s + std::string(100, '\0')),
                  headed(atom("free", "16 bytes") + wrap + movieAtom("")),
                  headed(withoutLast(atom("moov", header), 80)),
                  // A header with a 64-bit size counts as one byte long for what comes after it.
                  headed(atom("moov", longAtom("mvhd", std::string(100, '\0')) + list))}}});
    // Positions beyond 4 GiB are not searched, and the search takes the size's low 32 bits for the end.
    const std::string farAway = "\0\0\0\1mdat"s + bigEndian(std::uint64_t{5} << 30U, 8);
    EXPECT_EQ(mpeg4Facts(headed(farAway), (std::uint64_t{5} << 30U) + 5000), " result=-1");
    const std::string nearby = atom("free", std::string(100, '\0')) + movieAtom("");
    EXPECT_EQ(mpeg4Facts(headed(nearby), (std::uint64_t{1} << 32U) + 100), " result=-1");
}

TEST(Mpeg4, EndsTheItemWalkWhereItMust) {
    const std::string title = signItem("nam", "in");
    const std::string artist = signItem("ART", "out");
    const std::string endless = std::string(4, '\0') + title.substr(4);
    const std::string claim = signItem("alb", "text").replace(8, 4, 4, '\xFF');
    expectEach(factsOfItems,
               {{" seconds=300 title=in artist=out", {title + artist}},
                {" seconds=300 title=in",
                 {endless + artist,    // handled once
                  "\0\0\0\4"s + title, // sizes of 1 to 7 lead on, byte by byte
                  claim + title}}});   // what cannot be read ends the walk for numbers, not for texts
    // The atom behind the list is not taken for an item.
    const std::string list = "\0\0\0\0"s + atom("ilst", title) + artist;
    const std::string movie = atom("mvhd", std::string(100, '\0')) + atom("udta", atom("meta", list));
    EXPECT_EQ(mpeg4Facts(fileTypeAtom() + atom("moov", movie)), " title=in");
    // An item that is nothing but a header, whose value would stand behind the file's end, and a text of no
    // bytes.
    const auto bare = [](const std::string& type) {
        return mpeg4Facts(fileTypeAtom() + movieAtom(atom(type, "") + withoutLast(signItem("nam", ""), 8)));
    };
    expectEach(bare, {{" seconds=300", {"\xA9" + "day"s, "gnre", "trkn"}},
                      {" seconds=300 title=", {"\xA9" + "ART"s, "covr"}}});
}

TEST(Mpeg4, ReadsTheTextOfOneItem) {
    const std::string wanted = signItem("nam", "text");
    const std::string empty = signItem("nam", "");
    const auto read = [](const std::string& content) {
        OpenBytes file(content);
        SvxStringRef field = text("kept");
        const std::int32_t result = aacReadQuickTimeToSvxStringRef(&file.cache, 0, &field);
        return std::to_string(result) + " " + plain(field);
    };
    expectEach(read, {{"0 kept text", {wanted}},
                      {"0 kept ", {empty, withoutLast(empty, 8)}}, // nothing is left to be read
                      {std::to_string(fileEofErr) + " kept", {withoutLast(wanted, 1), withoutLast(empty, 9)}},
                      {"-2 kept",
                       {signItem("nam", "xx").replace(8, 4, bigEndian(15)),
                        signItem("nam", "xx").replace(8, 4, bigEndian(0))}},
                      {"0 kept", {signItem("nam", "iTunes_CDDB"), signItem("nam", "ITUNpgap 0")}}});
}

TEST(Mpeg4, ReadsTextThatOverlapsOnlyInProportionToTheFile) {
    // Each item's value claims the next 500,000 bytes.
    const std::string greedy = atom("\xA9nam", bigEndian(500000 + 16) + "data" + std::string(8, '\0'));
    const ReadResult read =
        readFileAs("x.m4a", fileTypeAtom() + movieAtom(repeated(10000, greedy)) + std::string(600000, ' '));
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(plain(read.record.mp3SongTitleString).size() / 500000, 3U); // of 840 KB and 1 MiB
}

} // namespace

} // namespace sonarin
