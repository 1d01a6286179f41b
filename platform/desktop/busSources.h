// SPDX-License-Identifier: MIT
#pragma once

#include "platform/desktop/cmusRemote.h"
#include "platform/desktop/propertyPoll.h"
#include "platform/desktop/selectionSources.h"

#include <array>
#include <cstddef>

namespace sonarin {

/// The sources of a Linux desktop: players over MPRIS 2.2, selections over the interface
/// org.sonarin.Selection1 that small plug-ins of file managers and players publish
/// (docs/selection-interface.md).
class BusSources final : public SelectionSources {
    Q_OBJECT

public:
    explicit BusSources(SessionBus* bus, QObject* parent = nullptr);

    void ask(Question question) override;
    void forget() override;
    Paths answer(Question question) override;
    [[nodiscard]] bool isPlayerRunning() const override;
    [[nodiscard]] Teller teller(Question question) const override;

private:
    Paths trackPlaying();
    /// Whether cmus is to be believed rather than who publishes a selection.
    [[nodiscard]] bool isCmusSelection(Question question) const;
    [[nodiscard]] PropertyPoll* pollFor(Question question) const {
        return polls_.at(static_cast<std::size_t>(question));
    }

    PropertyPoll fileManagers_;
    PropertyPoll playerSelections_;
    PropertyPoll players_;
    std::array<PropertyPoll*, 3> polls_ = {&fileManagers_, &playerSelections_, &players_}; ///< by question
    CmusRemote cmus_;
};

} // namespace sonarin
