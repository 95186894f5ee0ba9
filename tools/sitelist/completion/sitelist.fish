# Completion of sitelist for fish. The candidates come from `sitelist __complete`; its output is
# described in tools/sitelist/commands/complete.h of the source.

# Prints the tool's answer to the line. The last word is passed without quotes, even if a quote is open.
function __sitelist_answer
    set -l words (commandline -opc)
    set -l program (string replace -r -- '^~/' "$HOME/" $words[1])
    type -q -- $program; or return
    set -l typed (commandline -ct)
    for quote in '' "'" '"'
        set -l plain (string unescape -- "$typed$quote")
        and set typed $plain
        and break
    end
    $program __complete -- $words[2..-1] "$typed" 2>/dev/null </dev/null
end

function __sitelist_wants_files
    set -l answer (__sitelist_answer)
    test "$answer[-1]" = :files
end

function __sitelist_candidates
    set -l answer (__sitelist_answer)
    set -q answer[2]; and printf '%s\n' $answer[1..-2]
    test "$answer[-1]" = :directories; or return
    set -l parts (string match -r -- '^(--[^=]*=|)(.*)$' (commandline -ct))
    printf '%s\n' $parts[2](__fish_complete_directories $parts[3])
end

complete -c sitelist -f -a '(__sitelist_candidates)'
complete -c sitelist -n __sitelist_wants_files -F
