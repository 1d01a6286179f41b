// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>

namespace sonarin {

/// A list to choose from that a screen reader knows by its own name: the toolkit's is named by its value.
class SourceList : public QComboBox {
    Q_OBJECT

public:
    using QComboBox::QComboBox;
};

} // namespace sonarin
