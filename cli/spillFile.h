// SPDX-License-Identifier: MIT
#pragma once

#include "platform/host/fileDescriptor.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace sonarin {

class OutputBuffer;

/// Bytes that would take too much memory until they are wanted: in a file without a name, in the folder for
/// temporary files, which is made when it is first needed and goes with its owner.
class SpillFile {
public:
    struct Place {
        std::uint64_t position = 0;
        std::uint64_t size = 0;
    };

    /// Nothing where the disk does not take them.
    [[nodiscard]] std::optional<Place> keep(std::string_view bytes);
    /// Copies what was kept there. 0, or the host's number of the error that kept it from doing so.
    [[nodiscard]] int copyTo(OutputBuffer& out, Place place) const;
    /// Forgets all of it.
    void clear();

private:
    FileDescriptor file_;
    bool isImpossible_ = false;
    std::uint64_t end_ = 0;
};

} // namespace sonarin
