// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Files made for a benchmark, in a folder that goes when the program ends.
namespace sonarin::bench {

/// The path of a file `name` with that content; written anew on every call.
std::string makeFile(const std::string& name, const std::string& content);

/// As above for large files: `fill` sets one piece of 1 MiB after the other.
std::string makeLargeFile(const std::string& name, std::size_t mebibytes,
                          const std::function<void(std::string& piece)>& fill);

/// `count` files with the same content.
std::vector<std::string> makeFiles(const std::string& name, const std::string& content, std::size_t count);

/// An ID3v2.3 frame, and a tag of frames and padding.
std::string id3Frame(const std::string& id, const std::string& data);
std::string id3Tag(const std::string& frames, std::size_t padding);

/// `value` as four bytes, most significant first.
std::string bigEndian(std::uint32_t value);

/// An MPEG-1 Layer III frame header (128 kbit/s, 44100 Hz, stereo) and silence behind it.
std::string mpegAudio(std::size_t size);

} // namespace sonarin::bench
