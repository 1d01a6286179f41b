# SPDX-License-Identifier: MIT
# Completion of sonarin-info for fish.
complete -c sonarin-info -s j -l json -d 'Print one JSON object per line per file'
complete -c sonarin-info -s r -l recursive -d 'Take the audio files in folders'
complete -c sonarin-info -l by-standard -d 'Read tags as the ID3 documents say'
complete -c sonarin-info -l files0-from -r -F -d 'Take the names in a list'
complete -c sonarin-info -l jobs -x -d 'Read that many files at once'
complete -c sonarin-info -l cover -r -F -d 'Write the cover picture to a file'
complete -c sonarin-info -l force -d 'Let --cover replace a file'
complete -c sonarin-info -s h -l help -d 'Print the usage'
complete -c sonarin-info -l version -d 'Print the version'
