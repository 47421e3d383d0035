#include "host/cli/completion/completionScripts.h"

#include <array>

namespace Zamt::Host {

namespace {

/// Bash hands words on as they are written, quotes and all, and cuts them at "=".
constexpr std::string_view bash =
    R"script(# Completes the words of quindle in bash. Made by "quindle completion bash".
_quindle() {
    local before=quindle$'\n' word=${COMP_WORDS[COMP_CWORD]//[\"\'\\]/} i line first files= ending=
    for ((i = 1; i < COMP_CWORD; ++i)); do before+=${COMP_WORDS[i]//[\"\'\\]/}$'\n'; done
    COMPREPLY=()
    {
        read -r first ending files
        while IFS=$'\t' read -r line _; do
            COMPREPLY+=("$line")
            [[ $line == *\ * ]] && compopt -o filenames # which makes bash quote it
        done
    } < <(quindle completion --words="$before$word" 2>/dev/null)
    [ "$ending" = open ] && compopt -o nospace
    [ "$first" = files ] || return 0
    compopt -o filenames
    [ "$word" = = ] && word=
    while IFS= read -r line; do
        if [ -d "$line" ]; then COMPREPLY+=("$line"); continue; fi
        for ending in $files; do [[ ${line,,} == *"$ending" ]] && COMPREPLY+=("$line"); done
    done < <(compgen -f -- "$word")
}
complete -F _quindle quindle
)script";

constexpr std::string_view zsh = R"script(#compdef quindle
# Completes the words of quindle in zsh. Made by "quindle completion zsh".
_quindle() {
    local -a lines head words_ helps
    local line before=${(F)${(@Q)words[1,CURRENT-1]}}
    lines=("${(@f)$(quindle completion --words="$before"$'\n'"${(Q)PREFIX}" 2>/dev/null)}")
    head=(${=lines[1]})
    for line in "${(@)lines[2,-1]}"; do
        words_+=("${line%%$'\t'*}")
        if [[ $line == *$'\t'?* ]]; then
            helps+=("${line%%$'\t'*}  -  ${line#*$'\t'}")
        else
            helps+=("${line%%$'\t'*}")
        fi
    done
    local -a ending
    [[ $head[2] == open ]] && ending=(-S '')
    (( $#words_ )) && compadd "${(@)ending}" -l -d helps -a words_
    [[ $head[1] == files ]] && _files -g "*(${(j:|:)head[3,-1]})(-.)"
    return 0
}
if [ "$funcstack[1]" = _quindle ]; then _quindle "$@"; else compdef _quindle quindle; fi
)script";

constexpr std::string_view fish =
    R"script(# Completes the words of quindle in fish. Made by "quindle completion fish".
function __quindle_complete
    set -l before (commandline -opc)
    set -l word (commandline -ct | string replace -r '^["\']' '' | string unescape)
    set -l lines (quindle completion --words=(string join \n -- $before | string collect)\n"$word" 2>/dev/null)
    set -l head (string split ' ' -- $lines[1])
    set -e lines[1]
    printf '%s\n' $lines
    test "$head[1]" = files; or return 0
    for ending in $head[3..-1]
        __fish_complete_suffix "$word" $ending | string match -r -- "(?i).*\\$ending(?:\t.*)?\$|.*/(?:\t.*)?\$"
    end
end
complete -c quindle -f -a '(__quindle_complete)'
)script";

constexpr std::array<CompletionScript, 3> scripts{{{"bash", bash}, {"zsh", zsh}, {"fish", fish}}};

} // namespace

std::span<const CompletionScript> completionScripts() { return scripts; }

} // namespace Zamt::Host
