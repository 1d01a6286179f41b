// SPDX-License-Identifier: MIT
#pragma once

namespace sonarin {

/// Makes the window's own kinds of widgets known to screen readers: a value has its caption as its name and
/// its text as its text, the picture is a graphic, the list of sources goes by its own name, and opening a
/// menu does not keep a screen reader waiting. May be called again.
void describeToScreenReaders();

} // namespace sonarin
