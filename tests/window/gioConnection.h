// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace sonarin {

/// Opens GIO's shared connection to the session bus, as a plug-in of the toolkit may, and keeps it with the
/// answer, which tells whether the bus has closed it.
[[nodiscard]] std::function<bool()> keepGioConnection();

} // namespace sonarin
