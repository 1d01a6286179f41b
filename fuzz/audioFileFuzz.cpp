// SPDX-License-Identifier: MIT
#include "fuzz/memoryFile.h"
#include "text/stringEngine.h"

/// All that sonarin-info does with a file of any bytes, under a name that chooses the reader: read in both
/// ways, one of which is printed as JSON or as text, since printing takes the longest.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace sonarin;
    serveFile({bytes, size});
    const auto read = [](TagReading tags) {
        return readShownFile(SvxStringFromCString(FILE_NAME), {Pictures::load, nullptr, tags});
    };
    const ShownFile usual = read(TagReading::usual);
    const ShownFile byStandard = read(TagReading::byStandard);
    printFile(size % 2 != 0 ? usual : byStandard, size % 4 < 2 ? Form::json : Form::text);
    return 0;
}
