// SPDX-License-Identifier: MIT
#include "app/window/FollowStatus.h"

#include "app/window/ValueLabel.h"

namespace sonarin {

namespace {

using State = SelectionSources::Teller::State;

/// The program's own name may be anything.
QString programName(const QString& name, const QString& otherwise) {
    constexpr qsizetype longest = 30;
    const QString shown = name.size() > longest ? startOf(name, longest) + u'…' : name;
    return withVisibleControls(shown.isEmpty() ? otherwise : shown).toHtmlEscaped();
}

QString selectionText(const SelectionSources::Paths& answer) {
    const qsizetype count = answer ? answer->size() : 0;
    if (count == 0) {
        return QStringLiteral("nothing selected");
    }
    if (count > 1) {
        return QStringLiteral("%1 selected: nothing is shown").arg(count);
    }
    return answer->first().isEmpty() ? QStringLiteral("1 selected, which is no file on this computer")
                                     : QStringLiteral("1 selected");
}

} // namespace

QString followStatus(SelectionSources::Question question, const SelectionSources::Teller& teller,
                     const SelectionSources::Paths& answer) {
    using Question = SelectionSources::Question;
    const bool isPlaying = question == Question::trackPlaying;
    const bool isFileManager = question == Question::fileManagerSelection;
    const QString kind = isFileManager ? QStringLiteral("file manager") : QStringLiteral("player");
    switch (teller.state) {
    case State::none:
        return isPlaying
                   ? QStringLiteral("No player is running")
                   : QStringLiteral("No %1 tells its selection: <a href=\"connect\">connect…</a>").arg(kind);
    case State::silent:
        return QStringLiteral("The %1 does not answer").arg(kind);
    case State::selecting:
        return programName(teller.program, QStringLiteral("The %1").arg(kind)) + QStringLiteral(", ") +
               selectionText(answer);
    case State::playing:
        return programName(teller.program, QStringLiteral("The player")) + QStringLiteral(", playing");
    case State::paused:
        return programName(teller.program, QStringLiteral("The player")) + QStringLiteral(", paused");
    case State::stopped:
        return QStringLiteral("Nothing is playing");
    }
    return {};
}

} // namespace sonarin
