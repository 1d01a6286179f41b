# SPDX-License-Identifier: MIT
# Completion of sonarin-info for bash.
_sonarin_info() {
    local i haveOptionsEnded=
    for ((i = 1; i < COMP_CWORD; i++)); do
        [[ ${COMP_WORDS[i]} == -- ]] && haveOptionsEnded=yes
    done
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    case $before in
    --cover | --files0-from) ;;
    --jobs)
        mapfile -t COMPREPLY < <(compgen -W "$(seq "$(nproc)")" -- "$word")
        return
        ;;
    *)
        if [[ $word == -* && -z $haveOptionsEnded ]]; then
            mapfile -t COMPREPLY < <(compgen -W \
                '--json --recursive --by-standard --files0-from --jobs --cover --force --help --version' -- "$word")
            return
        fi
        ;;
    esac
    compopt -o filenames
    if [[ $before == --cover || $before == --files0-from ]]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    else # audio files, and the folders that may lead to them
        mapfile -t COMPREPLY < <(
            compgen -d -- "$word"
            shopt -s nocasematch
            compgen -f -- "$word" | while IFS= read -r name; do
                [[ ! -d $name && $name =~ \.(mp3|m4a|aac|m4b|m4p|m4r|wav|wave|aif|aiff)$ ]] && printf '%s\n' "$name"
            done
        )
    fi
}
complete -F _sonarin_info sonarin-info
