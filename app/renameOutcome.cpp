// SPDX-License-Identifier: MIT
#include "app/renameOutcome.h"

#include "engine/fileEngine.h"
#include "platform/host/errorText.h"
#include "text/stringEngine.h"

#include <cerrno>

namespace sonarin {

namespace {

bool holdsSlash(const SvxStringRef& name) {
    return name && name->visit([](auto units) {
        using Unit = typename decltype(units)::value_type;
        return units.find(static_cast<Unit>('/')) != units.npos;
    });
}

} // namespace

std::string renameOutcome(std::int32_t result, const SvxStringRef& newName) {
    switch (result) {
    case fileNoErr:
        return "Renamed";
    case fileMemFullErr:
        return "Not renamed: there is no memory left";
    case feHostError(EEXIST):
        return "Not renamed: the name is taken";
    case feHostError(EINVAL):
        return holdsSlash(newName) ? "Not renamed: a name cannot hold a slash"
                                   : "Not renamed: no file can have that name";
    case feHostError(ENAMETOOLONG):
        return "Not renamed: the name is too long";
    case feHostError(ENOENT):
        return "Not renamed: the file is no longer there";
    default:
        return "Not renamed: " + hostErrorText(feHostErrorNumber(result));
    }
}

} // namespace sonarin
