// SPDX-License-Identifier: MIT
#pragma once

#include "platform/desktop/cmusRemote.h"
#include "platform/desktop/propertyPoll.h"
#include "platform/desktop/selectionSources.h"

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
    [[nodiscard]] bool isCmusSelectionLatest() const;

    PropertyPoll fileManagers_;
    PropertyPoll playerSelections_;
    PropertyPoll players_;
    CmusRemote cmus_;
};

} // namespace sonarin
