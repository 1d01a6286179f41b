// SPDX-License-Identifier: MIT
#pragma once

#include "platform/desktop/selectionSources.h"

namespace sonarin {

/// What the window says at its foot about the program that it follows: one line of HTML, in which a link to
/// "connect" offers the choice of connectors.
[[nodiscard]] QString followStatus(SelectionSources::Question question,
                                   const SelectionSources::Teller& teller,
                                   const SelectionSources::Paths& answer);

} // namespace sonarin
